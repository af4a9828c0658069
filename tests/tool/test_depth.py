import struct

from support import (ARRAY, STRING, ToolTest, identity, int_record, record, reference,
                     struct_record)

DEPTH = 1000000
ARRAYS = b"[" * DEPTH + b"]" * DEPTH
OBJECTS = b'{"a":' * DEPTH + b"1" + b"}" * DEPTH


class Deep(ToolTest):
    """A nesting of 1,000,000 levels with a stack of 256 KiB."""

    def setUp(self):
        super().setUp()
        self.ok = lambda *arguments: ToolTest.ok(self, *arguments, small_stack=True)

    def test_arrays_pass_between_json_and_binary(self):
        self.write("a.json", ARRAYS)
        self.ok("convert", "a.json", "b.kelb")
        self.ok("convert", "b.kelb", "c.json")
        self.assertEqual(self.read("c.json").translate(None, b" \n"), ARRAYS)

    def test_structs_pass_between_json_and_binary(self):
        self.write("a.json", OBJECTS)
        self.ok("convert", "a.json", "b.kelb")
        self.ok("convert", "b.kelb", "c.json")
        self.assertEqual(self.read("c.json").translate(None, b" \n"), OBJECTS)

    def test_text_is_read(self):
        self.write("a.kel", ARRAYS)
        self.ok("convert", "a.kel", "b.json")
        self.assertEqual(self.read("b.json").translate(None, b" \n"), ARRAYS)
        self.ok("check", "a.kel")

    def test_text_that_would_be_tabs_for_the_most_part_is_refused(self):
        self.write("a.json", b"[" * 300000 + b"]" * 300000)
        for command in (("convert", "a.json", "b.kel"), ("convert", "--force", "a.json", "b.kel"),
                        ("show", "a.json")):
            self.fails(1, "kel: a.json: as text the output would exceed 268435456 bytes, because "
                          "of deep nesting; use --max-output to allow more\n", *command,
                       small_stack=True)
        self.assertEqual(self.files(), ["a.json"])

    def test_a_thousand_levels_are_written_as_text(self):
        self.write("a.json", b"[" * 1000 + b"]" * 1000)
        self.ok("convert", "a.json", "b.kel")
        self.ok("convert", "b.kel", "c.json")
        self.assertEqual(self.read("c.json").translate(None, b" \n"), b"[" * 1000 + b"]" * 1000)

    def test_forced_changes_reach_the_deepest_level(self):
        levels = 100000
        self.write("a.json", b"[" * levels + b"null" + b"]" * levels)
        result = self.kel("convert", "--force", "a.json", "b.kelb", small_stack=True)
        self.assertEqual(result.status, 0, result.err)
        self.ok("convert", "b.kelb", "c.json")
        self.assertEqual(self.read("c.json").translate(None, b" \n"),
                         b"[" * levels + b"]" * levels)


class Cycles(ToolTest):
    """Binary can carry values that contain themselves."""

    def setUp(self):
        super().setUp()
        inner = struct_record([(b"list", reference(1)), (b"self", reference(2))], 2)
        self.write("a.kelb", record(ARRAY, int_record(5, 3) + inner, 1))

    def test_binary_files_with_cycles_are_fine(self):
        self.ok("check", "a.kelb")
        self.ok("convert", "a.kelb", "b.kelb")
        self.assertEqual(self.read("b.kelb"), self.read("a.kelb"))

    def test_they_cannot_be_shown(self):
        self.fails(1, "kel: a.kelb: [1].list: Cannot write a value that contains itself.\n"
                      "use kel dump or kel html, which show it\n", "show", "a.kelb")

    def test_text_and_json_cannot_carry_them(self):
        for name, form in (("b.kel", "text"), ("b.json", "json")):
            self.fails(1, f"kel: a.kelb: 2 places cannot be converted from binary to {form}:\n"
                          "  [1].list: a value that contains itself\n"
                          "  [1].self: a value that contains itself\n"
                          "nothing was written; use --force to convert the rest\n",
                       "convert", "a.kelb", name)
        self.assertEqual(self.files(), ["a.kelb"])

    def test_force_writes_null_where_a_struct_holds_an_outer_value(self):
        for name in ("b.kel", "b.json"):
            self.assertEqual(self.kel("convert", "--force", "a.kelb", name).status, 0)
        self.assertEqual(self.json("b.json"), [5, {"list": None, "self": None}])
        self.assertEqual(self.read("b.kel"),
                         b"[\n\t5\n\t{\n\t\tlist = NULL\n\t\tself = NULL\n\t}\n]\n")

    def test_force_leaves_an_outer_value_out_of_an_array(self):
        self.write("a.kelb", record(ARRAY, reference(1) + int_record(5, 3) + reference(1), 1))
        self.assertEqual(self.kel("convert", "--force", "a.kelb", "b.json").status, 0)
        self.assertEqual(self.json("b.json"), [5])

    def test_a_deep_cycle_is_found(self):
        # Record lengths grow from the inside out; the innermost array holds the outermost.
        levels = 100000
        heads = []
        size = len(reference(0))
        for number in reversed(range(levels)):
            heads.append(b"KEL\0" + identity(number) + struct.pack("<iHQ", ARRAY, 1, size))
            size += len(heads[-1])
        self.write("a.kelb", b"".join(reversed(heads)) + reference(0))
        self.assertEqual(self.kel("check", "a.kelb", small_stack=True).status, 0)
        result = self.kel("convert", "--force", "a.kelb", "b.json", small_stack=True)
        self.assertEqual(result.status, 0, result.err)
        self.assertEqual(self.read("b.json").translate(None, b" \n"),
                         b"[" * levels + b"]" * levels)


