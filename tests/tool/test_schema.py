"""kel check --schema."""

import json

from support import (ARRAY, NO_IDENTITY, ToolTest, double_record, int_record, record, reference,
                     string_record, struct_record)
from test_kinds import checked, described, rules

LEVEL = rules("type = 1", "min = 0", "max = 10")
MODE = rules("type = 6", 'enum = ["low" "high"]')
SETTINGS = described(("level", LEVEL), ("mode", MODE))
DEEP = 20_000


class Schema(ToolTest):
    def finds(self, schema, content, *lines, name="a.kel", options=()):
        """Expects a check against the schema to print exactly these lines, each after the name of
        the file and with its excerpt."""
        self.write("schema.kel", schema)
        self.write(name, content)
        result = self.kel("check", "--schema", "schema.kel", *options, name)
        self.assertEqual((result.status, self.headings(result.err)),
                         (1 if lines else 0, [f"kel: {name}{line}" for line in lines]))


class Comparison(Schema):
    def test_values_that_the_descriptor_allows_are_fine(self):
        self.finds(SETTINGS, '{ level = 10 mode = "low" }')
        self.finds(SETTINGS, '{"level": 0, "mode": "high"}', name="a.json")

    def test_a_value_outside_its_range_or_choices_is_reported_with_its_line(self):
        self.finds(SETTINGS, '{ level = 11\nmode = "off" }',
                   ":1:3: level: 11 is not allowed (allowed: 0 to 10)",
                   ':2:1: mode: "off" is not allowed (allowed: "low", "high")')
        self.finds(SETTINGS, '{"level": 11,\n"mode": "off"}',
                   ":1:2: level: 11 is not allowed (allowed: 0 to 10)",
                   ':2:1: mode: "off" is not allowed (allowed: "low", "high")', name="a.json")

    def test_repeated_names_with_other_contents_do_not_hide_the_place_of_a_finding(self):
        others = ["a = [ 1 2 3 ]", "a = [ 1 ]", "b = [ 9 ]", "b = { x = 1 }", "c = < [ 1 2 ] [ 3 9 ] >",
                  "c = < [ 1 ] [ 2 ] >", "d = { x = 1 }", "d = { y = 1 }", "e = { x = 1 }", "e = 5",
                  "f = < [ 1 ] [ 2 ] >", "f = 5"]
        self.finds(described(("z", rules("type = 1"))),
                   "\n".join(["{", *others, 'z = "bad"', "}"]),
                   f':{len(others) + 2}:1: z: "bad" is a string where an int is described')

    def test_binary_is_compared_too(self):
        self.finds(SETTINGS, struct_record([(b"level", int_record(11, 2)),
                                            (b"mode", string_record(b"low", 3))]),
                   ": offset 40: level: 11 is not allowed (allowed: 0 to 10)", name="a.kelb")

    def test_findings_in_binary_have_the_offsets_of_dump_in_order(self):
        entries = [(b"level", int_record(11, 3)), (b"mode", int_record(5, 4)),
                   (b"other", reference(3))]
        self.write("s.kel", described(("a", rules("type = 8", "@desc = " + SETTINGS)),
                                      ("z", rules("type = 1"))))
        self.write("a.kelb", struct_record([(b"z", string_record(b"x", 9)),
                                            (b"a", struct_record(entries, 2))]))
        rows = self.ok("dump", "a.kelb").out.decode().splitlines()
        offset = {row.split(": ")[0].split()[-1]: int(row.split()[0]) for row in rows if ": " in row}
        found = self.kel("check", "--json", "--strict", "--schema", "s.kel", "a.kelb")
        places = [(entry["path"], entry["offset"]) for entry in json.loads(found.out)]
        self.assertEqual(places, [("z", offset["z"]), ("a.level", offset["level"]),
                                  ("a.other", offset["level"]), ("a.mode", offset["mode"])])

    def test_a_value_of_another_kind_is_reported(self):
        self.finds(SETTINGS, '{ level = "5"\nmode = 5 }',
                   ':1:3: level: "5" is a string where an int is described',
                   ":2:1: mode: 5 is an int where a string is described")

    def test_numbers_convert_if_nothing_is_lost(self):
        numbers = described(("i", rules("type = 1")), ("d", rules("type = 3")))
        self.finds(numbers, struct_record([(b"i", double_record(3.0, 2)),
                                           (b"d", int_record(3, 3))]), name="a.kelb")
        for number in (3.5, 2147483648.0, float("nan"), float("-inf")):
            with self.subTest(number=number):
                self.finds(numbers, struct_record([(b"i", double_record(number, 2))]),
                           f": offset 36: i: {'2147483648' if number == 2147483648 else number} is a double "
                           "where an int is described", name="a.kelb")

    def test_missing_and_null_variables_are_fine(self):
        self.finds(SETTINGS, "{ level = NULL }", options=["--strict"])

    def test_unknown_names_are_reported_by_a_strict_check_alone(self):
        text = "{ level = 1\nmod = 5\nother = NULL }"
        self.finds(SETTINGS, text)
        self.finds(SETTINGS, text, ':2:1: mod: the descriptor does not know this name '
                   '(did you mean "mode"?)',
                   ":3:1: other: the descriptor does not know this name",
                   options=["--strict"])

    def test_a_strict_check_scans_the_text_too(self):
        self.finds(SETTINGS, "{ level = 4294967301\nlevel = 5 }",
                   ":1:11: level: 4294967301 does not fit in 32 bits and is read as 5",
                   ":2:1: level: a repeated name; only its last value is kept (first at line 1)",
                   options=["--strict"])

    def test_a_value_that_is_not_a_struct_is_reported(self):
        self.finds(SETTINGS, "[ 1 ]",
                   ":1:1: (the value itself): an array where a struct is described")
        self.finds(SETTINGS, "NULL",
                   ": (the value itself): null where a struct is described")

    def test_every_root_value_is_compared(self):
        self.finds(SETTINGS, "{ level = 11 }\n{ level = 1 }\n{ level = 12 }",
                   ":1:3: 1:level: 11 is not allowed (allowed: 0 to 10)",
                   ":3:3: 3:level: 12 is not allowed (allowed: 0 to 10)")

    def test_a_checked_struct_keeps_to_both_descriptors(self):
        own = described(("level", rules("type = 1", "min = 5", "max = 20")))
        for level, allowed in ((1, "5 to 20"), (20, "0 to 10")):
            self.finds(SETTINGS, checked(own, f"level = {level}"),
                       f":5:1: level: {level} is not allowed (allowed: {allowed})")


    def test_offsets_in_binary_are_those_after_null_too(self):
        self.write("a.kelb", struct_record([(b"none", reference(0)[:4] + NO_IDENTITY +
                                             reference(0)[-4:]),
                                            (b"list", record(ARRAY, int_record(1, 4), 3)),
                                            (b"level", int_record(11, 2))]))
        self.write("schema.kel", SETTINGS)
        self.fails(1, f"kel: a.kelb: offset {self.read('a.kelb').find(b'level') + 6}: level: 11 is "
                      "not allowed (allowed: 0 to 10)\n",
                   "check", "--schema", "schema.kel", "a.kelb")

    def test_values_that_text_cannot_hold_are_compared_with_allowed_ones(self):
        schema = described(("x", rules("type = 5", 'enum = [ "a" ]')),
                           ("y", rules("type = 7", "enum = [ [ 1 ] [ [ 1 ] [ 1 ] ] ]")))
        self.finds(schema, '{"x": {"$memblock": "AAAA"}}',
                   ':1:2: x: a memory block is not allowed (allowed: "a")', name="a.json")
        self.write("shared.kelb", struct_record([
            (b"y", record(ARRAY, record(ARRAY, int_record(1, 4), 3) + reference(3), 2))]))
        self.ok("check", "--schema", "schema.kel", "shared.kelb")
        self.write("cycle.kelb", struct_record([(b"y", record(ARRAY, reference(2), 2))]))
        self.fails(1, "kel: cycle.kelb: offset 36: y: an array is not allowed (allowed: an array, "
                      "an array)\n", "check", "--schema", "schema.kel", "cycle.kelb")


