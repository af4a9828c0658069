#!/usr/bin/env python3
"""The checks of this folder find what they are there to find."""
import unittest

import check_exports
import check_layers
import check_slots
import contract


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
                         ["file.h: KEL_Impl.h is no file of a layer"])

    def test_an_include_of_a_missing_file_is_found(self):
        self.assertEqual(self.offences_in("values", '#include "values/Gone.h"', nothing_exists),
                         ["file.h: values/Gone.h is no file of a layer"])

    def test_a_system_header_is_found_above_the_platform_layer(self):
        self.assertEqual(self.offences_in("streams", "#include <sys/stat.h>"),
                         ["file.h: sys/stat.h is no standard C++ header"])
        self.assertEqual(self.offences_in("platform", "#include <sys/stat.h>"), [])

    def test_an_include_in_a_comment_does_not_count(self):
        self.assertEqual(self.offences_in("runtime", '// #include "values/KEL_Impl.h"\n'), [])

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

    def test_a_header_that_the_umbrella_forgets_is_found(self):
        headers = {"kel/kel.h": "#include <kel/A.h>", "kel/A.h": "", "kel/B.h": ""}
        self.assertEqual(list(check_layers.check_umbrella(headers)),
                         ["include/kel/B.h: not reached from kel.h"])


class Exports(unittest.TestCase):
    def test_rows_are_read_and_strange_lines_are_found(self):
        rows, bad = check_exports.parse_list("# head\n\n  1 _Z1av  # a()\nnonsense\n")
        self.assertEqual(rows, [(1, "_Z1av", "a()")])
        self.assertEqual(bad, ["nonsense"])

    def test_an_ordinal_that_is_used_twice_is_found(self):
        rows = [(1, "_Z1av", "a()"), (1, "_Z1bv", "b()")]
        self.assertEqual(list(check_exports.check_rows(rows, [])), ["ordinal 1 does not ascend"])

    def test_an_empty_list_is_found(self):
        self.assertEqual(list(check_exports.check_rows([], [])), ["the list is empty"])

    def test_missing_and_surplus_exports_are_found(self):
        symbols = check_exports.parse_nm("0000000000001139 T _Z1bv\n0000000000002000 V _ZTI1A\n")
        self.assertEqual(list(check_exports.check_symbols(["_Z1av", "_Z1bv"], symbols)),
                         ["listed but not exported: _Z1av", "exported but not listed: V _ZTI1A"])

    def test_a_listed_symbol_that_is_weak_is_found(self):
        self.assertEqual(list(check_exports.check_symbols(["_Z1av"], {"_Z1av": "W"})),
                         ["exported as W instead of a function: _Z1av"])

    def test_an_overload_that_only_the_headers_know_is_found(self):
        declared = check_exports.collections.Counter(
            check_exports.DECLARATION.findall("KEL_API int KEL_CALL a();\n"
                                              "KEL_API KEL* KEL_CALL a(int x);\n"))
        self.assertEqual(list(check_exports.check_declarations(["a()"], declared)),
                         ["a: 1 in the list, 2 in the headers"])


class Contract(unittest.TestCase):
    def test_rows_are_read_by_class(self):
        tables, bad = contract.parse_slots("# head\nA 0 void a(int x) 1.0\n\nA 1 int b() const 1.2\n")
        self.assertEqual(bad, [])
        self.assertEqual([(row.slot, row.operation, row.since) for row in tables["A"]],
                         [(0, "void a(int x)", "1.0"), (1, "int b() const", "1.2")])

    def test_a_slot_out_of_order_and_a_strange_line_are_found(self):
        _, bad = contract.parse_slots("A 0 void a() 1.0\nA 2 void b() 1.0\nA 1 void c()\n")
        self.assertEqual(bad, ["A: slot 2 stands where 1 belongs",
                               "not a row of slots.txt: A 1 void c()"])

    def test_layout_has_four_numbers_a_row_and_known_kinds(self):
        facts, bad = contract.parse_layout("sizeof long double 16 12 8\nweight A 1 1 1\n")
        self.assertEqual(facts, [("sizeof", "long double", (16, 12, 8))])
        self.assertEqual(bad, ["not a row of layout.txt: weight A 1 1 1"])

    def test_an_operation_gives_an_exact_pointer_to_member(self):
        operation = contract.parse_operation("A", "KEL* get(const char* name, int32_t) const")
        self.assertEqual(contract.member_pointer("A", operation),
                         "static_cast<KEL* (A::*)(const char*, int32_t) const>(&A::get)")

    def test_a_template_is_looked_at_with_an_argument(self):
        operation = contract.parse_operation("JPointer", "JPointer& operator=(T* target)")
        self.assertEqual(operation, ("JPointer<JObject>&", "operator=", ["JObject*"], ""))

    def test_sizes_are_asserted_for_each_platform(self):
        text = contract.assertions([contract.Fact("offsetof", "A b", (8, 4, 2))])
        self.assertIn("static_assert(offsetof(A, b) == ON_THIS_PLATFORM(8, 4, 2)", text)


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
    facts = [contract.Fact("first", "A", (2, 2, 1)), contract.Fact("field", "A x", (8, 4, 4))]

    def dump(self, first, second):
        return ("VTable indices for 'A' (4 entries).\n"
                "   0 | A::~A() [complete]\n   1 | A::~A() [deleting]\n"
                f"   2 | {first}\n   3 | {second}\n\n"
                "*** Dumping AST Record Layout\n         0 | class A\n"
                "         0 |   (A vtable pointer)\n         8 |   class B<int> x\n")

    def compare_dump(self, first, second):
        return list(check_slots.compare_dump(self.twin, self.facts, "x86_64-linux-gnu",
                                             self.dump(first, second)))

    def test_operations_are_read_in_their_order_without_the_destructor(self):
        self.assertEqual(check_slots.classes_of("\n" + self.header.replace("        ", "")),
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
               "| `first A` | 2 | 2 | 1 |\n"
        self.assertEqual(
            list(check_slots.compare_page(self.twin, self.facts, page)),
            ["A 1: `1 int b(const char* name) const since 1.0` in slots.txt,"
             " `1 int b(const char* name) const since 1.1` on the page",
             "field A x 8 4 4: only in layout.txt"])

    def test_the_tables_of_clang_are_read_without_names_and_destructors(self):
        self.assertEqual(self.compare_dump("void A::a()", "int A::b(const char *) const"), [])

    def test_a_compiler_that_places_operations_otherwise_is_found(self):
        self.assertEqual(self.compare_dump("int A::b(const char *) const", "void A::a()"),
                         ["A 0: `void a()` in slots.txt, `int b(const char*) const`"
                          " for x86_64-linux-gnu",
                          "A 1: `int b(const char*) const` in slots.txt, `void a()`"
                          " for x86_64-linux-gnu"])

    def test_a_compiler_with_another_layout_is_found(self):
        self.facts = [self.facts[0], contract.Fact("field", "A x", (16, 4, 4))]
        self.assertEqual(self.compare_dump("void A::a()", "int A::b(const char *) const"),
                         ["field A x: 16 in layout.txt, 8 for x86_64-linux-gnu"])

    def test_other_tables_of_a_class_are_not_its_own(self):
        dump = ("VFTable indices for 'A' (2 entries).\n -- accessible via vfptr at offset 0 --\n"
                "   0 | void A::a()\n -- accessible via vbtable index 1, vfptr at offset 0 --\n"
                "   0 | void A::c()\n\n")
        self.assertEqual(check_slots.parse_tables(dump), {"A": {0: "void a()"}})


if __name__ == "__main__":
    unittest.main()
