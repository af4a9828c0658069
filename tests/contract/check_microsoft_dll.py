#!/usr/bin/env python3
"""Compares the exports and imports of a KEL.dll in Microsoft's ABI with the intended ones.

    check_microsoft_dll.py TABLE DLL

TABLE is src/exports/exports.txt. The DLL's export table must hold Microsoft's names at its ordinals
and nothing else. The DLL may import from the system and from Microsoft's run-time only. It must
throw and catch by that run-time, because hosts do.
Prints one line per difference and ends with status 1 if there is any.
"""
import sys

import check_dll

SYSTEM = {"kernel32.dll", "ntdll.dll", "ole32.dll"}
RUNTIME = {"ucrtbase.dll", "vcruntime140.dll"}
PARTS_OF_UCRTBASE = "api-ms-win-crt-"  # what Microsoft's import libraries call it
# The imports that the library is known to need.
NEEDED = {("kernel32.dll", "DisableThreadLibraryCalls"), ("ole32.dll", "CoCreateGuid"),
          ("vcruntime140.dll", "_CxxThrowException"), ("vcruntime140.dll", "__CxxFrameHandler3")}


def compare_imports(imports):
    """Yields the differences. imports: pairs of library and function."""
    imports = {(library.lower(), function) for library, function in imports}
    for name in sorted({library for library, _ in imports} - SYSTEM - RUNTIME):
        if not name.startswith(PARTS_OF_UCRTBASE):
            yield f"imports from {name}"
    for library, function in sorted(NEEDED - imports):
        yield f"does not import {function} from {library}"


def differences_in_microsoft(image, rows):
    """Yields the differences of a DLL in Microsoft's ABI from the rows of the table."""
    import pefile  # what the tests of this file do not need
    if image.FILE_HEADER.Machine != pefile.MACHINE_TYPE["IMAGE_FILE_MACHINE_I386"]:
        raise ValueError("The DLL is not for 32-bit x86.")
    yield from check_dll.compare_exports({row.ordinal: row.microsoft for row in rows},
                                         check_dll.exports_of(image))
    yield from compare_imports(check_dll.imports_of(image))


if __name__ == "__main__":
    try:
        sys.exit(check_dll.check(sys.argv[1:], __doc__, differences_in_microsoft))
    except ValueError as mistake:
        sys.exit(str(mistake))
