#!/usr/bin/env python3
"""Compares the list of exported functions with the public headers and with the built library.

    check_exports.py LIST INCLUDE LIBRARY NM CXXFILT

LIST is src/exports/kel.exports. Each of its names must be exported by LIBRARY and nothing else may
be: no type information, no virtual table, no inline function of a public class. INCLUDE must declare
each function with KEL_API, and nothing else so. Ordinals are unique and ascend.
Prints one line per difference and ends with status 1 if there is any.
"""
import collections
import pathlib
import re
import subprocess
import sys

ROW = re.compile(r"^ *(\d+) +(\w+) +# (.+)$")
DECLARATION = re.compile(r"\bKEL_API\b[^;{]*?\bKEL_CALL\s+(\w+)\s*\(")


def parse_list(text):
    """The rows of the list as (ordinal, mangled name, readable name), and the lines that are none."""
    rows, bad = [], []
    for line in text.splitlines():
        match = ROW.match(line)
        if match:
            rows.append((int(match.group(1)), match.group(2), match.group(3)))
        elif line.strip() and not line.startswith("#"):
            bad.append(line)
    return rows, bad


def parse_nm(text):
    """The defined dynamic symbols of nm -D --defined-only: name to type letter."""
    symbols = {}
    for line in text.splitlines():
        fields = line.split()
        symbols[fields[-1]] = fields[-2]
    return symbols


def check_rows(rows, bad):
    yield from (f"not a row of the list: {line}" for line in bad)
    if not rows:
        yield "the list is empty"
    for before, after in zip(rows, rows[1:]):
        if after[0] <= before[0]:
            yield f"ordinal {after[0]} does not ascend"


def check_symbols(names, symbols):
    for name in sorted(set(names) - set(symbols)):
        yield f"listed but not exported: {name}"
    for name, kind in sorted(symbols.items()):
        if name not in names:
            yield f"exported but not listed: {kind} {name}"
        elif kind != "T":
            yield f"exported as {kind} instead of a function: {name}"


def check_declarations(readable, declared):
    """readable: names of the list with arguments; declared: function names, one per overload."""
    listed = collections.Counter(name.split("(")[0] for name in readable)
    for name in sorted(set(listed) | set(declared)):
        if listed[name] != declared[name]:
            yield f"{name}: {listed[name]} in the list, {declared[name]} in the headers"


def run(*command, stdin=None):
    return subprocess.run(command, input=stdin, check=True, text=True, stdout=subprocess.PIPE).stdout


def main(arguments):
    if len(arguments) != 5:
        sys.exit(__doc__)
    list_file, include, library, nm, cxxfilt = arguments
    rows, bad = parse_list(pathlib.Path(list_file).read_text())
    names = [name for _, name, _ in rows]
    symbols = parse_nm(run(nm, "-D", "--defined-only", library))
    declared = collections.Counter()
    for header in pathlib.Path(include).rglob("*.h"):
        declared.update(DECLARATION.findall(header.read_text()))

    differences = list(check_rows(rows, bad)) + list(check_symbols(names, symbols))
    differences += check_declarations([readable for _, _, readable in rows], declared)
    for (_, name, readable), real in zip(rows, run(cxxfilt, *names).splitlines()):
        if readable != real:
            differences.append(f"{name} reads {real}, the list says {readable}")
    print("\n".join(differences) if differences else f"Exactly {len(names)} functions are exported.")
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
