"""kel check --strict and --json."""

import json
import os
import random

from support import (ARRAY, ToolTest, int_record, posix_only, record, string_record,
                     struct_record)
from test_kinds import GUID, checked, described, rules

DEEP = 100_000
WRAPPED = "99999999999"
SETTINGS = described(("level", rules("type = 1")), ("gain", rules("type = 3")),
                     ("name", rules("type = 6")))


class Strict(ToolTest):
    def finds(self, content, *lines, name="a.kel"):
        """Expects a strict check to print exactly these lines, each after the name of the file and
        with its excerpt."""
        self.write(name, content)
        result = self.kel("check", "--strict", name)
        self.assertEqual((result.status, self.headings(result.err)),
                         (1 if lines else 0, [f"kel: {name}{line}" for line in lines]))


class Values(Strict):
    def test_a_described_number_that_holds_text_is_reported_with_its_line(self):
        self.finds("\n[ " + checked(SETTINGS, 'level = "loud"') + " ]",
                   ':10:1: [0].level: "loud" is a string where an int is described')

    def test_numbers_that_convert_without_loss_are_fine(self):
        self.finds(checked(SETTINGS, "level = 3.0", "gain = 3"))

    def test_numbers_that_lose_something_are_reported(self):
        for number in ("3.5", "2147483647.5"):
            with self.subTest(number=number):
                self.finds(checked(SETTINGS, f"level = {number}"),
                           f":9:1: level: {number} is a double where an int is described")

    def test_a_container_is_named_once(self):
        self.finds(checked(SETTINGS, "level = []"),
                   ":9:1: level: an array where an int is described")

    def test_what_every_check_reports_is_reported_once(self):
        ranged = described(("level", rules("type = 1", "min = 0", "max = 9")))
        self.finds(checked(ranged, "level = 10.5"),
                   ":5:1: level: 10.5 is not allowed (allowed: 0 to 9)")

    def test_a_default_of_another_kind_is_reported(self):
        self.finds(described(("x", rules("type = 6", "default = 5"))),
                   ":2:1: x: the default 5 is an int where a string is described")

    def test_a_kind_that_no_value_has_is_not_compared(self):
        self.finds(checked(described(("x", rules("type = 13"))), "x = 1"),
                   ":3:1: @desc.x: the type 13 is unknown")

    def test_names_that_no_descriptor_knows_are_reported_with_the_similar_one(self):
        self.finds(checked(SETTINGS, "levle = 3", "other = NULL"),
                   ':9:1: levle: the descriptor does not know this name (did you mean "level"?)',
                   ":10:1: other: the descriptor does not know this name")

    def test_a_descriptor_of_another_kind_is_reported(self):
        self.finds(checked("{ level = 1 }", "level = 3"),
                   ":2:1: @desc: a struct is not a struct descriptor")

    def test_a_struct_without_a_descriptor_knows_every_name(self):
        self.finds("{ @type = 50\nlevel = 3 }")


