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
import struct
import sys

import exports

SYSTEM = {"KERNEL32.dll", "msvcrt.dll", "ole32.dll"}
# The imports that the library is known to need.
NEEDED = {("KERNEL32.dll", "DisableThreadLibraryCalls"), ("ole32.dll", "CoCreateGuid")}
SHIPPED = {"libgcc_s_dw2-1.dll", "libwinpthread-1.dll"}


class Image:
    """Reads the tables of a 32-bit Windows binary."""

    def __init__(self, data):
        self.data = data
        header = self.word(0x3C)
        if data[header:header + 4] != b"PE\0\0" or self.half(header + 4) != 0x14C:
            raise ValueError("no Windows binary for 32-bit x86")
        self.is_library = bool(self.half(header + 22) & 0x2000)
        optional = header + 24
        tables = optional + 96
        sections = optional + self.half(header + 20)
        self.sections = [struct.unpack_from("<IIII", data, sections + 40 * i + 8)
                         for i in range(self.half(header + 6))]
        self.export_table = struct.unpack_from("<II", data, tables)
        self.import_table = struct.unpack_from("<II", data, tables + 8)

    def half(self, at):
        return struct.unpack_from("<H", self.data, at)[0]

    def word(self, at):
        return struct.unpack_from("<I", self.data, at)[0]

    def offset(self, address):
        """Returns the byte offset in the file of the byte that is loaded at the address."""
        for size, start, stored, place in self.sections:
            if start <= address < start + max(size, stored):
                return place + address - start
        raise ValueError(f"no section holds the address {address:#x}")

    def text(self, address):
        at = self.offset(address)
        return self.data[at:self.data.index(b"\0", at)].decode("ascii")

    def exports(self):
        """Returns the library's own name and its exports: ordinal to (names, address of the
        function)."""
        at = self.offset(self.export_table[0])
        name, base, functions, names = struct.unpack_from("<IIII", self.data, at + 12)
        addresses, name_list, ordinal_list = struct.unpack_from("<III", self.data, at + 28)
        found = {}
        for i in range(functions):
            address = self.word(self.offset(addresses) + 4 * i)
            if address != 0:
                found[base + i] = ([], address)
        for i in range(names):
            ordinal = base + self.half(self.offset(ordinal_list) + 2 * i)
            found[ordinal][0].append(self.text(self.word(self.offset(name_list) + 4 * i)))
        return self.text(name), found

    def is_forwarder(self, address):
        start, size = self.export_table
        return start <= address < start + size

    def imports(self):
        """Yields the imported functions as pairs of library and name. The name is None for a
        function imported by ordinal."""
        at = self.offset(self.import_table[0])
        while (library := self.word(at + 12)) != 0:
            entry = self.offset(self.word(at) or self.word(at + 16))
            while (hint := self.word(entry)) != 0:
                yield self.text(library), None if hint >> 31 else self.text(hint + 2)
                entry += 4
            at += 20


def compare_exports(listed, exported, is_forwarder):
    """Yields the differences. listed: ordinal to name; exported: ordinal to (names, address)."""
    for ordinal in sorted(set(listed) | set(exported)):
        names, address = exported.get(ordinal, ([], None))
        if ordinal not in listed:
            yield f"ordinal {ordinal} exports {' '.join(names) or 'a function without a name'}"
        elif address is None:
            yield f"ordinal {ordinal} exports nothing instead of {listed[ordinal]}"
        elif names != [listed[ordinal]]:
            yield f"ordinal {ordinal} exports {' '.join(names)} instead of {listed[ordinal]}"
        elif is_forwarder(address):
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
    image = Image(dll.read_bytes())
    name, exported = image.exports()
    imports = list(image.imports())
    rows, differences = exports.parse(table.read_text())
    differences += compare_exports({row.ordinal: row.standard_call for row in rows}, exported,
                                   image.is_forwarder)
    differences += compare_imports(imports)
    if name != "KEL.dll" or dll.name != "KEL.dll" or not image.is_library:
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
