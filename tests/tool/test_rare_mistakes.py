"""Messages about mistakes that are rare, and about what stands beside a mistake."""

from support import ToolTest

GUID = "3F2504E0-4F89-11D3-9A0C-0305E82C3301"


class Explained(ToolTest):
    def explains(self, content, *expected, name="a.kel"):
        """Expects a check to print this heading, and this hint if there is one."""
        self.write(name, content)
        result = self.kel("check", name)
        lines = result.err.splitlines()
        found = [lines[0].removeprefix(f"kel: {name}:")]
        found += [line.split("= hint: ")[1] for line in lines if "= hint: " in line]
        self.assertEqual((result.status, found), (1, list(expected)))


class Text(Explained):
    def test_a_plus_has_a_hint_only_before_a_digit(self):
        self.explains("[ 1 +2 ]", '1:5: expected a value or "]", found "+2"',
                      "numbers have no plus sign: remove it")
        self.explains("[ 1 + 2 ]", '1:5: expected a value or "]", found "+"')
        self.explains("[ 1 +", '1:5: expected a value or "]", found "+"')

    def test_a_hash_in_a_struct_begins_neither_a_comment_nor_a_definition(self):
        self.explains("{ # note\n a = 1 }", '1:3: expected a name or "}", found "#"',
                      'a comment begins with "//", a definition with "#define"')

    def test_letters_beyond_ascii_need_quotes_and_other_bytes_are_not_letters(self):
        self.explains("{ \u00e4 = 1 }", '1:3: expected a name or "}", found "\u00e4"',
                      "words with letters beyond ASCII stand in double quotes")
        self.explains(b"[ \xe4 ]", '1:3: expected a value or "]", found "\\xe4"',
                      "this byte is not valid UTF-8, and text outside quotes is ASCII")

    def test_a_comment_ends_before_a_carriage_return_or_a_form_feed(self):
        hint = "text has no commas between values: remove it"
        self.explains("// x\r\n[ 1, 2 ]", '2:4: expected a value or "]", found ","', hint)
        self.explains("// x\f[ 1, 2 ]", '1:9: expected a value or "]", found ","', hint)

    def test_an_identity_has_dashes(self):
        digits = GUID.replace("-", "")
        self.explains(f"[ REF {digits} ]",
                      f'1:7: expected the identity of a value after "REF", found "{digits}"',
                      f"an identity is written as {GUID}")

    def test_constants_are_values_before_a_mistake(self):
        self.explains("[ true false null NULL, ]", '1:23: expected a value or "]", found ","',
                      "text has no commas between values: remove it")

    def test_two_points_do_not_begin_a_number(self):
        self.explains("[ ..5 ]", '1:3: "..5" is not a number',
                      'versions, dates and times are strings: add quotes: "..5"')

    def test_a_colon_in_an_array_is_read_as_after_a_name(self):
        self.explains("[ size : 5 ]", '1:3: expected a value or "]", found the name "size"',
                      'an array has no names: a struct is written in "{ }"')
        self.explains("[ : 5 ]", '1:3: expected a value or "]", found ":"')

    def test_a_quoted_unit_after_a_number_is_a_name(self):
        self.explains('{ a = 5 "kg"\n b = 1 }', '1:13: expected "=" after "kg"',
                      "a variable is written as NAME = VALUE")

    def test_an_unknown_word_among_many_definitions_is_explained(self):
        many = "".join(f"#define N{i} {i}\n" for i in range(1500))
        self.explains(many + "Nope", '1501:1: "Nope" is not defined',
                      'a string stands in quotes: "Nope"')

    def test_a_stray_bracket_is_explained_by_one_that_is_indented_differently(self):
        self.explains("[\n\t[\n\t1\n]\n]\n]\n", '6:1: found "]" without an open "["',
                      '"]" at 4:1 closes "[" at 2:2, which is indented differently')

    def test_an_open_bracket_is_explained_by_another_one_that_is_indented_differently(self):
        self.explains("[\n[\n\t\t1\n\t]\n",
                      '1:1: "[" is not closed before the end of the input at 4:3',
                      '"]" at 4:2 closes "[" at 2:1, which is indented differently')

    def test_an_underscore_makes_a_file_without_a_suffix_text(self):
        self.explains("[ _x ]", '1:3: "_x" is not defined', 'a string stands in quotes: "_x"',
                      name="a")


class Json(Explained):
    def test_a_unit_after_zero_is_not_a_leading_zero(self):
        self.explains("[0m]", '1:2: "0m" is not a number',
                      'a number with a unit is a string: add quotes: "0m"', name="a.json")

    def test_a_byte_order_mark_alone_is_not_a_value(self):
        self.explains(b"\xef\xbb\xbf", "1:2: expected a value, found the end of the input",
                      name="a.json")

    def test_roots_need_white_space_between_a_zero_and_a_word(self):
        self.explains("0true", "1:2: white space is missing between two values", name="a.json")

    def test_a_closing_bracket_before_every_value_is_reported(self):
        self.explains("} 1", '1:1: found "}" without an open "{"', name="a.json")
