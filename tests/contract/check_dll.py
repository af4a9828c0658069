#!/usr/bin/env python3
"""Compares the exports and imports of KEL.dll with the intended ones.

    check_dll.py TABLE DLL

TABLE is src/exports/exports.txt. The DLL's export table must hold its standard-call names at its
ordinals and nothing else, least of all at the ordinals between. Each export is a function of the
DLL itself. The DLL may import from the system and from the run-time libraries that are shipped with
it only, and must import the system's functions that it is built on.
Prints one line per difference and ends with status 1 if there is any.
"""
import pathlib
import sys

import exports

SYSTEM = {"KERNEL32.dll", "msvcrt.dll", "ole32.dll"}
# The imports that the library is known to need.
NEEDED = {("KERNEL32.dll", "DisableThreadLibraryCalls"), ("ole32.dll", "CoCreateGuid")}
SHIPPED = {"libgcc_s_dw2-1.dll", "libwinpthread-1.dll"}


def exports_of(image):
    """Returns the exports: ordinal to (names, whether the function belongs to another library)."""
    found = {}
    for symbol in image.DIRECTORY_ENTRY_EXPORT.symbols:
        if symbol.address != 0:
            names, _ = found.setdefault(symbol.ordinal, ([], symbol.forwarder is not None))
            names += [symbol.name.decode()] if symbol.name else []
    return found


def imports_of(image):
    """Returns the imported functions as pairs of library and name. The name is None for a function
    imported by ordinal."""
    return [(entry.dll.decode(), function.name.decode() if function.name else None)
            for entry in image.DIRECTORY_ENTRY_IMPORT for function in entry.imports]


def compare_exports(listed, exported):
    """Yields the differences. listed: ordinal to name; exported: see exports_of."""
    for ordinal in sorted(set(listed) | set(exported)):
        names, is_forwarded = exported.get(ordinal, (["nothing"], False))
        if ordinal not in listed:
            yield f"ordinal {ordinal} exports {' '.join(names) or 'a function without a name'}"
        elif names != [listed[ordinal]]:
            yield f"ordinal {ordinal} exports {' '.join(names)} instead of {listed[ordinal]}"
        elif is_forwarded:
            yield f"ordinal {ordinal} is a function of another library"


def compare_imports(imports):
    """Yields the differences. imports: pairs of library and function."""
    libraries = {library for library, _ in imports}
    for name in sorted(libraries - SYSTEM - SHIPPED):
        yield f"imports from {name}"
    for library, function in sorted(NEEDED - set(imports)):
        yield f"does not import {function} from {library}"
    if "libgcc_s_dw2-1.dll" not in libraries:
        yield "has a libgcc of its own, so no host catches what it throws"


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__)
    table, dll = map(pathlib.Path, arguments)
    import pefile  # what the tests of this file do not need
    image = pefile.PE(str(dll))
    if image.FILE_HEADER.Machine != pefile.MACHINE_TYPE["IMAGE_FILE_MACHINE_I386"]:
        sys.exit(f"{dll} is not for 32-bit x86")
    name = image.DIRECTORY_ENTRY_EXPORT.name.decode()
    exported = exports_of(image)
    imports = imports_of(image)
    rows, differences = exports.parse(table.read_text())
    differences += compare_exports({row.ordinal: row.standard_call for row in rows}, exported)
    differences += compare_imports(imports)
    if name != "KEL.dll" or dll.name != "KEL.dll" or not image.is_dll():
        differences.append(f"{dll} is not the library KEL.dll but {name}")
    print("\n".join(differences) if differences else
          f"KEL.dll exports exactly {len(exported)} functions and imports from "
          f"{', '.join(sorted({library for library, _ in imports}))}.")
    return 1 if differences else 0


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except ValueError as mistake:
        sys.exit(str(mistake))
