"""kel find: paths of values by their names, contents and kinds."""

import json

from test_output_size import bomb
from support import (ARRAY, MEMBLOCK, ToolTest, int_record, record, reference, string_record,
                     struct_record)

SETTINGS = """{
    colour = "Red"
    "odd name" = { port = 8080  size = 2.5 }
    ports = [ 80 8080 "any port" ]
    none = NULL
    id = 12345678-4F89-11D3-9A0C-0305E82C3302 }
"""


class Find(ToolTest):
    def found(self, *arguments, **options):
        """Returns the lines of a search that finds something."""
        return self.ok("find", *arguments, **options).out.decode().splitlines()

    def nothing(self, *arguments):
        result = self.fails(1, "", "find", *arguments)
        self.assertEqual(result.out, b"")

    def setUp(self):
        super().setUp()
        self.write("a.kel", SETTINGS)

    def test_names_and_scalars_that_contain_the_pattern_are_found(self):
        self.assertEqual(self.found("a.kel", "port"),
                         ['["odd name"].port: 8080', "ports: an array",
                          'ports[2]: "any port"'])
        self.assertEqual(self.found("a.kel", "808"), ['["odd name"].port: 8080', "ports[1]: 8080"])
        self.assertEqual(self.found("a.kel", "2.5"), ['["odd name"].size: 2.5'])
        self.assertEqual(self.found("a.kel", "4F89"),
                         ["id: 12345678-4F89-11D3-9A0C-0305E82C3302"])
        self.nothing("a.kel", "Port")

    def test_whole_numbers_in_doubles_are_found_by_all_their_digits(self):
        self.write("b.json", "[3e9, 1.7e12, 2.0]")
        self.assertEqual(self.found("b.json", "00000"), ["[0]: 3000000000", "[1]: 1700000000000"])
        self.assertEqual(self.found("b.json", "1700000000000", "--glob"), ["[1]: 1700000000000"])

    def test_all_formats_have_the_same_paths(self):
        self.write("b.json", '{"a": [1, "x y"], "x": {"y": null}}')
        for name in ("b.kel", "b.kelb"):
            self.ok("convert", "b.json", name)
        for name in ("b.json", "b.kel", "b.kelb"):
            self.assertEqual(self.found(name, "x"), ['a[1]: "x y"', "x: a struct"])
        self.assertEqual(self.found("-", "x", input='{"x": 1}'), ["x: 1"])

    def test_names_or_values_alone(self):
        self.assertEqual(self.found("a.kel", "port", "--names"),
                         ['["odd name"].port: 8080', "ports: an array"])
        self.assertEqual(self.found("a.kel", "port", "--values"), ['ports[2]: "any port"'])
        self.assertEqual(len(self.found("a.kel", "port", "--names", "--values")), 3)

    def test_case_is_ignored_for_ascii_letters(self):
        self.assertEqual(self.found("a.kel", "RED", "-i"), ['colour: "Red"'])
        self.write("b.kel", '[ "Ä" ]')
        self.nothing("b.kel", "ä", "--ignore-case")

    def test_the_list_ends_where_it_would_be_too_large(self):
        depth = 200000
        self.write("deep.json", "[1," * depth + "1" + "]" * depth)
        self.write("wide.kelb", bomb(60, int_record(1)))
        for name, *options in (("deep.json", "1"), ("wide.kelb", "1", "--all")):
            result = self.fails(1, f"kel: {name}: the list would exceed 1048576 bytes; use "
                                   "--max-output to allow more\n", "find", "--max-output", "1M",
                                name, *options)
            self.assertLessEqual(len(result.out), 1 << 20)
            self.assertTrue(result.out.endswith(b": 1\n"))
        self.assertEqual(self.found("deep.json", "1", "--count", "--max-output", "1"),
                         [str(depth + 1)])

    def test_globs_match_the_whole_text(self):
        for pattern, count in (("port*", 2), ("*port", 2), ("?ort", 1), ("p*r*t*", 2), ("ort", 0),
                               ("R?d", 1), ("R??d", 0), ("*", 10), ("8\\*", 0), ("", 0)):
            result = self.kel("find", "a.kel", "--glob", "--count", "--", pattern)
            self.assertEqual(result.out, b"%d\n" % count, pattern)
        self.write("empty.json", '["", "x", {"a": ""}]')
        self.assertEqual(self.found("empty.json", "--glob", ""), ['[0]: ""', '[2].a: ""'])
        self.write("b.json", json.dumps(["a*b", "axb", "äöü"]))
        self.assertEqual(self.found("b.json", "a\\*b", "--glob"), ['[0]: "a*b"'])
        self.assertEqual(self.found("b.json", "???", "--glob", "-l"), ["[0]", "[1]", "[2]"])

    def test_a_glob_that_hardly_fails_takes_little_time(self):
        self.write("b.json", json.dumps("a" * 100000))
        self.nothing("b.json", "a*" * 30 + "b", "--glob")

    def test_a_kind(self):
        self.assertEqual(self.found("a.kel", "--kind", "double"), ['["odd name"].size: 2.5'])
        self.assertEqual(self.found("a.kel", "--kind", "null"), ["none: null"])
        self.assertEqual(self.found("a.kel", "port", "--kind", "string"),
                         ['ports[2]: "any port"'])
        self.assertEqual(self.found("a.kel", "--kind", "struct", "-l"), [".", '["odd name"]'])
        result = self.kel("find", "a.kel", "--kind", "strng")
        self.assertEqual(result.status, 2)
        self.assertIn('--kind: "strng" is not null or int or boolean or double', result.err)

    def test_every_kind_has_a_word(self):
        self.write("b.kel", "< [ 1 ] [ ( ) ] >")
        self.assertEqual(self.found("b.kel", "--kind", "indexlist"), [".: an index list"])
        self.assertEqual(self.found("b.kel", "--kind", "manager"), ["[0].item: a manager"])
        self.write("b.kel", "{ @type = 50\n @desc = { @type = 51\n a = { @type = 52\n } } }")
        for kind, path in (("metakel", "."), ("metakeldescriptor", "@desc"),
                           ("metakelvardescriptor", "@desc.a")):
            self.assertEqual(self.found("b.kel", "--kind", kind, "-l"), [path])

    def test_count_and_quiet(self):
        self.assertEqual(self.found("a.kel", "port", "--count"), ["3"])
        result = self.kel("find", "a.kel", "Port", "--count")
        self.assertEqual((result.status, result.out), (1, b"0\n"))
        self.assertEqual(self.found("a.kel", "port", "-q"), [])
        self.nothing("a.kel", "Port", "-q")

    def test_a_pattern_or_a_kind_is_required(self):
        self.fails(2, "kel: PATTERN is required, or --kind\n", "find", "a.kel")
        for option in ("--names", "--values", "-i"):
            self.fails(2, "kel: PATTERN is required with --names, --values, --glob and "
                          "--ignore-case\n", "find", "a.kel", "--kind", "int", option)
            self.fails(2, "kel: PATTERN is required, or --kind\n", "find", "a.kel", "", option)

        self.fails(2, "kel: PATTERN is required with --names, --values, --glob and "
                      "--ignore-case\n", "find", "a.kel", "--kind", "int", "--glob")

    def test_an_empty_glob_matches_an_empty_text(self):
        self.write("b.kel", '{ a = "" b = "x" }')
        self.assertEqual(self.found("b.kel", "--glob", ""), ['a: ""'])

    def test_a_memory_block_has_no_text(self):
        self.write("b.kelb", struct_record([(b"a", record(MEMBLOCK, b"abc", 2))]))
        self.assertEqual(self.kel("find", "b.kelb", "abc").status, 1)
        self.assertEqual(self.found("b.kelb", "--kind", "memblock"), ["a: a memory block"])

    def test_all_places_are_counted_as_they_are_listed(self):
        shared = record(ARRAY, int_record(1, 3) + int_record(1, 4), 2)
        self.write("b.kelb", record(ARRAY, shared + reference(2) + reference(1)))
        self.assertEqual(len(self.found("b.kelb", "1", "--all")), 4)
        self.assertEqual(self.found("b.kelb", "1", "--all", "-c"), ["4"])

    def test_a_backslash_at_the_end_of_a_glob_is_itself(self):
        self.write("b.json", '["x\\\\", "x"]')
        self.assertEqual(self.found("b.json", "--glob", "x\\"), ['[0]: "x\\"'])

    def test_a_value_that_stands_inside_itself_is_found_at_all_places(self):
        self.write("b.kelb", record(ARRAY, reference(1) + int_record(1, 2) + reference(2)))
        self.assertEqual(self.found("b.kelb", "1", "--all"), ["[1]: 1", "[2]: 1"])
        self.assertEqual(self.found("b.kelb", "--kind", "array", "--all"),
                         [".: an array", "[0]: an array"])

    def test_several_root_values_are_numbered(self):
        for content in ('{"a": 1} {"a": [2]}', '[{"a": 1}]\n[{"b": 1}, {"a": [2]}]'):
            self.write("b.json", content)
            self.ok("convert", "b.json", "b.kelb")
            paths = [line.split(":")[0] for line in self.found("b.json", "a")]
            self.assertEqual(paths, ["1", "2"])
            self.assertEqual(self.found("b.kelb", "a"), self.found("b.json", "a"))

    def test_large_documents_are_searched_in_parts(self):
        rows = [{"number": number, "list": [number]} for number in range(20000)]
        for content, prefix in ((json.dumps(rows), "[%d]"), ("1 " + json.dumps(rows), "2:[%d]"),
                                ("\n".join(map(json.dumps, rows)), "%d:")):
            self.write("b.json", content)
            self.ok("convert", "b.json", "b.kelb")
            shift = 1 if prefix == "%d:" else 0
            wanted = [f"{prefix % (number + shift)}{step}: {number}"
                      for number in (1777, 11777, 17770, 17771, 17772, 17773, 17774, 17775, 17776, 17777,
                                     17778, 17779)
                      for step in ((".list[0]", ".number") if not shift else ("list[0]", "number"))]
            self.assertEqual(self.found("b.json", "1777", "--values"), wanted)
            self.assertEqual(self.found("b.kelb", "1777", "--values"), wanted)

    def test_a_shared_value_is_found_at_its_first_place_and_by_its_names(self):
        self.write("b.kelb", struct_record([
            (b"first", struct_record([(b"text", string_record(b"abc", 3))], 2)),
            (b"second", reference(2)), (b"third", reference(3))]))
        self.assertEqual(self.found("b.kelb", "abc"), ['first.text: "abc"'])
        self.assertEqual(self.found("b.kelb", "second"), ["second: a struct"])
        self.assertEqual(self.found("b.kelb", "third"), ['third: "abc"'])
        everywhere = ['first.text: "abc"', 'second.text: "abc"', 'third: "abc"']
        self.assertEqual(self.found("b.kelb", "abc", "--all"), everywhere)
        self.assertEqual(self.found("b.kelb", "abc", "--all", "--count"), ["3"])
        self.assertEqual(self.found("b.kelb", "text"), ['first.text: "abc"'])
        self.assertEqual(len(self.found("b.kelb", "text", "--all")), 2)

    def test_a_value_inside_itself_is_not_entered_again(self):
        self.write("b.kelb", struct_record([(b"a", int_record(5, 2)), (b"self", reference(1))]))
        for options in ((), ("--all",)):
            self.assertEqual(self.found("b.kelb", "a", *options), ["a: 5"])
            self.assertEqual(self.found("b.kelb", "--names", "self", *options),
                             ["self: a struct"])

    def test_places_without_end_are_counted_and_skipped_quickly(self):
        levels = 80
        content = int_record(7, 2)
        for number in range(3, 3 + levels):
            content = record(ARRAY, content + reference(number - 1), number)
        self.write("b.kelb", content)
        self.assertEqual(self.found("b.kelb", "7", "--all", "--count"), [str(2**64 - 1)])
        self.nothing("b.kelb", "8", "--all")

    def test_matches_before_a_mistake_are_printed(self):
        self.write("b.json", '{"a": 1}\n{"a": 2}\n{"a": ')
        result = self.kel("find", "b.json", "a")
        self.assertEqual((result.status, result.out), (3, b"1:a: 1\n2:a: 2\n"))
        self.assertTrue(result.err.startswith("kel: b.json:3:1: "), result.err)

    def test_paths_do_not_count_what_reading_leaves_out(self):
        self.write("b.json", '[1, null, "x"]')
        result = self.kel("find", "b.json", "x")
        self.assertEqual((result.status, result.out), (0, b'[1]: "x"\n'))
        self.assertEqual(result.err, "kel: warning: b.json: 1 place cannot be converted from json "
                                     "to values:\n  [1]: null in an array\n")

    def test_a_million_levels(self):
        levels = 1000000
        self.write("b.json", b"[" * levels + b'"x"' + b"]" * levels)
        self.ok("convert", "b.json", "b.kelb")
        for name in ("b.json", "b.kelb"):
            self.assertEqual(self.ok("find", name, "x", small_stack=True).out,
                             b"[0]" * levels + b': "x"\n')
