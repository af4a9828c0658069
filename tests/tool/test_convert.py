import json
import os
import struct

from support import (ARRAY, BOOLEAN, MEMBLOCK, NO_IDENTITY, REFERENCE, ToolTest, double_record,
                     int_record, record, reference, string_record, struct_record)

GUID_TEXT = "3F2504E0-4F89-11D3-9A0C-0305E82C3301"


class Mapping(ToolTest):
    def converted(self, content, to, source="in.json", *options):
        self.write(source, content)
        self.ok("convert", *options, source, "out." + to)
        return self.read("out." + to)

    def test_json_becomes_text(self):
        self.assertEqual(
            self.converted('{"b": [true, false, "x"], "a": {"n": null}, "my key": -7}', "kel"),
            b'{\n\ta = {\n\t\tn = NULL\n\t}\n\tb = [\n\t\ttrue\n\t\tfalse\n\t\t"x"\n\t]\n'
            b'\t"my key" = -7\n}\n')

    def test_text_becomes_indented_json_in_name_order(self):
        self.assertEqual(
            self.converted('{ b = [ 1 2.5 ] a = {} c = [] "d e" = NULL }', "json", "in.kel"),
            b'{\n    "a": {},\n    "b": [\n        1,\n        2.5\n    ],\n    "c": [],\n'
            b'    "d e": null\n}\n')

    def test_numbers_of_32_bits_are_ints_and_all_others_doubles(self):
        self.assertEqual(
            self.converted("[2147483647, -2147483648, 2147483648, 1.0, 1e2, -0.5]", "json"),
            b"[\n    2147483647,\n    -2147483648,\n    2147483648.0,\n    1.0,\n    100.0,\n"
            b"    -0.5\n]\n")

    def test_doubles_are_written_in_the_shortest_form_that_reads_back(self):
        numbers = [0.1, 1e-7, 1e300, 123456789012.5, -0.0, 5e-324, 1.7976931348623157e308, 2.0**60]
        written = self.converted(json.dumps(numbers), "json")
        self.assertEqual([struct.pack("<d", n) for n in json.loads(written)],
                         [struct.pack("<d", n) for n in numbers])
        self.assertIn(b" 0.1,", written)

    def test_the_last_of_two_equal_keys_wins(self):
        self.assertEqual(self.converted('{"a": 1, "b": 2, "a": 3}', "kel"),
                         b"{\n\ta = 3\n\tb = 2\n}\n")

    def test_strings_are_escaped_in_json_alone(self):
        text = 'tab\t newline\n backslash\\ euro\u20ac \x01'
        self.write("a.json", json.dumps([text]))
        self.ok("convert", "a.json", "b.kel")
        self.assertEqual(self.read("b.kel"), ('[\n\t"' + text + '"\n]\n').encode())
        self.ok("convert", "b.kel", "c.json")
        self.assertEqual(self.json("c.json"), [text])

    def test_a_guid_has_a_form_in_json(self):
        self.assertEqual(self.converted("{ g = " + GUID_TEXT + " }", "json", "in.kel"),
                         b'{\n    "g": { "$guid": "' + GUID_TEXT.encode() + b'" }\n}\n')
        self.ok("convert", "out.json", "back.kel")
        self.assertEqual(self.read("back.kel"), b"{\n\tg = " + GUID_TEXT.encode() + b"\n}\n")

    def test_a_guid_in_json_may_be_lower_case(self):
        self.assertEqual(self.converted('{"$guid": "' + GUID_TEXT.lower() + '"}', "kel"),
                         GUID_TEXT.encode() + b"\n")

    def test_a_memory_block_has_a_form_in_json(self):
        for block, base64 in ((b"", b""), (b"\0", b"AA=="), (b"\0\xff", b"AP8="),
                              (b"\xfb\xff\xfe", b"+//+")):
            self.write("in.kelb", record(ARRAY, record(MEMBLOCK, block, 2)))
            self.ok("convert", "in.kelb", "out.json")
            self.assertEqual(self.json("out.json"), [{"$memblock": base64.decode()}])
            self.ok("convert", "out.json", "back.kelb")
            self.assertTrue(self.read("back.kelb").endswith(
                struct.pack("<iHQ", MEMBLOCK, 1, len(block)) + block))

    def test_shapes_that_spell_nothing_are_plain_structs(self):
        for shape in ({"$guid": "no guid"}, {"$guid": 5}, {"$memblock": "no base64!"},
                      {"$memblock": "AB=="}, {"$memblock": "A"}, {"$guid": GUID_TEXT, "a": 1},
                      {"$guid": None}):
            self.assertEqual(json.loads(self.converted(json.dumps(shape), "json")), shape)

    def test_binary_becomes_json(self):
        members = [(b"b", record(BOOLEAN, b"\1", 2)), (b"d", double_record(2.5, 3)),
                   (b"i", int_record(-5, 4)), (b"n", b"KEL\0" + NO_IDENTITY +
                                               struct.pack("<i", REFERENCE)),
                   (b"s", string_record(b"text", 5))]
        self.assertEqual(json.loads(self.converted(struct_record(members), "json", "in.kelb")),
                         {"b": True, "d": 2.5, "i": -5, "n": None, "s": "text"})

    def test_a_shared_value_stands_in_all_its_places(self):
        self.assertEqual(
            json.loads(self.converted(record(ARRAY, int_record(7, 2) + reference(2)), "json",
                                      "in.kelb")), [7, 7])

    def test_binary_keeps_identities_and_sharing(self):
        original = record(ARRAY, record(ARRAY, int_record(7, 2), 3) + reference(3) + reference(2))
        self.assertEqual(self.converted(original, "kelb", "in.kelb"), original)

    def test_a_manager_survives_from_text_to_text(self):
        text = ("(\n\t" + GUID_TEXT + ' = "a = b"\n\t00000001-0002-0003-0405-060708090A0B = [\n'
                "\t\t1\n\t]\n)\n").encode()
        self.assertEqual(self.converted(text, "kel", "in.kel"), text)

    def test_everything_survives_the_way_through_all_formats(self):
        document = {"a": [1, -2.5, True, "\u00fc"], "b": {"c": {}, "d": None}, "e": []}
        self.write("a.json", json.dumps(document))
        self.ok("convert", "a.json", "b.kel")
        self.ok("convert", "b.kel", "c.kelb")
        self.ok("convert", "c.kelb", "d.kel")
        self.ok("convert", "d.kel", "e.json")
        self.assertEqual(self.json("e.json"), document)
        self.assertEqual(self.read("b.kel"), self.read("d.kel"))


