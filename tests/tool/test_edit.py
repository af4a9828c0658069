import os
import stat
import unittest

from support import (ARRAY, MEMBLOCK, ToolTest, int_record, posix_only, record, reference,
                     struct_record)

CHECKED = """{ @type = 50
    @desc = { @type = 51
        level = { @type = 52
            type = 1 min = 0 max = 10 default = 5 }
        mode = { @type = 52
            type = 6 enum = [ "slow" "fast" ] } }
    level = 3 mode = "slow" free = true }
"""
LIST = '< [ "k" "l" ] [ 1 2 ] >'
FIRST = "3F2504E0-4F89-11D3-9A0C-0305E82C3301"
SECOND = "4F2504E0-4F89-11D3-9A0C-0305E82C3301"
MANAGER = f"( {FIRST} = 1 {SECOND} = [ 2 ] )"
NOT_WRITTEN = "nothing was written; use --force to write the rest\n"


class Edit(ToolTest):
    """Changes files in place and reads them again."""

    def edited(self, content, command, *arguments, name="a.kel"):
        """Returns what a command makes of a file, as text on one line."""
        self.write(name, content)
        self.ok(command, "-i", name, *arguments)
        return " ".join(self.ok("show", name).out.decode().split())

    def refused(self, message, content, command, *arguments, name="a.kel", status=1):
        """Runs a command that must fail and leave the file as it is."""
        self.write(name, content)
        self.fails(status, "kel: " + message + "\n", command, "-i", name, *arguments)
        self.assertEqual(self.read(name), content if isinstance(content, bytes)
                         else content.encode())
        self.assertEqual(self.files(), [name])


