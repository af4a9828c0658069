#!/usr/bin/env python3
"""Compares the symbols of the built Linux library with the table of exported functions.

    check_library.py TABLE LIBRARY NM

TABLE is src/exports/exports.txt. LIBRARY must export each of its functions and nothing else: no
type information, no virtual table, no inline function of a public class.
Prints one line per difference and ends with status 1 if there is any.
"""
import pathlib
import subprocess
import sys

import exports


def parse_nm(text):
    """Returns the defined dynamic symbols of nm -D --defined-only: name to type letter."""
    symbols = {}
    for line in text.splitlines():
        fields = line.split()
        symbols[fields[-1]] = fields[-2]
    return symbols


def compare_symbols(names, symbols):
    for name in sorted(set(names) - set(symbols)):
        yield f"listed but not exported: {name}"
    for name, kind in sorted(symbols.items()):
        if name not in names:
            yield f"exported but not listed: {kind} {name}"
        elif kind != "T":
            yield f"exported as {kind} instead of a function: {name}"


def main(arguments):
    if len(arguments) != 3:
        sys.exit(__doc__)
    table, library, nm = arguments
    rows, differences = exports.parse(pathlib.Path(table).read_text())
    symbols = subprocess.run([nm, "-D", "--defined-only", library], check=True, text=True,
                             stdout=subprocess.PIPE).stdout
    differences += compare_symbols([exports.linux_name(row) for row in rows], parse_nm(symbols))
    print("\n".join(differences) if differences else f"Exactly {len(rows)} functions are exported.")
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
