"""Files that tools other than kel have written: unusual records, names and layouts."""

import json

from support import ToolTest
from test_kinds import checked, described, rules

GUID = "3F2504E0-4F89-11D3-9A0C-0305E82C3301"


def row(number, added):
    """Returns a struct with more scalars than a key is searched among, and with a null or an array."""
    many = " ".join(f"k{i} = {number}" for i in range(20))
    empty = "null" if number % 2 else "4"
    return f"{{ id = {number} x = {empty} a = [ {number} ] {many} v = {number + added} }}"


class Records(ToolTest):
    def test_changed_records_are_paired_among_other_values(self):
        for name, added, others in (("a.kel", 0, "7 { other = 1 }"), ("b.kel", 3, "7 8")):
            rows = "\n".join(row(number, added) for number in range(3))
            self.write(name, f"[ {others}\n{rows} ]")
        lines = self.kel("diff", "a.kel", "b.kel").out.decode().splitlines()
        for i in range(3):
            self.assertIn(f"~ [{i + 2}].v: {i} -> {i + 3}", lines)
        self.assertEqual(len(lines), 4)

    def test_a_report_has_a_null_before_or_after_a_value(self):
        self.write("a.kel", "{ a = null }")
        self.write("b.kel", "{ a = 1 }")
        for names, old, new in ((("a.kel", "b.kel"), None, 1), (("b.kel", "a.kel"), 1, None)):
            result = self.kel("diff", "--json", *names)
            self.assertEqual(json.loads(result.out)["changes"],
                             [{"change": "changed", "path": "a", "old": old, "new": new}])


class Layout(ToolTest):
    def test_names_that_look_like_parts_of_a_header_are_laid_out(self):
        self.write("a.kel", "{ a@b = 1 REF = 2 @hashCode = 5 }")
        self.assertEqual(self.ok("fmt", "a.kel").out,
                         b"{\n\t@hashCode = 5\n\tREF = 2\n\ta@b = 1\n}\n")

    def test_json_that_is_laid_out_already_is_printed(self):
        self.write("a.json", "[\n    1\n]\n")
        self.assertEqual(self.ok("fmt", "a.json").out, b"[\n    1\n]\n")

    def test_a_form_feed_is_layout_also_without_a_suffix(self):
        self.write("a", "[\f1 ]")
        self.assertEqual(self.ok("show", "a").out, b"[\n\t1\n]\n")

    def test_a_guid_can_end_any_container_or_the_text(self):
        for text in (GUID, f"[ {GUID} ]", f"{{ a = {GUID} }}", f"( {GUID} = {GUID} )"):
            with self.subTest(text):
                self.write("a.kel", text)
                self.ok("check", "--strict", "a.kel")


class Arguments(ToolTest):
    def test_a_value_can_have_a_blank_before_its_bracket(self):
        self.write("a.kel", "{ a = 1 }")
        self.assertEqual(self.ok("set", "a.kel", "a", " [ 2 ]").out, b"{\n\ta = [\n\t\t2\n\t]\n}\n")

    def test_help_before_a_command_is_about_the_command(self):
        purpose = self.ok("check", "--help").out.splitlines()[0]
        for option in ("-h", "--help"):
            self.assertEqual(self.ok(option, "check").out.splitlines()[0], purpose)

    def test_an_empty_pattern_with_a_kind_finds_every_value_of_the_kind(self):
        self.write("a.kel", "{ a = 1 b = true }")
        for pattern in ([""], []):
            self.assertEqual(self.ok("find", "--kind", "int", "a.kel", *pattern).out, b"a: 1\n")

    def test_a_descriptor_takes_no_other_descriptor_as_a_variable(self):
        self.write("a.kel", "{ @type = 51 }")
        self.fails(1, "kel: a.kel: x: a struct descriptor is not a variable descriptor\n",
                   "set", "a.kel", "x", "{ @type = 51 }")


class Numbers(ToolTest):
    def test_negative_integers_beyond_32_bits_are_doubles_if_they_are_exact(self):
        self.write("a.json", "[-4294967296]")
        self.ok("convert", "a.json", "a.kelb")
        self.ok("convert", "a.kelb", "b.json")
        self.assertEqual(self.json("b.json"), [-4294967296])


class Schemas(ToolTest):
    def finds(self, schema, content, *lines):
        self.write("schema.kel", schema)
        self.write("a.kel", content)
        result = self.kel("check", "--schema", "schema.kel", "a.kel")
        self.assertEqual((result.status, self.headings(result.err)),
                         (1 if lines else 0, [f"kel: a.kel{line}" for line in lines]))

    def test_a_shared_struct_is_compared_once_with_a_shared_description(self):
        inner = f"{GUID} = " + described(("x", rules("type = 1")))
        outer = f"{{ a = {inner}\n b = REF {GUID} }}"
        value = GUID.replace("3F", "4F")
        self.finds(outer, f"{{ a = {value} = {{ x = true }}\n b = REF {value} }}",
                   ":1:48: a.x: true is a boolean where an int is described")

    def test_a_struct_or_a_long_string_in_place_of_a_number_is_marked(self):
        one = described(("x", rules("type = 1")))
        self.finds(one, "{ x = { y = 1 } }", ":1:3: x: a struct where an int is described")
        self.finds(described(("x", rules("type = 3"))), '{ x = "much" }',
                   ':1:3: x: "much" is a string where a double is described')
        self.finds(one, f'{{ x = "{"y" * 2000}" }}',
                   f':1:3: x: "{"y" * 60}..." is a string where an int is described')

    def test_plain_structs_can_share_a_part_of_a_schema(self):
        inner = described(("y", rules("type = 1")))
        self.finds(f"{{ a = {GUID} = {{ x = {inner} }} b = REF {GUID} }}",
                   "{ a = { x = { y = true } } b = { x = { y = 1 } } }",
                   ":1:15: a.x.y: true is a boolean where an int is described")

    def test_a_number_is_not_a_checked_struct(self):
        self.finds(described(("x", rules("type = 50"))), "{ x = 5 }",
                   ":1:3: x: 5 is an int where a checked struct is described")


class WrongRules(ToolTest):
    def finds(self, mistake, *properties):
        """Expects that the rules of a variable are wrong and allow nothing."""
        self.write("a.kel", checked(described(("x", rules("type = 1", *properties))), "x = 2"))
        lines = self.headings(self.kel("check", "a.kel").err)
        self.assertEqual([line.split(": ", 3)[3] for line in lines],
                         [mistake, "2 is not allowed (allowed: nothing)"])

    def test_choices_that_are_not_in_an_array_allow_nothing(self):
        self.finds("the allowed values are 1, not an array", "enum = 1")

    def test_an_upper_bound_that_is_a_word_allows_nothing(self):
        self.finds('the bounds 0 and "a" are not both numbers', "min = 0", 'max = "a"')

    def test_a_bound_that_is_null_is_reported(self):
        self.write("a.kel", checked(described(("x", rules("type = 1", "min = null", "max = 5"))),
                                    "x = 2"))
        lines = self.headings(self.kel("check", "a.kel").err)
        self.assertEqual([line.split(": ", 3)[3] for line in lines],
                         ["the bounds null and 5 are not both numbers"])
