"""--max-output: the size of an output is known before it is written, and so is its reason."""

import itertools
import json

from support import ARRAY, MEMBLOCK, STRING, ToolTest, int_record, record, reference, struct_record
from test_parts import Text

SETTINGS = """{ @type = 50
  @desc = { @type = 51, @hashCode = 3F2504E0-4F89-11D3-9A0C-0305E82C3301
    level = { @type = 52
      type = 1 default = 5 max = 10 }
    b = { @type = 52
      type = 7 } }
  level = 1
  b = [ "x" 2.5 ] }
"""
LIST = "< [ 1 \"two\" [ 3 ] ] [ < [ 4 5 ] [ 6 [ 7 ] ] > true [ 8 9 ] ] >"
MANAGER = "( 3F2504E0-4F89-11D3-9A0C-0305E82C3301 = 1 3F2504E0-4F89-11D3-9A0C-0305E82C3302 = [ 2 ] )"


def nested(depth, content="1"):
    return "[" * depth + content + "]" * depth


def bomb(levels, innermost, struct_name=None):
    """Returns the record of an array of two times an array of two times ... the innermost one."""
    content = innermost
    for number in range(2, levels + 2):
        if struct_name and number % 2:
            content = struct_record([(struct_name, content), (struct_name + b"2",
                                                              reference(number - 1))], number)
        else:
            content = record(ARRAY, content + reference(number - 1), number)
    return content


class OutputSize(ToolTest):
    JSON_LAYOUTS = [(), ("--compact",), ("--indent", "0"), ("--indent", "tab"), ("--indent", "8")]

    def setUp(self):
        super().setUp()
        self.layouts = itertools.cycle(self.JSON_LAYOUTS)

    def converted(self, name, limit, output, *options):
        return self.kel("convert", "--force", *options, "--max-output", str(limit), name, output)

    def bounded(self, name, content, output, *options, factor=2.0):
        """The estimate is at least the size of the output, and at most this factor of it."""
        self.write(name, content)
        self.assertEqual(self.converted(name, "1T", output, *options).status, 0)
        size = len(self.read(output))
        result = self.converted(name, size - 1, output, *options)
        self.assertEqual((result.status, f"would exceed {size - 1} bytes" in result.err), (1, True))
        result = self.converted(name, int(factor * size) + 10, output, *options)
        self.assertEqual((result.status, result.err.count("would exceed")), (0, 0))

    def bounded_everywhere(self, name, content, factor=2.0):
        """Converts to text, and to JSON in one layout after the other."""
        with self.subTest(name=name, content=content[:60], output="out.kel"):
            self.bounded(name, content, "out.kel", factor=factor)
        options = next(self.layouts)
        with self.subTest(name=name, content=content[:60], options=options):
            self.bounded(name, content, "out.json", *options, factor=factor)

    def test_numbers_and_words(self):
        for values in ([1] * 1000, list(range(-2**31, 2**31, 2**23)), [True, False] * 500,
                       [0.5] * 1000, [1.2345678901234567e-300] * 1000, [-1e300, 4e15, 1e9] * 300,
                       [{"a": None}] * 500, [[]] * 1000, [{}] * 1000, [[[]]] * 500):
            self.bounded_everywhere("a.json", json.dumps(values))

    def test_strings_and_names(self):
        for text in ("\1" * 3000, "\"\\" * 3000, "\n\t\b\f\r" * 1000, "\u00e9\u65e5" * 1000,
                     "\v\x7f" * 2000, "plain"):
            self.bounded_everywhere("a.json", json.dumps([text] * 3))
            self.bounded_everywhere("a.json", json.dumps({"n" + text: text, "m" + text: 1}))
        self.bounded_everywhere("a.kelb", record(STRING, b"\xff\xc3" * 3000))

    def test_random_documents(self):
        for seed in range(4):
            self.bounded_everywhere("a.json", Text(seed).value(2000))
        self.bounded_everywhere("a.json", "\n".join(Text(seed).value(300) for seed in range(5)))

    def test_deep_documents(self):
        for depth in (30, 39, 40, 41, 60, 500):
            self.bounded_everywhere("a.json", nested(depth))
            self.bounded_everywhere("a.json", nested(depth, ",".join(["1"] * 100)))
        self.bounded_everywhere("a.json", '{"a":' * 60 + "[1,2]" + "}" * 60)

    def test_shared_values(self):
        for levels in (3, 12):
            self.bounded_everywhere("a.kelb", bomb(levels, int_record(7, 1)))
            self.bounded_everywhere("a.kelb", bomb(levels, record(STRING, b"x" * 1000, 1), b"name"))
        inner = record(ARRAY, int_record(7, 3) * 50, 2)
        for first, second in ((5, 20), (20, 5), (20, 60), (5, 60), (60, 60)):
            deep = inner
            for number in range(first):
                deep = record(ARRAY, deep, 100 + number)
            again = reference(2)
            for number in range(second):
                again = record(ARRAY, again, 200 + number)
            self.bounded_everywhere("a.kelb", record(ARRAY, deep + again, 1))

    def test_a_shared_value_around_the_deepest_indented_level(self):
        """Lines that are on one line at the first place can be indented at the second."""
        inner = bomb(10, int_record(7, 1))
        for _ in range(35):
            inner = record(ARRAY, inner, 99)
        for _ in self.JSON_LAYOUTS:
            self.bounded_everywhere("a.kelb", record(ARRAY, inner + reference(8), 98))

    def test_text_only_kinds(self):
        for text in (SETTINGS, LIST, MANAGER, "12345678-4F89-11D3-9A0C-0305E82C3302"):
            for content in (text, "[\n" + f"{text}\n" * 20 + "]", "{ a = " * 10 + text + "}" * 10):
                # The values of descriptors are not in JSON, and a list can become few brackets.
                self.bounded_everywhere("a.kel", content, factor=2.5)

    def test_memory_blocks(self):
        for size in (0, 1, 1000):
            content = record(ARRAY, record(MEMBLOCK, bytes(size), 2) * 20)
            for options in self.JSON_LAYOUTS:
                self.bounded("a.kelb", content, "out.json", *options)

    def reason(self, name, content, limit, output="out.kel"):
        self.write(name, content)
        form = "text" if output.endswith(".kel") else "json"
        result = self.converted(name, limit, output)
        lead = f"kel: {name}: as {form} the output would exceed {limit} bytes"
        end = "; use --max-output to allow more\n"
        self.assertEqual((result.status, result.err[:len(lead)], result.err[-len(end):]),
                         (1, lead, end))
        return result.err[len(lead):-len(end)]

    def test_the_message_gives_the_reason(self):
        shared = ", because of values that are shared many times"
        deep = ", because of deep nesting"
        for output in ("out.kel", "out.json"):
            self.assertEqual(self.reason("a.json", "[" + "1," * 999 + "1]", 1000, output), "")
            self.assertEqual(self.reason("a.json", nested(100), 1000, output), deep)
            self.assertEqual(self.reason("a.kelb", bomb(20, int_record(7, 1)), 5000, output),
                             shared)
            long = record(STRING, b"x" * 1000, 2)
            self.assertEqual(self.reason("b.kelb", record(ARRAY, long + reference(2) * 100), 5000,
                                         output), shared)
            # Each of the strings is in the file.
            self.assertEqual(self.reason("c.kelb", b"".join(
                record(STRING, b"x" * 1000, number) for number in range(2, 100)), 5000, output), "")
