"""Messages about files that cannot be read: the place, the line with a mark, the reason, a hint.

Every file in the folder broken has its whole message beside it.
"""

import pathlib
import random
import re
import struct

from support import (ARRAY, MEMBLOCK, NO_IDENTITY, STRING, ToolTest, double_record, int_record,
                     record, reference, string_record, struct_record)

BROKEN = pathlib.Path(__file__).parent / "broken"
FILES = sorted(path for path in BROKEN.iterdir() if path.suffix != ".message")


def is_inside(content, line, column):
    """Returns whether a place is in the content, or just after a line of it."""
    lines = content.split(b"\n")
    if not 1 <= line <= len(lines):
        return False
    return 1 <= column <= len(lines[line - 1]) + 1


class Broken(ToolTest):
    def test_every_message_is_the_stored_one(self):
        self.assertGreater(len(FILES), 30)
        for path in FILES:
            with self.subTest(path.name):
                self.write(path.name, path.read_bytes())
                message = path.with_name(path.name + ".message").read_text("utf-8")
                self.fails(1, message, "check", path.name)

    def test_all_commands_give_the_same_message(self):
        for name in ("brace-missing.kel", "trailing-comma.json"):
            self.write(name, (BROKEN / name).read_bytes())
            message = (BROKEN / (name + ".message")).read_text("utf-8")
            self.fails(3, message, "show", name)
            self.fails(3, message, "convert", name, "out.kelb")
            self.assertNotIn("out.kelb", self.files())

    def test_every_message_belongs_to_a_file(self):
        names = {path.name + ".message" for path in FILES}
        self.assertEqual({path.name for path in BROKEN.glob("*.message")}, names)

    def test_the_named_format_is_explained_even_if_the_content_looks_otherwise(self):
        self.write("a.json", "[True]")
        self.assertIn('did you mean "true"?', self.kel("check", "a.json").err)
        self.fails(1, 'kel: a.json:1:2: "True" is not defined (did you mean "true"?)\n'
                      "    1 | [True]\n"
                      "      |  ^^^^\n", "check", "--from", "text", "a.json")

    def test_later_roots_have_the_lines_of_the_whole_file(self):
        self.write("a.json", "[1]\n[2]\n[3,]\n")
        self.assertIn("kel: a.json:3:3: ", self.kel("check", "a.json").err)


