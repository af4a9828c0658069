"""kel stats: its numbers are those of the files that kel writes."""

import json
import random

from support import (ARRAY, STRUCT, ToolTest, double_record, int_record, record, reference,
                     string_record, struct_record)

FORMATS = {"text": "kel", "binary": "kelb", "json": "json"}

EVERY_TEXT_KIND = """[ { @type = 50
  @desc = { @type = 51, @hashCode = 3F2504E0-4F89-11D3-9A0C-0305E82C3301
    a = { @type = 52
      type = 1
      enum = [ 1 2 ] } }
  a = 1 }
  { m = ( 3F2504E0-4F89-11D3-9A0C-0305E82C3302 = [ 1 ]
          3F2504E0-4F89-11D3-9A0C-0305E82C3303 = { @type = 50
            b = 1 } )
    l = < [ "a" [ 1 2 ] ] [ 1.5 { x = NULL "odd name" = -2.5 } ] >
    e = < [] [] > }
  12345678-4F89-11D3-9A0C-0305E82C3302 ]
NULL
"""


def random_value(generator, depth):
    """Returns a value that every format holds."""
    choice = generator.randrange(4 if depth == 0 else 8)
    if choice == 0:
        return generator.randrange(-2**31, 2**31)
    if choice == 1:
        return generator.choice([True, False])
    if choice == 2:
        return generator.randrange(-1000, 1000) / 4
    if choice == 3:
        return generator.choice(["", "x", "a\\b", "tab\tand\nline", "ä€😀", "y" * 70])
    if choice < 6:
        return [random_value(generator, depth - 1) for _ in range(generator.randrange(4))]
    names = generator.sample(["a", "B2", "_x", "@y", "odd name", "ä", "back\\slash", "."], 3)
    return {name: random_value(generator, depth - 1) if generator.randrange(6) else None
            for name in names}