class Places(Schema):
    def test_at_compares_the_value_at_a_path_alone(self):
        text = '{ level = 11 list = [ 1 { level = 12 } ] }'
        self.finds(SETTINGS, text, ":1:27: list[1].level: 12 is not allowed (allowed: 0 to 10)",
                   options=["--at", "list[1]"])
        self.finds(SETTINGS, text, ":1:14: list: an array where a struct is described",
                   options=["--at", "list"])

    def test_at_finds_a_value_of_a_manager(self):
        self.finds(SETTINGS, '{ m = ( 3F2504E0-4F89-11D3-9A0C-0305E82C3301 = { level = "x" } ) }',
                   ':1:50: m#3F.level: "x" is a string where an int is described',
                   options=("--at", "m#3F"))

    def test_at_finds_a_value_of_one_of_several_roots(self):
        self.finds(SETTINGS, "1\n{ a = { level = 11 } }",
                   ":2:9: 2:a.level: 11 is not allowed (allowed: 0 to 10)", options=["--at", "2:a"])

    def test_a_path_that_leads_nowhere_is_reported(self):
        self.finds(SETTINGS, "{ window = {} }", ': windw: not found (did you mean "window"?)',
                   options=["--at", "windw"])

    def test_at_requires_a_schema(self):
        self.fails(2, "kel: --at requires --schema\n", "check", "--at", "a", "-", input="1")

    def test_a_wrong_path_is_refused(self):
        self.write("schema.kel", SETTINGS)
        result = self.kel("check", "--schema", "schema.kel", "--at", "a[", "-", input="1")
        self.assertEqual(result.status, 2, result.err)


