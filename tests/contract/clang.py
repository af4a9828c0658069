"""The public headers alone, compiled by clang. Clang knows the ABIs of all compilers and does not
need the headers of their systems."""
import collections
import pathlib
import re
import subprocess
import sys
import tempfile

import contract

# column: the numbers of layout.txt that hold for the target; file: the tag of its FILE.
Target = collections.namedtuple("Target", "column file")
TARGETS = {"x86_64-linux-gnu": Target(0, "_IO_FILE"), "i686-linux-gnu": Target(1, "_IO_FILE"),
           "i686-w64-mingw32": Target(1, "_iobuf"), "i686-pc-windows-msvc": Target(2, "_iobuf"),
           "x86_64-w64-mingw32": Target(3, "_iobuf")}

ALONE = ["-std=c++17", "-ffreestanding", "-nostdlibinc"]
DUMPS = ["-Xclang", "-fdump-vtable-layouts", "-Xclang", "-fdump-record-layouts-complete"]

INDICES = re.compile(r"^VF?Table indices for '([^']*)' \(\d+ entr")
OTHER_TABLE = re.compile(r"^ -- accessible via vbtable index")
ENTRY = re.compile(r"^\s*(\d+) \| (.*?)\s*$")
RECORD = re.compile(r"^\s*0 \| (?:class|struct) ([^()]*?)(?: \(empty\))?$")
MEMBER = re.compile(r"^\s*(\d+) \|   (\S.*?)$")
NUMBER = re.compile(r"^@kel_number_(\d+) = .*\bconstant i64 (\d+)", re.MULTILINE)
DEFINED = re.compile(r'^define (?!linkonce_odr|internal)[^@]*@("(?:[^"\\]|\\.)*"|[\w.$]+)\(',
                     re.MULTILINE)


def write_stdio(folder, target):
    """Writes a stdio.h with FILE alone. The public headers need no more from a system, and a host
    only passes it on."""
    tag = TARGETS[target].file
    pathlib.Path(folder, "stdio.h").write_text(f"#pragma once\ntypedef struct {tag} FILE;\n")


def ask(clang, target, include, source):
    """Returns clang's dumps and its output for a source. A source that does not compile ends the
    program."""
    with tempfile.TemporaryDirectory() as folder:
        write_stdio(folder, target)
        output = pathlib.Path(folder, "output")
        command = [clang, f"--target={target}", *ALONE, "-w", "-isystem", folder, "-I", include,
                   "-S", "-emit-llvm", "-o", str(output), *DUMPS, "-x", "c++", "-"]
        result = subprocess.run(command, input=source, text=True, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE)
        if result.returncode != 0:
            sys.exit(f"the contract does not compile for {target}:\n{result.stderr}")
        return result.stdout, output.read_text()


def symbol(name):
    """Returns a symbol of clang's output as the linker sees it, without the lead that 32-bit
    Windows adds."""
    name = name.strip('"')
    if name.startswith("\\01"):
        name = name[len("\\01"):]
        return name[1:] if name.startswith("__Z") else name
    return name


def names_of(clang, target, include, declarations):
    """Returns the linker's name of each exported function: declaration to name."""
    lines = ["#define KEL_BUILDING", "#include <kel/kel.h>"]
    for declaration in declarations:
        body = "" if declaration.startswith("void ") else " return nullptr; "
        lines.append(re.sub(r"(\w+\()", r"KEL_CALL \1", declaration, count=1) + f" {{{body}}}")
    _, output = ask(clang, target, include, "\n".join(lines + [""]))
    names = [symbol(name) for name in DEFINED.findall(output)]
    if len(names) != len(declarations):
        sys.exit(f"{len(declarations)} functions are declared, {len(names)} compiled for {target}")
    return dict(zip(declarations, names))


def probe(tables, facts):
    """Returns a program that names each operation with its exact type and each number that clang
    finds."""
    lines = ["#include <kel/kel.h>"]
    for name, rows in tables.items():
        for row in rows:
            operation = contract.parse_operation(name, row.operation)
            lines.append(f"auto {name}_{row.slot} = {contract.member_pointer(name, operation)};")
    for place, fact in enumerate(facts):
        if fact.kind in contract.EXPRESSIONS:
            lines.append(f'extern "C" const unsigned long long kel_number_{place} = '
                         f"{contract.expression(fact)};")
    return "\n".join(lines) + "\n"


def type_form(owner, operation):
    """Returns an operation as clang names it: types alone, without the class's template
    arguments."""
    result, name, types, constant = contract.parse_operation(owner, operation)
    text = f"{result} {name}({', '.join(types)}){constant}"
    return contract.normal(text.replace(f"{owner}<{contract.ARGUMENT}>", owner))


def dumped_form(owner, entry):
    """Returns the same form for a line of clang's dump, or None for a destructor."""
    text = re.sub(r"\s*\[[^\]]*\]", "", entry)
    text = re.sub(r"\s*__attribute__\(\(\w+\)\)", "", text)
    text = re.sub(rf"\b{owner}(?:<\w+>)?::(?=[\w~])", "", text)
    if owner in contract.TEMPLATES:
        text = re.sub(r"\bT\b", contract.ARGUMENT, re.sub(rf"\b{owner}<\w+>", owner, text))
    return None if re.match(r"~|.*\s~", text) else contract.normal(text)


def records_with(text, dump):
    """Returns the classes with a line that contains the text in clang's dump of layouts."""
    found, name = set(), None
    for line in dump.splitlines():
        start = RECORD.match(line)
        name = start.group(1) if start else name
        if text in line:
            found.add(name)
    return sorted(found)


def parse_tables(dump):
    """Returns the classes' own operations from clang's dump of virtual tables: class to index to
    operation."""
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
    """Returns places from clang's dump of layouts: (type, member or base) to offset."""
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


def numbers_in(facts, dump, output):
    """Returns the number that clang finds for each fact except the first slots, or None."""
    records = parse_records(dump)
    constants = {int(place): int(number) for place, number in NUMBER.findall(output)}
    return [constants.get(place) if fact.kind in contract.EXPRESSIONS
            else records.get(tuple(fact.what.rsplit(" ", 1))) for place, fact in enumerate(facts)]
