import json
import re
import time

from support import ARRAY, STRUCT, ToolTest, record

GUID = "3F2504E0-4F89-11D3-9A0C-0305E82C330"  # lacks one digit


def tabs(depth, text):
    """Returns the text in its written form, at the given depth. Two blanks become a tab."""
    lines = text.replace("  ", "\t").splitlines()
    return "".join("\t" * depth + line + "\n" if line else "\n" for line in lines)


LIST = tabs(0, """\
<
  /* keys: */ 
  [
    "a"
    2
  ]
  /* values: */ 
  [
    1
    {
      x = NULL
    }
  ]
>
""")


def rules(*properties):
    """Returns a variable descriptor on one line."""
    return "{ @type = 52\n" + " ".join(properties) + "}"


def described(*descriptors):
    """Returns a struct descriptor. descriptors: pairs of a name and a variable descriptor."""
    return "{ @type = 51\n" + "\n".join(f"{name} = {text}" for name, text in descriptors) + "}"


def checked(descriptor, *variables):
    """Returns a checked struct."""
    return "{ @type = 50\n@desc = " + descriptor + "\n" + "\n".join(variables) + "}"


LEVEL = rules("type = 1", "min = 0", "max = 10")
MODE = rules("type = 6", 'enum = ["low" "high"]')
SETTINGS = described(("level", LEVEL), ("mode", MODE))


class Kinds(ToolTest):
    def written(self, text):
        """Writes the text to a.kel. Returns the file in the form in which the tool itself writes
        it."""
        self.write("a.kel", text)
        self.ok("convert", "a.kel", "written.kel")
        return self.read("written.kel")

    def refused(self, text, to, *places):
        """Expects a refusal to convert the text, with these places and the advice to use text."""
        self.write("a.kel", text)
        self.places = (f"a.kel: {len(places)} place{'' if len(places) == 1 else 's'} cannot be "
                       f"converted from text to {'binary' if to == 'kelb' else to}:\n" +
                       "".join(f"  {place}\n" for place in places))
        self.fails(1, "kel: " + self.places + "nothing was written; text keeps every kind; "
                      "use --force to convert the rest\n", "convert", "a.kel", "out." + to)
        self.assertEqual(self.files(), ["a.kel"])

    def forced(self, to):
        """Converts a.kel with --force. Returns the result as JSON."""
        result = self.kel("convert", "--force", "a.kel", "out." + to)
        self.assertEqual((result.status, result.err), (0, "kel: warning: " + self.places))
        if to == "kelb":
            self.ok("convert", "out.kelb", "out.json")
        return self.json("out.json")

    def becomes(self, plain, text, *places):
        """Expects binary and JSON to refuse the text with these places, and to make plain data when
        forced."""
        for to in ("kelb", "json"):
            with self.subTest(to=to):
                self.setUp()  # a folder of its own
                self.refused(text, to, *places)
                self.assertEqual(self.forced(to), plain)


class Text(Kinds):
    def test_an_index_list_stays_as_it_is(self):
        self.assertEqual(self.written(LIST).decode(), LIST)
        self.assertEqual(self.ok("show", "a.kel").out.decode(), LIST)
        self.ok("check", "a.kel")

    def test_checked_structs_and_descriptors_stay_with_their_identities(self):
        text = tabs(0, f"""\
{{ @type = 50
  @desc = {{ @type = 51, @hashCode = {GUID}1
    level = {{ @type = 52
      max = 10
      min = 0
      type = 1
    }}

  }}

  level = 3
}}

""")
        self.assertEqual(self.written(text).decode(), text)
        self.assertEqual(self.ok("show", "a.kel").out.decode(), text)
        self.ok("check", "a.kel")

    def test_all_kinds_inside_each_other_are_written_the_same_again(self):
        setting = checked(SETTINGS, "level = 1", f"list = <[1 [2]] [<[] []> ( {GUID}1 = 5 )]>")
        first = self.written(f"[ {setting} ( {GUID}2 = {SETTINGS} {GUID}3 = {LIST} ) {LEVEL} ]")
        self.assertEqual(self.written(first), first)
        self.assertEqual(self.ok("show", "a.kel").out, first)

    def test_a_list_alone_is_told_from_json(self):
        self.assertEqual(self.ok("show", "-", input="<[][]>").out,
                         b"<\n\t/* keys: */ \n\t[\n\t]\n\t/* values: */ \n\t[\n\t]\n>\n")


