#!/usr/bin/env python3
"""Compares the tables of docs/interfaces.md with the public headers and with what a compiler makes.

    check_slots.py DOCUMENT INCLUDE COMPILER     compares
    check_slots.py --tables INCLUDE              prints the tables that the headers would have

A slot is the place of an operation among those that its class itself introduces, counted from 0 and
without the destructor. Hosts that were compiled long ago call operations by their slots, so a
difference is a mistake in the header, not in the document. Three things are compared: the order of
the declarations, their number, and the slots themselves, which a small program reads from pointers to
members. The program tells nothing where pointers to members look otherwise (Microsoft's compiler);
there a table of the compiler's own is needed.
"""
import pathlib
import re
import subprocess
import sys
import tempfile

COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
CLASS = re.compile(r"^(?:template\s*<[^>]*>\s*)?class\s+(\w+)\b[^;{]*\{", re.MULTILINE)
OPERATION = re.compile(r"\bvirtual\s+([^;{~]*?\))(\s*const)?\s*(?:=\s*0\s*)?[;{]", re.DOTALL)
SIGNATURE = re.compile(r"^(.*?)\s*\b(\w+|operator=)\s*\((.*)\)( const)?$")
HEADING = re.compile(r"^#+ `?(\w+)`?\s*$")
ROW = re.compile(r"^\|\s*(\d+)\s*\|\s*`([^`]+)`")

# A template is looked at with this argument.
ARGUMENT = "JObject"
TEMPLATES = {"JPointer"}


def normal(signature):
    """A signature with one way to set blanks."""
    text = re.sub(r"\s+", " ", signature.strip())
    return re.sub(r"\s*([*&])\s*", r"\1 ", text).replace("( ", "(").replace(" )", ")")


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
        rows = [normal(operation.group(1) + (" const" if operation.group(2) else ""))
                for operation in OPERATION.finditer(body)]
        if rows:
            found[match.group(1)] = rows
    return found


def classes_in(include):
    found = {}
    for path in sorted(pathlib.Path(include).rglob("*.h")):
        found.update(classes_of(path.read_text()))
    return found


def tables_of(document):
    """The tables of the document: class to signatures. Slots that do not ascend are reported."""
    tables, bad, name = {}, [], None
    for line in document.splitlines():
        heading, row = HEADING.match(line), ROW.match(line)
        if heading:
            name = heading.group(1)
        elif row and name:
            rows = tables.setdefault(name, [])
            if int(row.group(1)) != len(rows):
                bad.append(f"{name}: slot {row.group(1)} stands where {len(rows)} belongs")
            rows.append(normal(row.group(2)))
    return tables, bad


def compare(documented, declared):
    """Differences between two sets of tables, by class."""
    for name in sorted(set(documented) | set(declared)):
        if name not in documented:
            yield f"{name}: has no table"
        elif name not in declared:
            yield f"{name}: has a table, but introduces no operation in the headers"
        else:
            ours, theirs = documented[name], declared[name]
            if len(ours) != len(theirs):
                yield f"{name}: {len(ours)} operations in the document, {len(theirs)} declared"
            for slot, (a, b) in enumerate(zip(ours, theirs)):
                if a != b:
                    yield f"{name} {slot}: `{a}` in the document, `{b}` declared"


def cast(name, signature):
    """A C++ expression: the pointer to the one member that has this signature."""
    match = SIGNATURE.match(signature)
    if match is None:
        sys.exit(f"{name}: cannot read `{signature}`")
    result, operation, arguments, constant = match.groups()
    types = []
    for argument in filter(None, (a.strip() for a in arguments.split(","))):
        named = re.match(r"^(.*[\s*&])(\w+)$", argument)
        types.append(named.group(1).strip() if named else argument)
    owner = f"{name}<{ARGUMENT}>" if name in TEMPLATES else name
    text = f"static_cast<{result} ({owner}::*)({', '.join(types)}){constant or ''}>" \
           f"(&{owner}::{operation})"
    if name in TEMPLATES:
        text = re.sub(r"\bT\b", ARGUMENT, text)
        text = re.sub(rf"\b{name}\b(?!<)", owner, text)
    return text


def probe(tables):
    lines = ["#include <kel/kel.h>", "#include <stdio.h>", "#include <string.h>",
             "template <class M> long slot(M member) {",
             "    ptrdiff_t words[2];",
             "    static_assert(sizeof member == sizeof words, \"\");",
             "    memcpy(words, &member, sizeof words);",
             "    return (words[0] - (words[1] & 1 ? 0 : 1)) / long(sizeof(void*));",
             "}",
             "int main() {"]
    for name, rows in tables.items():
        for signature in rows:
            lines.append(f'    printf("{name} %ld\\n", slot({cast(name, signature)}));')
    return "\n".join(lines + ["}", ""])


def compiled_slots(compiler, include, tables):
    """What the compiler makes of the documented operations: class to slots in the table's order."""
    with tempfile.TemporaryDirectory() as folder:
        program = pathlib.Path(folder, "slots")
        command = [compiler, "-std=c++17", "-w", "-I", include, "-x", "c++", "-", "-o", str(program)]
        made = subprocess.run(command, input=probe(tables), text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT)
        if made.returncode != 0:
            sys.exit(f"An operation of the document does not compile:\n{made.stdout}")
        printed = subprocess.run([str(program)], text=True, check=True, stdout=subprocess.PIPE)
    slots = {}
    for line in printed.stdout.splitlines():
        name, slot = line.split()
        slots.setdefault(name, []).append(int(slot))
    return slots


def check_slots(slots):
    """Every table's slots follow each other; those of an interface begin with 0."""
    for name, found in slots.items():
        first = 0 if "Interface" in name else found[0]
        if found != list(range(first, first + len(found))):
            yield f"{name}: the compiler gives the documented operations the slots {found}"


def render(tables):
    for name, rows in tables.items():
        print(f"\n### `{name}`\n\n| Slot | Operation |\n| ---: | --- |")
        for slot, signature in enumerate(rows):
            print(f"| {slot} | `{signature}` |")


def main(arguments):
    if len(arguments) == 2 and arguments[0] == "--tables":
        render(classes_in(arguments[1]))
        return 0
    if len(arguments) != 3:
        sys.exit(__doc__)
    document, include, compiler = arguments
    tables, offences = tables_of(pathlib.Path(document).read_text())
    declared = classes_in(include)
    if not declared or not tables:
        sys.exit("nothing to compare")
    offences += compare(tables, declared)
    if not offences:
        offences += check_slots(compiled_slots(compiler, include, tables))
    count = sum(len(rows) for rows in tables.values())
    print("\n".join(offences) if offences else f"{len(tables)} tables, {count} slots agree.")
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
