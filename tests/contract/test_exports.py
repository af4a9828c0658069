#!/usr/bin/env python3
"""The checks of exported functions find the mistakes that they are meant to find."""
import unittest

import check_dll
import check_exports
import check_library
import check_microsoft_dll
import clang
import exports
import headers

TABLE = """# head

  1 | void a() | ?a@@YGXXZ | _Z1av@0

  5 | void b(FILE* file) | ?b@@YGXPAU_iobuf@@@Z | _Z1bP6_iobuf@4
"""
ROWS = exports.parse(TABLE)[0]
DEF = "LIBRARY KEL.dll\nEXPORTS\n"
LISTS = {"kel.def": DEF + "    _Z1av@0 @1\n    _Z1bP6_iobuf@4 @5\n",
         "kel64.def": DEF + "    _Z1av @1\n    _Z1bP6_iobuf @5\n",
         "kel_msvc.def": DEF + "    ?a@@YGXXZ @1\n    ?b@@YGXPAU_iobuf@@@Z @5\n",
         "kel.map": "{\n  global:\n    _Z1av;\n    _Z1bP8_IO_FILE;\n  local:\n    *;\n};\n"}


class Table(unittest.TestCase):
    def test_rows_are_read_and_written_alike(self):
        rows, bad = exports.parse(TABLE)
        self.assertEqual(bad, [])
        self.assertEqual([row.ordinal for row in rows], [1, 5])
        self.assertIn(exports.line_of(rows[1]) + "\n", TABLE)

    def test_a_strange_line_an_ordinal_used_twice_and_an_empty_table_are_found(self):
        _, bad = exports.parse(TABLE + "  5 | void c()\nnonsense\n")
        self.assertEqual(bad, ["ordinal 5 does not ascend", "not a row of exports.txt: nonsense"])
        self.assertEqual(exports.parse("# head\n"), ([], ["exports.txt holds no functions"]))

    def test_functions_of_the_headers_are_read_without_macros(self):
        self.assertEqual(
            headers.functions_of("/// KEL_API old KEL_CALL a();\nKEL_API KEL *KEL_CALL a(int x);\n"),
            ["KEL* a(int x)"])

    def test_an_overload_that_only_the_headers_know_is_found(self):
        declared = ["void a()", "void a(int x)", "void b(FILE* file)"]
        self.assertEqual(list(check_exports.compare_declarations(ROWS, declared)),
                         ["void a(int x): 0 in exports.txt, 1 in the headers"])

    def test_a_page_with_another_ordinal_is_found(self):
        self.assertEqual(
            list(check_exports.compare_page(ROWS, {1: "void a()", 6: "void b(FILE* file)"})),
            ["ordinal 5: void b(FILE* file) in exports.txt, nothing on the page",
             "ordinal 6: nothing in exports.txt, void b(FILE* file) on the page"])


class Lists(unittest.TestCase):
    def differing(self, name, old, new):
        lists = {**LISTS, name: LISTS[name].replace(old, new)}
        return [line.split()[0] for line in check_exports.compare_lists(ROWS, lists)]

    def test_lists_that_hold_the_table_pass(self):
        self.assertEqual(self.differing("kel.def", "", ""), [])

    def test_a_wrong_ordinal_a_wrong_name_and_a_wrong_head_are_found(self):
        self.assertEqual(self.differing("kel.def", "@5", "@6"), ["kel.def"])
        self.assertEqual(self.differing("kel.def", "EXPORTS", ""), ["kel.def"])
        self.assertEqual(self.differing("kel64.def", "_Z1av ", "_Z1av@0 "), ["kel64.def"])
        self.assertEqual(self.differing("kel_msvc.def", "?a@@YGXXZ", "?a@@YGHXZ"), ["kel_msvc.def"])
        self.assertEqual(self.differing("kel.map", "_Z1av", "_Z1ai"), ["kel.map"])


class Names(unittest.TestCase):
    def differences(self, target, **names):
        compiled = {"void a()": names["a"], "void b(FILE* file)": names["b"]}
        return list(check_exports.compare_names(ROWS, target, compiled))

    def test_names_of_the_compilers_pass(self):
        self.assertEqual(self.differences("x86_64-linux-gnu", a="_Z1av", b="_Z1bP8_IO_FILE"), [])
        self.assertEqual(self.differences("i686-w64-mingw32", a="_Z1av@0", b="_Z1bP6_iobuf@4"), [])
        self.assertEqual(self.differences("x86_64-w64-mingw32", a="_Z1av", b="_Z1bP6_iobuf"), [])
        self.assertEqual(self.differences("i686-pc-windows-msvc",
                                          a="?a@@YGXXZ", b="?b@@YGXPAU_iobuf@@@Z"), [])

    def test_a_wrong_name_is_found(self):
        self.assertEqual(
            self.differences("i686-pc-windows-msvc", a="?a@@YGHXZ", b="?b@@YGXPAU_iobuf@@@Z"),
            ["ordinal 1: ?a@@YGXXZ in exports.txt, ?a@@YGHXZ for i686-pc-windows-msvc: void a()"])

    def test_names_are_taken_as_the_linker_sees_them(self):
        self.assertEqual(clang.symbol('"\\01__Z1av@0"'), "_Z1av@0")
        self.assertEqual(clang.symbol('"\\01?a@@YGXXZ"'), "?a@@YGXXZ")
        self.assertEqual(clang.symbol("_Z1av"), "_Z1av")