class PlainData(Kinds):
    def test_an_index_list_becomes_an_array_of_pairs(self):
        self.becomes([["a", 1], [2, {"x": None}]], LIST, "(the value itself): an index list")

    def test_a_checked_struct_becomes_its_variables_without_the_descriptor(self):
        self.becomes({"s": {"empty": None, "level": 3}},
                     "{ s = " + checked(SETTINGS, "level = 3", "empty = NULL") + "}",
                     "s: a checked struct")

    def test_descriptors_become_their_variables(self):
        self.becomes({"level": {"type": 1, "min": 0, "max": 10}}, described(("level", LEVEL)),
                     "(the value itself): a struct descriptor", "level: a variable descriptor")

    def test_managers_become_arrays_and_what_is_inside_is_exchanged_too(self):
        self.becomes([[[[1, [[2, {"level": 4}]]]]]],
                     f"[ ( {GUID}1 = <[1] [<[2] [{checked(SETTINGS, 'level = 4')}]>]> ) ]",
                     "[0]: a manager", f"[0]#{GUID}1: an index list",
                     f"[0]#{GUID}1[0].item: an index list",
                     f"[0]#{GUID}1[0].item[0].item: a checked struct")

    def test_wide_and_deep_managers_become_arrays_in_linear_time(self):
        entries = 100000
        wide = "\n".join(f"{number:08X}{GUID[8:]}0 = {number}" for number in range(entries))
        self.refused(f"(\n{wide}\n)", "json", "(the value itself): a manager")
        self.assertEqual(self.forced("json"), list(range(entries)))
        levels = 20000
        self.write("a.kel", f"( {GUID}0 = " * levels + "1" + " )" * levels)
        result = self.kel("convert", "--force", "a.kel", "out.json")
        self.assertEqual(result.status, 0, result.err)
        self.assertEqual(self.read("out.json").translate(None, b" \n"),
                         b"[" * levels + b"1" + b"]" * levels)

    def test_keys_and_items_have_paths_of_their_own(self):
        self.becomes([[[], 1], [2, {"x": []}]], "<[ <[][]> 2 ] [ 1 { x = <[][]> } ]>",
                     "(the value itself): an index list", "[0].key: an index list",
                     "[1].item.x: an index list")

    def test_guids_in_lists_become_strings_in_binary_only(self):
        text = f"<[ 1 ] [ {GUID}1\n ]>"
        self.refused(text, "json", "(the value itself): an index list")
        self.assertEqual(self.forced("json"), [[1, {"$guid": GUID + "1"}]])
        self.setUp()  # another folder
        self.refused(text, "kelb", "(the value itself): an index list", "[0].item: a guid")
        self.assertEqual(self.forced("kelb"), [[1, GUID + "1"]])

    def test_only_the_first_ten_places_are_listed(self):
        self.write("a.kel", "[" + "<[][]>" * 12 + "]")
        result = self.kel("convert", "a.kel", "b.kelb")
        self.assertEqual(result.status, 1)
        self.assertEqual(result.err.splitlines(), [
            "kel: a.kel: 12 places cannot be converted from text to binary:",
            *(f"  [{i}]: an index list" for i in range(10)),
            "  and 2 more",
            "nothing was written; text keeps every kind; use --force to convert the rest"])

    def test_a_value_in_several_places_becomes_one_value_in_binary(self):
        for text in ("<[][]>", "{ @type = 51\n}"):
            self.write("a.kel", f"[ {GUID}1 = {text} REF {GUID}1\n ]")
            self.assertEqual(self.kel("convert", "--force", "a.kel", "b.kelb").status, 0)
            kind = STRUCT if "{" in text else ARRAY
            empty = record(kind, b"")[20:]  # after the identity
            self.assertEqual(self.read("b.kelb").count(empty), 1)

    def test_other_values_named_like_a_descriptor_stay(self):
        self.write("a.kel", "{ @desc = 1 }")
        self.ok("convert", "a.kel", "b.json")
        self.assertEqual(self.json("b.json"), {"@desc": 1})

    def test_several_roots_are_exchanged_each(self):
        self.write("a.kel", "<[1][2]>\n1\n<[3][4]>")
        result = self.kel("convert", "--force", "a.kel", "b.json")
        self.assertEqual((result.status, self.read("b.json")), (0, b"[[1,2]]\n1\n[[3,4]]\n"))
        self.assertEqual(result.err.splitlines()[1:],
                         ["  1:(the value itself): an index list",
                          "  3:(the value itself): an index list"])


