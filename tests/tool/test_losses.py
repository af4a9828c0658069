import json
import struct
import sys

from support import (ARRAY, MEMBLOCK, ToolTest, double_record, int_record, record, reference,
                     string_record, struct_record)

GUID_TEXT = "3F2504E0-4F89-11D3-9A0C-0305E82C3301"
ADVICE = "text keeps every kind; "


class Losses(ToolTest):
    """Nothing is lost silently. convert refuses with a list, and warns with it when forced."""

    def refused(self, source, content, to, *places, count=None):
        """Converts and expects a refusal that lists the places."""
        self.write(source, content)
        names = {"kel": "text", "kelb": "binary", "json": "json"}
        count = count or len(places)
        form = source.split(".")[1]
        change = (f"written as {names[to]}" if form == to else
                  f"converted from {names[form]} to {names[to]}")
        self.list = (f"{source}: {count} place{'' if count == 1 else 's'} cannot be {change}:\n" +
                     "".join(f"  {place}\n" for place in places))
        if count > len(places):
            self.list += f"  and {count - len(places)} more\n"
        is_text_better = to != "kel" and any(place.endswith("a manager") for place in places)
        self.fails(1, "kel: " + self.list + "nothing was written; " +
                   (ADVICE if is_text_better else "") + f"use --force to {'write' if form == to else 'convert'} the rest\n",
                   "convert", source, "out." + to)
        self.assertEqual(self.files(), [source])

    def forced(self, source, to):
        """Converts the same again with --force, which warns with the same list."""
        result = self.kel("convert", "--force", source, "out." + to)
        self.assertEqual((result.status, result.err), (0, "kel: warning: " + self.list))
        return self.read("out." + to)


class LossesToText(Losses):
    def test_a_double_quote_becomes_a_single_one(self):
        self.refused("a.json", r'{"a": ["say \"x\""]}', "kel", "a[0]: a string with a double quote")
        self.assertEqual(self.forced("a.json", "kel"), b"{\n\ta = [\n\t\t\"say 'x'\"\n\t]\n}\n")

    def test_doubles_get_six_decimals(self):
        self.refused("a.json", "[0.1234567, 0.5, -1e-9]", "kel",
                     "[0]: a double that six decimals cannot hold",
                     "[2]: a double that six decimals cannot hold")
        self.assertEqual(self.forced("a.json", "kel"),
                         b"[\n\t0.123457\n\t0.500000\n\t-0.000000\n]\n")

    def test_doubles_beyond_32_bits_are_listed_as_such(self):
        self.refused("a.json", "[2147483648, 2147483647.5, -3e9]", "kel",
                     "[0]: a double whose integer part does not fit in 32 bits",
                     "[2]: a double whose integer part does not fit in 32 bits")
        self.assertEqual(self.forced("a.json", "kel"),
                         b"[\n\t2147483648.000000\n\t2147483647.500000\n\t-3000000000.000000\n]\n")

    def test_memory_blocks_become_null_or_are_left_out(self):
        block = '{"$memblock": "AQID"}'
        self.refused("a.json", f'{{"a": {block}, "b": [1, {block}, 2]}}', "kel",
                     "a: a memory block", "b[1]: a memory block")
        self.assertEqual(self.forced("a.json", "kel"),
                         b"{\n\ta = NULL\n\tb = [\n\t\t1\n\t\t2\n\t]\n}\n")

    def test_a_memory_block_alone_becomes_null(self):
        self.refused("a.kelb", record(MEMBLOCK, b"abc"), "kel",
                     "(the value itself): a memory block")
        self.assertEqual(self.forced("a.kelb", "kel"), b"NULL\n")

    def test_infinities_become_null_or_are_left_out(self):
        members = [(b"a", double_record(float("inf"), 2)),
                   (b"b", record(ARRAY, double_record(float("-inf"), 3) +
                                 double_record(float("nan"), 4) + int_record(1, 5), 6))]
        self.refused("a.kelb", struct_record(members), "kel",
                     "a: a double that is not a finite number",
                     "b[0]: a double that is not a finite number",
                     "b[1]: a double that is not a finite number")
        self.assertEqual(self.forced("a.kelb", "kel"), b"{\n\ta = NULL\n\tb = [\n\t\t1\n\t]\n}\n")

    def test_the_way_leads_through_managers(self):
        inner = "00000001-0002-0003-0405-060708090A0B"
        self.refused("a.kel", f"( {GUID_TEXT} = {{ m = ( {inner} = [ 1 0.1234567 ] ) }} )", "kel",
                     f"#{GUID_TEXT}.m#{inner}[1]: a double that six decimals cannot hold")