class LinuxLibrary(unittest.TestCase):
    def test_missing_and_surplus_exports_are_found(self):
        symbols = check_library.parse_nm("0000000000001139 T _Z1bv\n0000000000002000 V _ZTI1A\n")
        self.assertEqual(list(check_library.compare_symbols(["_Z1av", "_Z1bv"], symbols)),
                         ["listed but not exported: _Z1av", "exported but not listed: V _ZTI1A"])

    def test_a_listed_symbol_that_is_weak_is_found(self):
        self.assertEqual(list(check_library.compare_symbols(["_Z1av"], {"_Z1av": "W"})),
                         ["exported as W instead of a function: _Z1av"])


class WindowsLibrary(unittest.TestCase):
    LIBGCC = "libgcc_s_dw2-1.dll"
    IMPORTS = [("KERNEL32.dll", "DisableThreadLibraryCalls"), ("ole32.dll", "CoCreateGuid"),
               (LIBGCC, "_Unwind_Resume")]

    listed = {1: "_Z1av@0", 5: "_Z1bv@0"}

    def differences(self, exported):
        return list(check_dll.compare_exports(self.listed, exported))

    def test_exactly_the_list_passes(self):
        self.assertEqual(self.differences({1: (["_Z1av@0"], False), 5: (["_Z1bv@0"], False)}), [])

    def test_an_export_at_a_reserved_ordinal_is_found(self):
        self.assertEqual(
            self.differences({1: (["_Z1av@0"], False), 2: ([], False), 5: (["_Z1bv@0"], False)}),
            ["ordinal 2 exports a function without a name"])

    def test_functions_that_change_places_a_missing_one_and_a_forwarder_are_found(self):
        self.assertEqual(self.differences({1: (["_Z1bv@0"], False)}),
                         ["ordinal 1 exports _Z1bv@0 instead of _Z1av@0",
                          "ordinal 5 exports nothing instead of _Z1bv@0"])
        self.assertEqual(self.differences({1: (["_Z1av@0"], True), 5: (["_Z1bv@0"], False)}),
                         ["ordinal 1 is a function of another library"])

    def test_a_run_time_library_that_is_not_shipped_is_found(self):
        imports = self.IMPORTS + [("libstdc++-6.dll", "_Znwj")]
        self.assertEqual(list(check_dll.compare_imports(self.LIBGCC, imports)),
                         ["imports from libstdc++-6.dll"])

    def test_what_the_library_is_built_on_is_missed(self):
        self.assertEqual(list(check_dll.compare_imports(self.LIBGCC, self.IMPORTS)), [])
        self.assertEqual(list(check_dll.compare_imports(self.LIBGCC, self.IMPORTS[1:])),
                         ["does not import DisableThreadLibraryCalls from KERNEL32.dll"])
        self.assertEqual(list(check_dll.compare_imports(self.LIBGCC, self.IMPORTS[:2])),
                         ["has a libgcc of its own, so no host catches what it throws"])

    def test_the_libgcc_of_the_other_width_is_found(self):
        self.assertEqual(list(check_dll.compare_imports("libgcc_s_seh-1.dll", self.IMPORTS)),
                         ["imports from libgcc_s_dw2-1.dll",
                          "has a libgcc of its own, so no host catches what it throws"])


class MicrosoftLibrary(unittest.TestCase):
    IMPORTS = [("KERNEL32.dll", "DisableThreadLibraryCalls"), ("ole32.dll", "CoCreateGuid"),
               ("VCRUNTIME140.dll", "_CxxThrowException"), ("VCRUNTIME140.dll", "__CxxFrameHandler3"),
               ("api-ms-win-crt-heap-l1-1-0.dll", "malloc")]

    def differences(self, imports):
        return list(check_microsoft_dll.compare_imports(imports))

    def test_the_system_and_the_run_time_pass(self):
        self.assertEqual(self.differences(self.IMPORTS), [])
        self.assertEqual(self.differences(self.IMPORTS + [("ucrtbase.dll", "free")]), [])

    def test_a_library_that_hosts_do_not_have_is_found(self):
        self.assertEqual(self.differences(self.IMPORTS + [("libc++.dll", "abort")]),
                         ["imports from libc++.dll"])

    def test_a_run_time_of_its_own_is_found(self):
        self.assertEqual(self.differences([one for one in self.IMPORTS if one[0] != "VCRUNTIME140.dll"]),
                         ["does not import _CxxThrowException from vcruntime140.dll",
                          "does not import __CxxFrameHandler3 from vcruntime140.dll"])


if __name__ == "__main__":
    unittest.main()