class Check(Kinds):
    def violations(self, text, *lines):
        """Expects check to list exactly these lines, after places, and to end with status 1."""
        self.write("a.kel", text)
        result = self.kel("check", "a.kel")
        found = [re.sub(r"\Akel: a\.kel:\d+:\d+: ", "", line)
                 for line in self.headings(result.err)]
        self.assertEqual((result.status, found), (1, list(lines)))

    def fine(self, text):
        self.write("a.kel", text)
        self.ok("check", "a.kel")

    def test_values_within_a_range_are_fine_and_its_bounds_are_in_it(self):
        for level in (0, 5, 10):
            self.fine(checked(SETTINGS, f"level = {level}", 'mode = "high"'))

    def test_a_value_outside_a_range_is_told(self):
        self.violations(checked(SETTINGS, "level = 11"),
                        "level: 11 is not allowed (allowed: 0 to 10)")

    def test_a_value_outside_an_enumeration_is_told(self):
        self.violations("{ s = " + checked(SETTINGS, 'mode = "off"') + "}",
                        's.mode: "off" is not allowed (allowed: "low", "high")')

    def test_doubles_are_told_in_short(self):
        ranged = rules("type = 3", "min = 0.25", "max = 10.0")
        self.violations(checked(described(("x", ranged)), "x = 10.5"),
                        "x: 10.5 is not allowed (allowed: 0.25 to 10)")

    def test_long_enumerations_and_strings_are_cut(self):
        many = rules("type = 1", "enum = [" + " ".join(map(str, range(12))) + "]")
        self.violations(checked(described(("x", many)), 'x = "' + "a" * 59 + "\u00fc" * 9 + '"'),
                        f'x: "{"a" * 59}..." is not allowed (allowed: 0, 1, 2, 3, 4, 5, 6, 7, 8, '
                        "9 and 2 more)")

    def test_allowed_values_are_compared_as_values(self):
        many = rules("type = 1", f'enum = [ 1 2.5 true "a" "" {GUID}1\n [1 {GUID}2\n] 0.0 ]')
        settings = described(*((name, many) for name in "abcdefghijkl"))
        self.fine(checked(settings, "a = 1.0", "b = 2.5", "c = true", 'd = "a"', 'e = ""',
                          f"f = {GUID}1", f"g = [1.0 {GUID}2\n]", "h = 0", "i = -.0"))
        self.violations(checked(settings, 'a = "1"', "b = 2", "c = false", 'd = "true"',
                                f'e = "{GUID}1"', f"f = {GUID}2", "g = [1]", "h = {}"),
                        *(f"{name}: {value} is not allowed (allowed: 1, 2.5, true, \"a\", \"\", "
                          f"{GUID}1, an array, 0)" for name, value in
                          zip("abcdefgh", ('"1"', "2", "false", '"true"', f'"{GUID}1"',
                                           f"{GUID}2", "an array", "a struct"))))

    def test_a_long_enumeration_that_many_variables_share_takes_linear_time(self):
        count = 20000
        words = " ".join(f'"{number:019}"' for number in range(count))
        shared = rules("type = 6", f"enum = [{words}]", f'default = "{count - 1:019}"')
        names = [f"v{number}" for number in range(1, count)]
        self.write("a.kel", checked(
            described(("v0", f"{GUID}1 = {shared}"), *((name, f"REF {GUID}1") for name in names)),
            *(f'{name} = "{count - 1:019}"' for name in names)))
        start = time.monotonic()
        self.ok("check", "a.kel")
        self.assertLess(time.monotonic() - start, 30)

    def test_a_long_enumeration_of_containers_takes_linear_time(self):
        count = 20000
        lists = " ".join(f"[ {{ a = [ {number} ] }} ]" for number in range(count))
        shared = rules("type = 7", f"enum = [{lists}]")
        names = [f"v{number}" for number in range(1, count)]
        self.write("a.kel", checked(
            described(("v0", f"{GUID}1 = {shared}"), *((name, f"REF {GUID}1") for name in names)),
            *(f"{name} = [ {{ a = [ {count - 1} ] }} ]" for name in names)))
        start = time.monotonic()
        self.ok("check", "a.kel")
        self.assertLess(time.monotonic() - start, 30)

    def test_allowed_containers_are_compared_by_all_that_they_hold(self):
        allowed = ("[]", "[[]]", "[1 2]", "[[1] 2]", "{ a = 1 b = [2.0] }", "{ a = null }", MODE,
                   checked(described(("x", LEVEL)), "x = 2"), "<[1] [[2]]>",
                   f"({GUID}1 = 5)")
        many = rules("type = 7", f"enum = [{' '.join(allowed)}]")
        for text in allowed:
            self.fine(checked(described(("x", many)), f"x = {text}"))
        for text in ("[[] []]", "[[[]]]", "[2 1]", "[1 [2]]", "{ a = 1 b = [2.5] }", "{ b = null }",
                     "{ a = null b = null }", "{}", LEVEL, "{ type = 1 min = 0 max = 10 }",
                     checked(described(("x", LEVEL)), "x = 3"), "[1 2 []]", "1", "null",
                     "<[1] [2]>", "<[[2]] [1]>", f"({GUID}1 = 6)"):
            with self.subTest(text=text):
                self.write("a.kel", checked(described(("x", many)), f"x = {text}"))
                result = self.kel("check", "a.kel")
                self.assertEqual((result.status, "is not allowed" in result.err),
                                 (0, False) if text == "null" else (1, True))

    def test_an_empty_enumeration_allows_nothing(self):
        self.violations(checked(described(("x", rules("type = 1", "enum = []"))), "x = [1]"),
                        "x: an array is not allowed (allowed: nothing)")

    def test_line_ends_in_strings_stay_on_the_line(self):
        self.violations(checked(SETTINGS, 'mode = "a\nb"'),
                        'mode: "a\\u000ab" is not allowed (allowed: "low", "high")')

    def test_missing_null_and_undescribed_variables_are_no_violations(self):
        self.fine(checked(SETTINGS, "level = NULL", "other = 99"))

    def test_without_a_descriptor_everything_is_allowed(self):
        self.fine("{ @type = 50\nlevel = 11 }")
        self.fine(checked("{ level = 1 }", "level = 11"))

    def test_every_violation_in_every_checked_struct_of_every_root_is_told(self):
        bad = checked(SETTINGS, "level = 11", 'mode = ""')
        self.violations(f"[ {bad} <[{bad}][( {GUID}1 = {bad} )]> ]\n{bad}", *(
            line for path in ("1:[0].", "1:[1][0].key.",
                              f"1:[1][0].item#{GUID}1.", "2:")
            for line in (f"{path}level: 11 is not allowed (allowed: 0 to 10)",
                         f'{path}mode: "" is not allowed (allowed: "low", "high")')))

    def test_a_checked_struct_in_another_is_checked_too(self):
        inner = checked(SETTINGS, "level = -1")
        self.violations(checked(described(("s", rules("type = 50"))), f"s = {inner}"),
                        "s.level: -1 is not allowed (allowed: 0 to 10)")

    def test_a_shared_descriptor_holds_for_all_and_is_told_once(self):
        wrong = described(("x", rules("min = 2", "max = 1", "type = 1")))
        self.violations(f"[ {checked(GUID + '1 = ' + wrong)} "
                        f"{checked('REF ' + GUID + '1', 'x = 1')} ]",
                        "[0].@desc.x: min 2 is above max 1",
                        "[1].x: 1 is not allowed (allowed: nothing)")

    def wrong_rules(self, message, *properties):
        self.violations(described(("x", rules(*properties))), "x: " + message)

    def test_min_above_max_is_told(self):
        self.wrong_rules("min 2 is above max 1", "type = 1", "min = 2", "max = 1")
        self.wrong_rules("min 0.5 is above max 0.25", "type = 3", "min = 0.5", "max = 0.25",
                         "default = 0.3")

    def test_a_default_outside_range_or_enumeration_is_told(self):
        self.wrong_rules("the default 11 is not allowed (allowed: 0 to 10)",
                         "type = 1", "min = 0", "max = 10", "default = 11")
        self.wrong_rules('the default "c" is not allowed (allowed: "a", "b")',
                         "type = 6", 'enum = ["a" "b"]', 'default = "c"')

    def test_an_unknown_or_missing_type_is_told(self):
        self.wrong_rules("the type 13 is unknown", "type = 13")
        self.wrong_rules("the type 0 is unknown", "type = 0")
        self.wrong_rules("the type 53 is unknown", "type = 53")
        self.wrong_rules("the type is missing", "default = 1")
        self.wrong_rules("the type is missing", "type = NULL")

    def test_every_kind_is_a_known_type(self):
        for kind in (*range(1, 13), 50, 51, 52):
            self.fine(described(("x", rules(f"type = {kind}"))))

    def test_ranges_that_fit_nothing_are_told(self):
        self.wrong_rules("a range for a type that is neither Int nor Double",
                         "type = 6", "min = 1", "max = 2")
        self.wrong_rules('the bounds "a" and null are not both numbers',
                         "type = 1", 'min = "a"', "max = NULL")

    def test_allowed_values_that_are_no_array_are_told(self):
        self.wrong_rules("the allowed values are 1, not an array", "type = 1", "enum = 1")

    def test_only_variable_descriptors_describe(self):
        self.violations(checked(described(("x", "5"), ("y", "{ type = 1 }")), "x = 1"),
                        "@desc.x: 5 is not a variable descriptor",
                        "@desc.y: a struct is not a variable descriptor")

    def test_one_bound_alone_is_no_range(self):
        self.fine(checked(described(("x", rules("type = 1", "min = 5"))), "x = 1"))

    def test_a_null_default_is_no_default(self):
        self.fine(described(("x", rules("type = 1", "min = 0", "max = 1", "default = NULL"))))

    def test_other_files_are_checked_all_the_same(self):
        self.write("a.kel", checked(SETTINGS, "level = 11"))
        self.write("b.kel", "{ b = ? }")
        self.write("c.kel", "1")
        violation = ("kel: a.kel:7:1: level: 11 is not allowed (allowed: 0 to 10)\n"
                     "    7 | level = 11}\n"
                     "      | ^^^^^\n")
        self.fails(1, violation +
                      'kel: b.kel:1:7: expected a value for "b", found "?"\n'
                      "    1 | { b = ? }\n"
                      "      |       ^\n", "check", "a.kel", "b.kel", "c.kel")
        self.fails(3, violation + "kel: none.kel: No such file or directory\n",
                   "check", "a.kel", "none.kel")

    def test_violations_are_no_matter_of_show_and_convert(self):
        text = self.written(checked(SETTINGS, "level = 11"))
        self.write("b.kel", text)
        self.assertEqual(self.ok("show", "b.kel").out, text)