class Set(Edit):
    def test_a_value_is_replaced(self):
        self.assertEqual(self.edited("{ a = 1 }", "set", "a", "2"), "{ a = 2 }")
        self.assertEqual(self.edited("{ a = { b = [ 1 2 ] } }", "set", "a.b[1]", '"x"'),
                         '{ a = { b = [ 1 "x" ] } }')
        self.assertEqual(self.edited("1 2", "set", "2:.", "3"), "1 3")

    def test_a_value_of_another_kind_replaces_it_too(self):
        for value, text in (("5.5", "5.500000"), ("-7", "-7"), ("true", "true"), ("NULL", "NULL"),
                            ('"x y"', '"x y"'), ("[ 1 [ ] ]", "[ 1 [ ] ]"), (FIRST, FIRST),
                            ("{ x = 1 }", "{ x = 1 }"), ("( )", "( )")):
            self.assertEqual(self.edited("{ a = 1 }", "set", "a", value), f"{{ a = {text} }}")

    def test_the_last_step_is_created(self):
        self.assertEqual(self.edited("{ a = { } }", "set", "a.b", "1"), "{ a = { b = 1 } }")
        self.assertEqual(self.edited("{ }", "set", '["x y"]', "NULL"), '{ "x y" = NULL }')
        self.assertEqual(self.edited("[ 1 ]", "set", "[1]", "2"), "[ 1 2 ]")
        self.assertEqual(self.edited("1", "set", "2:.", "[ 2 ]"), "1 [ 2 ]")

    def test_an_element_is_added_to_a_manager_that_is_the_root_value(self):
        second = "3F2504E0-4F89-11D3-9A0C-0305E82C3399"
        manager = f"( {FIRST} = 1 )"
        self.assertEqual(self.edited(manager, "set", "#" + second, "2"),
                         f"( {FIRST} = 1 {second} = 2 )")
        self.assertEqual(self.edited("5 " + manager, "set", "2:#" + second, "2"),
                         f"5 ( {FIRST} = 1 {second} = 2 )")
        self.refused(f"a.kel: #{second}: not found", "5 " + manager, "set", "#" + second, "2")
        self.refused("a.kel: #77777777-7777: not found", manager, "set",
                     "#77777777-7777", "2")
        self.refused(f"a.kel: #{second}: not found", manager, "rm", "#" + second)
        self.refused(f"a.kel: #{second}: not found", manager, "set", f"#{second}.x", "2")

    def test_no_other_step_is_created(self):
        self.refused("a.kel: a: not found", "{ }", "set", "a.b", "1")
        self.refused("a.kel: [2]: the root value has 1 element", "[ 1 ]", "set", "[2]", "1")
        self.refused("a.kel: 3:.: there is 1 root value", "1", "set", "3:.", "1")

    def test_a_string_is_taken_as_it_is(self):
        self.assertEqual(self.edited("{ a = 1 }", "set", "--string", "a", "x = {"),
                         '{ a = "x = {" }')
        self.assertEqual(self.edited("{ a = 1 }", "set", "--string", "a", ""), '{ a = "" }')
        self.assertEqual(self.edited("{ a = 1 }", "set", "--string", "a", "[x,y]"),
                         '{ a = "[x,y]" }')

    def test_the_way_to_write_strings_is_shown_where_one_may_be_meant(self):
        advice = "a string has double quotes inside the argument, as in '\"dark\"'; "
        self.write("a.kel", "{ a = 1 }")
        for value in ("dark", "two words", "5x", "", "'x'"):
            result = self.kel("set", "a.kel", "a", value)
            self.assertTrue(result.err.endswith(
                "\n" + advice + "--string takes the argument as it is\n"), result.err)
            self.assertNotIn("hint", result.err)
            result = self.kel("get", "a.kel", "--default", value, "b")
            self.assertTrue(result.err.endswith(
                "\n" + advice + "--raw prints the argument as it is\n"), result.err)
        for value in ("[ 1", '"x', "{ a = dark }", "REF 1"):
            self.assertNotIn(advice, self.kel("set", "a.kel", "a", value).err)

    def test_json_is_a_value_too(self):
        self.assertEqual(self.edited("{ a = 1 }", "set", "--json", "a", '{"b": [1, {"c": null}]}'),
                         "{ a = { b = [ 1 { c = NULL } ] } }")
        self.fails(2, "kel: VALUE: values cannot hold all of this JSON:\n"
                      "  [0]: null in an array\n", "set", "--json", "a.kel", "a", "[null]")
        self.fails(2, "kel: --string cannot be combined with --json\n", "set", "--json", "--string",
                   "a.kel", "a", "1")

    def test_a_value_that_cannot_be_read_is_a_usage_error_with_advice(self):
        self.write("a.kel", "{ a = 1 }")
        result = self.kel("set", "a.kel", "a", "dark")
        self.assertEqual((result.status, result.out), (2, b""))
        self.assertRegex(result.err, r"\Akel: VALUE:1(.|\n)*--string takes the argument as it is\n")
        self.fails(2, "kel: VALUE has 2 values instead of one\n", "set", "a.kel", "a", "1 2")

    def test_whole_numbers_that_do_not_fit_are_refused(self):
        for number in ("2147483648", "-2147483649", "99999999999999999999", "0x100000000",
                       "2147483648.5"):
            self.write("a.kel", "{ a = 1 }")
            self.fails(2, f"kel: VALUE: {number} does not fit in 32 bits; use --json for a "
                          "Double\n", "set", "a.kel", "a", number)
        self.assertEqual(self.edited("{ a = 1 }", "set", "a", "-2147483648"),
                         "{ a = -2147483648 }")
        self.assertEqual(self.edited("{ a = 1 }", "set", "a", "0xFFFFFFFF"), "{ a = -1 }")

    def test_a_number_with_a_point_is_the_nearest_double_outside_text(self):
        self.write("a.json", '{"a": 1}')
        self.ok("set", "-i", "a.json", "a", "0.3")
        self.assertEqual(self.json("a.json"), {"a": 0.3})
        self.assertEqual(self.edited("{ a = 1 }", "set", "a", "0.3"), "{ a = 0.300000 }")

    def test_a_number_with_a_point_that_json_spells_otherwise_is_one_too(self):
        for number, value in (("1.", 1.0), (".5", 0.5), ("00.5", 0.5), ("-0.5", -0.5),
                              ("10.5", 10.5)):
            self.write("a.json", "{}")
            self.ok("set", "-i", "a.json", "a", number)
            self.assertEqual(self.json("a.json"), {"a": value})
        for text in ("1.2.3", "1.5x"):
            self.assertEqual(self.kel("set", "a.json", "a", text).status, 2)

    def test_halves_of_pairs_and_pairs_are_set(self):
        self.assertEqual(self.edited(LIST, "set", "[0].item", "7"),
                         '< /* keys: */ [ "k" "l" ] /* values: */ [ 7 2 ] >')
        self.assertEqual(self.edited(LIST, "set", "[1].key", '"z"'),
                         '< /* keys: */ [ "k" "z" ] /* values: */ [ 1 2 ] >')
        self.assertEqual(self.edited(LIST, "set", "[1]", '[ "z" 7 ]'),
                         '< /* keys: */ [ "k" "z" ] /* values: */ [ 1 7 ] >')
        self.assertEqual(self.edited(LIST, "set", "[2]", '[ "z" 7 ]'),
                         '< /* keys: */ [ "k" "l" "z" ] /* values: */ [ 1 2 7 ] >')
        self.refused("a.kel: [2]: a pair is set by an array of its key and its item", LIST, "set",
                     "[2]", "7")
        self.refused("a.kel: [3]: the list has 2 pairs", LIST, "set", "[3]", '[ "z" 7 ]')
        self.refused("a.kel: [2]: the root value has 2 pairs", LIST, "set", "[2].item", "7")

    def test_an_element_of_a_manager_keeps_its_identity(self):
        self.assertEqual(self.edited(MANAGER, "set", "#3F2504E0", '"x"'),
                         f'( {FIRST} = "x" {SECOND} = [ 2 ] )')
        self.assertEqual(self.edited(MANAGER, "set", "#4F2504E0[0]", "5"),
                         f"( {FIRST} = 1 {SECOND} = [ 5 ] )")

    def test_a_pair_is_set_by_an_array_of_two(self):
        for pair in ("5", "[ 5 ]", "[ 5 6 7 ]"):
            self.refused("a.kel: [1]: a pair is set by an array of its key and its item",
                         "< [ 1 ] [ 2 ] >", "set", "[1]", pair)

    def test_a_memory_block_is_not_put_in_a_manager(self):
        self.refused(f"a.kel: #{FIRST}: a memory block cannot be put in a manager", MANAGER, "set",
                     "--json", f"#{FIRST}", '{"$memblock": "AAAA"}')

    def test_an_element_is_added_to_a_manager_by_its_whole_identity(self):
        self.assertEqual(self.edited("{ m = ( ) }", "set", "m#" + FIRST, "{ n = NULL }"),
                         f"{{ m = ( {FIRST} = {{ n = NULL }} ) }}")
        self.refused("a.kel: m#3F: not found", "{ m = ( ) }", "set", "m#3F", "1")

    def test_null_is_refused_outside_structs(self):
        self.refused("a.kel: [0]: an array cannot hold null", "[ 1 ]", "set", "[0]", "NULL")
        self.refused("a.kel: [0].item: an index list cannot hold null", LIST, "set", "[0].item",
                     "NULL")
        self.refused("a.kel: #3F2504E0: a manager cannot hold null", MANAGER, "set", "#3F2504E0", "NULL")

    def test_names_that_no_struct_takes_are_refused(self):
        self.refused('a.kel: ["a\\"b"]: the name of a variable cannot contain a double quote or a '
                     "NUL", "{ }", "set", '["a\\"b"]', "1")
        self.refused('a.kel: [""]: the name of a variable cannot be empty', "{ }", "set", '[""]',
                     "1")


