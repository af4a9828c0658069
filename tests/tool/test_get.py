import json
import subprocess
import unittest

from support import (ARRAY, MEMBLOCK, Terminal, ToolTest, command, double_record, int_record,
                     posix_only, record, reference, string_record, struct_record)

TEXT = """{
    name = "Ada"
    count = 5
    wide = true
    none = NULL
    size = [ 1 2.5 0.3 ]
    "odd name" = { "a\\b" = 1 }
    id = 12345678-4F89-11D3-9A0C-0305E82C3302
    pairs = < [ "k" "l" ] [ 1 { x = 2 } ] >
    presets = ( 3F2504E0-4F89-11D3-9A0C-0305E82C3301 = { name = "first" }
                4F2504E0-4F89-11D3-9A0C-0305E82C3301 = 7 )
}
"""
CHECKED = """{ @type = 50
    @desc = { @type = 51
        level = { @type = 52
            type = 1 min = 0 max = 10 default = 5 }
        area = { @type = 52
            type = 8 default = { width = 3 } }
        mode = { @type = 52
            type = 6 } }
    mode = "slow" }
"""


class Get(ToolTest):
    def setUp(self):
        super().setUp()
        self.write("a.kel", TEXT)

    def got(self, *arguments, **options):
        return self.ok("get", *arguments, **options).out.decode()

    def test_messages_about_long_paths_have_one_line_with_one_short_path(self):
        self.write("a.json", "[" * 1000 + "1" + "]" * 1000 + " 2")
        deep = "[0]" * 999
        short = ("[0]" * 26)[:76] + " ... " + ("[0]" * 26)[-76:]
        for path, message in (("1:" + deep + "[7]",
                               f"1:{short[:-3]}[7]: the value around it has 1 element"),
                              ("1:" + deep + "[0][0]",
                               f"1:{short}: is an int and has no values inside"),
                              (deep, f"{short}: there are 2 root values; begin the path with the "
                                     "number of one, as in 1:[0]")):
            with self.subTest(message=message):
                self.fails(1, f"kel: a.json: {message}\n", "get", "a.json", path)
        result = self.kel("get", "a.json", deep + "[")
        self.assertEqual((result.status, len(result.err) < 300), (2, True))

    def test_a_value_is_printed_in_text_form(self):
        self.assertEqual(self.got("a.kel", "name"), '"Ada"\n')
        self.assertEqual(self.got("a.kel", "count"), "5\n")
        self.assertEqual(self.got("a.kel", "wide"), "true\n")
        self.assertEqual(self.got("a.kel", "none"), "NULL\n")
        self.assertEqual(self.got("a.kel", "id"), "12345678-4F89-11D3-9A0C-0305E82C3302\n")
        self.assertEqual(self.got("a.kel", "pairs[1].item"), "{\n\tx = 2\n}\n")

    def test_several_values_follow_one_another_in_the_order_of_the_paths(self):
        self.assertEqual(self.got("a.kel", "size[1]", "name", "size[0]"), '2.5\n"Ada"\n1\n')

    def test_a_double_alone_has_as_many_digits_as_it_needs(self):
        self.assertEqual(self.got("a.kel", "size[1]", "size[2]"), "2.5\n0.3\n")
        self.write("b.json", "[0.3, 1.0, 0.1234567, 1e22, -2.5, 100.0]")
        paths = [f"[{index}]" for index in range(6)]
        self.assertEqual(self.got("b.json", *paths),
                         "0.3\n1.0\n0.1234567\n1e+22\n-2.5\n100.0\n")

    def test_paths_have_the_escapes_of_json(self):
        self.write("b.json", '{"x\\ny": 1, "x\\ty": 2, "xny": 3, "a\\\\c": 4}')
        self.assertEqual(self.got("b.json", '["x\\ny"]', '["x\\ty"]', '["x\\u000ay"]',
                                  '["x\\x09y"]', '["a\\\\c"]'), "1\n2\n1\n2\n4\n")
        self.assertEqual(self.ok("find", "b.json", "--names", "x", "-l").out,
                         b'["x\\u0009y"]\n["x\\u000ay"]\nxny\n')
        for escape in "rb/":
            self.fails(2, f'kel: "["x\\{escape}y"]" is not a path: at character 5: one of the '
                          'escapes \\", \\\\, \\n, \\t, \\uHHHH and \\xHH is expected\n',
                       "get", "b.json", f'["x\\{escape}y"]')
        self.fails(2, 'kel: "["x" is not a path: at character 4: the end of the quoted name, "], '
                      'is expected\n', "get", "b.json", '["x')

    def test_what_is_cut_off_ends_with_a_whole_character(self):
        for lead in ("", "a", "aa"):
            name = lead + "\u20ac" * 100
            self.write("b.json", json.dumps({"x": "y", name: 1}))
            message = self.kel("get", "b.json", f'["{name}"].z').err
            self.assertRegex(message, "\\Akel: b.json: [^\\\\]* \\.\\.\\. [^\\\\]*: is an int and has "
                                      "no values inside\n\\Z")
            self.write("c.json", json.dumps([lead + "\u20ac" * 30]))
            found = self.ok("find", "c.json", "a\u20ac" if lead else "\u20ac").out.decode()
            self.assertRegex(found, '\\A\\[0\\]: "a*\u20ac+\\.\\.\\."\n\\Z')

    def test_very_long_names_and_empty_ones_resemble_nothing(self):
        self.write("b.json", json.dumps({"x" * 65: 1, "width": 2}))
        for path, name in (("x" * 66, "x" * 66), ("y", "y"), ('[""]', '[""]')):
            self.fails(1, f"kel: b.json: {name}: not found\n", "get", "b.json", path)

    def test_a_similar_name_is_spelled_as_in_a_path(self):
        self.write("b.json", '{"back\\\\slash": 1, "width": 2}')
        self.fails(1, 'kel: b.json: backslash: not found (did you mean ["back\\\\slash"]?)\n',
                   "get", "b.json", "backslash")
        self.fails(1, 'kel: b.json: widht: not found (did you mean "width"?)\n',
                   "get", "b.json", "widht")

    def test_paths_in_brackets_are_not_taken_apart(self):
        self.assertEqual(self.got("a.kel", '["odd name"]["a\\\\b"]'), "1\n")
        self.write("b.kel", '{ "a,b" = 1 " [x]" = 2 }')
        self.assertEqual(self.got("b.kel", '["a,b"]', '[" [x]"]'), "1\n2\n")

    def test_elements_of_managers_are_found_by_the_beginning_of_their_identity(self):
        self.assertEqual(self.got("a.kel", "presets#3F.name", "#4f2504e0"), '"first"\n7\n')
        self.write("b.kel", "( 3F2504E0-4F89-11D3-9A0C-0305E82C3301 = 1 "
                            "3F2504E1-4F89-11D3-9A0C-0305E82C3301 = 2 )")
        self.fails(1, "kel: b.kel: #3F: several values have an identity that begins so\n",
                   "get", "b.kel", "#3F", "--default", "1")
        self.write("b.kel", "{ m = " + self.read("b.kel").decode() + "}")
        self.fails(1, "kel: b.kel: m#3F: several values have an identity that begins so\n",
                   "get", "b.kel", "m#3F")

    def test_all_formats_and_stdin_are_read(self):
        self.write("b.json", '{"a": {"b": [1, "x"]}, "n": null}')
        self.assertEqual(self.got("b.json", "a.b[1]", "n"), '"x"\nNULL\n')
        self.write("c.kelb", struct_record([(b"a", int_record(7, 2))]))
        self.assertEqual(self.got("c.kelb", "a"), "7\n")
        self.assertEqual(self.got("-", "a", input=self.read("c.kelb")), "7\n")

    def test_digits_alone_are_a_name(self):
        self.write("b.json", '{"12": 1}')
        self.assertEqual(self.got("b.json", "12"), "1\n")

    def test_what_is_not_exact_is_listed_once(self):
        self.write("c.kelb", record(ARRAY, record(ARRAY, double_record(0.1234567, 3), 2) +
                                    reference(2)))
        self.assertEqual(self.kel("show", "c.kelb").err,
                         "kel: warning: c.kelb: 1 place cannot be printed exactly; kel convert "
                         "--to json is exact:\n"
                         "  [0][0]: a double that is rounded to six decimals\n")

    def test_root_values_have_numbers(self):
        self.write("b.kel", "1 { a = 2 }")
        self.assertEqual(self.got("b.kel", "2:a", "1:."), "2\n1\n")
        self.fails(1, "kel: b.kel: a: there are 2 root values; begin the path with the number of "
                      "one, as in 1:a\n", "get", "b.kel", "a", "--default", "1")
        self.fails(1, "kel: b.kel: 3:a: there are 2 root values\n", "get", "b.kel", "3:a")

    def test_a_path_that_leads_nowhere_prints_nothing(self):
        result = self.fails(1, 'kel: a.kel: nmae: not found (did you mean "name"?)\n', "get",
                            "a.kel", "count", "nmae")
        self.assertEqual(result.out, b"")
        for path, message in (("size[3]", "size[3]: size has 3 elements"),
                              ("name.x", "name: is a string and has no values inside"),
                              ("none.x", "none: null has no values inside"),
                              ("pairs[2].key", "pairs[2]: pairs has 2 pairs"),
                              ("presets#5", "presets#5: not found")):
            self.fails(1, f"kel: a.kel: {message}\n", "get", "a.kel", path)

    def test_a_text_that_is_not_a_path_is_a_usage_error(self):
        for path, at, reason in (
                ("a..b", 3, "a name is expected"),
                ("0:a", 1, "root values are numbered from 1"),
                ("[x]", 2, "a number or a quoted name is expected"),
                ("[0", 3, '"]" is expected'),
                ("[0]b", 4, '".", "[" or "#" is expected'),
                ("a#", 3, "the digits of an identity are expected"),
                ('["\\x4"]', 5, "hexadecimal digits of a byte are expected"),
                ('["\\x4', 5, "hexadecimal digits of a byte are expected"),
                ('["\\u0100"]', 5, "hexadecimal digits of a byte are expected")):
            with self.subTest(path):
                self.fails(2, f'kel: "{path}" is not a path: at character {at}: {reason}\n', "get",
                           "a.kel", path)
        self.fails(2, 'kel: "["\\" is not a path: at character 4: one of the escapes \\", \\\\, \\n, '
                      '\\t, \\uHHHH and \\xHH is expected\n', "get", "a.kel", '["\\')

    def test_a_step_that_a_value_cannot_take_is_refused_with_one_that_it_can(self):
        for path, place, refusal in (
                ("size.x", "size", "an array and has elements by number, such as [0]"),
                ("[0]", ".", "a struct and has variables by name"),
                ("pairs.x", "pairs", "an index list and has pairs by number, such as [0].key and "
                                     "[0].item"),
                ("pairs[0]", "pairs", "an index list and has pairs by number, such as [0].key and "
                                      "[0].item"),
                ("pairs[0].x", "pairs", "an index list and has pairs by number, such as [0].key "
                                        "and [0].item"),
                ("presets[0]", "presets", "a manager and has values by identity, such as "
                                          "#3F2504E0")):
            with self.subTest(path):
                self.fails(1, f"kel: a.kel: {place}: is {refusal}\n", "get", "a.kel", path)

    def test_an_identity_names_a_shared_value_once(self):
        identity = "3F2504E0-4F89-11D3-9A0C-0305E82C3301"
        outer = identity.replace("3F25", "0000") # one that is drawn could begin with 3F or 4F
        self.write("b.kel", f"{outer} = [ {identity} = [ 1 ] REF {identity} REF {identity} ]")
        self.assertEqual(self.got("b.kel", "#3f[0]"), "1\n")
        self.fails(1, "kel: b.kel: #4F: not found\n", "get", "b.kel", "#4F")

    def test_force_is_for_another_format(self):
        self.fails(2, "kel: --force needs --to\n", "get", "--force", "a.kel", "name")

    def test_default_replaces_a_missing_value(self):
        self.assertEqual(self.got("a.kel", "--default", "[ 8 ]", "count", "x.y"), "5\n[\n\t8\n]\n")
        self.assertEqual(self.got("a.kel", "--raw", "--default", "any text", "x"), "any text\n")
        self.assertEqual(self.got("a.kel", "--to", "json", "--default", "null", "x"), "null\n")
        self.assertEqual(self.got("a.kel", "--default", "8", "none"), "NULL\n")
        self.assertEqual(self.kel("get", "a.kel", "--default", "any text", "x").status, 2)

    def test_json_has_one_indented_value_or_a_line_for_each(self):
        self.assertEqual(self.got("a.kel", "--to", "json", "size"),
                         "[\n    1,\n    2.5,\n    0.30000000000000004\n]\n")
        self.assertEqual(self.got("a.kel", "--to", "json", "name", "pairs[1].item"),
                         '"Ada"\n{"x":2}\n')

    def test_binary_is_the_record_of_one_value(self):
        self.write("b.kelb", self.ok("get", "--to", "binary", "a.kel", '["odd name"]').out)
        self.assertEqual(self.ok("show", "b.kelb").out, b'{\n\t"a\\b" = 1\n}\n')
        self.fails(2, "kel: --to binary takes one PATH\n", "get", "--to", "binary", "a.kel", "name",
                   "size")

    @posix_only("needs a terminal")
    def test_a_terminal_gets_neither_binary_nor_control_characters(self):
        self.write("b.kelb", struct_record([(b"s", string_record(b"a\x1b[2Jb\tc", 2)),
                                            (b"m", record(MEMBLOCK, b"x", 3))]))
        def on_terminal(*arguments):
            terminal = Terminal()
            process = subprocess.Popen(command("get", *arguments), cwd=self.folder,
                                       stdout=terminal.writer, stderr=subprocess.DEVNULL)
            shown = terminal.shown_by(process)
            return process.wait(), shown
        self.assertEqual(on_terminal("b.kelb", "s"), (0, b'"a\\u001b[2Jb\tc"\n'))
        self.write("c.kelb", record(ARRAY, string_record(b"\x07", 2)))
        self.assertEqual(on_terminal("c.kelb", "."), (0, b'[\n\t"\\u0007"\n]\n'))
        self.assertEqual(on_terminal("--raw", "b.kelb", "s"), (0, b"a\\u001b[2Jb\tc\n"))
        self.assertEqual(on_terminal("--to", "binary", "b.kelb", "s"), (2, b""))
        self.assertEqual(on_terminal("--raw", "b.kelb", "m"), (1, b""))

    def test_shared_values_and_values_in_cycles_are_reached(self):
        self.write("b.kelb", struct_record([
            (b"a", struct_record([(b"up", reference(1)), (b"n", int_record(5, 3))], 2))]))
        self.assertEqual(self.got("b.kelb", "a.up.a.up.a.n"), "5\n")
        self.fails(1, "kel: b.kelb: a: up.a: Cannot write a value that contains itself.\n", "get",
                   "b.kelb", "a")

    def test_deep_values_are_reached_on_a_small_stack(self):
        depth = 5000
        self.write("b.json", '{"a":' * depth + "[1]" + "}" * depth)
        path = ".".join(["a"] * depth)
        self.assertEqual(self.got("b.json", path + "[0]", small_stack=True), "1\n")
        self.assertEqual(self.got("b.json", path, small_stack=True), "[\n\t1\n]\n")

    def test_losses_of_the_json_are_a_warning(self):
        self.write("b.json", "[null, 1]")
        result = self.kel("get", "b.json", "[0]")
        self.assertEqual((result.status, result.out, result.err),
                         (0, b"1\n", "kel: warning: b.json: 1 place cannot be converted from json "
                                     "to values:\n  [0]: null in an array\n"))