class Words(ToolTest):
    """What people write out of habit, with the hint that each of these gets."""

    def hints(self, name, contents, hint):
        for content in contents:
            with self.subTest(content):
                self.write(name, content)
                result = self.kel("check", name)
                self.assertEqual(result.status, 1)
                self.assertEqual(result.err.partition("      = hint: ")[2], hint and hint + "\n")

    def test_json_has_one_word_for_nothing_and_none_for_infinity(self):
        self.hints("a.json", ["[nan]", "[inf]", "[Infinity]", "[-Infinity]", "[-inf]", "[-nan]"],
                   "JSON has only finite numbers; null often stands for others")
        self.hints("a.json", ["[undefined]", "[nil]", "[1, NULL]"], "did you mean null?")

    def test_numbers_of_json_are_plain(self):
        self.hints("a.json", ["[0x1F]", "[0X1F]", "[-0x1F]"], "JSON has only decimal numbers")
        self.hints("a.json", ["[1_000]"], "numbers have no separators: remove the underscores")
        self.hints("a.json", ["[1e]", "[1E+]", "[1e-]"], "write digits after the exponent's sign")

    def test_an_exponent_of_json_is_followed(self):
        self.hints("a.json", ["[1E5,]", "[1e+5,]", "[1e-5,]", '["\\ud83d\\ude00\\uffff",]'],
                   "remove the comma after the last element")

    def test_half_of_a_surrogate_pair_is_refused(self):
        self.hints("a.json", ['["\\ud800\\ue000"]', '["\\udfff"]'],
                   "characters beyond \\uffff take two escapes: \\ud83d\\ude00")

    def test_a_byte_order_mark_before_json_is_passed(self):
        self.write("a.json", "\ufeff[1,]")
        self.assertIn("kel: a.json:1:4: ", self.kel("check", "a.json").err)

    def test_text_has_its_own_signs(self):
        self.hints("a.kel", ["{ a = `x` }"], "quoted words stand in double quotes")
        self.hints("a.kel", ["[ +1 ]"], "numbers have no plus sign: remove it")
        self.hints("a.kel", ["[ + ]", "{ +a = 1 }", "[ : ]"], "")
        self.hints("a.kel", ["[ $A ]", "[ &A ]", "[ *A ]"],
                   "the value of a definition is written by its name alone")
        self.hints("a.kel", ["! x\n[ 1 ]", "% x\n[ 1 ]"], 'a comment begins with "//"')
        self.hints("a.kel", ["[ \u201cx\u201d ]", "[ \u201dx\u201d ]", "[ \u201ex\u201c ]",
                             "[ \u00abx\u00bb ]"],
                   'quoted words stand in straight double quotes: "')
        self.hints("a.kel", ["[\u00a01 ]"], "this is a non-breaking space: replace it with a space")

    def test_numbers_of_text_are_plain(self):
        self.hints("a.kel", ["[ 0X1F ]"], "hexadecimal numbers are written as 0x1F, with a small x")
        self.hints("a.kel", ["[ 1e5 ]", "[ -1.5E-3 ]"], "text has no exponents: write all digits")
        self.hints("a.kel", ["[ inf ]", "[ nan ]", "[ -inf ]", "[ -nan ]"],
                   "text and JSON hold only finite numbers; binary holds all")
        self.hints("a.kel", ["[ -x ]", "[ .x ]"], "")

    def test_the_kind_of_a_struct_is_a_number(self):
        self.hints("a.kel", ['{ @type = "5" }', "{ @type = x }"],
                   "8 is a struct, 50 a checked struct, 51 its descriptor, 52 that of a variable")

    def test_an_index_list_holds_two_arrays(self):
        self.write("a.kel", "< [ 1 ] [ 2 ] [ 3 ] >")
        self.assertIn("kel: a.kel:1:15: an index list holds two arrays, and this is the third\n",
                      self.kel("check", "a.kel").err)
        self.hints("a.kel", ["#define A 5\n< A >"], "it holds two arrays of equal length")

    def test_a_reference_after_an_identity_has_the_same_one(self):
        self.write("a.kel", "3F2504E0-4F89-11D3-9A0C-0305E82C3301 = "
                            "ref 3F2504E0-4F89-11D3-9A0C-0305E82C3302")
        self.assertIn('kel: a.kel:1:44: the value has another identity than the one before "REF", '
                      "or was not read before\n", self.kel("check", "a.kel").err)

    def test_the_place_where_json_ends_is_named(self):
        for content in ('{"a"', '{"a":', '{"a": 1', '{"a": 1,', '{'):
            with self.subTest(content):
                self.write("a.json", content)
                self.assertIn('kel: a.json:1:1: "{" is not closed before the end of the input',
                              self.kel("check", "a.json").err)

    def test_a_bracket_that_closes_another_one_is_named(self):
        self.write("a.json", "[}")
        self.assertIn('kel: a.json:1:2: expected a value or "]", found "}"\n',
                      self.kel("check", "a.json").err)
        self.write("a.kel", "< = >")
        self.assertIn('kel: a.kel:1:3: expected an array or ">", found "="\n',
                      self.kel("check", "a.kel").err)

    def test_a_definition_is_one_whole_value(self):
        self.hints("a.kel", ['#define A 1\n#define "B" [ A\n[ B ]'],
                   "at 2:13: the definition ends inside its value")

    def test_other_bytes_than_those_of_utf8_are_named(self):
        self.hints("a.kel", [b"[ \xff ]"],
                   "this byte is not valid UTF-8, and text outside quotes is ASCII")

    def test_a_reference_needs_an_identity(self):
        self.write("a.kel", "[ REF ]")
        self.assertIn('kel: a.kel:1:7: expected the identity of a value after "REF", found "]"\n',
                      self.kel("check", "a.kel").err)

    def test_the_place_where_the_input_ends_is_named(self):
        for content, message in (
                ("{ @type =", '1:1: "{" is not closed before the end of the input at 1:10'),
                ('{ @type = "5', "1:11: this quote is not closed before the end of the input"),
                ('#define "A', "1:9: this quote is not closed before the end of the input"),
                ("3F2504E0-4F89-11D3-9A0C-0305E82C3301 =",
                 "1:39: expected a value after the identity, found the end of the input"),
                ("{ a", '1:1: "{" is not closed before the end of the input at 1:4'),
                ('{ "a', "1:3: this quote is not closed before the end of the input"),
                ("{ @type", '1:1: "{" is not closed before the end of the input at 1:8'),
                ("( 3F2504E0-4F89-11D3-9A0C-0305E82C3301",
                 '1:1: "(" is not closed before the end of the input at 1:39'),
                ("[ ref", '1:1: "[" is not closed before the end of the input at 1:6'),
                ("#", '1:2: expected "define" after "#" in the same line'),
                ("#define", '1:8: expected a name after "#define" in the same line')):
            with self.subTest(content):
                self.write("a.kel", content)
                self.assertIn(f"kel: a.kel:{message}\n", self.kel("check", "a.kel").err)