class Roots(ToolTest):
    """Files can hold several root values one after the other."""

    def test_several_roots_are_kept_in_every_format(self):
        self.write("a.kel", '1\n"two"\n[ 3 ]\n{}\n')
        self.ok("convert", "a.kel", "b.kelb")
        self.ok("convert", "b.kelb", "c.json")
        self.assertEqual(self.read("c.json"), b'1\n"two"\n[3]\n{}\n')
        self.ok("convert", "c.json", "d.kel")
        self.assertEqual(self.read("d.kel"), b'1\n"two"\n[\n\t3\n]\n{\n}\n')

    def test_json_texts_may_touch_where_a_bracket_stands(self):
        self.write("a.json", '{"a":1}[2]3{}"x"\n4 5')
        self.ok("convert", "a.json", "b.json")
        self.assertEqual(self.read("b.json"), b'{"a":1}\n[2]\n3\n{}\n"x"\n4\n5\n')

    def test_a_value_shared_between_roots_is_kept(self):
        self.write("a.kelb", record(ARRAY, int_record(7, 2)) + reference(2))
        self.ok("convert", "a.kelb", "b.json")
        self.assertEqual(self.read("b.json"), b"[7]\n7\n")

    def test_null_is_a_root_of_text_and_json(self):
        self.write("a.json", "null 1 null")
        self.ok("convert", "a.json", "b.kel")
        self.assertEqual(self.read("b.kel"), b"NULL\n1\nNULL\n")
        self.ok("convert", "b.kel", "c.json")
        self.assertEqual(self.read("c.json"), b"null\n1\nnull\n")

    def test_a_single_null_is_a_document(self):
        self.write("a.json", "null")
        self.ok("convert", "a.json", "b.kel")
        self.assertEqual(self.ok("convert", "b.kel", "-", "--to", "json").out, b"null\n")


class Locale(ToolTest):
    def test_numbers_do_not_depend_on_the_locale(self):
        comma = {**os.environ, "LC_ALL": "de_DE.UTF-8"}
        self.write("a.json", '{"a": 0.5, "b": -1234567.25}')
        self.ok("convert", "a.json", "b.kel", env=comma)
        self.assertEqual(self.read("b.kel"), b"{\n\ta = 0.500000\n\tb = -1234567.250000\n}\n")
        self.ok("convert", "b.kel", "c.json", env=comma)
        self.assertEqual(self.read("c.json"), b'{\n    "a": 0.5,\n    "b": -1234567.25\n}\n')


class StandardStreams(ToolTest):
    def test_stdin_and_stdout_are_called_minus(self):
        self.assertEqual(self.ok("convert", "-", "-", "--to", "json", input="{ a = 1 }").out,
                         b'{\n    "a": 1\n}\n')

    def test_binary_passes_through_pipes(self):
        binary = self.ok("convert", "-", "-", "--to", "binary", input='{"a": [1, 2]}').out
        self.assertTrue(binary.startswith(b"KEL\0"))
        self.assertEqual(self.ok("show", "-", input=binary).out,
                         b"{\n\ta = [\n\t\t1\n\t\t2\n\t]\n}\n")

    def test_a_file_may_be_converted_onto_itself(self):
        self.write("a.kel", "{ a = 1 }")
        self.ok("convert", "a.kel", "a.kel")
        self.assertEqual(self.read("a.kel"), b"{\n\ta = 1\n}\n")
