#!/usr/bin/env python3
"""The checks of this folder find the mistakes that they are meant to find."""
import pathlib
import unittest

import bases
import check_layers
import check_slots
import clang
import contract
import headers
import page


def everything_exists(_):
    return True


def nothing_exists(_):
    return False


class Layers(unittest.TestCase):
    def offences_in(self, layer, text, exists=everything_exists):
        return list(check_layers.check_layer("file.h", text, layer, exists))

    def test_a_layer_may_include_itself_and_those_below(self):
        text = '#include "runtime/JVector.h"\n#include "values/KEL_Impl.h"\n#include <kel/KEL.h>\n'
        self.assertEqual(self.offences_in("values", text), [])

    def test_an_include_of_a_layer_above_is_found(self):
        self.assertEqual(
            self.offences_in("runtime", '#include "values/KEL_Impl.h"'),
            ["file.h: runtime must not include values/KEL_Impl.h, which is above it"])

    def test_an_include_without_its_layer_is_found(self):
        self.assertEqual(self.offences_in("values", '#include "KEL_Impl.h"'),
                         ["file.h: KEL_Impl.h is not a file of a layer"])

    def test_an_include_of_a_missing_file_is_found(self):
        self.assertEqual(self.offences_in("values", '#include "values/Gone.h"', nothing_exists),
                         ["file.h: values/Gone.h is not a file of a layer"])

    def test_a_system_header_is_found_above_the_platform_layer(self):
        self.assertEqual(self.offences_in("streams", "#include <sys/stat.h>"),
                         ["file.h: sys/stat.h is not a standard C++ header"])
        self.assertEqual(self.offences_in("platform", "#include <sys/stat.h>"), [])

    def test_an_include_in_a_comment_does_not_count(self):
        self.assertEqual(self.offences_in("runtime", '// #include "values/KEL_Impl.h"\n'), [])

    def offences_in_room(self, room, included):
        return list(check_layers.check_room("file.h", f'#include "{included}"', "serial", room))

    def test_a_room_may_include_itself_its_hall_and_the_rooms_it_stands_on(self):
        for included in ["serial/text/TextSource.h", "serial/ValueTable.h", "serial/tokens/Token.h",
                         "values/KEL_Impl.h"]:
            self.assertEqual(self.offences_in_room("text", included), [])

    def test_a_forbidden_include_between_rooms_is_found(self):
        for room, included in [("text", "serial/binary/RecordBuffer.h"),
                               ("binary", "serial/text/TextSource.h"),
                               ("binary", "serial/tokens/Token.h"),
                               ("tokens", "serial/text/TextSource.h"),
                               ("tokens", "serial/binary/RecordBuffer.h")]:
            self.assertEqual(self.offences_in_room(room, included),
                             [f"file.h: serial/{room} must not include {included}"])

    def test_a_hall_that_includes_a_room_is_found(self):
        self.assertEqual(
            self.offences_in_room(None, "serial/tokens/Token.h"),
            ["file.h: the hall of serial must not include serial/tokens/Token.h,"
             " which is in a room"])

    def test_a_folder_that_is_not_a_room_is_found(self):
        self.assertEqual(self.offences_in_room("json", "serial/ValueTable.h"),
                         ["file.h: serial/json is not a room"])

    def test_a_public_header_may_include_its_neighbours_and_c_headers(self):
        text = "#include <kel/KEL.h>\n#include <stdint.h>\n#include <stdio.h>\n"
        self.assertEqual(list(check_layers.check_public("file.h", text)), [])

    def test_a_public_header_with_a_standard_library_header_is_found(self):
        self.assertEqual(list(check_layers.check_public("file.h", "#include <string>")),
                         ["file.h: a public header must not include string"])

    def test_a_host_that_includes_an_internal_header_is_found(self):
        text = '#include "runtime/JVector.h"\n'
        self.assertEqual(list(check_layers.check_host("file.cpp", text, ["x"], nothing_exists)),
                         ["file.cpp: a host must not include runtime/JVector.h"])

    def test_code_for_one_system_is_found(self):
        for text in ["#if defined(_WIN32)", "#ifdef __GNUC__", "  # ifndef _MSC_VER",
                     "int x = __builtin_clz(1);", "[[gnu::noinline]] void f();"]:
            self.assertTrue(list(check_layers.check_portable("file.cpp", text)), text)

    def test_portable_code_passes(self):
        text = '// __builtin_clz\nconst char* s = "__GNUC__";\n#if KEL_VERSION_MAJOR > 1\n#endif\n'
        self.assertEqual(list(check_layers.check_portable("file.cpp", text)), [])

    def test_a_file_that_is_included_twice_is_found(self):
        text = '#include "a/A.h"\n#include <vector>\n\n#include <vector>\n// #include "a/A.h"\n'
        self.assertEqual(list(check_layers.check_once("file.cpp", text)),
                         ["file.cpp: vector is included twice"])

    def test_a_header_that_the_umbrella_forgets_is_found(self):
        headers = {"kel/kel.h": "#include <kel/A.h>", "kel/A.h": "", "kel/B.h": ""}
        self.assertEqual(list(check_layers.check_umbrella(headers)),
                         ["include/kel/B.h: not reached from kel.h"])


