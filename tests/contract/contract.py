"""Reads the binary contract for programs: docs/abi/slots.txt and docs/abi/layout.txt. They hold the
same facts as the tables of docs/abi.md (see page.py).

slots.txt has a row "Class slot operation since" for every operation. layout.txt has a row "what
linux64 other32 microsoft32 mingw64" for every number that is compiled into a host: sizes,
alignments, offsets, and the index in its class's table where an interface's own operations begin.
"""
import collections
import pathlib
import re

SLOT = re.compile(r"^(\w+) (\d+) (\S.*) (\d+\.\d+)$")
# The platforms of the numbers in a row of layout.txt.
PLATFORMS = ["linux64", "other32", "microsoft32", "mingw64"]
LAYOUT = re.compile(r"^(\w+) (\S.*?)" + r" (\d+)" * len(PLATFORMS) + "$")
SIGNATURE = re.compile(r"^(.*?)\s*\b(\w+|operator=)\s*\((.*)\)( const)?$")

# The kinds of rows of layout.txt. A field is private, so only a compiler's dump shows it.
LAYOUT_KINDS = ["sizeof", "alignof", "offsetof", "field", "base", "first"]

# These kinds assert an expression of the type, and of the member for the last.
EXPRESSIONS = {"sizeof", "alignof", "offsetof"}

# A template is examined with this argument.
ARGUMENT = "JObject"
TEMPLATES = {"JPointer"}

Slot = collections.namedtuple("Slot", "owner slot operation since")
Fact = collections.namedtuple("Fact", "kind what numbers")
Operation = collections.namedtuple("Operation", "result name arguments constant")


def normal(signature):
    """Returns a signature in which blanks are set in one way."""
    text = re.sub(r"\s+", " ", signature.strip())
    return re.sub(r"\s*([*&])\s*", r"\1 ", text).replace("( ", "(").replace(" )", ")").replace(" ,", ",")


def type_name(owner):
    """Returns the owner as a C++ type."""
    return f"{owner}<{ARGUMENT}>" if owner in TEMPLATES else owner


def parse_operation(owner, operation):
    """Returns an operation with its types as C++ types, without the names of arguments, or None if
    it is unreadable."""
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
    """Returns a C++ expression: the pointer to the one member that has the operation's exact
    type."""
    result, name, types, constant = operation
    cpp = type_name(owner)
    return f"static_cast<{result} ({cpp}::*)({', '.join(types)}){constant}>(&{cpp}::{name})"


def data_lines(text):
    return [line for line in text.splitlines() if line.strip() and not line.startswith("#")]


def parse_slots(text):
    """Returns the rows of slots.txt by class, and complaints about lines."""
    tables, bad = {}, []
    for line in data_lines(text):
        match = SLOT.match(line)
        if match is None:
            bad.append(f"not a row of slots.txt: {line}")
            continue
        row = Slot(match.group(1), int(match.group(2)), normal(match.group(3)), match.group(4))
        rows = tables.setdefault(row.owner, [])
        if row.slot != len(rows):
            bad.append(f"{row.owner}: slot {row.slot} is listed in place of {len(rows)}")
        if parse_operation(row.owner, row.operation) is None:
            bad.append(f"{row.owner} {row.slot}: cannot read `{row.operation}`")
        rows.append(row)
    return tables, bad


def parse_layout(text):
    """Returns the rows of layout.txt, and complaints about lines."""
    facts, bad = [], []
    for line in data_lines(text):
        match = LAYOUT.match(line)
        if match is None or match.group(1) not in LAYOUT_KINDS:
            bad.append(f"not a row of layout.txt: {line}")
        else:
            facts.append(Fact(match.group(1), match.group(2),
                              tuple(int(number) for number in match.groups()[2:])))
    return facts, bad


def first_slots(facts):
    """Returns where each class's own operations begin, for classes where that is not 0."""
    return {fact.what: fact.numbers for fact in facts if fact.kind == "first"}


def expression(fact):
    """Returns C++ for the number of a fact whose kind is one of EXPRESSIONS."""
    return f"{fact.kind}({fact.what.replace(' ', ', ') if fact.kind == 'offsetof' else fact.what})"


def assertions(facts):
    """Yields C++ that asserts the facts on the compiling platform."""
    for fact in facts:
        if fact.kind in EXPRESSIONS:
            found = expression(fact)
            yield f'static_assert({found} == {on_this_platform(fact.numbers)}, "{found}");'


def on_this_platform(numbers):
    """Returns C++ for the number of the compiling platform."""
    return f"onThisPlatform({', '.join(map(str, numbers))})"


def slots_text(old, tables):
    """Returns slots.txt with other tables under the comments of its old text."""
    head = old[:old.index("\n\n")] if "\n\n" in old else old.rstrip("\n")
    blocks = ["\n".join(f"{name} {row.slot} {row.operation} {row.since}" for row in rows)
              for name, rows in tables.items()]
    return "\n\n".join([head, *blocks]) + "\n"


def layout_text(old, facts):
    """Returns layout.txt with the numbers of the facts. The facts that it did not have are at its
    end."""
    left = {(fact.kind, fact.what): fact.numbers for fact in facts}
    lines = []
    for line in old.splitlines():
        match = None if line.startswith("#") else LAYOUT.match(line)
        if match:
            kind, what = match.group(1), match.group(2)
            line = " ".join([kind, what, *map(str, left.pop((kind, what)))])
        lines.append(line)
    lines += [" ".join([kind, what, *map(str, numbers)]) for (kind, what), numbers in left.items()]
    return "\n".join(lines) + "\n"


def read(folder):
    """Returns the contents of slots.txt and layout.txt of a folder: tables, facts, complaints."""
    tables, bad = parse_slots(pathlib.Path(folder, "slots.txt").read_text())
    facts, more = parse_layout(pathlib.Path(folder, "layout.txt").read_text())
    return tables, facts, bad + more