class LossesToBinary(Losses):
    def test_guids_become_strings(self):
        self.refused("a.kel", f"{{ a = {GUID_TEXT}\n b = [ {GUID_TEXT}\n ] }}", "kelb",
                     "a: a guid", "b[0]: a guid")
        self.forced("a.kel", "kelb")
        self.ok("convert", "out.kelb", "back.json")
        self.assertEqual(self.json("back.json"), {"a": GUID_TEXT, "b": [GUID_TEXT]})

    def test_managers_become_arrays_of_their_values(self):
        inner = "00000001-0002-0003-0405-060708090A0B"
        self.refused("a.kel", f"{{ m = ( {GUID_TEXT} = 1\n {inner} = {{ g = {GUID_TEXT}\n }} ) }}",
                     "kelb", "m: a manager", f"m#{inner}.g: a guid")
        self.forced("a.kel", "kelb")
        self.ok("convert", "out.kelb", "back.json")
        self.assertEqual(self.json("back.json"), {"m": [1, {"g": GUID_TEXT}]})

    def test_a_manager_in_several_places_becomes_one_array(self):
        self.write("a.kel", f"{{ a = {GUID_TEXT} = ( ) b = REF {GUID_TEXT}\n }}")
        result = self.kel("convert", "--force", "a.kel", "b.kelb")
        self.assertEqual(result.status, 0, result.err)
        self.assertEqual(self.read("b.kelb").count(struct.pack("<iHQ", ARRAY, 1, 0)), 1)

    def test_null_roots_are_left_out(self):
        self.refused("a.json", "1 null 2", "kelb",
                     "2:(the value itself): null outside a struct")
        self.forced("a.json", "kelb")
        self.assertEqual(self.ok("show", "out.kelb").out, b"1\n2\n")

    def test_when_nothing_is_left_force_refuses_too(self):
        self.refused("a.json", "null", "kelb", "(the value itself): null outside a struct")
        result = self.kel("convert", "--force", "a.json", "out.kelb")
        self.assertEqual((result.status, result.err.splitlines()[-1]),
                         (1, "kel: a.json: nothing is left to write"))
        self.assertEqual(self.files(), ["a.json"])

    def test_doubles_and_quotes_are_no_loss(self):
        self.write("a.json", r'[0.1234567, 1e300, "\""]')
        self.ok("convert", "a.json", "b.kelb")


class LossesToJson(Losses):
    def test_managers_become_arrays_of_their_values(self):
        self.refused("a.kel", f'( {GUID_TEXT} = "x" )', "json", "(the value itself): a manager")
        self.assertEqual(json.loads(self.forced("a.kel", "json")), ["x"])

    def test_infinities_become_null(self):
        self.refused("a.kelb", record(ARRAY, double_record(float("inf"), 2) + int_record(1, 3)),
                     "json", "[0]: a double that is not a finite number")
        self.assertEqual(json.loads(self.forced("a.kelb", "json")), [None, 1])

    def test_bytes_that_are_no_utf8_become_replacement_characters(self):
        members = [(b"a", string_record(b"x\xffy", 2)), (b"\xc3", int_record(1, 3))]
        self.refused("a.kelb", struct_record(members), "json", "a: a string that is not UTF-8",
                     r'["\xc3"]: a name that is not UTF-8')
        self.assertEqual(json.loads(self.forced("a.kelb", "json")),
                         {"a": "x\ufffdy", "\ufffd": 1})

    def test_ill_formed_utf8_of_every_sort_is_found(self):
        for bad in (b"\x80", b"\xc0\xaf", b"\xc1\xbf", b"\xe0\x80\x80", b"\xed\xa0\x80",
                    b"\xf0\x80\x80\x80", b"\xf4\x90\x80\x80", b"\xf5\x80\x80\x80",
                    b"\xe2\x82", b"\xff"):
            self.refused("a.kelb", string_record(bad), "json",
                         "(the value itself): a string that is not UTF-8")

    def test_well_formed_utf8_of_every_length_is_carried(self):
        text = "\x7f\u0080\u07ff\u0800\ud7ff\ue000\uffff\U00010000\U0010ffff"
        self.write("a.kelb", string_record(text.encode()))
        self.ok("convert", "a.kelb", "b.json")
        self.assertEqual(self.json("b.json"), text)

    def test_structs_that_look_like_a_guid_or_block_are_listed(self):
        looks = "a struct that looks like a guid or memory block in JSON"
        members = [(b"a", struct_record([(b"$guid", string_record(GUID_TEXT.encode(), 2))], 3)),
                   (b"b", struct_record([(b"$memblock", string_record(b"AQID", 4))], 5)),
                   (b"c", struct_record([(b"$guid", string_record(b"none", 6))], 7))]
        self.refused("a.kelb", struct_record(members), "json", f"a: {looks}", f"b: {looks}")
        self.assertEqual(json.loads(self.forced("a.kelb", "json")),
                         {"a": {"$guid": GUID_TEXT}, "b": {"$memblock": "AQID"},
                          "c": {"$guid": "none"}})


