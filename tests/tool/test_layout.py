"""kel convert --compact and --indent: how JSON is divided into lines."""

import json

from support import ARRAY, INT, ToolTest, int_record, record, reference, struct_record
from test_parts import Text

DOCUMENT = '{"a": [1, {}], "b": {"$memblock": "AAEC"}, "c": null, "d": []}'
COMPACT = '{"a":[1,{}],"b":{"$memblock":"AAEC"},"c":null,"d":[]}\n'


def indented(indent):
    """Returns the document with this indentation of each level."""
    lines = ["{", '>"a": [', ">>1,", ">>{}", ">],", '>"b": { "$memblock": "AAEC" },',
             '>"c": null,', '>"d": []', "}"]
    return "\n".join(lines).replace(">", indent) + "\n"


class Layout(ToolTest):
    def laid_out(self, text, *options):
        """Returns JSON of the text, which is the same from binary, part by part and as a whole."""
        self.write("a.json", text)
        direct = self.ok("convert", *options, "--to", "json", "a.json", "-").out.decode()
        self.ok("convert", "a.json", "a.kelb")
        self.assertEqual(self.ok("convert", *options, "--to", "json", "a.kelb", "-").out.decode(),
                         direct)
        self.ok("convert", *options, "a.kelb", "b.json")
        self.assertEqual(self.read("b.json").decode(), direct)
        return direct

    def test_each_indentation(self):
        self.assertEqual(self.laid_out(DOCUMENT), indented("    "))
        for width in range(9):
            self.assertEqual(self.laid_out(DOCUMENT, "--indent", str(width)), indented(" " * width))
        self.assertEqual(self.laid_out(DOCUMENT, "--indent", "tab"), indented("\t"))
        self.assertEqual(self.laid_out(DOCUMENT, "--compact"), COMPACT)

    def test_several_roots(self):
        self.assertEqual(self.laid_out(DOCUMENT + DOCUMENT), COMPACT * 2)
        self.assertEqual(self.laid_out(DOCUMENT + DOCUMENT, "--compact"), COMPACT * 2)
        self.assertEqual(self.laid_out(DOCUMENT + DOCUMENT, "--indent", "2"), indented("  ") * 2)

    def test_large_documents_in_parts(self):
        text = "[" + Text(4).value(20000) + "]"
        for options in (["--compact"], ["--indent", "0"], ["--indent", "8"], ["--indent", "tab"]):
            self.write("whole.json", text[:-1] + ",7,7]")
            self.ok("convert", "whole.json", "whole.kelb")
            content = self.read("whole.kelb")
            last = content[-38:]
            # A reference makes the tool convert a document as a whole.
            shared = content[:-38] + content[-76:-56] + reference(1)[20:]
            shared = shared[:26] + (len(shared) - 34).to_bytes(8, "little") + shared[34:]
            self.assertEqual(last[20:24], INT.to_bytes(4, "little"))
            self.write("shared.kelb", shared)
            parts = self.ok("convert", *options, "--to", "json", "whole.kelb", "-").out
            self.assertEqual(self.ok("convert", *options, "--to", "json", "shared.kelb", "-").out,
                             parts)
            self.ok("convert", "whole.json", "usual.json")
            self.assertEqual(json.loads(parts), self.json("usual.json"))

    def test_levels_beyond_40_are_on_one_line(self):
        depth = 60
        text = self.laid_out("[" * depth + "1" + "]" * depth, "--indent", "tab")
        lines = text.splitlines()
        self.assertEqual(len(lines), 81)
        self.assertEqual(lines[40], "\t" * 40 + "[" * 20 + "1" + "]" * 20)
        self.assertEqual(self.laid_out("[" * depth + "1" + "]" * depth, "--compact").count("\n"), 1)

    def test_the_limit_counts_the_indentation(self):
        depth = 40
        self.write("a.kelb", struct_record([(b"a", int_record(1))]))
        content = int_record(1)
        for _ in range(depth):
            content = record(ARRAY, content * 2 if len(content) < 60000 else content)
        self.write("a.kelb", content)
        sizes = {}
        for options in (("--compact",), ("--indent", "1"), (), ("--indent", "8")):
            out = self.ok("convert", *options, "--to", "json", "a.kelb", "-").out
            sizes[options] = len(out)
        for options, size in sizes.items():
            with self.subTest(options=options, size=size):
                self.ok("convert", *options, "--max-output", str(3 * size), "a.kelb", "out.json")
                result = self.kel("convert", *options, "--max-output", str(size // 3), "a.kelb",
                                  "out.json")
                self.assertEqual(result.status, 1)
                self.assertIn(f"would exceed {size // 3} bytes", result.err)

    def test_other_formats_have_no_layout(self):
        self.write("a.json", "[1]")
        for output, form in (("b.kel", "text"), ("b.kelb", "binary")):
            for options in (["--compact"], ["--indent", "2"]):
                self.fails(2, "kel: --compact and --indent are for json only, and the output is "
                           f"{form}\n", "convert", *options, "a.json", output)
        self.assertEqual(self.files(), ["a.json"])

    def test_other_indentations_are_refused(self):
        self.write("a.json", "[1]")
        for indent in ("9", "-1", "10", "", "tabs", "\t"):
            result = self.kel("convert", "--indent", indent, "a.json", "b.json")
            self.assertEqual(result.status, 2)
        self.fails(2, "kel: --compact excludes --indent\nrun \"kel convert --help\" for help\n",
                   "convert", "--indent", "2", "--compact", "a.json", "b.json")
        self.assertEqual(self.files(), ["a.json"])