class OtherFiles(ToolTest):
    def foreign(self, name, content, message, *options):
        self.write(name, content)
        self.fails(1, f"kel: {name}{message}\n", "check", *options, name)

    def test_files_of_other_kinds_are_named(self):
        self.foreign("a.kel", b"\x89PNG\r\n\x1a\n\0\0\0\rIHDR",
                     ":1:1: expected text, found a PNG image")
        self.foreign("a.json", b"\x1f\x8b\x08\0\0\0\0\0",
                     ":1:1: expected JSON, found data compressed by gzip; decompress it first")
        self.foreign("a.kelb", b"PK\3\4\x14\0",
                     ": offset 0: expected binary, found a zip archive; unpack it first",
                     "--from", "binary")

    def test_other_encodings_are_named(self):
        for encoding in ("utf-16", "utf-16-le", "utf-16-be"):
            self.foreign("a.json", '{"a": 1}'.encode(encoding),
                         ":1:1: expected JSON, found UTF-16 text; save it as UTF-8")
        self.foreign("a.kel", "{ a = 1 }".encode("utf-32"),
                     ":1:1: expected text, found UTF-32 text; save it as UTF-8")

    def test_files_of_another_format_are_named(self):
        self.foreign("a.kelb", int_record(1), ':1:1: expected text, found a binary file of KEL; '
                     'read it with "--from binary"', "--from", "text")
        self.foreign("a.kel", "{ a = 1 }", ': offset 0: expected binary, found text; '
                     'read it with "--from text"', "--from", "binary")
        self.foreign("a.json", '{"a": 1}', ': offset 0: expected binary, found JSON; '
                     'read it with "--from json"', "--from", "binary")


class Binary(ToolTest):
    PERSON = struct_record([(b"id", int_record(5, 11)), (b"name", string_record(b"Ann", 12))], 10)
    SAMPLE = struct_record([(b"list", record(ARRAY, int_record(1, 3) + PERSON, 2)),
                            (b"n", double_record(1.5, 20))])
    NAME = SAMPLE.find(b"Ann") - 34  # the record of the string

    def broken(self, content, message):
        self.write("a.kelb", content)
        self.fails(1, f"kel: a.kelb: offset {message}\n", "check", "--from", "binary", "a.kelb")

    def changed(self, place, new):
        return self.SAMPLE[:place] + new + self.SAMPLE[place + len(new):]

    def test_the_sample_is_sound(self):
        self.write("a.kelb", self.SAMPLE)
        self.ok("check", "a.kelb")

    def test_the_end_of_the_input_is_explained(self):
        name = self.NAME
        for size, message in (
                (0, "the input is empty; expected at least one record"),
                (3, "(the value itself): the input ends inside the first bytes of a record"),
                (22, "(the value itself): the input ends inside the kind of a record"),
                (34, "(the value itself): the input ends 238 bytes before the end of this struct"),
                (36, "(the value itself): the input ends inside a name"),
                (39, "list: the input ends before the value"),
                (name, "list[1].name: the input ends before the value"),
                (name + 10, "list[1].name: the input ends inside the identity of a record"),
                (name + 25, "list[1].name: the input ends inside the version of a record"),
                (name + 30, "list[1].name: the input ends inside the length of a record"),
                (name + 36, "list[1].name: the payload needs 3 bytes, but the input has only 2 "
                            "left"),
                (name + 37, "(the value itself): the input ends 44 bytes before the end of this "
                            "struct")):
            with self.subTest(size):
                self.broken(self.SAMPLE[:size], f"{size}: {message}")

    def test_wrong_fields_are_explained(self):
        name = self.NAME
        for place, new, message in (
                (name, b"KEX\0", 'expected a record, which begins with "KEL\\u0000", found '
                                 '"KEX\\u0000"'),
                (name + 20, b"\x63", "expected a kind that binary stores (1, 2, 3, 5, 6, 7 or 8), "
                                     "found 99"),
                (name + 24, b"\2", "expected version 1, found 2"),
                (name + 26, b"\x7f", "expected a length of at most 3 bytes, found 127"),
                (name + 34, b"\0", "a string cannot contain a NUL")):
            with self.subTest(message):
                self.broken(self.changed(place, new), f"{place}: list[1].name: {message}")
        self.broken(record(ARRAY, record(1, b"\1\2\3")),
                    "60: [0]: expected a length of 4 bytes, found 3")
        array, string = record(ARRAY, b"")[:26], record(STRING, b"")[:26]
        self.broken(array + struct.pack("<Q", 2 ** 33) + string + struct.pack("<Q", 2 ** 31),
                    "60: [0]: expected a length of at most 2147483647 bytes, found 2147483648")
        self.broken(array + struct.pack("<Q", 2 ** 64 - 1) + b"abc",
                    "26: (the value itself): expected a length of at most 3 bytes, found "
                    "18446744073709551615")

    def test_a_length_that_no_memory_holds_is_explained(self):
        for kind in (STRING, MEMBLOCK):
            for length in (2 ** 62, 2 ** 64 - 1):
                lead = record(kind, b"")[:26] + struct.pack("<Q", length) + b"abc"
                most = 2 ** 31 - 1 if length == 2 ** 62 else 3
                self.broken(lead, f"26: (the value itself): expected a length of at most {most} "
                                  f"bytes, found {length}")

    def test_wrong_names_are_explained(self):
        self.broken(struct_record([(b'a"b', int_record(1))]),
                    '35: ["a\\"b"]: a name cannot contain a double quote')
        self.broken(struct_record([(b"", int_record(1))]),
                    "34: (the value itself): a name cannot be empty")
        self.broken(record(8, b"ab"), "36: (the value itself): the container ends inside a name")

    def test_wrong_references_are_explained(self):
        self.broken(record(ARRAY, int_record(1, 2) + reference(9)),
                    "76: [1]: no value with the identity 00000009-0001-0000-0200-000003000000 was "
                    "read before")
        self.broken(record(ARRAY, b"KEL\0" + NO_IDENTITY + b"\xff\xff\xff\x7f"),
                    "38: [0]: only a variable of a struct can lack a value")