class LossesFromJson(Losses):
    def test_null_elements_are_left_out_and_counted_in_paths(self):
        self.refused("a.json", r'{"a": [null, 1, null, {"b": "\""}]}', "kel",
                     "a[0]: null in an array", "a[2]: null in an array",
                     "a[3].b: a string with a double quote")
        self.assertEqual(self.forced("a.json", "kel"),
                         b"{\n\ta = [\n\t\t1\n\t\t{\n\t\t\tb = \"'\"\n\t\t}\n\t]\n}\n")

    def test_members_with_impossible_names_are_left_out_whole(self):
        document = (r'{"": {"a": [null, 9007199254740993]}, "b\"c": 1, "d\u0000": [[]],'
                    r' "e": 2}')
        self.refused("a.json", document, "json", '[""]: an empty name',
                     r'["b\"c"]: a name with a double quote',
                     r'["d\u0000"]: a name with a NUL')
        self.assertEqual(json.loads(self.forced("a.json", "json")), {"e": 2})

    def test_nul_characters_are_left_out_of_strings(self):
        self.refused("a.json", r'"a\u0000b"', "kelb", "(the value itself): a string with a NUL")
        self.forced("a.json", "kelb")
        self.assertEqual(self.ok("show", "out.kelb").out, b'"ab"\n')

    def test_integers_that_no_double_holds_are_rounded(self):
        inexact = "an integer that no double holds exactly"
        self.refused("a.json", "[9007199254740992, 9007199254740993, -9007199254740993,"
                               " 18446744073709551615, 1180591620717411303424,"
                               " 1180591620717411303425, 9223372036854775808]", "kelb",
                     f"[1]: {inexact}", f"[2]: {inexact}", f"[3]: {inexact}", f"[5]: {inexact}")
        self.forced("a.json", "kelb")
        self.ok("convert", "out.kelb", "back.json")
        self.assertEqual(self.json("back.json"),
                         [2.0**53, 2.0**53, -2.0**53, 2.0**64, 2.0**70, 2.0**70, 2.0**63])

    def test_the_greatest_double_is_an_integer_that_a_double_holds(self):
        greatest = int(sys.float_info.max)
        self.write("a.json", json.dumps([greatest, -greatest]))
        self.ok("convert", "a.json", "b.kelb")
        self.write("a.json", json.dumps([greatest - 1]))
        self.assertIn("an integer that no double holds exactly",
                      self.kel("convert", "a.json", "b.kelb").err)

    def test_what_is_in_a_value_that_is_left_out_is_not_listed(self):
        self.write("a.json", '{"": [-1, 1, null, true, 2.5, "x", 12345678901234567890], "b": 2}')
        result = self.kel("convert", "--force", "a.json", "b.json")
        self.assertEqual(result.err.count("\n"), 2, result.err)
        self.assertEqual(self.json("b.json"), {"b": 2})

    def test_what_only_resembles_a_guid_or_a_block_stays_a_struct(self):
        guid = "00010203-0405-0607-0809-0A0B0C0D0E0"
        values = [{"$guid": guid + last} for last in "/:@G`g "] + [{"$memblock": "!AAA"}]
        self.write("a.json", json.dumps(values))
        self.ok("convert", "a.json", "b.kelb")
        self.assertEqual(self.ok("show", "b.kelb").out.count(b'"$guid" = '), len(values) - 1)

    def test_numbers_that_vanish_are_listed(self):
        self.refused("a.json", "[1e-400, 0e5, 0.0]", "kelb", "[0]: a number too small for a double")

    def test_decimal_numbers_are_doubles_by_nature(self):
        self.write("a.json", "[0.1, 3.14159265358979323846264338327950288, 1e22]")
        self.ok("convert", "a.json", "b.kelb")