class Depth(Kinds):
    """A nesting of 100,000 levels with a stack of 256 KiB."""

    LEVELS = 100000

    def deep(self, head, tail):
        self.write("a.kel", head * self.LEVELS + "1" + tail * self.LEVELS)

    def forced_json(self):
        result = self.kel("convert", "--force", "a.kel", "b.json", small_stack=True)
        self.assertEqual(result.status, 0, result.err[-300:])
        return self.read("b.json").translate(None, b" \n")

    def test_index_lists(self):
        self.deep("<[0][", "]>")
        self.ok("check", "a.kel", small_stack=True)
        self.assertEqual(self.forced_json(),
                         b"[[0," * self.LEVELS + b"1" + b"]]" * self.LEVELS)

    def test_checked_structs(self):
        self.deep("{ @type = 50\na = ", "}")
        self.ok("check", "a.kel", small_stack=True)
        self.assertEqual(self.forced_json(), b'{"a":' * self.LEVELS + b"1" + b"}" * self.LEVELS)

    def test_text_that_would_be_tabs_for_the_most_part_is_refused(self):
        self.deep("<[0][", "]>")
        self.fails(1, "kel: a.kel: as text the output would exceed 268435456 bytes, because of "
                      "deep nesting; use --max-output to allow more\n",
                   "show", "a.kel", small_stack=True)

    def test_violations_at_every_level_are_told_in_linear_time(self):
        self.write("a.kel", f"[ {GUID}1 = {SETTINGS} " +
                   f"{{ @type = 50\n@desc = REF {GUID}1\nlevel = 11 a = " * 20000 + "1" +
                   "}" * 20000 + "]")
        start = time.monotonic()
        result = self.kel("check", "a.kel", small_stack=True)
        self.assertLess(time.monotonic() - start, 20)
        found = self.headings(result.err)
        self.assertEqual((result.status, len(found), found[-1]),
                         (1, 1001, "kel: a.kel: and 19000 more"))