class Contract(unittest.TestCase):
    def test_rows_are_read_by_class(self):
        tables, bad = contract.parse_slots("# head\nA 0 void a(int x) 1.0\n\nA 1 int b() const 1.2\n")
        self.assertEqual(bad, [])
        self.assertEqual([(row.slot, row.operation, row.since) for row in tables["A"]],
                         [(0, "void a(int x)", "1.0"), (1, "int b() const", "1.2")])

    def test_a_slot_out_of_order_and_a_strange_line_are_found(self):
        _, bad = contract.parse_slots("A 0 void a() 1.0\nA 2 void b() 1.0\nA 1 void c()\n")
        self.assertEqual(bad, ["A: slot 2 is listed in place of 1",
                               "not a row of slots.txt: A 1 void c()"])

    def test_layout_has_four_numbers_a_row_and_known_kinds(self):
        facts, bad = contract.parse_layout("sizeof long double 16 12 8 16\nweight A 1 1 1 1\n"
                                            "sizeof long 8 4 4\n")
        self.assertEqual(facts, [("sizeof", "long double", (16, 12, 8, 16))])
        self.assertEqual(bad, ["not a row of layout.txt: weight A 1 1 1 1",
                               "not a row of layout.txt: sizeof long 8 4 4"])

    def test_an_operation_gives_an_exact_pointer_to_member(self):
        operation = contract.parse_operation("A", "KEL* get(const char* name, int32_t) const")
        self.assertEqual(contract.member_pointer("A", operation),
                         "static_cast<KEL* (A::*)(const char*, int32_t) const>(&A::get)")

    def test_a_template_is_looked_at_with_an_argument(self):
        operation = contract.parse_operation("JPointer", "JPointer& operator=(T* target)")
        self.assertEqual(operation, ("JPointer<JObject>&", "operator=", ["JObject*"], ""))

    def test_sizes_are_asserted_for_each_platform(self):
        self.assertEqual(list(contract.assertions([contract.Fact("offsetof", "A b", (8, 4, 2, 6))])),
                         ['static_assert(offsetof(A, b) == onThisPlatform(8, 4, 2, 6),'
                          ' "offsetof(A, b)");'])


