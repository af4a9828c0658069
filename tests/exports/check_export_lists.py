#!/usr/bin/env python3
"""Compares the three lists of exported functions with each other, with the page that tells them to
hosts, and with the public headers.

    check_export_lists.py FOLDER PAGE INCLUDE [CLANG]

FOLDER holds kel.exports, kel.def and kel_msvc.def. At each ordinal all three name the same function,
and so does PAGE, docs/abi.md. With CLANG the names are those that compilers for Linux, for mingw and of Microsoft give to the
functions that INCLUDE declares, and no declared function is missing.
Prints one line per difference and ends with status 1 if there is any.
"""
import pathlib
import sys

import compiled_names
from export_lists import (as_on_linux, function_of, parse_def, parse_exports, parse_page,
                          readable_names)

TARGETS = {"kel.exports": "x86_64-linux-gnu", "kel.def": "i686-w64-mingw32",
           "kel_msvc.def": "i686-pc-windows-msvc"}


def compare_lists(lists):
    """lists: file name to (ordinal to name)."""
    linux, mingw, microsoft = (lists[name] for name in TARGETS)
    for ordinal in sorted(set(linux) | set(mingw) | set(microsoft)):
        missing = [name for name in TARGETS if ordinal not in lists[name]]
        if missing:
            yield f"ordinal {ordinal}: not in {', '.join(missing)}"
            continue
        if as_on_linux(mingw[ordinal]) != linux[ordinal]:
            yield (f"ordinal {ordinal}: {mingw[ordinal]} in kel.def, {linux[ordinal]} in "
                   "kel.exports")
        if function_of(microsoft[ordinal]) != function_of(linux[ordinal]):
            yield (f"ordinal {ordinal}: {microsoft[ordinal]} in kel_msvc.def, {linux[ordinal]} in "
                   "kel.exports")


def compare_page(page, listed):
    """page, listed: ordinal to readable name."""
    for ordinal in sorted(set(page) | set(listed)):
        told = page.get(ordinal)
        expected = listed.get(ordinal, "nothing").replace("_IO_FILE", "FILE")
        if told != expected:
            yield f"ordinal {ordinal}: {told} on the page, {expected} in kel.exports"


def compare_names(lists, compiled):
    """compiled: file name to pairs of name and declaration; a declaration has one ordinal."""
    ordinals = {}
    for file, pairs in compiled.items():
        numbers = {name: ordinal for ordinal, name in lists[file].items()}
        for name, declaration in pairs:
            if name not in numbers:
                yield f"{file}: {name} is missing: {declaration}"
                continue
            ordinal = numbers.pop(name)
            if ordinals.setdefault(declaration, ordinal) != ordinal:
                yield (f"{file}: {name} has ordinal {ordinal}, elsewhere "
                       f"{ordinals[declaration]}: {declaration}")
        for name in numbers:
            yield f"{file}: {name} is no function of the public headers"


def main(arguments):
    if len(arguments) not in (3, 4):
        sys.exit(__doc__)
    folder = pathlib.Path(arguments[0])
    lists = {}
    for file in TARGETS:
        parse = parse_exports if file.endswith(".exports") else parse_def
        lists[file] = parse((folder / file).read_text())
    differences = list(compare_lists(lists))
    differences += compare_page(parse_page(pathlib.Path(arguments[1]).read_text()),
                                readable_names((folder / "kel.exports").read_text()))
    how = "as clang names them for all three compilers"
    if len(arguments) == 4:
        compiled = {file: compiled_names.names_for(arguments[3], arguments[2], target)
                    for file, target in TARGETS.items()}
        differences += compare_names(lists, compiled)
    else:
        how = "but the names of compilers were not compared: clang is not installed"
    print("\n".join(differences) if differences else
          f"Three lists of {len(lists['kel.def'])} functions agree, {how}.")
    return 1 if differences else 0


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except ValueError as mistake:
        sys.exit(str(mistake))
