"""kel dump: a line for each record, up to the damage."""

import random
import re
import struct

from support import (ARRAY, MEMBLOCK, NO_IDENTITY, STRING, STRUCT, ToolTest, double_record,
                     identity, int_record, record, reference, string_record, struct_record)

NULL = b"KEL\0" + NO_IDENTITY + struct.pack("<i", 0x7FFFFFFF)
SAMPLE = record(ARRAY, int_record(7, 2) + reference(2) +
                struct_record([(b"a", NULL), (b"odd name", string_record(b"Hi\n", 4)),
                               (b"x", double_record(2.5, 5))], 3) +
                record(2, b"\1", 6) + record(MEMBLOCK, b"abc", 7)) + int_record(-1, 8)
LINES = """\
  0  318  array  #00000001-0001-0000-0200-000003000000
 34   38    int 7  #00000002-0001-0000-0200-000003000000
 72   24    reference to 34  #00000002-0001-0000-0200-000003000000
 96  150    struct  #00000003-0001-0000-0200-000003000000
132   24      a: null
165   37      ["odd name"]: string "Hi\\u000a"  #00000004-0001-0000-0200-000003000000
204   42      x: double 2.5  #00000005-0001-0000-0200-000003000000
246   35    boolean true  #00000006-0001-0000-0200-000003000000
281   37    memblock  #00000007-0001-0000-0200-000003000000
318   38  int -1  #00000008-0001-0000-0200-000003000000
"""


