"""The binary contract as the programs of this folder read it: docs/abi/slots.txt, docs/abi/layout.txt
and the tables of docs/abi.md, which must say the same.

slots.txt has a row "Class slot operation since" for every operation. layout.txt has a row "what
linux64 other32 microsoft32" for every number that a host's code has built in: sizes, alignments,
offsets, and the place in its class's table where an interface's own operations begin.
"""
import collections
import pathlib
import re

SLOT = re.compile(r"^(\w+) (\d+) (\S.*) (\d+\.\d+)$")
LAYOUT = re.compile(r"^(\w+) (\S.*?) (\d+) (\d+) (\d+)$")
SIGNATURE = re.compile(r"^(.*?)\s*\b(\w+|operator=)\s*\((.*)\)( const)?$")
HEADING = re.compile(r"^#+ `?(\w+)`?\s*$")
SLOT_ROW = re.compile(r"^\|\s*(\d+)\s*\|\s*`([^`]+)`\s*\|\s*(\d+\.\d+)\s*\|\s*$")
LAYOUT_ROW = re.compile(r"^\|\s*`(\w+) ([^`]+)`\s*\|\s*(\d+)\s*\|\s*(\d+)\s*\|\s*(\d+)\s*\|\s*$")

# The kinds of rows of layout.txt. A field is private and so told by a compiler's dump only.
LAYOUT_KINDS = ["sizeof", "alignof", "offsetof", "field", "base", "first"]

# A template is looked at with this argument.
ARGUMENT = "JObject"
TEMPLATES = {"JPointer"}

Slot = collections.namedtuple("Slot", "owner slot operation since")
Fact = collections.namedtuple("Fact", "kind what numbers")
Operation = collections.namedtuple("Operation", "result name arguments constant")


def normal(signature):
    """A signature with one way to set blanks."""
    text = re.sub(r"\s+", " ", signature.strip())
    return re.sub(r"\s*([*&])\s*", r"\1 ", text).replace("( ", "(").replace(" )", ")").replace(" ,", ",")


def type_name(owner):
    """The owner as a C++ type."""
    return f"{owner}<{ARGUMENT}>" if owner in TEMPLATES else owner


def parse_operation(owner, operation):
    """An operation with its types as C++ types, without the names of arguments; None if unreadable."""
    match = SIGNATURE.match(operation)
    if match is None:
        return None
    result, name, arguments, constant = match.groups()
    types = []
    for argument in filter(None, (a.strip() for a in arguments.split(","))):
        named = re.match(r"^(.*[\s*&])(\w+)$", argument)
        types.append(named.group(1).strip() if named else argument)
    if owner in TEMPLATES:
        def concrete(text):
            text = re.sub(r"\bT\b", ARGUMENT, text)
            return re.sub(rf"\b{owner}\b(?!<)", type_name(owner), text)
        result, types = concrete(result), [concrete(t) for t in types]
    return Operation(result, name, types, constant or "")


def member_pointer(owner, operation):
    """A C++ expression: the pointer to the one member that has the operation's exact type."""
    result, name, types, constant = operation
    cpp = type_name(owner)
    return f"static_cast<{result} ({cpp}::*)({', '.join(types)}){constant}>(&{cpp}::{name})"


def data_lines(text):
    return [line for line in text.splitlines() if line.strip() and not line.startswith("#")]


def parse_slots(text):
    """The rows of slots.txt by class, and complaints about lines."""
    tables, bad = {}, []
    for line in data_lines(text):
        match = SLOT.match(line)
        if match is None:
            bad.append(f"not a row of slots.txt: {line}")
            continue
        row = Slot(match.group(1), int(match.group(2)), normal(match.group(3)), match.group(4))
        rows = tables.setdefault(row.owner, [])
        if row.slot != len(rows):
            bad.append(f"{row.owner}: slot {row.slot} stands where {len(rows)} belongs")
        if parse_operation(row.owner, row.operation) is None:
            bad.append(f"{row.owner} {row.slot}: cannot read `{row.operation}`")
        rows.append(row)
    return tables, bad


def parse_layout(text):
    """The rows of layout.txt, and complaints about lines."""
    facts, bad = [], []
    for line in data_lines(text):
        match = LAYOUT.match(line)
        if match is None or match.group(1) not in LAYOUT_KINDS:
            bad.append(f"not a row of layout.txt: {line}")
        else:
            facts.append(Fact(match.group(1), match.group(2),
                              tuple(int(number) for number in match.groups()[2:])))
    return facts, bad


def parse_page(text):
    """The slot tables of the page by class, and its rows about layout."""
    tables, facts, name = {}, [], None
    for line in text.splitlines():
        heading, slot, layout = HEADING.match(line), SLOT_ROW.match(line), LAYOUT_ROW.match(line)
        if heading:
            name = heading.group(1)
        elif slot and name:
            tables.setdefault(name, []).append(
                Slot(name, int(slot.group(1)), normal(slot.group(2)), slot.group(3)))
        elif layout:
            facts.append(Fact(layout.group(1), layout.group(2),
                              tuple(int(number) for number in layout.groups()[2:])))
    return tables, facts


def first_slots(facts):
    """Where each class's own operations begin, for classes where that is not 0."""
    return {fact.what: fact.numbers for fact in facts if fact.kind == "first"}


def assertions(facts):
    """C++ that asserts the facts on the platform that compiles it. For 64-bit Windows none are told."""
    lines = ["#include <kel/kel.h>",
             "#if !defined(_WIN64)",
             "#if defined(_MSC_VER)",
             "#define ON_THIS_PLATFORM(linux64, other32, microsoft32) microsoft32",
             "#else",
             "#define ON_THIS_PLATFORM(linux64, other32, microsoft32)"
             " (sizeof(void*) == 8 ? linux64 : other32)",
             "#endif"]
    for kind, what, numbers in facts:
        if kind in ("sizeof", "alignof", "offsetof"):
            subject = what.replace(" ", ", ") if kind == "offsetof" else what
            expected = f"ON_THIS_PLATFORM({', '.join(str(number) for number in numbers)})"
            lines.append(f'static_assert({kind}({subject}) == {expected}, "{kind}({subject})");')
    return "\n".join(lines + ["#undef ON_THIS_PLATFORM", "#endif", ""])


def read(folder):
    """slots.txt and layout.txt of a folder: tables, facts, complaints."""
    tables, bad = parse_slots(pathlib.Path(folder, "slots.txt").read_text())
    facts, more = parse_layout(pathlib.Path(folder, "layout.txt").read_text())
    return tables, facts, bad + more