class Places(ToolTest):
    """Mutated files are read or refused, and every refusal has a place inside the file."""

    SOUND = {
        ".kel": b'#define SIZE [ 640 480 ]\n{\n\tsize = SIZE\n\t"my key" = "text\nover lines"\n'
                b"\tid = 3F2504E0-4F89-11D3-9A0C-0305E82C3301\n\tinner = { @type = 8\n\t\ta = -1.5 "
                b"/* b */ list = < [ 1 ] [ true ] >\n\t}\n\tmanager = ( 00000000-0000-0000-0000-"
                b"000000000001 = [ null ] )\n\tagain = REF 00000000-0000-0000-0000-000000000001\n}\n",
        ".json": b'{\n  "size": [640, 480.5e1, -0.25],\n  "text": "\\u00e9\\n\\ud83d\\ude00",\n'
                 b'  "inner": {"a": true, "b": null, "c": false}\n}\n[1]\n"\xc3\xa9"\n',
    }
    PIECES = [b"{", b"}", b"[", b"]", b"(", b")", b"<", b">", b"=", b":", b",", b'"', b"'", b"\\",
              b"#", b"#define X", b"/*", b"*/", b"//", b"-", b"1e5", b"0x", b"X", b"REF ", b"\n",
              b"\r", b"\r\n", b"\0", b"\xff", b"\xc3", b"\xe2\x80\x9c", b"@type = 99", b"\x1b[0m"]
    MUTATIONS = 400

    def mutated(self, content, source):
        for _ in range(source.randint(1, 3)):
            at = source.randrange(len(content) + 1)
            end = min(len(content), at + source.choice((0, 0, 1, 3, 12)))
            piece = source.choice(self.PIECES) if source.random() < 0.7 else b""
            content = content[:at] + piece + content[end:]
        return content

    def test_random_changes(self):
        source = random.Random(20)
        for suffix, sound in self.SOUND.items():
            contents = {f"{i:04}{suffix}": self.mutated(sound, source)
                        for i in range(self.MUTATIONS)}
            for name, content in contents.items():
                self.write(name, content)
            form = "text" if suffix == ".kel" else "json"
            result = self.kel("check", "--from", form, *contents)
            self.assertEqual(result.status, 1)
            refused = 0
            for line in result.err.splitlines():
                self.assertFalse(re.search("[\x00-\x08\x0b-\x1f\x7f]", line), repr(line))
                if not line.startswith("kel: "):
                    self.assertRegex(line, r"\A[ \d]{5,} (\||= hint:) ")
                    continue
                match = re.fullmatch(r"kel: (\d+\.\w+)(:(\d+):(\d+): .+|: .+ is not allowed.*)", line)
                self.assertTrue(match, line)
                if match.group(3):
                    refused += 1
                    name, row, column = match.group(1), int(match.group(3)), int(match.group(4))
                    self.assertTrue(is_inside(contents[name], row, column), line)
            self.assertGreater(refused, self.MUTATIONS // 2)
