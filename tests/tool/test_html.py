import base64
import glob
import hashlib
import html.parser
import json
import os
import re
import unittest

from support import (ARRAY, DOUBLE, INT, MEMBLOCK, STRUCT, ToolTest, double_record, identity,
                     int_record, record, reference, string_record, struct_record)

IDENTITY = "3F2504E0-4F89-11D3-9A0C-0305E82C3301"


class Page(html.parser.HTMLParser):
    """A page, read as a browser reads it: its elements with their attributes and texts."""

    def __init__(self, content):
        super().__init__()
        self.elements = []
        self.feed(content.decode("utf-8"))
        self.close()
        self.data = json.loads(self.text("script", type="application/json"))
        self.begins = [0]  # of the places in each value
        for kind, content in zip(self.data["kinds"], self.data["contents"]):
            self.begins.append(self.begins[-1] + (content if kind == 0 or kind >= ARRAY else 0))

    def handle_starttag(self, tag, attrs):
        self.elements.append([tag, dict(attrs), ""])

    def handle_endtag(self, tag):
        self.elements.append(["", {}, ""])  # takes what follows

    def handle_data(self, data):
        if self.elements:
            self.elements[-1][2] += data

    def find(self, tag, **attributes):
        return [element for element in self.elements
                if element[0] == tag and all(element[1].get(name) == value
                                             for name, value in attributes.items())]

    def text(self, tag, **attributes):
        return self.find(tag, **attributes)[0][2]

    def places_in(self, value):
        return range(self.begins[value], self.begins[value + 1])

    def name(self, place):
        return self.data["nameTexts"][self.data["names"][place]]

    def plain(self, value=0):
        """Returns a value of arrays, structs and scalars as Python's, and all root values for 0."""
        kind, content = self.data["kinds"][value], self.data["contents"][value]
        if kind == STRUCT:
            return {self.name(place): self.at(place) for place in self.places_in(value)}
        if kind in (0, ARRAY):
            return [self.at(place) for place in self.places_in(value)]
        return float(content) if kind == DOUBLE else content

    def at(self, place):
        value = self.data["values"][place]
        return None if value == 0 else self.plain(value)

    def identities(self):
        """Returns the identities by the numbers of their values."""
        digits = re.findall("." * 32, self.data["identities"])
        identified = self.data["identified"]
        return dict(zip(range(1, len(digits) + 1) if identified is None else identified, digits))


