#!/usr/bin/env python3
"""Compares the binary contract with itself, with the public headers, and with compilers' output.

    check_slots.py DOCS INCLUDE CLANG            compares
    check_slots.py --write DOCS INCLUDE CLANG    writes the contract from the headers

DOCS holds the page abi.md and its twin for programs, abi/slots.txt, abi/layout.txt and
abi/bases.txt. A slot is
the index of an operation among those that its class itself introduces, counted from 0 and without
the destructor. Hosts that were compiled long ago call operations by their slots, so a difference is
a mistake in the header, not in the document.

Clang shows the output of compilers from the public headers alone, for each target, without any
system's own headers. The twin's operations must compile there with their exact types. Clang's
tables and layouts must equal the twin's. The tests that are made from the same twin
(make_slot_tests.py) call by slot on the platforms that run them.

--write is for new operations and classes. It gives them the version of the headers and keeps the
version of all others. A new class needs its heading on the page first, and a new number its row in
layout.txt, with any numbers. Review the changes. No released slot may change.

Prints one line per difference and ends with status 1 if there is any. Ends with status 77 if CLANG
is not there.
"""
import pathlib
import shutil
import sys

import bases
import clang
import contract
import headers
import page

MICROSOFT = "i686-pc-windows-msvc"


def compare(ours, theirs, where):
    """Yields the differences between the twin's tables and other ones. Both map a class to rows in
    order of slots."""
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


def compare_page(tables, facts, text):
    """Yields the differences between the twin and the page."""
    page_tables, page_facts = page.parse(text)
    plain = {name: [f"{row.slot} {row.operation} since {row.since}" for row in rows]
             for name, rows in tables.items()}
    on_page = {name: [f"{row.slot} {row.operation} since {row.since}" for row in rows]
               for name, rows in page_tables.items()}
    yield from compare(plain, on_page, "on the page")
    for kind, what, numbers in sorted(set(facts) ^ set(page_facts)):
        source = "layout.txt" if (kind, what, numbers) in facts else "the page"
        yield f"{kind} {what} {' '.join(str(number) for number in numbers)}: only in {source}"


def found_by(compiler, target, include, tables, facts):
    """Returns the compiled headers: class to (place to operation), and a number per fact."""
    dump, output = clang.ask(compiler, target, include, clang.probe(tables, facts))
    return clang.parse_tables(dump), clang.numbers_in(facts, dump, output)


def compare_target(tables, facts, target, made, numbers):
    """Yields the differences between the twin and the facts found for a target."""
    column = clang.TARGETS[target].column
    where = f"for {target}"
    first = contract.first_slots(facts)
    rows = {}
    for name, places in made.items():
        begin = first[name][column] if name in first else 0
        if places and sorted(places) != list(range(begin, begin + len(places))):
            yield f"{name}: the slots {sorted(places)} do not follow each other from {begin} {where}"
        if places:
            rows[name] = [places[index] for index in sorted(places)]
    forms = {name: [clang.type_form(name, row.operation) for row in table]
             for name, table in tables.items()}
    yield from compare(forms, rows, where)

    for fact, number in zip(facts, numbers):
        if fact.kind != "first" and number != fact.numbers[column]:
            yield f"{fact.kind} {fact.what}: {fact.numbers[column]} in layout.txt, {number} {where}"


def compare_construction(tables, facts, compiler, include):
    """Yields the public classes to which Microsoft's compiler adds fields for calls during construction
    (vtordisp). The library is compiled without these fields, and hosts with them, so no public class
    may have one."""
    dump, _ = clang.ask(compiler, MICROSOFT, include, clang.probe(tables, facts))
    for name in clang.records_with("(vtordisp for", dump):
        yield f"{name}: its layout depends on the option /vd of Microsoft's compiler"


def tables_from(classes, tables, version, order):
    """Returns the tables of the headers' operations, with the versions that the twin has for
    them."""
    missing = sorted(set(classes) - set(order))
    if missing:
        sys.exit("\n".join(f"{name}: first give it a heading ### `{name}` on the page"
                           for name in missing))
    since = {(row.owner, row.operation): row.since for rows in tables.values() for row in rows}
    return {name: [contract.Slot(name, slot, operation, since.get((name, operation), version))
                   for slot, operation in enumerate(classes[name])]
            for name in order if name in classes}


def facts_from(facts, found):
    """Returns the facts with the numbers found, and the first slots of every class that has one.

    found: target to (tables, numbers) from found_by.
    """
    def across(number_for):
        numbers = [None] * len(contract.PLATFORMS)
        for target, (made, measured) in found.items():
            numbers[clang.TARGETS[target].column] = number_for(made, measured)
        return tuple(numbers)

    def first_of(name):
        return across(lambda made, _: min(made.get(name) or [0]))

    result = []
    for place, fact in enumerate(facts):
        numbers = first_of(fact.what) if fact.kind == "first" else \
            across(lambda _, measured, place=place: measured[place])
        result.append(fact._replace(numbers=numbers))
    known = contract.first_slots(facts)
    names = sorted({name for made, _ in found.values() for name, places in made.items() if places})
    return result + [contract.Fact("first", name, first_of(name)) for name in names
                     if name not in known and any(first_of(name))]


def write(docs, include, compiler):
    if not shutil.which(compiler):
        sys.exit("writing needs clang++: it tells the numbers")
    page_file, twin = docs / "abi.md", docs / "abi"
    text = page_file.read_text()
    old, facts, _ = contract.read(twin)
    tables = tables_from(headers.classes_in(include), old, headers.version_in(include),
                         page.headings(text))
    facts = facts_from(facts, {target: found_by(compiler, target, include, tables, facts)
                               for target in clang.TARGETS})
    for name, rows in tables.items():
        text = page.with_table(text, name, page.slot_rows(rows))
    page_file.write_text(page.with_table(text, page.LAYOUT_SECTION, page.layout_rows(facts)))
    bases_file = twin / "bases.txt"
    bases_file.write_text(bases.text_with(bases_file.read_text(), headers.bases_in(include)))
    slots, layout = twin / "slots.txt", twin / "layout.txt"
    slots.write_text(contract.slots_text(slots.read_text(), tables))
    layout.write_text(contract.layout_text(layout.read_text(), facts))


def main(arguments):
    writing = arguments[:1] == ["--write"]
    if len(arguments) != 3 + writing:
        sys.exit(__doc__)
    docs, include, compiler = pathlib.Path(arguments[-3]), arguments[-2], arguments[-1]
    if writing:
        write(docs, include, compiler)
    tables, facts, offences = contract.read(docs / "abi")
    if not tables or not facts:
        sys.exit("nothing to compare")
    offences += compare_page(tables, facts, (docs / "abi.md").read_text())
    operations = {name: [row.operation for row in rows] for name, rows in tables.items()}
    offences += compare(operations, headers.classes_in(include), "declared")
    listed_bases, bad = bases.parse((docs / "abi" / "bases.txt").read_text())
    offences += bad + list(bases.compare(listed_bases, headers.bases_in(include)))

    # Tables that differ from the headers do not compile.
    targets = clang.TARGETS if shutil.which(compiler) and not offences else {}
    for target in targets:
        made, numbers = found_by(compiler, target, include, tables, facts)
        offences += compare_target(tables, facts, target, made, numbers)
    if MICROSOFT in targets:
        offences += compare_construction(tables, facts, compiler, include)
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