class Slots(unittest.TestCase):
    header = """
        /// virtual void comment() = 0;
        class Base : public virtual Other {
        public:
            KEL_SLOTS(
                virtual int  get(const char *name) = 0;,
                virtual int get(const char* name) const = 0;)
            virtual void set(int x) { x_ = x; }
            virtual ~Base() {}
        };"""
    rows = ["int get(const char* name)", "int get(const char* name) const", "void set(int x)"]
    twin = {"A": [contract.Slot("A", 0, "void a()", "1.0"),
                  contract.Slot("A", 1, "int b(const char* name) const", "1.0")]}
    facts = [contract.Fact("first", "A", (2, 2, 1, 2)), contract.Fact("field", "A x", (8, 4, 4, 8)),
             contract.Fact("sizeof", "A", (24, 12, 12, 24))]

    def dump(self, first, second):
        return ("VTable indices for 'A' (4 entries).\n"
                "   0 | A::~A() [complete]\n   1 | A::~A() [deleting]\n"
                f"   2 | {first}\n   3 | {second}\n\n"
                "*** Dumping AST Record Layout\n         0 | class A\n"
                "         0 |   (A vtable pointer)\n         8 |   class B<int> x\n")

    def compare_dump(self, first, second):
        dump = self.dump(first, second)
        return list(check_slots.compare_target(
            self.twin, self.facts, "x86_64-linux-gnu", clang.parse_tables(dump),
            clang.numbers_in(self.facts, dump, "@kel_number_2 = local constant i64 24, align 8\n")))

    def test_operations_are_read_in_their_order_without_the_destructor(self):
        self.assertEqual(headers.classes_of("\n" + self.header.replace("        ", "")),
                         {"Base": self.rows})

    def test_two_operations_that_change_places_are_found(self):
        self.assertEqual(
            list(check_slots.compare({"B": ["void a()", "void b()"]},
                                     {"B": ["void b()", "void a()"]}, "declared")),
            ["B 0: `void a()` in slots.txt, `void b()` declared",
             "B 1: `void b()` in slots.txt, `void a()` declared"])

    def test_a_missing_operation_and_a_missing_table_are_found(self):
        self.assertEqual(
            list(check_slots.compare({"B": ["void a()"], "D": []},
                                     {"B": ["void a()", "void b()"], "C": []}, "declared")),
            ["B: 1 operations, 2 declared", "C: has no slots in slots.txt",
             "D: introduces no operation declared"])

    def test_a_page_that_says_otherwise_is_found(self):
        page = "### `A`\n| 0 | `void a()` | 1.0 |\n| 1 | `int b(const char* name) const` | 1.1 |\n" \
               "| `first A` | 2 | 2 | 1 | 2 |\n| `sizeof A` | 24 | 12 | 12 | 24 |\n"
        self.assertEqual(
            list(check_slots.compare_page(self.twin, self.facts, page)),
            ["A 1: `1 int b(const char* name) const since 1.0` in slots.txt,"
             " `1 int b(const char* name) const since 1.1` on the page",
             "field A x 8 4 4 8: only in layout.txt"])

    def test_the_tables_of_clang_are_read_without_names_and_destructors(self):
        self.assertEqual(self.compare_dump("void A::a()", "int A::b(const char *) const"), [])

    def test_a_compiler_that_places_operations_otherwise_is_found(self):
        self.assertEqual(self.compare_dump("int A::b(const char *) const", "void A::a()"),
                         ["A 0: `void a()` in slots.txt, `int b(const char*) const`"
                          " for x86_64-linux-gnu",
                          "A 1: `int b(const char*) const` in slots.txt, `void a()`"
                          " for x86_64-linux-gnu"])

    def test_a_compiler_with_another_layout_is_found(self):
        self.facts = [self.facts[0], contract.Fact("field", "A x", (16, 4, 4, 8)),
                      contract.Fact("sizeof", "A", (32, 12, 12, 24))]
        self.assertEqual(self.compare_dump("void A::a()", "int A::b(const char *) const"),
                         ["field A x: 16 in layout.txt, 8 for x86_64-linux-gnu",
                          "sizeof A: 32 in layout.txt, 24 for x86_64-linux-gnu"])

    def test_other_tables_of_a_class_are_not_its_own(self):
        dump = ("VFTable indices for 'A' (2 entries).\n -- accessible via vfptr at offset 0 --\n"
                "   0 | void A::a()\n -- accessible via vbtable index 1, vfptr at offset 0 --\n"
                "   0 | void A::c()\n\n")
        self.assertEqual(clang.parse_tables(dump), {"A": {0: "void a()"}})

    def test_a_layout_that_depends_on_an_option_is_found(self):
        dump = ("         0 | class A\n"
                "         0 |   (A vftable pointer)\n"
                "           | [sizeof=4, align=4,\n"
                "         0 | class B\n"
                "         8 |   (vtordisp for vbase A)\n")
        self.assertEqual(clang.records_with("(vtordisp for", dump), ["B"])