class CheckedStructs(Edit):
    def test_what_the_descriptor_allows_is_stored(self):
        self.assertIn(' level = 10 mode = "slow" }', self.edited(CHECKED, "set", "level", "10"))
        self.assertIn(' mode = "fast" }', self.edited(CHECKED, "set", "mode", '"fast"'))
        self.assertIn(" level = NULL ", self.edited(CHECKED, "set", "level", "NULL"))
        for name in ("free", "more"): # not described, which -q passes over
            self.assertIn(f" {name} = [ 1 ] ", self.edited(CHECKED, "set", "-q", name, "[ 1 ]"))

    def test_what_it_does_not_allow_is_refused_with_what_it_allows(self):
        self.refused("a.kel: level: 11 is not allowed (allowed: 0 to 10)", CHECKED, "set", "level",
                     "11")
        self.refused('a.kel: mode: "fest" is not allowed (allowed: "slow", "fast")', CHECKED, "set",
                     "mode", '"fest"')
        self.refused('a.kel: level: 3 is not allowed (allowed: "slow", "fast")',
                     CHECKED.replace(' mode = "slow" f', " f"), "mv", "level", "mode")

    def test_reserved_names_are_refused(self):
        self.refused('a.kel: @x: names that begin with "@" are reserved in a checked struct',
                     CHECKED, "set", '["@x"]', "1")
        self.refused("a.kel: @desc: 1 is not a struct descriptor", CHECKED, "set", "@desc", "1")
        self.refused("a.kel: @desc.x: 1 is not a variable descriptor", CHECKED, "set", "@desc.x",
                     "1")

    def test_a_new_variable_needs_a_value(self):
        self.refused("a.kel: x: a checked struct takes no new variable without a value", CHECKED,
                     "set", "x", "NULL")

    def test_the_descriptor_itself_can_be_changed(self):
        changed = self.edited(CHECKED, "set", "@desc.level.max", "20")
        self.assertIn(" max = 20 ", changed)
        self.ok("set", "-i", "a.kel", "level", "20")
        self.assertNotIn("@desc", self.edited(CHECKED, "rm", "@desc"))


    def test_a_descriptor_holds_descriptors_alone(self):
        self.refused("a.kel: @desc: 1 is not a struct descriptor", CHECKED, "set", "@desc", "1")
        for name in ("level", "new"):
            self.refused(f"a.kel: @desc.{name}: 1 is not a variable descriptor", CHECKED, "set",
                         f"@desc.{name}", "1")

    def test_a_descriptor_is_replaced_by_another_one(self):
        self.assertIn("mode = { @type = 52 type = 7 }", self.edited(
            CHECKED, "set", "@desc.mode", "{ @type = 52\ntype = 7 }"))
        self.assertNotIn("mode = {", self.edited(CHECKED, "set", "@desc", "{ @type = 51\n}"))
        self.refused("a.kel: @desc: null is not a struct descriptor", CHECKED, "set", "@desc",
                     "NULL")
        self.refused("a.kel: @desc.mode: null is not a variable descriptor", CHECKED, "set",
                     "@desc.mode", "NULL")

    def test_without_its_descriptor_a_struct_takes_every_value(self):
        content = "{ @type = 50\n a = 1 }"
        self.assertEqual(self.edited(content, "set", "a", '"x"'), '{ @type = 50 a = "x" }')