class Sharing(Kinds):
    """References let a small text unfold to any number of values."""

    def bomb(self, wrap):
        """Returns a value of two times a value of two times ... 60 levels deep."""
        text = f"[ {GUID}1 = {wrap('1', '2')} "
        identity = "00000000-0000-0000-0000-0000000000{:02X}"
        previous = f"REF {GUID}1\n"
        for level in range(1, 61):
            text += f"{identity.format(level)} = {wrap(previous, previous)} "
            previous = f"REF {identity.format(level)}\n"
        return text + "]"

    def test_values_that_would_unfold_without_end_are_refused(self):
        for wrap in (lambda a, b: f"<[{a}][{b}]>",
                     lambda a, b: "{ @type = 50\na = " + a + " b = " + b + "}",
                     lambda a, b: "{ @type = 52\ntype = 1 a = " + a + " b = " + b + "}"):
            self.write("a.kel", self.bomb(wrap))
            self.ok("check", "a.kel")
            for command in (("show", "a.kel"), ("convert", "--force", "a.kel", "b.json")):
                result = self.kel(*command)
                self.assertEqual(result.status, 1)
                self.assertIn("values that are shared many times", result.err)
            self.assertEqual(self.kel("convert", "--force", "a.kel", "b.kelb").status, 0)
            self.assertLess(len(self.read("b.kelb")), 50000)
            self.ok("check", "b.kelb")


class Cycles(ToolTest):
    """Text names complete values only, and binary holds plain data only. Therefore no file can hold
    a value of these kinds that contains itself."""

    def test_a_value_cannot_be_referred_to_inside_itself(self):
        for text in (f"{GUID}1 = <[1][REF {GUID}1\n]>",
                     f"{GUID}1 = {{ @type = 50\na = REF {GUID}1\n}}",
                     f"{{ @type = 51, @hashCode = {GUID}1\na = REF {GUID}1\n}}"):
            self.write("a.kel", text)
            for command in ("check", "show"):
                result = self.kel(command, "a.kel")
                self.assertEqual(result.status, 1 if command == "check" else 3)
                self.assertRegex(result.err, r"\Akel: a\.kel:[12]:\d+: no value with this identity "
                                             "was read before\n")

    def test_binary_does_not_bring_these_kinds(self):
        for kind in (10, 11, 12, 50, 51, 52):
            self.write("a.kelb", record(kind, b""))
            self.fails(1, "kel: a.kelb: offset 20: (the value itself): expected a kind that binary "
                          f"stores (1, 2, 3, 5, 6, 7 or 8), found {kind}\n", "check", "a.kelb")