class Annotations(ToolTest):
    """Comments and definitions. Another file keeps them, so they are no reason to refuse."""

    def lost(self, what, fate="are", place="the first is on line 1"):
        return f"a.kel: {what} {fate} lost, because only values are written; {place}\n"

    def test_they_are_counted_with_the_line_of_the_first_one(self):
        one = "is", "it is on line 2"
        for text, what, *words in (
                ("[ 1\n// x\n]", "1 comment", *one),
                ("\n#define N 5 // five\n[ N ]", "1 definition", *one),
                ("// x\n[ 1 /* y ***/ 2 ] // z", "3 comments"),
                ("#define M \n 5 /* \n#define \"a b\" 6\n[ 1 ]", "2 definitions"),
                ('#define N "\n[ /* // */ 1 ]', "1 comment and 1 definition"),
                ('[ "// #define" 1 ] // x\n#define N 5\n', "1 comment and 1 definition")):
            self.write("a.kel", text)
            for to in "b.kel", "b.kelb", "b.json":
                with self.subTest(text=text, to=to):
                    result = self.kel("convert", "a.kel", to)
                    self.assertEqual((result.status, result.err),
                                     (0, "kel: warning: " + self.lost(what, *words)))
                    self.ok("convert", "--quiet", "a.kel", to)

    def test_what_the_writer_writes_has_none(self):
        self.write("a.kel", '< [ "//" ] [ "/* #define" ] >')
        self.ok("convert", "a.kel", "b.kel")
        self.ok("convert", "b.kel", "c.kel")

    def test_identities_and_references_are_not_counted(self):
        self.write("a.kel", f"[ {GUID_TEXT} = [ ] REF {GUID_TEXT}\n ]")
        self.ok("convert", "a.kel", "b.json")

    def test_a_refusal_does_not_mention_them(self):
        self.write("a.kel", "// x\n[ < [ 1 ] [ 2 ] > ]")
        self.assertNotIn("comment", self.kel("convert", "a.kel", "b.json").err)

    def test_the_only_file_that_has_them_is_not_replaced(self):
        text = b"{ a = 1 // x\n/* y */ }"
        self.write("a.kel", text)
        for name in "a.kel", "./a.kel", self.path("a.kel"):
            self.fails(1, "kel: " + self.lost("2 comments", "would be") +
                       "nothing was written; use --force to convert the rest\n",
                       "convert", "--to", "json", "a.kel", name)
            self.assertEqual(self.read("a.kel"), text)
        result = self.kel("convert", "--force", "a.kel", "a.kel")
        self.assertEqual((result.status, result.err),
                         (0, "kel: warning: " + self.lost("2 comments")))
        self.assertEqual(self.read("a.kel"), b"{\n\ta = 1\n}\n")


class Lists(Losses):
    def test_only_the_first_ten_places_are_listed(self):
        self.refused("a.json", json.dumps([None] * 1234), "kelb",
                     *(f"[{i}]: null in an array" for i in range(10)), count=1234)

    def test_places_in_several_roots_tell_the_root(self):
        self.refused("a.json", '[1]\n[null]\n{"a":[null]}', "kelb",
                     "2:[0]: null in an array", "3:a[0]: null in an array")

    def test_unusual_names_stand_in_brackets(self):
        self.refused("a.json", '{"a b": {"c\\n": {"\u00fc\\\\": {"d_9@": [null]}}}}', "kelb",
                     '["a b"]["c\\u000a"]["\u00fc\\\\"].d_9@[0]: null in an array')

    def test_long_paths_lose_their_middle(self):
        self.write("a.json", "[" * 1000 + "null" + "]" * 1000)
        result = self.kel("convert", "a.json", "b.kelb")
        self.assertEqual(result.status, 1)
        path = result.err.splitlines()[1].strip()
        self.assertEqual(path, ("[0]" * 26)[:76] + " ... " + ("[0]" * 26)[-76:] +
                         ": null in an array")

    def test_a_shared_value_is_listed_where_it_comes_first(self):
        shared = struct_record([(b"x", double_record(1e300, 2))], 3)
        self.refused("a.kelb", record(ARRAY, shared + reference(3)), "kel",
                     "[0].x: a double whose integer part does not fit in 32 bits")