class Remove(Edit):
    def test_values_of_every_container_are_removed(self):
        self.assertEqual(self.edited("{ a = 1 b = NULL c = 2 }", "rm", "a", "b"), "{ c = 2 }")
        self.assertEqual(self.edited("[ 1 2 3 ]", "rm", "[1]"), "[ 1 3 ]")
        self.assertEqual(self.edited(LIST, "rm", "[0]"),
                         '< /* keys: */ [ "l" ] /* values: */ [ 2 ] >')
        self.assertEqual(self.edited(MANAGER, "rm", "#4F2504E0"), f"( {FIRST} = 1 )")
        self.assertEqual(self.edited("1 2 3", "rm", "1:.", "3:"), "2")

    def test_all_paths_mean_the_file_as_it_is(self):
        self.assertEqual(self.edited("[ 0 1 2 3 ]", "rm", "[0]", "[2]", "[1]", "[2]"), "[ 3 ]")
        self.assertEqual(self.edited("{ a = { b = 1 } c = 2 }", "rm", "a", "a.b"), "{ c = 2 }")

    def test_a_path_that_leads_nowhere_removes_nothing(self):
        self.refused('a.kel: nmae: not found (did you mean "name"?)', "{ a = 1 name = 2 }", "rm",
                     "a", "nmae")
        self.refused("a.kel: [2]: the root value has 2 pairs", LIST, "rm", "[2]")

    def test_half_of_a_pair_and_the_last_root_value_stay(self):
        self.refused("a.kel: [0].key: is one half of a pair; [0] is the pair", LIST, "rm",
                     "[0].key")
        self.refused("a.kel: .: a file holds at least one root value", "1", "rm", ".")
        self.refused("a.kel: 1:.: a file holds at least one root value", "1 2", "rm", "2:.", "1:.")