class Stats(ToolTest):
    def stats(self, *arguments, **options):
        return json.loads(self.ok("stats", "--json", *arguments, **options).out)

    def check_sizes(self, name):
        """Compares the bytes in each format with the files that convert writes."""
        for source in FORMATS.values():
            self.ok("convert", name, "source." + source)
        for source in FORMATS.values():
            stats = self.stats("source." + source)
            self.assertEqual(stats["cannotBeHeld"], {"text": 0, "binary": 0, "json": 0})
            for form, ending in FORMATS.items():
                self.ok("convert", "source." + source, "out." + ending)
                self.assertEqual(stats["bytes"][form], len(self.read("out." + ending)),
                                 (source, form))

    def test_one_byte_is_counted_as_one(self):
        self.write("one.kel", "1")
        self.assertTrue(self.ok("stats", "one.kel").out.startswith(b"one.kel: text, 1 byte\n"))
        self.write("two.kel", '"x"')
        self.assertIn(b"longest string  1 byte, at ", self.ok("stats", "two.kel").out)

    def test_the_table_has_a_row_for_each_kind(self):
        self.write("b.json", '{"list": [1, 2.5, true, "Hi"], "none": null}')
        self.assertEqual(self.ok("stats", "b.json").out.decode(), """\
b.json: json, 44 bytes
root values     1
values          6, and 1 null
depth           2
shared          nothing
longest string  2 bytes, at list[3]

                values    text  binary    json
int                  1       4      38      10
boolean              1       7      35      14
double               1      11      42      13
string               1       7      36      14
array                1       6      34      12
struct               1       4      34       4
null                 1       6      24      10
names                       14      10      16
bytes in all                59     253      93
cannot be held               0       0       0
""")

    def test_the_bytes_are_those_of_the_files_that_convert_writes(self):
        generator = random.Random(6)
        for number in range(6):
            roots = [random_value(generator, 4) for _ in range(1 + number % 2)]
            self.write("a.json", "\n".join(map(json.dumps, roots)))
            self.check_sizes("a.json")

    def test_deep_levels_of_json_are_not_indented(self):
        self.write("a.json", "[" * 45 + "[], 1" + "]" * 45)
        self.check_sizes("a.json")

    def test_every_kind_of_text_has_its_bytes(self):
        self.write("a.kel", EVERY_TEXT_KIND)
        self.ok("convert", "a.kel", "b.kel")
        stats = self.stats("a.kel")
        self.assertEqual(stats["bytes"]["text"], len(self.read("b.kel")))
        self.assertEqual({kind: row["values"] for kind, row in stats["kinds"].items()},
                         {"int": 8, "double": 2, "guid": 1, "string": 1, "array": 4, "struct": 2,
                          "manager": 1, "indexlist": 2, "metakel": 2, "metakeldescriptor": 1,
                          "metakelvardescriptor": 1})
        # The last place is the second root value, which is null.
        self.assertEqual(stats["cannotBeHeld"], {"text": 0, "binary": 9, "json": 7})

    def test_memory_blocks_and_guids_have_their_bytes_in_json(self):
        self.write("a.json", '{"g": {"$guid": "00010203-0405-0607-0809-0A0B0C0D0E0F"}}')
        self.write("b.json", '[{"$memblock": "AAECAw=="}]')
        for name in ("a.json", "b.json"):
            self.ok("convert", name, "out.json")
            self.assertEqual(self.stats(name)["bytes"]["json"], len(self.read("out.json")))

    def test_memory_blocks_and_guids_of_one_of_several_roots_have_their_bytes_too(self):
        self.write("a.json", '{"g": {"$guid": "00010203-0405-0607-0809-0A0B0C0D0E0F"}}\n'
                             '[{"$memblock": "AAECAw=="}]')
        self.ok("convert", "a.json", "out.json")
        self.assertEqual(self.stats("a.json")["bytes"]["json"], len(self.read("out.json")))

    def test_names_have_the_bytes_of_their_escapes(self):
        self.write("a.kelb", struct_record([(b"back\\slash", int_record(1, 2)),
                                            (b"~", int_record(1, 3)), (b"\x7f", int_record(1, 4)),
                                            (b"\x1f", int_record(1, 5))]))
        self.ok("convert", "a.kelb", "out.json")
        self.assertEqual(self.stats("a.kelb")["bytes"]["json"], len(self.read("out.json")))

    def test_a_large_document_is_counted_in_parts(self):
        row = {"name": "a name", "size": [1, 2.5, True], "none": None}
        for content in (json.dumps([row] * 9000), json.dumps(row) * 9000,
                        "1 [" + json.dumps([row] * 3000) + "]" + json.dumps([row] * 6000)):
            self.write("a.json", content)
            self.check_sizes("a.json")
            stats = self.stats("a.json")
            self.assertEqual(stats["kinds"]["struct"]["values"], 9000)
            self.assertEqual(stats["nulls"], 9000)
        self.assertEqual((stats["roots"], stats["longestString"]["path"]), (3, "2:[0][0].name"))

    def test_shared_values_and_cycles_are_counted(self):
        self.write("a.kelb", record(ARRAY, int_record(7, 2) + reference(2) + reference(2) +
                                    record(ARRAY, reference(1), 3) + reference(3)))
        stats = self.stats("a.kelb")
        self.assertEqual((stats["values"], stats["shared"], stats["furtherPlaces"],
                          stats["insideThemselves"]), (3, 3, 4, 1))
        self.assertEqual(stats["furtherBytes"]["binary"], 4 * 24)
        self.assertEqual(stats["bytes"]["binary"], len(self.read("a.kelb")))
        self.assertEqual(stats["cannotBeHeld"]["json"], 1)
        self.assertIn(b"shared          3 values, at 4 further places, 1 of them inside themselves",
                      self.ok("stats", "a.kelb").out)

    def test_shared_values_are_written_again_as_text_and_json(self):
        inner = struct_record([(b"a", int_record(7, 2))], 3)
        self.write("a.kelb", record(ARRAY, inner + reference(3) + record(ARRAY, reference(3), 4)))
        stats = self.stats("a.kelb")
        for form, ending in FORMATS.items():
            self.ok("convert", "a.kelb", "out." + ending)
            self.assertEqual(stats["bytes"][form], len(self.read("out." + ending)), form)

    def test_values_that_are_shared_without_end_are_marked(self):
        levels = 60
        content = int_record(7, 2)
        for number in range(3, 3 + levels):
            content = record(ARRAY, content + reference(number - 1), number)
        self.write("a.kelb", content)
        stats = self.stats("a.kelb")
        self.assertEqual((stats["isComplete"], stats["values"]), (False, levels + 1))
        self.assertEqual(stats["bytes"]["binary"], len(content))
        line, = [line for line in self.ok("stats", "a.kelb").out.splitlines()
                 if line.startswith(b"bytes in all")]
        self.assertEqual([cell[:1] for cell in line.split()[3:]], [b">", b"%d" % (len(content) //
                         10**(len(str(len(content))) - 1)), b">"])

    def test_the_bytes_of_binary_are_those_of_the_file(self):
        self.write("a.kelb", struct_record([(b"a", double_record(1)), (b"a", int_record(1, 2))], 3))
        result = self.kel("stats", "--json", "a.kelb")
        self.assertEqual((result.status, json.loads(result.out)["bytes"]["binary"]),
                         (0, len(self.read("a.kelb"))))
        self.assertEqual(result.err, "kel: warning: a.kelb: 1 place cannot be converted from binary "
                                     "to values:\n  offset 80: a: a repeated name; only its last "
                                     "value is kept\n")

    def test_several_files_give_an_object_each(self):
        self.write("a.json", "1")
        self.write("b.json", "[")
        self.write("c.kel", "2")
        result = self.kel("stats", "--json", "a.json", "b.json", "c.kel")
        self.assertEqual(result.status, 3)
        self.assertEqual([json.loads(line)["file"] for line in result.out.splitlines()],
                         ["a.json", "c.kel"])
        self.assertTrue(result.err.startswith("kel: b.json:1:1: "), result.err)

    def test_what_a_format_cannot_hold_is_counted(self):
        self.write("a.json", '["a\\"b", 1e300, 0.1]')
        table = self.ok("stats", "a.json").out.decode().splitlines()
        self.assertEqual(table[-1].split(), ["cannot", "be", "held", "2", "0", "0"])
        self.assertEqual([cell[0] for cell in table[-2].split()[3:]][0], "~")

    def test_a_million_levels(self):
        levels = 1000000
        self.write("a.json", b"[" * levels + b'"x"' + b"]" * levels)
        stats = json.loads(self.ok("stats", "--json", "a.json", small_stack=True).out)
        self.assertEqual(stats["depth"], levels)
        self.ok("convert", "a.json", "a.kelb")
        self.assertEqual(stats["bytes"]["binary"], len(self.read("a.kelb")))
        path = stats["longestString"]["path"]
        self.assertTrue(path.startswith("[0][0]") and " ... " in path, path)
        again = json.loads(self.ok("stats", "--json", "a.kelb", small_stack=True).out)
        self.assertEqual((again["bytes"], again["depth"]), (stats["bytes"], levels))