class Names(Strict):
    def test_repeated_names_in_text_are_reported_with_both_lines(self):
        self.finds('[ { a = 1\n b = { c = 2 }\n "a" = 3 } ]',
                   ":3:2: [0].a: a repeated name; only its last value is kept (first at line 1)")

    def test_a_name_can_occur_in_every_struct(self):
        self.finds("{ a = { a = { a = 1 } b = 2 } b = { a = 1 } }\n{ a = 1 }")

    def test_repeated_identities_in_a_manager_are_reported(self):
        one, same = GUID + "a", (GUID + "a").lower().replace("-", "", 1)
        self.finds(f"( {one} = 1\n{same} = 2 )",
                   f":2:1: #{GUID}A: a repeated identity; only its last value is kept "
                   "(first at line 1)")

    def test_repeated_names_in_json_are_reported_however_they_are_spelt(self):
        self.finds('{"a": [{"b": 1,\n"\\u0062": 2, "c": "b"}]}',
                   ":2:1: a[0].b: a repeated name; only its last value is kept (first at line 1)",
                   name="a.json")

    def test_repeated_names_in_binary_are_each_reported_on_a_line(self):
        inner = struct_record([(b"a", int_record(1, 5)), (b"a", int_record(2, 6))], 4)
        self.finds(record(ARRAY, inner),
                   ": offset 110: [0].a: a repeated name; only its last value is kept",
                   name="a.kelb")

    def test_what_values_cannot_hold_of_json_is_reported(self):
        self.finds('{"a": [1, null], "": [null], "n": [9007199254740993, 9007199254740992],\n'
                   '"x\\"y": {"": 1}, "s": "a\\u0000b", "t": 1e-999, "a": [[null, null]]}',
                   ":1:11: a[1]: null in an array", ':1:18: [""]: an empty name',
                   ":1:36: n[0]: an integer that no double holds exactly",
                   ':2:1: ["x\\"y"]: a name with a double quote', ":2:23: s: a string with a NUL",
                   ":2:40: t: a number too small for a double",
                   ":2:48: a: a repeated name; only its last value is kept (first at line 1)",
                   ":2:55: a[0][0]: null in an array", ":2:61: a[0][1]: null in an array",
                   name="a.json")
        self.finds('[null]\nnull {"\\u0000": 1}', ":1:2: 1:[0]: null in an array",
                   ':2:7: 3:["\\u0000"]: a name with a NUL', name="a.json")

    def test_findings_beyond_a_thousand_are_counted(self):
        self.finds("[\n" + ",\n".join(["null"] * 1002) + "]",
                   *(f":{number + 2}:1: [{number}]: null in an array" for number in range(1000)),
                   ": and 2 more", name="a.json")
        self.finds("{\n" + "a = 1\n" * 1003 + "}",
                   *(f":{line}:1: a: a repeated name; only its last value is kept "
                     f"(first at line 2)" for line in range(3, 1003)), ": and 2 more")
        self.finds('{"a": 1,\n"a": [\n' + ",\n".join(["null"] * 1002) + "]}",
                   ":2:1: a: a repeated name; only its last value is kept (first at line 1)",
                   *(f":{number + 3}:1: a[{number}]: null in an array" for number in range(999)),
                   ": and 3 more", name="a.json")
        repeated = struct_record([(b"a", int_record(1, number)) for number in range(5, 1008)])
        self.finds(repeated, *(f": offset {36 + 40 * number}: a: a repeated name; only its last value is "
                               "kept" for number in range(1, 1001)),
                   ": and 2 more", name="a.kelb")


class Excerpts(Strict):
    def shows(self, content, line, mark, name="a.kel"):
        """Expects a strict check of the content to find one thing, and to show it so."""
        self.write(name, content)
        result = self.kel("check", "--strict", name)
        self.assertEqual((result.status, result.err.splitlines()[1:]), (1, [line, mark]))

    def test_the_whole_name_or_value_is_marked(self):
        self.shows('{\t"a b" = 1 "a b" = 2 }', '    1 | {\t"a b" = 1 "a b" = 2 }',
                   "      |  \t          ^^^^^")
        self.shows("[ 0.1234567]", "    1 | [ 0.1234567]", "      |   ^^^^^^^^^")
        self.shows('{"a": 1,\r\n"a\\"": 2}\r\n', '    2 | "a\\"": 2}', "      | ^^^^^",
                   name="a.json")

    def test_of_a_long_line_the_part_around_the_mark_is_shown(self):
        blanks = " " * 10_000
        self.shows(f"[{blanks}0.1234567{blanks}]",
                   "    1 | ..." + " " * 60 + "0.1234567" + " " * 31 + "...",
                   "      |    " + " " * 60 + "^" * 9)

    def test_line_numbers_can_be_wide(self):
        self.shows("\n" * 123_456 + "0.1234567", "123457 | 0.1234567", "       | ^^^^^^^^^")