class Rename(Edit):
    def test_a_variable_keeps_its_value(self):
        self.assertEqual(self.edited("{ a = { b = 1 } }", "mv", "a.b", "c d"),
                         '{ a = { "c d" = 1 } }')
        self.assertEqual(self.edited("{ a = NULL }", "mv", "a", "[b]"), '{ "[b]" = NULL }')
        self.assertEqual(self.edited("{ a = 1 }", "mv", "a", "a"), "{ a = 1 }")

    def test_an_existing_name_is_replaced_by_force_only(self):
        self.refused('a.kel: a: "b" exists already; use --force to replace it',
                     "{ a = 1 b = 2 }", "mv", "a", "b")
        self.assertEqual(self.edited("{ a = 1 b = 2 }", "mv", "--force", "a", "b"), "{ b = 1 }")

    def test_only_variables_have_names(self):
        self.refused("a.kel: [0]: is not a variable, and only variables have names", "[ 1 ]", "mv",
                     "[0]", "a")
        self.refused("a.kel: .: is not a variable, and only variables have names", "1", "mv", ".",
                     "a")
        self.refused("a.kel: a: the name of a variable cannot be empty", "{ a = 1 }", "mv", "a", "")


class Output(Edit):
    def test_without_i_the_document_goes_to_stdout_in_its_format(self):
        self.write("a.kel", "{ a = 1 }")
        self.assertEqual(self.ok("set", "a.kel", "a", "2").out, b"{\n\ta = 2\n}\n")
        self.write("a.json", '{"a": 1}')
        self.assertEqual(self.ok("set", "a.json", "a", "2").out, b'{\n    "a": 2\n}\n')
        self.write("a.kelb", struct_record([(b"a", int_record(1, 2))]))
        self.write("b.kelb", self.ok("set", "a.kelb", "a", "2").out)
        self.assertEqual(self.ok("get", "b.kelb", "a").out, b"2\n")
        self.assertEqual(self.read("a.kel"), b"{ a = 1 }")

    def test_to_chooses_another_format(self):
        self.write("a.kelb", struct_record([(b"a", int_record(1, 2))]))
        self.assertEqual(self.ok("rm", "--to", "json", "a.kelb", "a").out, b"{}\n")
        self.fails(2, "kel: --to cannot be combined with -i, which keeps the format\n", "rm", "-i",
                   "--to", "json", "a.kelb", "a")

    def test_stdin_is_edited_to_stdout(self):
        self.assertEqual(self.ok("mv", "-", "a", "b", input='{"a": 1}').out, b'{\n    "b": 1\n}\n')
        self.fails(2, "kel: -: -i needs a regular file\n", "mv", "-i", "-", "a", "b")

    @posix_only("has no modes")
    def test_the_file_keeps_its_mode_and_a_link_stays(self):
        self.write("a.kel", "{ a = 1 }")
        os.chmod(self.path("a.kel"), 0o640)
        os.symlink("a.kel", self.path("link.kel"))
        self.ok("set", "-i", "link.kel", "a", "2")
        self.assertEqual(stat.S_IMODE(os.stat(self.path("a.kel")).st_mode), 0o640)
        self.assertTrue(os.path.islink(self.path("link.kel")))
        self.assertEqual(self.read("a.kel"), b"{\n\ta = 2\n}\n")

    def test_binary_keeps_identities_and_memory_blocks(self):
        block = record(MEMBLOCK, b"abc", 5)
        before = struct_record([(b"a", int_record(1, 2)), (b"m", block)], 9)
        after = struct_record([(b"m", block)], 9)
        self.write("a.kelb", before)
        self.ok("rm", "-i", "a.kelb", "a")
        self.assertEqual(self.read("a.kelb"), after)

    def test_a_malformed_file_is_not_edited(self):
        self.write("a.kel", "{ a = }")
        self.assertEqual(self.kel("set", "-i", "a.kel", "a", "1").status, 3)
        self.assertEqual(self.read("a.kel"), b"{ a = }")


