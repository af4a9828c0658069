#!/usr/bin/env python3
"""Compares the table of exported functions with the page, the public headers and their names.

    check_exports.py TABLE PAGE INCLUDE LISTS CLANG     compares
    check_exports.py --write TABLE PAGE INCLUDE CLANG   writes names and the page's table

TABLE is src/exports/exports.txt and PAGE docs/abi.md. INCLUDE declares exactly the functions of the
table, with KEL_API. LISTS is the folder of the lists that CMake made for linkers. Each holds the
table's functions. Clang knows the names that compilers for mingw and of Microsoft give to
functions. It also knows those on Linux, which the table does not repeat.

--write fills in the names of the table's rows, so a new function needs only
"ordinal | declaration".

Prints one line per difference and ends with status 1 if there is any. Ends with status 77 if CLANG
is not there.
"""
import pathlib
import shutil
import sys

import clang
import exports
import headers
import page

# The name in a row that a target's compiler gives to the function.
NAMES = {"x86_64-linux-gnu": exports.linux_name, "i686-linux-gnu": exports.linux_name,
         "i686-w64-mingw32": lambda row: row.standard_call, "x86_64-w64-mingw32": exports.plain_name,
         "i686-pc-windows-msvc": lambda row: row.microsoft}


def compare_declarations(rows, declared):
    """Yields the differences. declared: the declarations of the headers."""
    listed = [row.declaration for row in rows]
    for declaration in sorted(set(listed) | set(declared)):
        if listed.count(declaration) != declared.count(declaration):
            yield (f"{declaration}: {listed.count(declaration)} in exports.txt, "
                   f"{declared.count(declaration)} in the headers")


def compare_page(rows, on_page):
    """Yields the differences. on_page: ordinal to declaration."""
    listed = {row.ordinal: row.declaration for row in rows}
    for ordinal in sorted(set(listed) | set(on_page)):
        if listed.get(ordinal) != on_page.get(ordinal):
            yield (f"ordinal {ordinal}: {listed.get(ordinal, 'nothing')} in exports.txt, "
                   f"{on_page.get(ordinal, 'nothing')} on the page")


def compare_lists(rows, lists):
    """Yields the differences. lists: name of a list to its text."""
    expected = {"kel.def": [(row.ordinal, row.standard_call) for row in rows],
                "kel64.def": [(row.ordinal, exports.plain_name(row)) for row in rows],
                "kel_msvc.def": [(row.ordinal, row.microsoft) for row in rows],
                "kel.map": [exports.linux_name(row) for row in rows]}
    for name, functions in expected.items():
        parse = exports.parse_map if name == "kel.map" else exports.parse_def
        made = parse(lists[name])
        if made != functions:
            yield f"{name} does not hold what exports.txt holds: {set(made) ^ set(functions)}"


def compare_names(rows, target, names):
    """Yields the differences. names: declaration to the name that the target's compiler gives
    it."""
    for row in rows:
        name = names.get(row.declaration)
        if name is not None and NAMES[target](row) != name:
            yield (f"ordinal {row.ordinal}: {NAMES[target](row)} in exports.txt, {name} "
                   f"for {target}: {row.declaration}")


def write(table_file, page_file, include, compiler):
    if not shutil.which(compiler):
        sys.exit("writing needs clang++: it tells the names")
    rows, bad = exports.parse(table_file.read_text())
    declared = headers.functions_in(include)
    differences = bad + list(compare_declarations(rows, declared))
    if differences:
        sys.exit("\n".join(differences))
    microsoft, standard_call = (clang.names_of(compiler, target, include, declared)
                                for target in ("i686-pc-windows-msvc", "i686-w64-mingw32"))
    rows = [row._replace(microsoft=microsoft[row.declaration],
                         standard_call=standard_call[row.declaration]) for row in rows]
    lines = {row.ordinal: exports.line_of(row) for row in rows}
    text = [lines[int(match.group(1))] if (match := exports.ROW.match(line)) else line
            for line in table_file.read_text().splitlines()]
    table_file.write_text("\n".join(text) + "\n")
    page_file.write_text(page.with_table(page_file.read_text(), page.FUNCTION_SECTION,
                                         page.function_rows(rows)))


def main(arguments):
    if len(arguments) != 5:
        sys.exit(__doc__)
    if arguments[0] == "--write":
        write(*map(pathlib.Path, arguments[1:3]), *arguments[3:])
        return 0
    table, page_file, include, lists, compiler = arguments
    rows, differences = exports.parse(pathlib.Path(table).read_text())
    declared = headers.functions_in(include)
    differences += compare_declarations(rows, declared)
    differences += compare_page(rows, page.functions(pathlib.Path(page_file).read_text()))
    differences += compare_lists(rows, {file.name: file.read_text()
                                        for file in pathlib.Path(lists).iterdir()})
    targets = NAMES if shutil.which(compiler) else {}
    for target in targets:
        names = clang.names_of(compiler, target, include, declared)
        differences += compare_names(rows, target, names)
    print("\n".join(differences))
    print(f"{len(rows)} functions, compared with the page, the headers, four lists and the names for "
          f"{len(targets)} targets: {len(differences)} differences")
    if not differences and not targets:
        print("Not compared with any compiler's names: clang++ is not installed.")
        return 77
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
