#!/usr/bin/env python3
"""Makes tests of the binary contract from docs/abi/slots.txt and docs/abi/layout.txt.

    make_slot_tests.py FOLDER OUTPUT

OUTPUT is a source of the host tests. It has a recorder for every class that a host can derive from:
an implementation whose operations remember that they ran. A test calls every slot of the recorder
and expects the operation of the contract. Pointers to members are compared for all classes. Sizes
and offsets are asserted when the source is compiled.
"""
import pathlib
import sys

import contract

# A host can derive from a class if it has no constructor and no operation inside the library.
INSIDE = {"JString", "JException"}
CONSTRUCTORS = {"JObject": "JObject(1, 2, 3, 4)"}
# The bases that a recorder implements besides its class. Tests call it through them too.
VALUE = ["KELInterface_Casting_V1", "KELInterface_RefCount_V1", "KELInterface_V1",
         "KELInterface_Observable_V1"]
STRUCT = VALUE + ["KELInterface_Struct_V1"]
BASES = {"KELInterface_Struct_V2": ["KELInterface_Struct_V1"],
         "KEL_IndexList": VALUE + ["KELInterface_IndexList_V1"],
         "KEL_Manager": VALUE + ["KELInterface_Manager_V1"],
         "MetaKelVarDescriptorInterface_V1": STRUCT,
         "MetaKelInterface_V1": STRUCT,
         "MetaKel": STRUCT + ["MetaKelInterface_V1"]}

HEAD = """// Made by tests/contract/make_slot_tests.py from docs/abi. Do not edit.
#include "SlotRecorder.h"

namespace {
using namespace host;
"""


def operations_of(tables, owner):
    return [(row, contract.parse_operation(owner, row.operation)) for row in tables[owner]]


def signature(operation):
    return f"{operation.result}({', '.join(operation.arguments)}){operation.constant}"


def types(operation):
    return ", ".join([operation.result] + operation.arguments)


def first_of(first, owner):
    return contract.on_this_platform(first.get(owner, (0,) * len(contract.PLATFORMS)))


def recorder(tables, owner):
    yield f"class Recorder_{owner} final : public {contract.type_name(owner)} {{"
    yield "public:"
    if owner in CONSTRUCTORS:
        yield f"    Recorder_{owner}() : {CONSTRUCTORS[owner]} {{}}"
    for part in BASES.get(owner, []) + [owner]:
        for row, operation in operations_of(tables, part):
            arguments = [f"{kind} a{place}" for place, kind in enumerate(operation.arguments)]
            names = "".join(f", a{place}" for place in range(len(arguments)))
            yield f"    {operation.result} {operation.name}({', '.join(arguments)})" \
                  f"{operation.constant} override {{"
            yield f'        return ran<{types(operation)}>("{part}", {row.slot}{names});'
            yield "    }"
    yield "};"


def test_of_calls(tables, first, owner):
    yield f"TEST(SlotContract, Calls_{owner}) {{"
    yield f"    Recorder_{owner} recorder;"
    for part in BASES.get(owner, []) + [owner]:
        yield "    {"
        yield f"        const {contract.type_name(part)}& object = recorder;"
        yield f"        const int first = {first_of(first, part)};"
        for row, operation in operations_of(tables, part):
            yield f'        expectRuns<{types(operation)}>(&object, "{part}", first, {row.slot});'
        yield "    }"
    yield "}"


def test_of_places(tables, first, owner):
    yield f"TEST(SlotContract, Places_{owner}) {{"
    yield f"    const int first = {first_of(first, owner)};"
    for row, operation in operations_of(tables, owner):
        yield f"    expectPlace({contract.member_pointer(owner, operation)},"
        yield f'                "{owner}", first, {row.slot});'
    yield "}"


def contract_table(tables, first):
    yield "const std::vector<host::Slot>& host::slotContract() {"
    yield "    static const std::vector<Slot> rows = {"
    for owner in tables:
        for row, operation in operations_of(tables, owner):
            yield f'        {{typeid(TypeOf<{contract.type_name(owner)}>), "{owner}", ' \
                  f'{first_of(first, owner)} + {row.slot}, "{operation.name}", ' \
                  f'typeid(TypeOf<{signature(operation)}>)}},'
    yield "    };"
    yield "    return rows;"
    yield "}"


def source(tables, facts):
    first = contract.first_slots(facts)
    yield HEAD
    yield from contract.assertions(facts)
    for owner in tables:
        if owner not in INSIDE:
            yield from recorder(tables, owner)
            yield from test_of_calls(tables, first, owner)
        yield from test_of_places(tables, first, owner)
    yield "} // namespace"
    yield from contract_table(tables, first)


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__)
    tables, facts, bad = contract.read(arguments[0])
    if bad or not tables or not facts:
        sys.exit("\n".join(bad) or "nothing to make tests from")
    pathlib.Path(arguments[1]).write_text("\n".join(source(tables, facts)) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