class Losses(Edit):
    def lost(self, line, what):
        return (f"a.kel:{line}: {what} would be lost, because only values are written\n"
                "nothing was written; use --force to write the values alone")

    def test_text_with_more_than_values_is_not_edited_in_place(self):
        for line, what, text in (
                (2, "a comment", "{ a = 1\n// x\n}"),
                (1, "a comment", "/* x */ { a = 1 }"),
                (3, "a definition", '{ b = "// #\n" a = 1 }\n#define X 1'),
                (1, "an identity", f"{FIRST} = {{ a = 1 }}"),
                (2, "an identity", f"\n{{ @type = 8 @hashCode = {FIRST} a = 1 }}"),
                (1, "an identity", f"{{ b = {FIRST} = [ ] c = REF {FIRST} a = 1 }}"),
                (1, "a reference", f"{{ b = ( {FIRST} = 1 ) c = REF {FIRST} a = 1 }}")):
            self.refused(self.lost(line, what), text, "set", "a", "2")
            self.ok("set", "--quiet", "a.kel", "a", "2")

    def test_comments_and_definitions_that_the_output_lacks_are_counted(self):
        self.write("a.kel", "#define N 1\n{ a = N // x\n/* y */ }")
        for command in ("set", "a", "2"), ("rm", "a"), ("mv", "a", "b"):
            result = self.kel(command[0], "a.kel", *command[1:])
            self.assertEqual((result.status, result.err),
                             (0, "kel: warning: a.kel: 2 comments and 1 definition are lost, "
                                 "because only values are written; the first is on line 1\n"))
        self.write("a.kel", f"{{ a = {FIRST} = [ ] b = REF {FIRST}\n}}")
        self.ok("rm", "a.kel", "a")

    def test_force_writes_the_values_alone(self):
        self.write("a.kel", "{ a = 1 // x\n}")
        result = self.kel("set", "-i", "--force", "a.kel", "a", "2")
        self.assertEqual((result.status, result.err),
                         (0, "kel: warning: a.kel:1: a comment is lost, because only values "
                             "are written\n"))
        self.assertEqual(self.read("a.kel"), b"{\n\ta = 2\n}\n")

    def test_text_as_it_is_written_can_be_edited_again_and_again(self):
        text = (f'{{ a = 1 l = {LIST} m = {MANAGER} "//" = "#define" g = [ {FIRST}\n ] '
                f"c = {CHECKED} REF = 5 }}")
        self.write("a.kel", text)
        self.ok("set", "-i", "a.kel", "a", "2")
        first = self.read("a.kel")
        self.ok("set", "-i", "a.kel", "a", "3")
        self.ok("set", "-i", "a.kel", "a", "2")
        self.assertEqual(self.read("a.kel"), first)

    def test_what_json_loses_in_reading_is_not_lost_in_silence(self):
        self.refused("a.json: 2 places cannot be written as json:\n  b[0]: null in an array\n"
                     "  c: an integer that no double holds exactly\n" + NOT_WRITTEN[:-1],
                     '{"a": 1, "b": [null], "c": 12345678901234567890}', "set", "a", "2",
                     name="a.json")
        result = self.kel("set", "-i", "--force", "a.json", "a", "2")
        self.assertEqual(result.status, 0)
        self.assertEqual(self.json("a.json")["b"], [])

    def test_repeated_names_of_binary_are_not_lost_in_silence(self):
        twice = struct_record([(b"a", int_record(1, 2)), (b"a", int_record(2, 3))])
        self.refused("a.kelb: 1 place cannot be written as binary:\n"
                     "  offset 76: a: a repeated name; only its last value is kept\n" + NOT_WRITTEN[:-1],
                     twice, "set", "a", "5", name="a.kelb")

    def test_a_new_value_that_the_format_cannot_hold_is_refused(self):
        self.refused("a.kel: 1 place cannot be written as text:\n"
                     "  a: a string with a double quote\n" + NOT_WRITTEN[:-1],
                     "{ a = 1 }", "set", "--string", "a", 'x"y')
        os.remove(self.path("a.kel"))
        self.refused("a.json: 1 place cannot be written as json:\n"
                     "  a: a manager\nnothing was written; text keeps every kind; use --force to "
                     "write the rest", '{"a": 1}', "set", "a", "( )", name="a.json")


    def test_force_leaves_out_what_text_cannot_hold(self):
        block = '{"$memblock": "AAAA"}'
        for content, path, written in (
                ("[ 1 2 ]", "[0]", "[ 2 ]"),
                (LIST, "[0].key", '< /* keys: */ [ "l" ] /* values: */ [ 2 ] >'),
                (LIST, "[1].item", '< /* keys: */ [ "k" ] /* values: */ [ 1 ] >'),
                ("{ @type = 50\n}", "a", "{ @type = 50 a = NULL }")):
            with self.subTest(content=content):
                self.write("a.kel", content)
                result = self.kel("set", "--force", "-i", "--json", "a.kel", path, block)
                self.assertEqual((result.status, result.err),
                                 (0, "kel: warning: a.kel: 1 place cannot be written as text:\n"
                                     f"  {path}: a memory block\n"))
                self.assertEqual(" ".join(self.read("a.kel").decode().split()), written)


