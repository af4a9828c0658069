#!/usr/bin/env python3
"""Compares the exports and imports of KEL.dll with the intended ones.

    check_dll.py TABLE DLL

TABLE is src/exports/exports.txt. The DLL's export table must hold its functions at its ordinals and
nothing else, least of all at the ordinals between. Their names are the standard-call names in 32
bits, and the plain names in 64 bits. Each export is a function of the DLL itself. The DLL may import
from the system and from the run-time libraries that are shipped with it only, and must import the
system's functions that it is built on.
Prints one line per difference and ends with status 1 if there is any.
"""
import collections
import pathlib
import sys

import exports

SYSTEM = {"KERNEL32.dll", "msvcrt.dll", "ole32.dll"}
# The imports that the library is known to need.
NEEDED = {("KERNEL32.dll", "DisableThreadLibraryCalls"), ("ole32.dll", "CoCreateGuid")}
# What is shipped with the DLL, besides the libgcc of its width.
SHIPPED = {"libwinpthread-1.dll"}

# For each processor: the name of a function, and the libgcc that throws and catches.
Width = collections.namedtuple("Width", "name libgcc")
WIDTHS = {"IMAGE_FILE_MACHINE_I386": Width(lambda row: row.standard_call, "libgcc_s_dw2-1.dll"),
          "IMAGE_FILE_MACHINE_AMD64": Width(exports.plain_name, "libgcc_s_seh-1.dll")}


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


def compare_imports(libgcc, imports):
    """Yields the differences. imports: pairs of library and function."""
    libraries = {library for library, _ in imports}
    for name in sorted(libraries - SYSTEM - SHIPPED - {libgcc}):
        yield f"imports from {name}"
    for library, function in sorted(NEEDED - set(imports)):
        yield f"does not import {function} from {library}"
    if libgcc not in libraries:
        yield "has a libgcc of its own, so no host catches what it throws"


def differences_in_mingw(image, rows):
    """Yields the differences of a DLL by mingw-w64 from the rows of the table."""
    import pefile
    width = WIDTHS.get(pefile.MACHINE_TYPE.get(image.FILE_HEADER.Machine))
    if width is None:
        raise ValueError("The DLL is for another processor.")
    yield from compare_exports({row.ordinal: width.name(row) for row in rows}, exports_of(image))
    yield from compare_imports(width.libgcc, imports_of(image))


def check(arguments, usage, differences_in):
    """Checks a DLL by a function like differences_in_mingw, and prints the result. Returns the status."""
    if len(arguments) != 2:
        sys.exit(usage)
    table, dll = map(pathlib.Path, arguments)
    import pefile  # what the tests of this file do not need
    image = pefile.PE(str(dll))
    rows, differences = exports.parse(table.read_text())
    differences += differences_in(image, rows)
    name = image.DIRECTORY_ENTRY_EXPORT.name.decode()
    if name != "KEL.dll" or dll.name != "KEL.dll" or not image.is_dll():
        differences.append(f"{dll} is not the library KEL.dll but {name}")
    libraries = sorted({library for library, _ in imports_of(image)})
    print("\n".join(differences) if differences else
          f"KEL.dll exports exactly {len(rows)} functions and imports from {', '.join(libraries)}.")
    return 1 if differences else 0


if __name__ == "__main__":
    try:
        sys.exit(check(sys.argv[1:], __doc__, differences_in_mingw))
    except ValueError as mistake:
        sys.exit(str(mistake))