class Numbers(Strict):
    def test_integers_beyond_32_bits_are_reported_with_what_is_read(self):
        for number, value in (("2147483648", -2147483648), ("-2147483649", 2147483647),
                              ("4294967301", 5), ("0004294967296", 0), ("0x100000002", 2),
                              ("0xfFfFfFfFf", -1)):
            with self.subTest(number=number):
                self.finds(f"{{ a = [ 1 {number} ] }}",
                           f":1:11: a[1]: {number} does not fit in 32 bits and is read as {value}")
                self.assertEqual(self.ok("show", "a.kel").out,
                                 f"{{\n\ta = [\n\t\t1\n\t\t{value}\n\t]\n}}\n".encode())

    def test_integers_of_32_bits_are_fine(self):
        self.finds("2147483647 -2147483648 0xFFFFFFFF 0x00000000012345678 00000000000012 - . 0x")

    def test_decimals_with_a_whole_part_beyond_32_bits_are_reported(self):
        self.finds("4294967301.5", ":1:1: (the value itself): the whole part of 4294967301.5 "
                                   "does not fit in 32 bits and is read as 5.5")
        self.finds("-2147483648.5", ":1:1: (the value itself): the whole part of -2147483648.5 "
                                    "does not fit in 32 bits and is read as 2147483647.5")
        self.finds("-2147483647.5 2147483647. .5")

    def test_more_than_six_decimals_are_reported(self):
        self.finds("0.1234567", ":1:1: (the value itself): 0.1234567 has more than the six "
                                "decimals that are written")
        self.finds("0.123456 0.12345600000")

    def test_a_long_number_is_cut(self):
        self.finds("1" * 1000, ":1:1: (the value itself): " + "1" * 40 + "... does not fit in 32 "
                               "bits and is read as " +
                               str((int("1" * 1000) + 2**31) % 2**32 - 2**31))

    def test_digits_of_identities_and_guids_are_not_numbers(self):
        self.finds(f"99999999-9999-9999-9999-999999999999 = [ 1 ]\n[ {GUID}1 [] {GUID}2\n"
                   "12345678-4F89-11D3-9A0C-0305E82C3302\n] { a_99999999999 = 1 99999999999 = 2 }")


class Definitions(Strict):
    def test_definitions_without_a_use_are_reported(self):
        self.finds("#define A 1\n[\n  #define B 2 ]\n A ]",
                   ':3:3: the definition of "B" is never used')

    def test_a_definition_that_is_replaced_before_a_use_is_reported(self):
        self.finds("#define A 1\n#define A 2\n[ A ]", ':1:1: the definition of "A" is never used')

    def test_a_use_in_a_definition_counts_if_that_is_used(self):
        self.finds("#define A [ B ]\n#define B 1\n[ A ]")
        self.finds("#define A [ B ]\n#define B 1\n5", ':1:1: the definition of "A" is never used',
                   ':2:1: the definition of "B" is never used')

    def test_a_definition_without_a_use_can_be_anything(self):
        for text in (f"{WRAPPED} ] {{ B", "/* open", '"open', "[ B ] A", ""):
            self.finds(f"#define A {text}\n#define A 5\n#define B 6\n[ A B ]"
                       if text else "#define A\n\n 7\n#define A 5\nA",
                       ':1:1: the definition of "A" is never used')

    def test_mistakes_in_a_definition_are_reported_where_it_stands(self):
        self.finds(f"#define A [ {WRAPPED} {{ x = 1 x = 2 }} ]\n[ A A ]",
                   f":1:13: {WRAPPED} does not fit in 32 bits and is read as 1215752191",
                   ":1:33: a repeated name; only its last value is kept (first at line 1)")

    def test_a_definition_of_null_is_not_an_element(self):
        self.finds(f"#define A B\n#define B null\n[ A {WRAPPED} ]",
                   f":3:5: [0]: {WRAPPED} does not fit in 32 bits and is read as 1215752191")