class Html(ToolTest):
    def page(self, name, content=None, **options):
        if content is not None:
            self.write(name, content)
        return Page(self.ok("html", name, **options).out)

    def test_the_page_holds_every_value(self):
        values = [{"a": [1, 2.5, True], "b": {"x": "y"}, "t": "\u20ac \\ \n"},
                  {"none": None, "empty": [], "nested": [[{}]]}]
        self.assertEqual(self.page("a.json", json.dumps(values)).plain(), [values])

    @unittest.skipUnless(os.environ.get("KEL_TEST_DATA"), "needs a folder of documents")
    def test_the_pages_of_real_documents_hold_every_value(self):
        for path in sorted(glob.glob(os.path.join(os.environ["KEL_TEST_DATA"], "*.json"))):
            page = Page(self.kel("html", path).out)
            self.kel("convert", "--force", path, "plain.json")
            self.assertEqual(page.plain(), [self.json("plain.json")], path)

    def test_only_the_script_and_the_style_of_the_page_are_allowed(self):
        page = self.page("a.json", "[1]")
        policy = page.find("meta", **{"http-equiv": "Content-Security-Policy"})[0][1]["content"]
        allowed = [base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()
                   for text in (page.find("script")[1][2], page.text("style"))]
        self.assertEqual(policy, f"default-src 'none'; script-src 'sha256-{allowed[0]}'; "
                                 f"style-src 'sha256-{allowed[1]}'; base-uri 'none'; "
                                 "form-action 'none'")
        self.assertEqual(len(page.find("script")), 2)
        for tag, attributes, _ in page.elements:
            self.assertEqual([name for name in attributes if name.startswith("on")], [], tag)
            self.assertEqual({"src", "href", "style"} & set(attributes), set(), tag)

    def test_nothing_of_a_file_ends_the_data(self):
        attack = "</script><img src=x onerror=alert(1)><!-- <script>"
        page = self.page("a.json", json.dumps({attack: attack, "b": ["]]>", "\u2028", "\x7f\x1b"]}))
        self.assertEqual(page.plain(), [{attack: attack, "b": ["]]>", "\u2028", "\x7f\x1b"]}])
        self.assertEqual(page.find("img"), [])
        data = page.text("script", type="application/json")
        self.assertNotRegex(data, r"[<\x00-\x09\x0b-\x1f\x7f]")

    def test_kinds_that_json_lacks_have_their_contents(self):
        guid = "3F2504E0-4F89-11D3-9A0C-0305E82C3301"
        page = self.page("a.kel", "[ %s\n< [ 1 2 ] [ 3 4 ] > ( %s = 7 ) false ]" % (guid, guid))
        self.assertEqual(page.data["contents"][1:6], [4, guid, 4, 1, False])

    def test_quotes_and_backslashes_are_data(self):
        values = {"back\\slash": 'say "x" \\ y'}
        self.assertEqual(self.page("a.json", json.dumps(values)).plain(), [values])

    def test_placeholders_of_the_page_are_data_in_a_file(self):
        self.assertEqual(self.page("a.json", '["{{data}}", "{{script}}"]').plain(),
                         [["{{data}}", "{{script}}"]])

    def test_bytes_that_are_not_utf8_are_marked(self):
        self.write("a.kelb", struct_record([(b"n\xff", string_record(b"a\xc3<\\", 2)),
                                            (b"ok", string_record("\u00e4\\".encode(), 3))]))
        self.assertEqual(self.page("a.kelb").data["contents"][2:], [["a\\xc3<\\\\"], "\u00e4\\"])
        self.assertEqual(self.page("a.kelb").data["nameTexts"], ["", ["n\\xff"], "ok"])
        self.write("b.kelb", string_record("\u00e4\"".encode() + b"\xff", 2))
        self.assertEqual(self.page("b.kelb").data["contents"][1:], [["\u00e4\"\\xff"]])

    def test_memory_blocks_have_their_size_and_their_first_bytes(self):
        bytes_ = bytes(range(256)) * 20
        self.write("a.kelb", record(MEMBLOCK, bytes_) + record(MEMBLOCK, b"", 2))
        contents = self.page("a.kelb").data["contents"]
        self.assertEqual(contents[1:], [[5120, base64.b64encode(bytes_[:4096]).decode()], [0, ""]])

    def test_doubles_have_their_shortest_exact_form(self):
        self.write("a.kelb", b"".join(double_record(value, number + 1) for number, value in
                                      enumerate([0.1, -0.0, 1e300, float("inf"), float("nan")])))
        self.assertEqual(self.page("a.kelb").data["contents"][1:], ["0.1", "-0", "1e+300", "inf", "nan"])

    def test_a_shared_value_is_there_once(self):
        inner = struct_record([(b"x", int_record(7, 3))], 2)
        self.write("a.kelb", record(ARRAY, inner + reference(2) + reference(3)))
        data = self.page("a.kelb").data
        self.assertEqual(data["kinds"], [0, ARRAY, STRUCT, INT])
        self.assertEqual(data["values"], [1, 2, 2, 3, 3])

    def test_a_value_can_contain_itself(self):
        self.write("a.kelb", record(ARRAY, reference(1) + int_record(7, 2)))
        self.assertEqual(self.page("a.kelb").data["values"], [1, 1, 2])

    def test_identities_are_those_that_the_file_gives(self):
        self.write("a.kelb", record(ARRAY, int_record(7, 2)))
        numbers = [int.from_bytes(identity(number)[:4], "little") for number in (1, 2)]
        found = self.page("a.kelb").identities()
        self.assertEqual([int(digits[:8], 16) for digits in found.values()], numbers)
        self.assertEqual(list(found), [1, 2])
        text = self.page("a.kel", f"[ 1 {IDENTITY} = 2 3 ( {IDENTITY[:-1]}2 = 4 ) ]")
        self.assertEqual([(text.plain(value), digits) for value, digits in text.identities().items()],
                         [(2, IDENTITY.replace("-", "")), (4, IDENTITY[:-1].replace("-", "") + "2")])
        self.assertEqual(self.page("a.json", "[1, 2]").identities(), {})

    def test_every_run_makes_the_same_page(self):
        self.write("a.kel", f"{{ a = [ 1 ] b = {IDENTITY} = [ 2 ] c = REF {IDENTITY} }}")
        self.assertEqual(self.ok("html", "a.kel").out, self.ok("html", "a.kel").out)

    def test_violations_are_those_of_check(self):
        self.write("a.kel", """{ @type = 50
  @desc = { @type = 51
    a = { @type = 52 type = 1 min = 0 max = 10 }
    b = { @type = 52 type = 6 enum = [ "x" "y" ] }
    c = { @type = 52 min = 1 max = 2 }
    d = 5 }
  a = 11 b = "x" }""")
        page = self.page("a.kel")
        violations = {page.name(place): words for place, words in page.data["violations"]}
        self.assertEqual(violations, {"a": "11 is not allowed (allowed: 0 to 10)",
                                      "c": "the type is missing",
                                      "d": "5 is not a variable descriptor"})
        checked = self.kel("check", "a.kel").err
        for words in violations.values():
            self.assertIn(words, checked)

    def test_several_roots_and_null_are_kept(self):
        self.assertEqual(self.page("a.kel", "1 NULL { a = NULL } 1").plain(),
                         [1, None, {"a": None}, 1])

    def test_stdin_is_read_and_the_output_file_replaced(self):
        self.write("out.html", "the old file")
        self.assertEqual(self.ok("html", "-", "-o", "out.html", input="[ 5 ]").out, b"")
        page = Page(self.read("out.html"))
        self.assertEqual((page.plain(), page.data["file"], page.data["format"]), ([[5]], "-", "text"))
        self.assertEqual(self.files(), ["out.html"])

    def test_the_page_has_the_name_of_the_file_without_its_folders(self):
        os.mkdir(self.path("secret"))
        self.write("secret/a.json", "[]")
        self.assertEqual(self.page("secret/a.json").data["file"], "a.json")

    def test_a_page_beyond_the_limit_is_not_written(self):
        self.write("a.json", json.dumps(["x" * 2000] * 1000))
        self.fails(1, "kel: a.json: the page would exceed 1048576 bytes; "
                      "use --max-output to allow more\n",
                   "html", "--max-output", "1M", "a.json", "-o", "out.html")
        self.assertEqual(self.files(), ["a.json"])
        self.ok("html", "--max-output", "4M", "a.json", "-o", "out.html")

    def test_what_values_cannot_hold_of_json_is_a_warning(self):
        self.write("a.json", "[null, 1]")
        result = self.kel("html", "a.json")
        self.assertEqual((result.status, result.err),
                         (0, "kel: warning: a.json: 1 place cannot be converted from json "
                             "to values:\n  [0]: null in an array\n"))
        self.assertEqual(Page(result.out).plain(), [[1]])

    def test_a_malformed_file_leaves_the_output_as_it_was(self):
        self.write("a.kel", "{ a = ? }")
        self.write("out.html", "the old file")
        result = self.kel("html", "a.kel", "-o", "out.html")
        self.assertEqual(result.status, 3)
        self.assertTrue(result.err.startswith("kel: a.kel:1:7: "), result.err)
        self.assertEqual(self.read("out.html"), b"the old file")

    def test_deep_trees_need_no_call_stack(self):
        depth = 200000
        self.write("a.json", "[" * depth + "]" * depth)
        data = Page(self.ok("html", "a.json", small_stack=True).out).data
        self.assertEqual(data["values"], list(range(1, depth + 1)))