class Exactness(ToolTest):
    """A value that text cannot hold is never printed as another one without a message."""

    def setUp(self):
        super().setUp()
        self.write("a.kelb", struct_record([
            (b"d", double_record(0.1234567, 2)), (b"m", record(MEMBLOCK, b"\0\xFFabc", 3)),
            (b"q", string_record(b'say "x"', 4))]))

    def test_what_is_printed_otherwise_is_listed(self):
        result = self.kel("get", "a.kelb", ".")
        self.assertEqual(result.status, 0)
        self.assertRegex(result.out, rb'\A\{\n\td = 0\.123457\n\tm = void\[5\] : 0x[0-9a-f]{8}\n'
                                     rb'\tq = "say "x""\n\}\n\Z')
        self.assertEqual(result.err, "kel: warning: a.kelb: .: 2 places cannot be printed exactly; "
                                     "--to json is exact:\n"
                                     "  d: a double that is rounded to six decimals\n"
                                     "  m: a memory block, shown by its size\n")

    def test_alone_a_string_and_a_double_are_exact(self):
        self.assertEqual(self.ok("get", "a.kelb", "q", "d").out, b'"say "x""\n0.1234567\n')

    def test_text_is_refused_where_it_could_not_be_read_back(self):
        self.fails(1, "kel: a.kelb: .: 3 places cannot be converted from binary to text:\n"
                      "  d: a double that six decimals cannot hold\n  m: a memory block\n"
                      "  q: a string with a double quote\n"
                      "nothing was written; use --force to convert the rest\n",
                   "get", "--to", "text", "a.kelb", ".")
        result = self.kel("get", "--to", "text", "--force", "a.kelb", "q")
        self.assertEqual((result.status, result.out), (0, b"\"say 'x'\"\n"))

    def test_json_is_exact(self):
        self.assertEqual(json.loads(self.ok("get", "--to", "json", "a.kelb", ".").out),
                         {"d": 0.1234567, "m": {"$memblock": "AP9hYmM="}, "q": 'say "x"'})

    def test_whole_numbers_in_doubles_are_printed_with_all_digits(self):
        self.write("b.json", "[3e9, 1234567890123.0, 9007199254740992.0, 1e17, 2.0, -3e9]")
        paths = [f"[{index}]" for index in range(6)]
        large = "3000000000\n1234567890123\n9007199254740992\n1e+17\n"
        self.assertEqual(self.ok("get", "b.json", *paths).out.decode(), large +
                         "2.0\n-3000000000\n")
        self.assertEqual(self.ok("get", "--raw", "b.json", *paths).out.decode(),
                         large + "2\n-3000000000\n")
        self.assertEqual(self.ok("get", "--to", "json", "b.json", "[4]").out, b"2.0\n")

    def test_raw_values_have_no_quotes(self):
        self.assertEqual(self.ok("get", "--raw", "a.kelb", "q", "d").out, b'say "x"\n0.1234567\n')
        self.write("b.json", '[true, "\\u00e4\\n", -5]')
        self.assertEqual(self.ok("get", "--raw", "b.json", "[0]", "[1]", "[2]").out,
                         b"true\n\xc3\xa4\n\n-5\n")
        self.write("c.kel", "{ a = NULL }")
        self.assertEqual(self.ok("get", "--raw", "c.kel", "a").out, b"null\n")

    def test_guids_are_raw_and_containers_are_not(self):
        self.write("b.kel", "{ guid = 3F2504E0-4F89-11D3-9A0C-0305E82C3301\n"
                            "a = [ ] m = ( ) l = < [ ] [ ] > s = { } c = " + CHECKED + " }")
        self.assertEqual(self.ok("get", "--raw", "b.kel", "guid").out,
                         b"3F2504E0-4F89-11D3-9A0C-0305E82C3301\n")
        for path, kind in (("a", "an array"), ("m", "a manager"), ("l", "an index list"),
                           ("s", "a struct"), ("c", "a checked struct"),
                           ("c.@desc", "a struct descriptor"),
                           ("c.@desc.mode", "a variable descriptor")):
            self.fails(1, f"kel: b.kel: {path}: is {kind}, which has no raw form; use --to json or "
                          "--to text\n", "get", "--raw", "b.kel", path)

    def test_the_raw_form_of_a_memory_block_is_its_bytes(self):
        self.assertEqual(self.ok("get", "--raw", "a.kelb", "m").out, b"\0\xFFabc")

    def test_raw_refuses_what_is_not_one_line(self):
        self.fails(1, "kel: a.kelb: .: is a struct, which has no raw form; use --to json or --to "
                      "text\n", "get", "--raw", "a.kelb", ".")
        self.fails(1, "kel: a.kelb: m: is a memory block, which has no raw form; use --to json or "
                      "--to text\n", "get", "--raw", "a.kelb", "m", "q")
        self.fails(2, "kel: --raw cannot be combined with --to\n", "get", "--raw", "--to", "json",
                   "a.kelb", "q")


class Defaults(ToolTest):
    """A variable that is missing in a checked struct has the default of its descriptor."""

    def setUp(self):
        super().setUp()
        self.write("a.kel", CHECKED)

    def test_the_default_is_printed_with_a_note(self):
        result = self.kel("get", "a.kel", "level")
        self.assertEqual((result.status, result.out, result.err),
                         (0, b"5\n", "kel: note: a.kel: level: missing; this is the default of its "
                                     "descriptor\n"))

    def test_paths_lead_into_a_default(self):
        result = self.kel("get", "--raw", "a.kel", "area.width")
        self.assertEqual((result.status, result.out, result.err),
                         (0, b"3\n", "kel: note: a.kel: area.width: missing; this is the default "
                                     "of its descriptor\n"))

    def test_a_default_of_the_user_does_not_replace_it(self):
        self.assertEqual(self.kel("get", "a.kel", "level", "--default", "9").out, b"5\n")

    def test_own_values_come_first(self):
        self.assertEqual(self.ok("get", "a.kel", "mode").out, b'"slow"\n')

    def test_without_a_default_the_variable_is_missing(self):
        self.fails(1, "kel: a.kel: lewel: not found\n", "get", "a.kel", "lewel")


if __name__ == "__main__":
    unittest.main()