class RandomText:
    """Random text with one mistake: a number that wraps around, or a checked struct with a value
    that is not allowed. Knows its line and path."""

    RANGED = described(("x", rules("type = 1", "min = 0", "max = 9")))

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.is_checked = seed % 2 == 0
        self.text = ""
        self.identities = 0
        self.known = []  # identities of complete values
        self.mark = None  # the line, the path and the mistake

    def layout(self, required=False):
        choices = [" ", "\t", "\n", "\f", "\r\n", " // note = [ 5\n", "/* { \n */", "/* a ***/",
                   "/* \" ** a */"]
        if required or self.random.random() < 0.3:
            self.text += self.random.choice(choices)

    def identity(self):
        self.identities += 1
        return f"{self.identities:08d}-4F89-11D3-9A0C-{self.identities:012X}"

    def scalar(self):
        self.text += self.random.choice(['"a ] } \n // text"', "5", "-7", "2.5", "0x1f", "true",
                                         "NULL_", "EMPTY", "12345678", "false", ".5"])

    def value(self, path, depth):
        """Adds a value. Returns whether it is one that an array keeps."""
        if self.mark is None and (self.random.random() < 0.05 or depth == 0):
            column = 1 if self.is_checked else len(self.text) - self.text.rfind("\n")
            self.text += checked(self.RANGED, "x = 10") if self.is_checked else WRAPPED
            end = ".x: 10 is not allowed (allowed: 0 to 9)" if self.is_checked else (
                f": {WRAPPED} does not fit in 32 bits and is read as 1215752191")
            self.mark = f"{self.text.count(chr(10)) + 1}:{column}: {path}{end}"
            return True
        shape = self.random.choice("[[[{{{(<sssnir" if depth > 0 else "sssnr")
        if shape == "n":
            self.text += self.random.choice(["null", "NULL", "NOTHING"])
            return False
        if shape == "r" and self.known:
            self.text += "REF " + self.random.choice(self.known)
        elif shape == "i":
            identity = self.identity()
            self.text += identity + self.random.choice([" = ", " ", "=\n", " /* \n */ "])
            before = self.mark
            self.array(path, depth)
            if self.mark == before:  # a mistake in a shared value has several paths
                self.known.append(identity)
        elif shape == "[":
            self.array(path, depth)
        elif shape == "{":
            self.structure(path, depth)
        elif shape == "(":
            self.manager(path, depth)
        elif shape == "<":
            self.text += "<"
            self.layout()
            for part in ("key", "item"):
                self.text += "["
                self.array_of(path, depth, part, 2)
                self.layout()
            self.text += ">"
        else:
            self.scalar()
        return True

    def array(self, path, depth):
        self.text += "["
        self.array_of(path, depth, "", self.random.randrange(5))

    def array_of(self, path, depth, part, count):
        index = 0
        while index < count:
            self.layout(required=True)
            step = f"{path}[{index}]" + (f".{part}" if part else "")
            index += 1 if self.value(step, depth - 1) else 0
        self.layout(required=True)
        self.text += "]"

    def structure(self, path, depth):
        self.text += "{"
        if self.random.random() < 0.3:
            self.text += self.random.choice([" @type = 8", "@type=8@hashCode=" + self.identity(),
                                             " @hashCode =\n" + self.identity() + " ,"])
        for number in range(self.random.randrange(4)):
            self.layout(required=True)
            name = self.random.choice([f"v{number}", f"{number}x", f"@type{number}"])
            self.text += self.random.choice([name, f'"{name}"'])
            self.layout()
            self.text += "="
            self.layout()
            self.value(f"{path}.{name}" if path else name, depth - 1)
        self.layout(required=True)
        self.text += "}"

    def manager(self, path, depth):
        self.text += "("
        for _ in range(self.random.randrange(3)):
            self.layout()
            identity = self.identity()
            self.text += identity + " = "
            kind = self.random.choice("[{g")
            if kind == "[":
                self.array(f"{path}#{identity}", depth - 1)
            elif kind == "{":
                self.structure(f"{path}#{identity}", depth - 1)
            else:
                self.text += self.identity()
        self.layout(required=True)
        self.text += ")"