class Nested(Schema):
    def test_a_struct_of_descriptors_describes_the_variables_of_their_names(self):
        schema = f"{{ audio = {SETTINGS}\nwindow = {{ main = {SETTINGS} }} }}"
        self.finds(schema, "{ audio = { level = 11 }\nwindow = { main = { level = 12 } other = 1 }\n"
                           "rest = { level = 13 } }",
                   ":1:13: audio.level: 11 is not allowed (allowed: 0 to 10)",
                   ":2:21: window.main.level: 12 is not allowed (allowed: 0 to 10)")
        self.finds(schema, "{ audio = 5\nwindow = NULL\nrest = 1 }",
                   ":1:3: audio: 5 where a struct is described",
                   ":3:1: rest: the descriptor does not know this name", options=["--strict"])

    def test_a_variable_can_have_a_descriptor_of_its_own(self):
        inner = f"@desc = {SETTINGS}"
        for schema in (described(("s", rules("type = 50", inner))),
                       described(("s", rules("type = 50", "default = " + checked(SETTINGS))))):
            self.finds(schema, "{ s = { level = 11 extra = 1 } }",
                       ":1:9: s.level: 11 is not allowed (allowed: 0 to 10)")
            self.finds(schema, "{ s = 5 }", ":1:3: s: 5 where a struct is described")
            self.finds(schema, '{"s": {"level": 1, "levle": 2}}', ":1:20: s.levle: the descriptor "
                       'does not know this name (did you mean "level"?)', name="a.json",
                       options=["--strict"])

    def test_a_checked_struct_without_a_descriptor_of_its_own_can_be_plain(self):
        self.finds(described(("s", rules("type = 50"))), "{ s = { level = 11 } }")

    def test_a_checked_struct_can_be_the_schema(self):
        self.finds(checked(SETTINGS, "level = 1"), "{ level = 11 }",
                   ":1:3: level: 11 is not allowed (allowed: 0 to 10)")

    def test_a_deep_schema_and_a_deep_document_take_no_recursion(self):
        inner = SETTINGS
        schema = f"{{ a = " * DEEP + inner + "}" * DEEP
        self.write("schema.kel", schema)
        self.write("a.kel", "{ a = " * DEEP + "{ level = 11 }" + "}" * DEEP)
        result = self.kel("check", "--schema", "schema.kel", "a.kel", small_stack=True)
        self.assertEqual(result.status, 1)
        self.assertRegex("\n".join(self.headings(result.err)),
                         rf"\Akel: a\.kel:1:{6 * DEEP + 3}: a\.a.*\.a\.level: 11 is not allowed "
                         r"\(allowed: 0 to 10\)\Z")


class Schemas(Schema):
    def test_mistakes_in_the_schema_are_reported_once_and_files_are_still_checked(self):
        self.write("schema.kel", described(("x", rules("type = 1", "min = 2", "max = 1")),
                                           ("y", rules("type = 1"))))
        self.write("a.kel", "{ y = true }")
        self.fails(1, "kel: schema.kel:2:1: x: min 2 is above max 1\n"
                      "    2 | x = { @type = 52\n"
                      "      | ^\n" +
                      "kel: a.kel:1:3: y: true is a boolean where an int is described\n"
                      "    1 | { y = true }\n"
                      "      |   ^\n" * 2,
                   "check", "--schema", "schema.kel", "a.kel", "a.kel")

    def test_other_files_are_no_schemas(self):
        self.write("a.kel", "{ level = 11 }")
        for content in ("5", "{}", "{ a = {} }", "{ a = 5 }", f"{{ a = {SETTINGS} b = 5 }}", "NULL",
                        "[]", SETTINGS + SETTINGS, "{ @type = 50 }"):
            with self.subTest(content=content):
                self.write("schema.kel", content)
                self.fails(3, "kel: schema.kel: not a schema: expected one struct descriptor "
                              "({ @type = 51 ... }) or a struct of them by name\n",
                           "check", "--schema", "schema.kel", "a.kel")

    def test_a_schema_that_cannot_be_read_is_reported(self):
        self.write("a.kel", "{}")
        self.fails(3, "kel: none.kel: No such file or directory\n",
                   "check", "--schema", "none.kel", "a.kel")

    def test_a_malformed_schema_is_an_entry_for_editors(self):
        self.write("schema.kel", "{ a = ? }")
        self.write("a.kel", "{}")
        result = self.kel("check", "--json", "--schema", "schema.kel", "a.kel")
        self.assertEqual((result.status, result.err), (3, ""))
        self.assertEqual([(entry["file"], entry["line"]) for entry in json.loads(result.out)],
                         [("schema.kel", 1)])

    def test_findings_are_entries_for_editors(self):
        self.write("schema.kel", SETTINGS)
        self.write("a.json", '{\n "level": 11}')
        result = self.kel("check", "--json", "--schema", "schema.kel", "a.json")
        self.assertEqual((result.status, result.err), (1, ""))
        self.assertEqual(json.loads(result.out), [
            {"file": "a.json", "line": 2, "column": 2, "offset": 3, "path": "level",
             "severity": "error", "message": "11 is not allowed (allowed: 0 to 10)"}])
