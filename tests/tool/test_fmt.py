"""kel fmt: files in the usual layout, without losing anything."""

import json
import os

from support import ToolTest, int_record, posix_only

TEXT = '{ b = [ 1   2 ]\n\n a = "x" }'
FORMATTED = '{\n\ta = "x"\n\tb = [\n\t\t1\n\t\t2\n\t]\n}\n'
JSON = '{"b": [1,2.50], "a": "x"}'
FORMATTED_JSON = """{
    "a": "x",
    "b": [
        1,
        2.5
    ]
}
"""


class Fmt(ToolTest):
    def setUp(self):
        super().setUp()
        self.write("a.kel", TEXT)
        self.write("a.json", JSON)

    def test_text_and_json_are_printed(self):
        self.assertEqual(self.ok("fmt", "a.kel").out.decode(), FORMATTED)
        self.assertEqual(self.ok("fmt", "a.json").out.decode(), FORMATTED_JSON)
        self.assertEqual(self.ok("fmt", "-", input=JSON).out.decode(), FORMATTED_JSON)
        self.assertEqual(self.ok("fmt", "a.kel", "a.json").out.decode(),
                         FORMATTED + FORMATTED_JSON)
        self.assertEqual(self.read("a.kel").decode(), TEXT)

    def test_in_place_changes_files_once(self):
        self.assertEqual(self.ok("fmt", "-i", "a.kel", "a.json").out, b"")
        self.assertEqual(self.read("a.kel").decode(), FORMATTED)
        self.assertEqual(self.read("a.json").decode(), FORMATTED_JSON)
        before = [os.stat(self.path(name)) for name in ("a.kel", "a.json")]
        self.ok("fmt", "-i", "a.kel", "a.json")
        after = [os.stat(self.path(name)) for name in ("a.kel", "a.json")]
        self.assertEqual([(stat.st_mtime_ns, stat.st_ino) for stat in before],
                         [(stat.st_mtime_ns, stat.st_ino) for stat in after])
        self.assertEqual(self.files(), ["a.json", "a.kel"])

    def test_check_lists_what_in_place_would_change(self):
        self.write("b.kel", FORMATTED)
        self.write("b.json", FORMATTED_JSON)
        self.write("c.json", "[null]")
        self.write("d.json", FORMATTED_JSON + "\n")
        self.write("e.kel", FORMATTED.replace("\n", "\r\n"))
        result = self.fails(1, "", "fmt", "--check", "a.kel", "b.kel", "a.json", "b.json", "c.json",
                            "d.json", "e.kel")
        self.assertEqual(result.out.decode().split(),
                         ["a.kel", "a.json", "c.json", "d.json", "e.kel"])
        self.assertEqual(self.ok("fmt", "--check", "b.kel", "b.json").out, b"")
        self.assertEqual(self.read("a.kel").decode(), TEXT)

    def test_text_that_values_do_not_hold_is_refused(self):
        for content, line, words in (("[ 1\n// why\n]", 2, "a comment"),
                                     ("\n/* x */ 1", 2, "a comment"),
                                     ('"// no comment"\n#define N 5\n[ N ]', 2, None)):
            self.write("b.kel", content)
            result = self.kel("fmt", "-i", "b.kel")
            self.assertEqual((result.status, result.out), (1, b""))
            self.assertRegex(result.err, rf"\Akel: b.kel:{line}: {words or ''}.* would be lost; "
                                         r"nothing was written; use --force to format the rest\n")
            self.assertEqual(self.read("b.kel").decode(), content)
            self.assertEqual(self.kel("fmt", "--check", "b.kel").out, b"b.kel\n")
            self.ok("fmt", "-i", "--force", "b.kel")
            self.ok("fmt", "--check", "b.kel")

    def test_the_first_thing_that_would_be_lost_is_named(self):
        identity = "3F2504E0-4F89-11D3-9A0C-0305E82C3301"
        for content, words in ((f"[ {identity} // x\n]", "a comment"),
                               (f"[ {identity} /* x */ ]", "a comment"),
                               (f"[ {identity} = [ ]\nref {identity} ]", "an identity"),
                               ("{ @hashCode = %s\n}" % identity, "an identity")):
            with self.subTest(content):
                self.write("b.kel", content)
                self.fails(1, f"kel: b.kel:1: {words} would be lost; nothing was written; use "
                              "--force to format the rest\n", "fmt", "b.kel")

    def test_the_identity_of_a_descriptor_and_names_like_words_are_kept(self):
        descriptor = "{ @type = 51, @hashCode = 3F2504E0-4F89-11D3-9A0C-0305E82C3301\n}"
        for content in ("{ REF = 1 ref = 2 }", "{ REF=1 }", descriptor):
            with self.subTest(content):
                self.write("b.kel", content)
                self.assertEqual(self.ok("fmt", "b.kel").out.split(), content.replace(
                    "REF=1", "REF = 1").encode().split())

    def test_numbers_that_text_would_change_are_refused(self):
        self.write("b.kel", "[ 0.1234567\n4294967297\n{ a = 1 a = 2 } ]")
        self.fails(1, "kel: b.kel:1:3: [0]: 0.1234567 has more than the six decimals that are "
                      "written\n"
                      "  b.kel:2:1: [1]: 4294967297 does not fit in 32 bits and is read as 1\n"
                      "  b.kel:3:9: [2].a: a repeated name; only its last value is kept (first at "
                      "line 3)\n"
                      "nothing was written; use --force to write the rest\n", "fmt", "b.kel")

    def test_json_that_values_do_not_hold_is_refused(self):
        self.write("b.json", '[null, {"a": 1, "a": [2]}, 12345678901234567890]')
        places = ("b.json: 3 places cannot be written as json:\n"
                  "  [0]: null in an array\n"
                  "  [1].a: a repeated name; only its last value is kept\n"
                  "  [2]: an integer that no double holds exactly\n")
        before = self.read("b.json")
        self.fails(1, f"kel: {places}nothing was written; use --force to format the rest\n",
                   "fmt", "-i", "b.json")
        self.assertEqual(self.read("b.json"), before)
        result = self.kel("fmt", "--force", "b.json")
        self.assertEqual((result.status, result.err), (0, "kel: warning: " + places))
        self.assertEqual(json.loads(result.out), [{"a": [2]}, 12345678901234567890.0])

    def test_only_the_first_ten_numbers_that_would_change_are_listed(self):
        self.write("b.kel", "[" + " 4294967297" * 12 + " ]")
        message = self.kel("fmt", "b.kel").err
        self.assertEqual(message.count(" does not fit in 32 bits"), 10)
        self.assertIn("\n  and 2 more\n", message)

    def test_json_that_loses_something_is_listed_by_a_check(self):
        for content, place in (("[\n    1,\n    null\n]\n", "[1]"), ("1\n[null]\n", "2:[0]")):
            self.write("b.json", content)
            self.assertEqual(self.kel("fmt", "--check", "b.json").out, b"b.json\n")
            self.fails(1, "kel: b.json: 1 place cannot be written as json:\n"
                          f"  {place}: null in an array\nnothing was written; use --force to "
                          "format the rest\n", "fmt", "b.json")

    def test_large_json_has_the_layout_of_convert(self):
        row = {"name": "a name", "size": [1, 2.5, True, [], {}], "none": None}
        rows = [row] * 8000
        for content in (json.dumps(rows), json.dumps(row) * 8000, "1" + json.dumps(rows),
                        json.dumps({"rows": rows}), json.dumps([[rows]])):
            self.write("b.json", content)
            self.ok("convert", "b.json", "c.json")
            self.assertEqual(self.ok("fmt", "b.json").out, self.read("c.json"))
            self.ok("fmt", "--check", "c.json")

    def test_one_bad_file_does_not_stop_the_others(self):
        self.write("b.json", "[1,")
        self.write("c.kelb", int_record(1))
        result = self.kel("fmt", "-i", "b.json", "c.kelb", "missing.kel", "a.json")
        self.assertEqual(result.status, 3)
        self.assertIn("kel: c.kelb: binary has no layout; use kel show to print it as text\n",
                      result.err)
        self.assertEqual([line.split(":")[1] for line in result.err.splitlines()
                          if line.startswith("kel: ")], [" b.json", " c.kelb", " missing.kel"])
        self.assertEqual(self.read("a.json").decode(), FORMATTED_JSON)

    def test_options_that_exclude_each_other(self):
        self.fails(2, "kel: --in-place: stdin cannot be changed\n", "fmt", "-i", "-", input="[]")
        self.fails(2, "kel: --check writes nothing, so it excludes --in-place\n", "fmt", "-i",
                   "--check", "a.kel")

    def test_output_is_bounded(self):
        self.fails(1, "kel: a.json: as json the output would exceed 50 bytes; use --max-output to "
                      "allow more\n", "fmt", "--max-output", "50", "a.json")

    @posix_only("Windows has other permissions")
    def test_in_place_keeps_permissions(self):
        os.chmod(self.path("a.json"), 0o640)
        self.ok("fmt", "-i", "a.json")
        self.assertEqual(os.stat(self.path("a.json")).st_mode & 0o777, 0o640)