class Scan(Strict):
    def test_a_mistake_is_found_at_its_place_in_random_text(self):
        for seed in range(200):
            made = RandomText(seed)
            made.text = "#define NULL_ { a = 1 }\n#define EMPTY []\n#define NOTHING null\n"
            made.array("", 6)
            if made.mark is None:
                continue
            made.text += " \n"
            self.write("a.kel", made.text)
            with self.subTest(seed=seed):
                result = self.kel("check", "--strict", "a.kel")
                self.assertEqual(result.status, 1, result.err)
                found = [text for text in self.headings(result.err)
                         if "is never used" not in text]
                self.assertEqual(found, ["kel: a.kel:" + made.mark], made.text)

    def test_a_deep_text_is_scanned_without_recursion(self):
        for content, name in (("[" * DEEP + WRAPPED + "]" * DEEP, "a.kel"),
                              ("{ a = " * DEEP + WRAPPED + "}" * DEEP, "a.kel"),
                              ('{"a":' * DEEP + '{"b": 1, "b": 2}' + "}" * DEEP, "a.json")):
            self.write(name, content)
            result = self.kel("check", "--strict", name, small_stack=True)
            self.assertEqual((result.status, len(self.headings(result.err))), (1, 1))


class SmallParts(Strict):
    LOST = "99999999999 does not fit in 32 bits and is read as 1215752191"
    IDENTITY = "3F2504E0-4F89-11D3-9A0C-0305E82C3301"

    def test_the_place_of_a_number_is_known_in_every_container(self):
        self.finds('{ "a" = 99999999999 }', f":1:9: a: {self.LOST}")
        self.finds("< [ 99999999999 ] [ 1 ] >", f":1:5: [0].key: {self.LOST}")
        self.finds("< [ 1 ] [ 99999999999 ] >", f":1:11: [0].item: {self.LOST}")
        self.finds(f"( {self.IDENTITY} = 99999999999 )",
                   f":1:42: #{self.IDENTITY}: {self.LOST}")

    def test_words_that_never_stand_for_a_definition_do_not_use_it(self):
        for word in ("true", "false"):
            self.finds(f"#define {word} 1\n[ {word} ]",
                       f':1:1: the definition of "{word}" is never used')
        for word in ("REF", "ref"):
            self.finds(f"#define {word} 1\n[ {self.IDENTITY} = [ ] {word} {self.IDENTITY} ]",
                       f':1:1: the definition of "{word}" is never used')

    def test_a_definition_can_stand_for_a_word(self):
        for word in ("true", "false"):
            self.finds(f"#define A {word}\n[ A 99999999999 ]", f":2:5: [1]: {self.LOST}")

    def test_definitions_of_one_another_end(self):
        self.finds("#define A B\n#define B A\n[ 1 ]",
                   ':1:1: the definition of "A" is never used',
                   ':2:1: the definition of "B" is never used')

    def test_a_guid_before_a_bracket_is_a_value(self):
        for content in ("[ %s ]", "[ %s\n]", "{ a = %s }", "( %s = %s )", "< [ %s ] [ %s ] >"):
            self.finds(content.replace("%s", self.IDENTITY) + " [ 99999999999 ]",
                       f":{1 + content.count(chr(10))}:"
                       f"{len(content.replace('%s', self.IDENTITY).split(chr(10))[-1]) + 4}: "
                       f"2:[0]: {self.LOST}")

    def test_an_identity_can_be_without_an_equals_sign(self):
        self.finds(f"[ {self.IDENTITY} [ 99999999999 ] ]", f":1:42: [0][0]: {self.LOST}")


class NamesForEditors(ToolTest):
    @posix_only("needs names that are bytes")
    def test_names_of_files_are_strings_of_json(self):
        for name, shown in ((b"a\x01.kel", "a\x01.kel"), (b"a\xff.kel", "a\ufffd.kel")):
            with open(os.path.join(os.fsencode(self.folder), name), "wb") as file:
                file.write(b"[")
            result = self.kel("check", "--json", name)
            self.assertEqual(json.loads(result.out)[0]["file"], shown)


