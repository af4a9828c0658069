"""The lists of exported functions in src/exports: reading them and their names."""

import re

PAGE_ROW = re.compile(r"^\| (\d+) \| `(\w+\(.*\))` \|$")
LINUX_ROW = re.compile(r"^ *(\d+) +(\w+) +# (.+)$")
DEF_ROW = re.compile(r"^ +(\S+) +@(\d+)$")
ITANIUM = re.compile(r"^_Z(\d+)(\w+)$")
DECORATION = re.compile(r"@\d+$")
MICROSOFT = re.compile(r"^\?(\w+)@@YG")


def parse_exports(text):
    """kel.exports: ordinal to name. Every line is a row, a comment or empty."""
    return _parse(text, LINUX_ROW, lambda m: (int(m.group(1)), m.group(2)), "#", ())


def readable_names(text):
    """kel.exports: ordinal to readable name."""
    return _parse(text, LINUX_ROW, lambda m: (int(m.group(1)), m.group(3)), "#", ())


def parse_page(text):
    """The table of docs/abi.md: ordinal to readable name."""
    section = text.split("\n## Exported functions\n")[1].split("\n## ")[0]
    return {int(ordinal): name for ordinal, name in re.findall(PAGE_ROW.pattern, section, re.M)}


def parse_def(text):
    """A .def file: ordinal to name."""
    heads = ("LIBRARY KEL.dll", "EXPORTS")
    return _parse(text, DEF_ROW, lambda m: (int(m.group(2)), m.group(1)), ";", heads)


def _parse(text, row, fields, comment, heads):
    rows = {}
    for line in text.splitlines():
        match = row.match(line)
        if match:
            ordinal, name = fields(match)
            if rows and ordinal <= max(rows):
                raise ValueError(f"ordinal {ordinal} does not ascend")
            rows[ordinal] = name
        elif line.strip() and not line.startswith(comment) and line not in heads:
            raise ValueError(f"not a row of the list: {line}")
    for head in heads:
        if head not in text.splitlines():
            raise ValueError(f"the line {head} is missing")
    return rows


def function_of(name):
    """The function that a name of any of the three lists means, without its arguments."""
    microsoft = MICROSOFT.match(name)
    if microsoft:
        return microsoft.group(1)
    itanium = ITANIUM.match(DECORATION.sub("", name))
    return itanium.group(2)[:int(itanium.group(1))] if itanium else None


def as_on_linux(name):
    """A name of kel.def as kel.exports has it: without decoration, FILE under its other tag."""
    return DECORATION.sub("", name).replace("6_iobuf", "8_IO_FILE")