class Dump(ToolTest):
    def fault(self, content):
        """Returns the message about a damaged file."""
        self.write("a.kelb", content)
        result = self.kel("dump", "a.kelb")
        self.assertEqual(result.status, 3)
        self.assertTrue(result.err.startswith("kel: a.kelb: "), result.err)
        return result.err[len("kel: a.kelb: "):-1]

    def test_each_record_has_a_line(self):
        self.write("a.kelb", SAMPLE)
        self.assertEqual(self.ok("dump", "a.kelb").out.decode(), LINES)
        self.assertEqual(self.ok("dump", "-", input=SAMPLE).out.decode(), LINES)

    def test_a_file_that_was_cut_is_printed_up_to_the_cut(self):
        begins = [int(line.split()[0]) for line in LINES.splitlines()]
        sizes = [int(line.split()[1]) for line in LINES.splitlines()]
        for end in range(4, len(SAMPLE), 7):
            self.write("a.kelb", SAMPLE[:end])
            result = self.kel("dump", "a.kelb")
            self.assertEqual(result.status, 0 if end == begins[-1] else 3)
            # A container is printed as soon as its header is whole, any other record when it is.
            count = sum(begin + (34 if index in (0, 3) else size) <= end
                        for index, (begin, size) in enumerate(zip(begins, sizes)))
            lines = [re.sub(r"  cut off$", "", line).split(None, 2)
                     for line in result.out.decode().splitlines()]
            wanted = [line.split(None, 2) for line in LINES.splitlines()]
            self.assertEqual(lines, wanted[:count], end)

    def test_a_container_that_was_cut_is_marked(self):
        self.write("a.kelb", SAMPLE[:100])
        self.fails(3, "kel: a.kelb: offset 96: the file ends inside the header of a record\n",
                   "dump", "a.kelb")
        lines = self.kel("dump", "a.kelb").out.splitlines()
        self.assertTrue(lines[0].endswith(b"  cut off") and len(lines) == 3, lines)

    def test_each_damage_has_its_reason(self):
        sound = int_record(1)
        for content, message in (
                (b"KEL\1" + sound[4:], "offset 0: a record does not begin here"),
                (sound + b"KEM\0", "offset 38: a record does not begin here"),
                (sound + b"KEL", "offset 38: the file ends inside the header of a record"),
                (sound[:20] + b"\4" + sound[21:], "offset 0: no binary file holds the kind 4"),
                (sound[:24] + b"\2" + sound[25:], "offset 0: the version is 2, not 1"),
                (record(1, b"12345"), "offset 0: the length of an int is 5, not 4"),
                (record(2, b""), "offset 0: the length of a boolean is 0, not 1"),
                (record(3, b"1"), "offset 0: the length of a double is 1, not 8"),
                (sound[:-1], "offset 0: the file ends inside a payload: 1 byte is missing"),
                (string_record(b"a\0b"), "offset 0: a string with a NUL"),
                (NULL, "offset 0: null outside a struct"),
                (record(ARRAY, reference(5)),
                 "offset 34: a reference to 00000005-0001-0000-0200-000003000000, which no earlier "
                 "record has"),
                (struct_record([(b"", sound)]), "offset 34: an empty name"),
                (struct_record([(b'a"', sound)]), "offset 34: a name with a double quote"),
                (record(STRUCT, b"name") + sound, "offset 34: the container ends inside a name"),
                (record(ARRAY, sound[:-2]) + sound,
                 "offset 34: the container ends inside a payload: 2 bytes are missing"),
                (record(STRING, b"")[:26] + b"\xff" * 8,
                 "offset 0: the length of a string is more than 2147483647"),
                (record(ARRAY, sound)[:26] + b"\xff" * 8 + sound,
                 "offset 72: the file ends before the array or struct around this place"),
                (b"", "offset 0: the file has no records")):
            self.assertEqual(self.fault(content), message)

    def test_it_finds_damage_where_the_library_does(self):
        generator = random.Random(4)
        for _ in range(60):
            content = bytearray(SAMPLE)
            for _ in range(generator.randrange(1, 3)):
                content[generator.randrange(len(content))] = generator.choice([0, 1, 2, 34, 75, 255])
            self.write("a.kelb", content)
            known = self.kel("check", "--from", "binary", "a.kelb")
            is_sound = known.status == 0 or "repeated" in known.err
            self.assertEqual(self.kel("dump", "a.kelb").status, 0 if is_sound else 3,
                             (content, known.err))

    def test_a_reference_leads_to_the_record_that_was_read_last(self):
        self.write("a.kelb", int_record(1, 2) + int_record(2, 2) + record(ARRAY, reference(2)))
        self.assertIn(b"reference to 38 ", self.ok("dump", "a.kelb").out)

    def test_text_and_json_are_refused(self):
        for name, content, form in (("a.kel", "[ 1 ]", "text"), ("a.json", '{"a": 1}', "json")):
            self.write(name, content)
            self.fails(1, f"kel: {name}: this is {form}, which has no records; use kel show to look "
                          "at it, or pipe the output of kel convert --to binary to kel dump\n",
                       "dump", name)

    def test_a_kind_that_no_file_holds_is_named_by_its_code(self):
        for kind, code in ((99, 99), (-1, 4294967295)):
            self.write("a.kelb", record(kind, b""))
            self.assertIn(f"no binary file holds the kind {code}",
                          self.kel("dump", "a.kelb").err)

    def test_truth_values_have_their_words(self):
        self.write("a.kelb", record(2, b"\0", 1) + record(2, b"\1", 2))
        self.assertEqual([line.split()[2:4] for line in self.ok("dump", "a.kelb").out.splitlines()],
                         [[b"boolean", b"false"], [b"boolean", b"true"]])

    def test_another_format_under_the_name_of_binary_is_damage(self):
        self.write("a.kelb", "{ a = 1 }")
        self.fails(3, "kel: a.kelb: offset 0: a record does not begin here\n", "dump", "a.kelb")

    def test_a_million_levels_have_lines_of_bounded_length(self):
        levels = 1000000
        self.write("a.json", b"[" * levels + b"]" * levels)
        self.ok("convert", "a.json", "a.kelb")
        lines = self.ok("dump", "a.kelb", small_stack=True).out.splitlines()
        self.assertEqual(len(lines), levels)
        self.assertLess(max(map(len, lines)), 130)
        self.assertIn(b"(999999) array", lines[-1])
