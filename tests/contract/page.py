"""Reads the tables of the page docs/abi.md, and writes them from the facts."""
import re

import contract

HEADING = re.compile(r"^#+ `?(\w[\w ]*?)`?\s*$")
SLOT_ROW = re.compile(r"^\|\s*(\d+)\s*\|\s*`([^`]+)`\s*\|\s*(\d+\.\d+)\s*\|\s*$")
LAYOUT_ROW = re.compile(r"^\|\s*`(\w+) ([^`]+)`\s*\|" +
                        r"\s*(\d+)\s*\|" * len(contract.PLATFORMS) + r"\s*$")
FUNCTION_ROW = re.compile(r"^\|\s*(\d+)\s*\|\s*`([^`]+)`\s*\|\s*$")

SLOT_HEAD = ["| Slot | Operation | Since |", "| ---: | --- | --- |"]
LAYOUT_HEAD = ["| What | Linux, 64 bits | Linux and mingw, 32 bits | Microsoft, 32 bits | mingw, 64 bits |",
               "| --- | ---: | ---: | ---: | ---: |"]
FUNCTION_HEAD = ["| Ordinal | Function |", "| ---: | --- |"]

LAYOUT_SECTION = "Sizes and offsets"
FUNCTION_SECTION = "Exported functions"


def parse(text):
    """Returns the slot tables by class, and the rows about layout."""
    tables, facts, name = {}, [], None
    for line in text.splitlines():
        heading, slot, layout = HEADING.match(line), SLOT_ROW.match(line), LAYOUT_ROW.match(line)
        if heading:
            name = heading.group(1)
        elif slot and name:
            tables.setdefault(name, []).append(contract.Slot(
                name, int(slot.group(1)), contract.normal(slot.group(2)), slot.group(3)))
        elif layout:
            facts.append(contract.Fact(layout.group(1), layout.group(2),
                                       tuple(int(number) for number in layout.groups()[2:])))
    return tables, facts


def functions(text):
    """Returns the exported functions: ordinal to declaration."""
    rows = filter(None, map(FUNCTION_ROW.match, text.splitlines()))
    return {int(row.group(1)): row.group(2) for row in rows}


def headings(text):
    return [match.group(1) for match in map(HEADING.match, text.splitlines()) if match]


def slot_rows(rows):
    return SLOT_HEAD + [f"| {row.slot} | `{row.operation}` | {row.since} |" for row in rows]


def layout_rows(facts):
    return LAYOUT_HEAD + [f"| `{fact.kind} {fact.what}` | {' | '.join(map(str, fact.numbers))} |"
                          for fact in facts]


def function_rows(rows):
    return FUNCTION_HEAD + [f"| {row.ordinal} | `{row.declaration}` |" for row in rows]


def with_table(text, heading, table):
    """Returns the page with another table in the section of a heading. The table is placed first in
    a section without one."""
    lines = text.splitlines()
    places = [place for place, line in enumerate(lines) if HEADING.match(line)]
    begin = next(place for place in places if HEADING.match(lines[place]).group(1) == heading) + 1
    end = next((place for place in places if place >= begin), len(lines))
    section = lines[begin:end]
    first = next((place for place, line in enumerate(section) if line.startswith("|")), None)
    if first is None:
        section = ["", *table, *section]
    else:
        last = first
        while last < len(section) and section[last].startswith("|"):
            last += 1
        section[first:last] = table
    return "\n".join(lines[:begin] + section + lines[end:]) + "\n"
