#!/usr/bin/env python3
"""Compares the binary contract with itself, with the public headers, and with what compilers make.

    check_slots.py DOCS INCLUDE CLANG     compares
    check_slots.py --tables INCLUDE       prints the slot tables that the headers would have, for the page
    check_slots.py --rows INCLUDE         prints them as rows of slots.txt

DOCS holds the page abi.md and its twin for programs, abi/slots.txt and abi/layout.txt. A slot is the
place of an operation among those that its class itself introduces, counted from 0 and without the
destructor. Hosts that were compiled long ago call operations by their slots, so a difference is a
mistake in the header, not in the document.

What compilers make is asked of clang, which knows the ABIs of them all: from the public headers alone,
for each of the targets, without any system's own headers. The twin's operations have to compile there
with their exact types; clang's tables and layouts have to be the twin's. The tests that are made from
the same twin (make_slot_tests.py) call by slot on the platforms that run.

Prints one line per difference and ends with status 1 if there is any, 77 when CLANG is not there.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import contract

# Each target with the column of layout.txt that holds for it.
TARGETS = {"x86_64-linux-gnu": 0, "i686-linux-gnu": 1, "i686-w64-mingw32": 1,
           "i686-pc-windows-msvc": 2}

# Without a system's headers there is no FILE; a host only hands on what its own stdio gave it.
STDIO = "#pragma once\nstruct SomeFile;\ntypedef struct SomeFile FILE;\n"
ALONE = ["-std=c++17", "-ffreestanding", "-nostdlibinc"]

COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
CLASS = re.compile(r"^(?:template\s*<[^>]*>\s*)?class\s+(\w+)\b[^;{]*\{", re.MULTILINE)
OPERATION = re.compile(r"\bvirtual\s+([^;{~]*?\))(\s*const)?\s*(?:=\s*0\s*)?[;{]", re.DOTALL)

INDICES = re.compile(r"^VF?Table indices for '([^']*)' \(\d+ entr")
OTHER_TABLE = re.compile(r"^ -- accessible via vbtable index")
ENTRY = re.compile(r"^\s*(\d+) \| (.*?)\s*$")
RECORD = re.compile(r"^\s*0 \| (?:class|struct) ([^()]*?)(?: \(empty\))?$")
MEMBER = re.compile(r"^\s*(\d+) \|   (\S.*?)$")


def body_of(text, start):
    """The text from start to the brace that closes the one before it."""
    depth = 1
    for place in range(start, len(text)):
        depth += {"{": 1, "}": -1}.get(text[place], 0)
        if depth == 0:
            return text[start:place]
    return text[start:]


def classes_of(header):
    """The classes of a header's text that introduce virtual operations: name to signatures."""
    text = COMMENT.sub("", header)
    found = {}
    for match in CLASS.finditer(text):
        body = body_of(text, match.end())
        rows = [contract.normal(operation.group(1) + (" const" if operation.group(2) else ""))
                for operation in OPERATION.finditer(body)]
        if rows:
            found[match.group(1)] = rows
    return found


def classes_in(include):
    found = {}
    for path in sorted(pathlib.Path(include).rglob("*.h")):
        found.update(classes_of(path.read_text()))
    return found


def compare(ours, theirs, where):
    """Differences between the twin's tables and other ones, both class to rows in order of slots."""
    for name in sorted(set(ours) | set(theirs)):
        if name not in theirs:
            yield f"{name}: introduces no operation {where}"
        elif name not in ours:
            yield f"{name}: has no slots in slots.txt"
        else:
            if len(ours[name]) != len(theirs[name]):
                yield f"{name}: {len(ours[name])} operations, {len(theirs[name])} {where}"
            for slot, (a, b) in enumerate(zip(ours[name], theirs[name])):
                if a != b:
                    yield f"{name} {slot}: `{a}` in slots.txt, `{b}` {where}"


def compare_page(tables, facts, page):
    """Differences between the twin and the page."""
    page_tables, page_facts = contract.parse_page(page)
    plain = {name: [f"{row.slot} {row.operation} since {row.since}" for row in rows]
             for name, rows in tables.items()}
    on_page = {name: [f"{row.slot} {row.operation} since {row.since}" for row in rows]
               for name, rows in page_tables.items()}
    yield from compare(plain, on_page, "on the page")
    for kind, what, numbers in sorted(set(facts) ^ set(page_facts)):
        source = "layout.txt" if (kind, what, numbers) in facts else "the page"
        yield f"{kind} {what} {' '.join(str(number) for number in numbers)}: only in {source}"


def type_form(owner, operation):
    """An operation as clang names it: types alone, the class's template arguments left out."""
    result, name, types, constant = contract.parse_operation(owner, operation)
    text = f"{result} {name}({', '.join(types)}){constant}"
    return contract.normal(text.replace(f"{owner}<{contract.ARGUMENT}>", owner))


def dumped_form(owner, entry):
    """The same from a line of clang's dump; None for a destructor."""
    text = re.sub(r"\s*\[[^\]]*\]", "", entry)
    text = re.sub(r"\s*__attribute__\(\(\w+\)\)", "", text)
    text = re.sub(rf"\b{owner}(?:<\w+>)?::(?=[\w~])", "", text)
    if owner in contract.TEMPLATES:
        text = re.sub(r"\bT\b", contract.ARGUMENT, re.sub(rf"\b{owner}<\w+>", owner, text))
    return None if re.match(r"~|.*\s~", text) else contract.normal(text)