class Bases(unittest.TestCase):
    HEADER = "class A {\n};\nclass B : public virtual A, // first\n          public C {\n};\n"

    def differences(self, text):
        listed, bad = bases.parse(text)
        return bad + list(bases.compare(listed, headers.bases_of(self.HEADER)))

    def test_the_same_bases_pass(self):
        self.assertEqual(self.differences("# head\n\nB: virtual A, C\n"), [])
        self.assertEqual(bases.text_with("# head\n\nD: E\n", headers.bases_of(self.HEADER)),
                         "# head\n\nB: virtual A, C\n")

    def test_another_order_kind_or_number_of_bases_is_found(self):
        for other in ("C, virtual A", "A, C", "virtual A"):
            self.assertEqual(self.differences(f"B: {other}\n"),
                             [f"B: the bases {other} in bases.txt, virtual A, C declared"])

    def test_a_class_that_got_or_lost_its_bases_is_found(self):
        self.assertEqual(self.differences("A: D\nB: virtual A, C\n"),
                         ["A: the bases D in bases.txt, none declared"])
        self.assertEqual(self.differences(""),
                         ["B: the bases none in bases.txt, virtual A, C declared"])

    def test_a_line_that_is_not_a_row_is_found(self):
        self.assertEqual(self.differences("B: virtual A, C\nB virtual A\n"),
                         ["not a row of bases.txt: B virtual A"])


class Writing(unittest.TestCase):
    twin = {"A": [contract.Slot("A", 0, "void a()", "1.0")]}

    def test_new_operations_get_the_version_of_the_headers_and_old_ones_keep_theirs(self):
        tables = check_slots.tables_from({"B": ["void c()"], "A": ["void a()", "void b()"]}, self.twin,
                                         "1.2", ["Slots", "A", "B"])
        self.assertEqual(contract.slots_text("# head\n\nA 0 void a() 1.0\n", tables),
                         "# head\n\nA 0 void a() 1.0\nA 1 void b() 1.2\n\nB 0 void c() 1.2\n")

    def test_a_new_class_needs_its_heading(self):
        with self.assertRaisesRegex(SystemExit, "B: first give it a heading ### `B` on the page"):
            check_slots.tables_from({"B": ["void c()"]}, self.twin, "1.2", ["A"])

    def test_numbers_are_written_for_each_platform_and_missing_first_slots_are_added(self):
        found = {target: ({"A": {column: "void a()"}}, [8 + column])
                 for target, (column, _) in clang.TARGETS.items()}
        facts = check_slots.facts_from([contract.Fact("sizeof", "A", (0, 0, 0, 0))], found)
        self.assertEqual(contract.layout_text("# head\n\nsizeof A 0 0 0 0\n", facts),
                         "# head\n\nsizeof A 8 9 10 11\nfirst A 0 1 2 3\n")

    def test_a_table_of_the_page_is_replaced_where_it_stands(self):
        text = "## `A`\n\nWords.\n\n| x |\n| y |\n\nMore.\n\n## `B`\n\n| z |\n"
        self.assertEqual(page.with_table(text, "A", ["| new |"]),
                         "## `A`\n\nWords.\n\n| new |\n\nMore.\n\n## `B`\n\n| z |\n")
        self.assertEqual(page.with_table("## `A`\n\n## `B`\n", "A", ["| new |"]),
                         "## `A`\n\n| new |\n\n## `B`\n")

    def test_the_version_is_that_of_the_public_headers(self):
        include = pathlib.Path(__file__).parents[2] / "include"
        self.assertRegex(headers.version_in(include), r"^\d+\.\d+$")


if __name__ == "__main__":
    unittest.main()
