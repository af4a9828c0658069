import re
import struct

from support import (ARRAY, DOUBLE, MEMBLOCK, ToolTest, int_record, record, reference,
                     string_record, struct_record)

JSON = b'{"a": [1, -2.5e3, true, null, "x\\u00e9\\n"], "b": {"$guid": "none"}, "": {}}'
GUID = b"AF2504E0-4F89-11D3-9A0C-0305E82C330"  # lacks one digit; its beginnings are not numbers
ROOT = b'// comment\n' + GUID + b'2'
TEXT = (ROOT + b' = { @desc = "d" a = [ 1 -2.5 true "x" ]\n'
        b'g = ' + GUID + b'1\n b = /* c */ NULL "k l" = 0x1f }')
BINARY = struct_record([(b"a", record(ARRAY, int_record(1, 2) + reference(2), 3)),
                        (b"b", string_record(b"text", 4)), (b"c", record(MEMBLOCK, b"abc", 5)),
                        (b"d", record(DOUBLE, struct.pack("<d", 0.5), 6)),
                        (b"e", reference(3))])
SAMPLES = {"json": JSON, "text": TEXT, "binary": BINARY}


EXCERPT = r"\A[ \d]{5,} (\||= hint:) "  # a line of text or JSON, its mark, or a hint


class Damage(ToolTest):
    """Damaged files are either read or refused with a place."""

    def check(self, form, contents):
        """Checks all contents in one run. Returns the names of those that are refused."""
        names = [f"{number:05}" for number in range(len(contents))]
        for name, content in zip(names, contents):
            self.write(name, content)
        result = self.kel("check", "--from", form, *names)
        self.assertIn(result.status, (0, 1))
        place = " offset [0-9]+" if form == "binary" else "[0-9]+:[0-9]+"
        refused = []
        for line in result.err.splitlines():
            if not line.startswith("kel: "):
                self.assertNotEqual(form, "binary")
                self.assertRegex(line, EXCERPT)
                continue
            match = re.fullmatch(f"kel: ([0-9]+):{place}: .+", line)
            self.assertTrue(match, line)
            refused.append(match.group(1))
        return [int(name) for name in refused]

    def test_the_samples_are_sound(self):
        for form, sample in SAMPLES.items():
            self.assertEqual(self.check(form, [sample]), [], form)

    def test_every_beginning_of_a_file_is_refused(self):
        for form, sample in SAMPLES.items():
            beginnings = [sample[:size] for size in range(len(sample))]
            cut = [size for size in range(len(sample))
                   if beginnings[size].rstrip() != ROOT]  # a complete guid value
            self.assertEqual(self.check(form, beginnings), cut, form)

    def test_an_identity_without_its_value_is_refused(self):
        ends = [b" =", b" = ", b" =\n", b" = // comment\n", b" = " + GUID + b"1 =", b" = REF",
                b" = #define A", b" = #define A 1"]
        self.assertEqual(self.check("text", [b"5\n" + GUID + b"1" + end for end in ends]),
                         list(range(len(ends))))
        self.write("a.kel", b"5\n" + GUID + b"1 =")
        self.assertEqual(self.kel("convert", "a.kel", "b.kelb").status, 3)
        self.assertNotIn("b.kelb", self.files())

    def test_every_change_of_a_byte_is_refused_or_read(self):
        for form, sample in SAMPLES.items():
            changed = [sample[:at] + bytes([byte]) + sample[at + 1:] for at in range(len(sample))
                       for byte in (0, 1, 9, 10, 34, 48, 91, 93, 123, 125, 127, 255)]
            refused = self.check(form, changed)
            self.assertGreater(len(refused), len(sample), form)
            self.assertLess(len(refused), len(changed), form)
