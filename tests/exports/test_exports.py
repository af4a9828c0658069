#!/usr/bin/env python3
"""The checks of the export lists find what they are there to find."""
import unittest

import check_dll
import check_export_lists
import compiled_names
import export_lists

DEF = "; head\nLIBRARY KEL.dll\nEXPORTS\n    _Z1av@0 @1\n\n    _Z1bP6_iobuf@4 @5\n"
LISTS = {"kel.exports": {1: "_Z1av", 5: "_Z1bP8_IO_FILE"},
         "kel.def": {1: "_Z1av@0", 5: "_Z1bP6_iobuf@4"},
         "kel_msvc.def": {1: "?a@@YGXXZ", 5: "?b@@YGXPAU_iobuf@@@Z"}}


def changed(file, rows):
    return {**LISTS, file: {**LISTS[file], **rows}}


class Lists(unittest.TestCase):
    def test_rows_are_read(self):
        self.assertEqual(export_lists.parse_def(DEF), LISTS["kel.def"])
        self.assertEqual(export_lists.parse_exports("# x\n 1 _Z1av # a()\n"), {1: "_Z1av"})

    def test_a_strange_line_an_ordinal_used_twice_and_a_missing_head_are_found(self):
        for text in (DEF + "    DATA\n", DEF + "    _Z1cv@0 @5\n", DEF.replace("EXPORTS\n", "")):
            with self.assertRaises(ValueError):
                export_lists.parse_def(text)

    def test_lists_that_agree_pass(self):
        self.assertEqual(list(check_export_lists.compare_lists(LISTS)), [])

    def test_a_function_that_one_list_lacks_is_found(self):
        self.assertEqual(
            list(check_export_lists.compare_lists(changed("kel.exports", {7: "_Z1cv"}))),
            ["ordinal 7: not in kel.def, kel_msvc.def"])

    def test_functions_that_change_places_are_found(self):
        self.assertEqual(
            list(check_export_lists.compare_lists(changed("kel_msvc.def", {1: "?b@@YGXXZ"}))),
            ["ordinal 1: ?b@@YGXXZ in kel_msvc.def, _Z1av in kel.exports"])
        self.assertEqual(
            list(check_export_lists.compare_lists(changed("kel.def", {1: "_Z1ai@4"}))),
            ["ordinal 1: _Z1ai@4 in kel.def, _Z1av in kel.exports"])


class Names(unittest.TestCase):
    compiled = {"kel.exports": [("_Z1av", "void a()"), ("_Z1bP8_IO_FILE", "void b(FILE*)")],
                "kel_msvc.def": [("?a@@YGXXZ", "void a()"),
                                 ("?b@@YGXPAU_iobuf@@@Z", "void b(FILE*)")]}

    def test_names_of_the_compilers_pass(self):
        self.assertEqual(list(check_export_lists.compare_names(LISTS, self.compiled)), [])

    def test_overloads_that_change_places_are_found(self):
        lists = changed("kel_msvc.def", {1: LISTS["kel_msvc.def"][5], 5: "?a@@YGXXZ"})
        self.assertEqual(list(check_export_lists.compare_names(lists, self.compiled)),
                         ["kel_msvc.def: ?a@@YGXXZ has ordinal 5, elsewhere 1: void a()",
                          "kel_msvc.def: ?b@@YGXPAU_iobuf@@@Z has ordinal 1, elsewhere 5: "
                          "void b(FILE*)"])

    def test_a_wrong_name_is_found(self):
        lists = changed("kel_msvc.def", {1: "?a@@YGHXZ"})
        self.assertEqual(list(check_export_lists.compare_names(lists, self.compiled)),
                         ["kel_msvc.def: ?a@@YGXXZ is missing: void a()",
                          "kel_msvc.def: ?a@@YGHXZ is no function of the public headers"])

    def test_names_are_taken_as_the_linker_sees_them(self):
        self.assertEqual(compiled_names.plain('"\\01__Z1av@0"'), "_Z1av@0")
        self.assertEqual(compiled_names.plain('"\\01?a@@YGXXZ"'), "?a@@YGXXZ")
        self.assertEqual(compiled_names.plain("_Z1av"), "_Z1av")


class Library(unittest.TestCase):
    IMPORTS = [("KERNEL32.dll", "DisableThreadLibraryCalls"), ("ole32.dll", "CoCreateGuid"),
               ("libgcc_s_dw2-1.dll", "_Unwind_Resume")]

    listed = {1: "_Z1av@0", 5: "_Z1bv@0"}

    def differences(self, exports):
        return list(check_dll.compare_exports(self.listed, exports, lambda address: address == 99))

    def test_exactly_the_list_passes(self):
        self.assertEqual(self.differences({1: (["_Z1av@0"], 8), 5: (["_Z1bv@0"], 9)}), [])

    def test_an_export_at_a_reserved_ordinal_is_found(self):
        self.assertEqual(
            self.differences({1: (["_Z1av@0"], 8), 2: ([], 7), 5: (["_Z1bv@0"], 9)}),
            ["ordinal 2 exports a function without a name"])

    def test_functions_that_change_places_a_missing_one_and_a_forwarder_are_found(self):
        self.assertEqual(self.differences({1: (["_Z1bv@0"], 8)}),
                         ["ordinal 1 exports _Z1bv@0 instead of _Z1av@0",
                          "ordinal 5 exports nothing instead of _Z1bv@0"])
        self.assertEqual(self.differences({1: (["_Z1av@0"], 99), 5: (["_Z1bv@0"], 9)}),
                         ["ordinal 1 is a function of another library"])

    def test_a_run_time_library_that_is_not_shipped_is_found(self):
        imports = self.IMPORTS + [("libstdc++-6.dll", "_Znwj")]
        self.assertEqual(list(check_dll.compare_imports(imports)),
                         ["imports from libstdc++-6.dll"])

    def test_what_the_library_is_built_on_is_missed(self):
        self.assertEqual(list(check_dll.compare_imports(self.IMPORTS)), [])
        self.assertEqual(list(check_dll.compare_imports(self.IMPORTS[1:])),
                         ["does not import DisableThreadLibraryCalls from KERNEL32.dll"])
        self.assertEqual(list(check_dll.compare_imports(self.IMPORTS[:2])),
                         ["has a libgcc of its own, so no host catches what it throws"])


if __name__ == "__main__":
    unittest.main()