class Sharing(Edit):
    def setUp(self):
        super().setUp()
        shared = struct_record([(b"x", int_record(1, 3)), (b"y", record(ARRAY, b"", 4))], 2)
        self.write("a.kelb", struct_record([(b"a", shared), (b"b", reference(2)),
                                            (b"c", record(ARRAY, reference(4), 5))]))

    def test_a_change_inside_a_shared_value_names_the_other_places(self):
        result = self.kel("set", "a.kelb", "a.x", "5", "--to", "json")
        self.assertEqual((result.status, result.err),
                         (0, "kel: warning: a.kelb: a.x: the value around it is shared, so this "
                             "also changes b.x\n"))
        self.assertIn(b'"b": {\n        "x": 5', result.out)
        result = self.kel("set", "a.kelb", "a.y[0]", "5", "--to", "json")
        self.assertEqual(result.err, "kel: warning: a.kelb: a.y[0]: the value around it is shared, "
                                     "so this also changes b.y[0], c[0][0]\n")

    def test_references_of_text_share_values_too(self):
        self.write("a.kel", f"{{ a = {FIRST} = [ 1 ] b = REF {FIRST} }}")
        result = self.kel("set", "a.kel", "a[0]", "2")
        self.assertEqual((result.out, result.err),
                         (b"{\n\ta = [\n\t\t2\n\t]\n\tb = [\n\t\t2\n\t]\n}\n",
                          "kel: warning: a.kel: a[0]: the value around it is shared, so this also "
                          "changes b[0]\n"))

    def test_at_most_ten_other_places_are_listed(self):
        self.write("b.kelb", record(ARRAY, record(ARRAY, int_record(1, 3), 2) + 30 * reference(2)))
        result = self.kel("set", "b.kelb", "[0][0]", "2", "--to", "json")
        self.assertRegex(result.err, r" also changes (\[\d+\]\[0\], ){9}\[\d+\]\[0\] and more\n")

    def test_removing_and_renaming_name_them_too(self):
        self.assertEqual(self.kel("rm", "a.kelb", "b.x").err,
                         "kel: warning: a.kelb: b.x: the value around it is shared, so this also "
                         "changes a.x\n")
        self.assertEqual(self.kel("mv", "a.kelb", "b.x", "z").err,
                         "kel: warning: a.kelb: b.x: the value around it is shared, so this also "
                         "changes a.x\n")

    def test_a_value_removed_at_both_its_places_is_removed_once(self):
        self.write("b.kelb", struct_record([(b"a", record(ARRAY, int_record(1, 3) +
                                                          int_record(2, 4), 2)),
                                            (b"b", reference(2))]))
        result = self.kel("rm", "b.kelb", "a[0]", "b[0]", "--to", "text")
        self.assertEqual(result.out, b"{\n\ta = [\n\t\t2\n\t]\n\tb = [\n\t\t2\n\t]\n}\n")

    def test_replacing_a_shared_value_itself_concerns_one_place(self):
        result = self.ok("set", "a.kelb", "a", "5", "--to", "json")
        self.assertIn(b'"a": 5,\n    "b": {', result.out)

    def test_values_that_contain_themselves_are_edited(self):
        self.write("b.kelb", struct_record([
            (b"a", struct_record([(b"up", reference(1)), (b"n", int_record(5, 3))], 2))]))
        result = self.kel("set", "-i", "b.kelb", "a.n", "6")
        self.assertEqual((result.status, result.err),
                         (0, "kel: warning: b.kelb: a.n: the value around it is shared, so this "
                             "also changes a.up.a.n\n"))
        self.assertEqual(self.ok("get", "b.kelb", "a.up.a.n").out, b"6\n")
        self.assertEqual(self.kel("rm", "-i", "b.kelb", "a").status, 0)
        self.assertEqual(self.ok("show", "b.kelb").out, b"{\n}\n")

    def test_deep_values_are_edited_on_a_small_stack(self):
        depth = 5000
        self.write("a.json", '{"a":' * depth + "[1]" + "}" * depth)
        path = ".".join(["a"] * depth)
        self.ok("set", "-i", "a.json", path + "[1]", "2", small_stack=True)
        self.assertEqual(self.ok("get", "a.json", path + "[1]").out, b"2\n")
        self.ok("rm", "-i", "a.json", path + "[0]", small_stack=True)
        self.assertEqual(self.ok("get", "a.json", path + "[0]").out, b"2\n")

    def test_what_values_do_not_keep_is_not_lost_silently(self):
        for name, content, place in (("a.json", '{"a": 1, "a": 3}',
                                      "a.json:1:10: a: a repeated name"),
                                     ("a.kel", "{ a = 1 a = 3 }", "a.kel:1:9: a: a repeated name"),
                                     ("a.kel", "{ a = 4294967297 }", "a.kel:1:7: a: 4294967297 ")):
            self.write(name, content)
            for options in ([], ["-i"]):
                result = self.kel("set", *options, name, "b", "1")
                self.assertEqual((result.status, result.out), (1, b""))
                self.assertTrue(result.err.startswith(f"kel: {place}"), result.err)
            self.assertEqual(self.read(name).decode(), content)
            result = self.kel("set", "--force", name, "b", "1")
            self.assertEqual(result.status, 0)
            self.assertTrue(result.err.startswith(f"kel: warning: {place}"), result.err)

    def test_a_probable_mistake_in_a_checked_struct_is_pointed_out(self):
        self.write("a.kel", "{ @type = 50 @desc = { @type = 51 pan = { @type = 52 type = 1 min = -100 "
                            "max = 100 } } pan = 20 }")
        for arguments, doubt in (
                (["set", "a.kel", "pan", '"x"'], 'pan: "x" is a string where an int is described'),
                (["set", "a.kel", "pam", "1"],
                 'pam: the descriptor does not know this name (did you mean "pan"?)'),
                (["mv", "a.kel", "pan", "gain"], "gain: the descriptor does not know this name")):
            result = self.kel(*arguments)
            self.assertEqual((result.status, result.err), (0, f"kel: warning: a.kel: {doubt}\n"))
        self.ok("set", "a.kel", "pan", "30")


if __name__ == "__main__":
    unittest.main()
