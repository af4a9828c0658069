#!/usr/bin/env python3
"""The checks of this folder find what they are there to find."""
import unittest

import check_exports
import check_layers
import check_slots


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


class Slots(unittest.TestCase):
    header = """
        /// virtual void comment() = 0;
        class Base : public virtual Other {
        public:
            KEL_SLOTS_2(
                virtual int  get(const char *name) = 0;,
                virtual int get(const char* name) const = 0;)
            virtual void set(int x) { x_ = x; }
            virtual ~Base() {}
        };"""
    rows = ["int get(const char* name)", "int get(const char* name) const", "void set(int x)"]

    def test_operations_are_read_in_their_order_without_the_destructor(self):
        self.assertEqual(check_slots.classes_of("\n" + self.header.replace("        ", "")),
                         {"Base": self.rows})

    def test_a_table_is_read_and_a_slot_out_of_order_is_found(self):
        tables, bad = check_slots.tables_of("## `Base`\n| 0 | `void a()` |\n| 2 | `void b()` |\n")
        self.assertEqual(tables, {"Base": ["void a()", "void b()"]})
        self.assertEqual(bad, ["Base: slot 2 stands where 1 belongs"])

    def test_two_operations_that_change_places_are_found(self):
        self.assertEqual(
            list(check_slots.compare({"B": ["void a()", "void b()"]},
                                     {"B": ["void b()", "void a()"]})),
            ["B 0: `void a()` in the document, `void b()` declared",
             "B 1: `void b()` in the document, `void a()` declared"])

    def test_a_missing_operation_and_a_missing_table_are_found(self):
        self.assertEqual(list(check_slots.compare({"B": ["void a()"]},
                                                  {"B": ["void a()", "void b()"], "C": []})),
                         ["B: 1 operations in the document, 2 declared", "C: has no table"])

    def test_slots_of_the_compiler_that_do_not_follow_each_other_are_found(self):
        self.assertEqual(list(check_slots.check_slots({"AInterface_V1": [0, 1], "C": [2, 3]})), [])
        self.assertEqual(
            list(check_slots.check_slots({"AInterface_V1": [1, 2], "C": [3, 2]})),
            ["AInterface_V1: the compiler gives the documented operations the slots [1, 2]",
             "C: the compiler gives the documented operations the slots [3, 2]"])


if __name__ == "__main__":
    unittest.main()