def parse_tables(dump):
    """The classes' own operations from clang's dump of virtual tables: class to index to operation."""
    tables, name = {}, None
    for line in dump.splitlines():
        start, entry = INDICES.match(line), ENTRY.match(line)
        if start:
            name = start.group(1)
            tables.setdefault(name, {})
        elif not line.strip() or OTHER_TABLE.match(line):
            name = None
        elif name and entry:
            operation = dumped_form(name, entry.group(2))
            if operation is not None:
                tables[name][int(entry.group(1))] = operation
    return tables


def parse_records(dump):
    """Places from clang's dump of layouts: (type, member or base) to offset."""
    places, name = {}, None
    for line in dump.splitlines():
        start, member = RECORD.match(line), MEMBER.match(line)
        if start:
            name = re.sub(r"\b(class|struct) ", "", start.group(1))
        elif not line.strip():
            name = None
        elif name and member and not member.group(2).startswith(("(", " ")):
            text = re.sub(r"\b(class|struct) ", "", member.group(2))
            base = re.match(r"(\S+) \((?:primary )?(?:virtual )?base\)$", text)
            places[name, base.group(1) if base else text.split()[-1]] = int(member.group(1))
    return places


def probe(tables, facts):
    """A program that names every operation with its exact type and every type with a layout."""
    lines = [contract.assertions(facts)]
    for name, rows in tables.items():
        for row in rows:
            operation = contract.parse_operation(name, row.operation)
            lines.append(f"auto {name}_{row.slot} = {contract.member_pointer(name, operation)};")
    types = dict.fromkeys(fact.what for fact in facts if fact.kind == "sizeof")
    lines.append(f"size_t sizes[] = {{{', '.join(f'sizeof({name})' for name in types)}}};")
    return "\n".join(lines) + "\n"


def ask_clang(clang, target, include, source):
    """What clang says of the source for a target: its dumps, or None and its complaints."""
    with tempfile.TemporaryDirectory() as folder:
        pathlib.Path(folder, "stdio.h").write_text(STDIO)
        command = [clang, f"--target={target}", *ALONE, "-w", "-isystem", folder, "-I", include,
                   "-c", "-emit-llvm", "-o", f"{folder}/out", "-Xclang", "-fdump-vtable-layouts",
                   "-Xclang", "-fdump-record-layouts", "-x", "c++", "-"]
        result = subprocess.run(command, input=source, text=True, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE)
    return (result.stdout, None) if result.returncode == 0 else (None, result.stderr)


def compare_dump(tables, facts, target, dump):
    """Differences between the twin and what clang dumps for a target."""
    column = TARGETS[target]
    where = f"for {target}"
    first = contract.first_slots(facts)
    made = {}
    for name, places in parse_tables(dump).items():
        begin = first[name][column] if name in first else 0
        if places and sorted(places) != list(range(begin, begin + len(places))):
            yield f"{name}: the slots {sorted(places)} do not follow each other from {begin} {where}"
        if places:
            made[name] = [places[index] for index in sorted(places)]
    forms = {name: [type_form(name, row.operation) for row in rows] for name, rows in tables.items()}
    yield from compare(forms, made, where)

    records = parse_records(dump)
    for kind, what, numbers in facts:
        if kind in ("field", "base"):
            place = records.get(tuple(what.rsplit(" ", 1)))
            if place != numbers[column]:
                yield f"{kind} {what}: {numbers[column]} in layout.txt, {place} {where}"


def render(classes):
    for name, rows in classes.items():
        print(f"\n### `{name}`\n\n| Slot | Operation | Since |\n| ---: | --- | --- |")
        for slot, signature in enumerate(rows):
            print(f"| {slot} | `{signature}` | 1.0 |")


def render_rows(classes):
    for name, rows in classes.items():
        print()
        for slot, signature in enumerate(rows):
            print(f"{name} {slot} {signature} 1.0")


def main(arguments):
    if len(arguments) == 2 and arguments[0] in ("--tables", "--rows"):
        {"--tables": render, "--rows": render_rows}[arguments[0]](classes_in(arguments[1]))
        return 0
    if len(arguments) != 3:
        sys.exit(__doc__)
    docs, include, clang = arguments
    tables, facts, offences = contract.read(pathlib.Path(docs, "abi"))
    if not tables or not facts:
        sys.exit("nothing to compare")
    offences += compare_page(tables, facts, pathlib.Path(docs, "abi.md").read_text())
    operations = {name: [row.operation for row in rows] for name, rows in tables.items()}
    offences += compare(operations, classes_in(include), "declared")

    targets = TARGETS if shutil.which(clang) else {}
    for target in targets:
        dump, complaints = ask_clang(clang, target, include, probe(tables, facts))
        offences += [f"the contract does not compile for {target}:\n{complaints}"] if dump is None \
            else compare_dump(tables, facts, target, dump)
    print("\n".join(offences))
    print(f"{len(tables)} tables, {sum(map(len, tables.values()))} slots, {len(facts)} other numbers,"
          f" compared with the page, the headers and {len(targets)} targets:"
          f" {len(offences)} differences")
    if not offences and not targets:
        print("Not compared with any compiler's tables: clang++ is not installed.")
        return 77
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