class ForEditors(ToolTest):
    def entries(self, status, *arguments):
        result = self.kel("check", "--json", *arguments)
        self.assertEqual((result.status, result.err), (status, ""))
        return json.loads(result.out)

    def test_files_without_findings_give_an_empty_array(self):
        self.write("a.kel", "1")
        self.assertEqual(self.ok("check", "--json", "a.kel").out, b"[]\n")

    def test_findings_have_their_place_in_characters_and_bytes(self):
        self.write("a.kel", '[ "\u00fc\u00e9" ' + WRAPPED + " ]")
        self.assertEqual(self.entries(1, "--strict", "a.kel"), [
            {"file": "a.kel", "line": 1, "column": 8, "offset": 9, "path": "[1]",
             "severity": "warning",
             "message": WRAPPED + " does not fit in 32 bits and is read as 1215752191"}])

    def test_what_every_check_reports_is_an_error(self):
        self.write("a.kel", "{ s =\n" + checked(described(("x", rules("type = 1", "min = 0",
                                                                      "max = 9"))), "x = 10") + "}")
        self.write("a.kelb", struct_record([(b"a", int_record(1, 5)), (b"a", int_record(2, 6))]))
        self.assertEqual(self.entries(1, "a.kel", "a.kelb"), [
            {"file": "a.kel", "line": 6, "column": 1, "offset": self.read("a.kel").index(b"x = 10"),
             "path": "s.x", "severity": "error", "message": "10 is not allowed (allowed: 0 to 9)"},
            {"file": "a.kelb", "offset": 76, "path": "a", "severity": "error",
             "message": "a repeated name; only its last value is kept"}])

    def test_a_root_value_is_a_point(self):
        self.write("a.kel", f"1\n{WRAPPED}")
        self.assertEqual(self.entries(1, "--strict", "a.kel")[0]["path"], "2:.")

    def test_findings_beyond_a_thousand_are_entries_too(self):
        self.write("a.kel", "{\n" + "a = 1\n" * 1003 + "}")
        self.assertEqual(len(self.entries(1, "--strict", "a.kel")), 1002)
        self.write("a.json", "[" + ",".join(["null"] * 1002) + "]")
        entries = self.entries(1, "--strict", "a.json")
        self.assertEqual(entries[999]["column"], 2 + 5 * 999)
        self.assertEqual(entries[1000:], [{"file": "a.json", "severity": "warning",
                                           "message": "2 more such places"}])

    def test_malformed_files_are_entries_with_their_place(self):
        self.write("a.kel", "{ a = 1\n b }")
        self.write("b.json", '{"a": 1,\n "b" 2}')
        self.write("c.kelb", record(ARRAY, string_record(b"abc", 2))[:-1])
        self.write("d.kel", "1")
        self.write("e.kel", b"\x1f\x8b\x08")
        text, other, binary, foreign = self.entries(1, "a.kel", "b.json", "c.kelb", "d.kel", "e.kel")
        self.assertEqual((text["file"], text["line"], text["column"], text["severity"]),
                         ("a.kel", 2, 4, "error"))
        self.assertEqual((other["file"], other["line"], other["column"]), ("b.json", 2, 6))
        self.assertEqual((text["offset"], text["message"], text["hint"]),
                         (11, 'expected "=" after "b", found "}"',
                          "a variable is written as NAME = VALUE"))
        self.assertEqual((binary["file"], binary["offset"], binary["path"]), ("c.kelb", 70, "[0]"))
        self.assertEqual((foreign["line"], foreign["column"], foreign["hint"]),
                         (1, 1, "decompress it first"))
        for entry in (text, other, binary):
            self.assertNotRegex(entry["message"], rf"{entry['file']}|offset|\n|\A[0-9:]")

    def test_an_unreadable_file_is_a_message_and_the_others_are_checked(self):
        self.write("a.kel", "{ a = ? }")
        result = self.kel("check", "--json", "none.kel", "a.kel")
        self.assertEqual((result.status, result.err),
                         (3, "kel: none.kel: No such file or directory\n"))
        self.assertEqual([entry["file"] for entry in json.loads(result.out)], ["a.kel"])

    def test_bytes_that_are_not_utf_8_do_not_break_the_array(self):
        self.write("a.kel", b'#define "\xff\x01" 1\n5')
        self.assertEqual(self.entries(1, "--strict", "a.kel")[0]["message"],
                         'the definition of "\\xff\\u0001" is never used')