class SharingBombs(ToolTest):
    """Sharing lets a small binary file unfold to any number of values."""

    def bomb(self, levels, innermost):
        """Returns an array of two times an array of two times ... the innermost record, number
        1."""
        content = innermost
        for number in range(2, levels + 2):
            content = record(ARRAY, content + reference(number - 1), number)
        return content

    def test_more_values_than_anybody_can_store_are_refused(self):
        self.write("a.kelb", self.bomb(60, int_record(7, 1)))
        for name, form in (("b.kel", "text"), ("b.json", "json")):
            message = (f"kel: a.kelb: as {form} the output would exceed 268435456 bytes, because of "
                       "values that are shared many times; use --max-output to allow more\n")
            self.fails(1, message, "convert", "a.kelb", name)
            self.fails(1, message, "convert", "--force", "a.kelb", name)
        self.assertEqual(self.kel("show", "a.kelb").status, 1)
        self.assertEqual(self.files(), ["a.kelb"])

    def test_long_strings_count_by_their_length(self):
        self.write("a.kelb", self.bomb(20, record(STRING, b"x" * 1000000, 1)))
        self.fails(1, "kel: a.kelb: as json the output would exceed 268435456 bytes, because of "
                      "values that are shared many times; use --max-output to allow more\n",
                   "convert", "a.kelb", "b.json")

    def test_the_user_sets_the_greatest_size(self):
        self.write("a.kelb", self.bomb(10, int_record(7, 1)))
        for name in ("b.kel", "b.json"):
            for size, status in (("9k", 1), ("1G", 0)):
                result = self.kel("convert", "--max-output", size, "a.kelb", name)
                self.assertEqual((result.status, "exceed 9216 bytes" in result.err),
                                 (status, status == 1))
        self.assertEqual(self.kel("show", "--max-output", "9216", "a.kelb").status, 1)

    def test_no_option_raises_the_limit_of_the_library(self):
        self.write("a.kelb", self.bomb(28, int_record(7, 1)))
        self.fails(1, "kel: b.kel: the text of a value would be too long, because of deep nesting or "
                      "of values that are shared many times; write binary or JSON\n",
                   "convert", "--max-output", "100000G", "a.kelb", "b.kel")
        self.assertEqual(self.files(), ["a.kelb"])

    def test_the_size_includes_the_indentation(self):
        self.write("a.kelb", self.bomb(12, int_record(7, 1)))
        for name in ("b.kel", "b.json"):
            self.ok("convert", "a.kelb", name)
            size = len(self.read(name))
            for limit, status in ((size // 4, 1), (4 * size, 0)):
                self.assertEqual(self.kel("convert", "--max-output", str(limit), "a.kelb",
                                          name).status, status, name)

    def test_a_multiple_of_the_input_is_always_written(self):
        self.write("a.kelb", self.bomb(8, record(STRING, b"x" * 5000000, 1)))
        result = self.kel("convert", "a.kelb", "b.json")
        self.assertEqual(result.status, 1)
        self.assertRegex(result.err, "would exceed 32[0-9]{7} bytes")

    def test_binary_carries_them(self):
        self.write("a.kelb", self.bomb(60, int_record(7, 1)))
        self.ok("check", "a.kelb")
        self.ok("convert", "a.kelb", "b.kelb")
        self.assertEqual(self.read("b.kelb"), self.read("a.kelb"))

    def test_moderate_sharing_is_written_out(self):
        self.write("a.kelb", self.bomb(10, int_record(7, 1)))
        self.ok("convert", "a.kelb", "b.json")
        self.assertEqual(self.read("b.json").count(b"7"), 1024)

    def entangled(self, levels):
        """Returns arrays that each hold the one before, references to all before, and
        themselves."""
        content = int_record(0, 99)
        for number in range(1, levels + 1):
            others = b"".join(reference(other) for other in range(1, number + 1))
            content = record(ARRAY, content + others, number)
        return content

    def test_cycles_among_shared_values_do_not_unfold_either(self):
        self.write("a.kelb", self.entangled(30))
        self.ok("check", "a.kelb")
        result = self.kel("convert", "--force", "a.kelb", "b.json")
        self.assertEqual((result.status, result.err.count("exceed 268435456 bytes")), (1, 1))

    def test_without_its_cycles_a_shared_value_is_written_out(self):
        self.write("a.kelb", self.entangled(3))
        self.assertEqual(self.kel("convert", "--force", "a.kelb", "b.json").status, 0)
        self.assertEqual(self.json("b.json"), [[[0], [0]], [0], [[0], [0]]])
