"""Large texts are read part by part. The results are those of reading the whole text."""

import json
import random
import zlib

from support import ToolTest

PART = 64 * 1024
FILLER = "\n".join(map(str, range(20000)))  # more than one part
WHOLE = "\n#define LAST 1\n"  # a definition after values, so that the text is read as a whole


class Text:
    """Writes random texts with everything that does not prevent parts, and odd layout."""

    LAYOUT = [" ", "\n", "\t", "\r\n", "\f", " // c ]} \"\n", "/* [ \" */", "/* a\n***/", "\n\n"]
    SCALARS = ["0x1F", "0x", "-", ".", "-.5", "5.", "007", "99999999999", "1.123456789", "true",
               "false", "null", "NULL", '""', '"a b"', '"two\nlines"', '"// no comment"', '"[{"', "A",
               '"\u00e9"', "12345678-4F89-11D3-9A0C-0305E82C3302\n",
               "12345678-4F89-11D3-9A0C-0305E82C3302 /* \n */ // c\n"]
    KEYS = ["a", "9lives", "0x1f", "true", "a_b@1", '"two words"', '"@type"', '"@hashCode"', "@desc",
            "name"]

    def __init__(self, seed, is_kept=False):
        """is_kept: whether values keep all of the text but its layout."""
        self.random = random.Random(seed)
        self.names = self.random.sample(range(10**6), 30000) if is_kept else None
        self.scalars = [scalar for scalar in self.SCALARS if not is_kept or "99999" not in scalar
                        and scalar != "1.123456789"]

    def layout(self):
        return self.random.choice(self.LAYOUT)

    def scalar(self):
        if self.random.randrange(3):
            return str(self.random.randrange(-10**6, 10**6))
        return self.random.choice(self.scalars)

    def value(self, budget):
        """Returns a value with about that many values in it."""
        if budget < 1:
            return self.scalar()
        parts = []
        while budget > 0:
            share = min(self.random.choice([1, 1, 1, 5, 20, budget // 2 + 1]), budget)
            budget -= share
            parts.append(self.value(share - 1))
        if self.random.randrange(2):
            return "[" + self.layout() + self.joined(parts) + "]"
        return "{\n" + self.joined([self.key() + self.layout() + "=" + self.layout()
                                    + part for part in parts]) + "}"

    def key(self):
        return f"k{self.names.pop()}" if self.names else self.random.choice(self.KEYS)

    def joined(self, values):
        return "".join(value + " " + self.layout() for value in values)

    def values(self, count, size):
        return self.joined(self.value(self.random.randrange(size)) for _ in range(count))


class TextParts(ToolTest):
    FIND_ALL = ("find", "a.kel", "--glob", "*", "--all")
    OTHERS = [("find", "a.kel", "--kind", "array"), ("find", "a.kel", "7", "--values"),
              ("find", "a.kel", "a", "--names", "-c"), ("find", "a.kel", "--kind", "null"),
              ("find", "a.kel", "--kind", "int", "-l")]

    def results(self, content, *commands):
        self.write("a.kel", content)
        results = []
        for command in commands:
            result = self.kel(*command)
            results.append((result.status, result.out, result.err))
        result = self.kel("stats", "--json", "a.kel")
        stats = json.loads(result.out) if result.status == 0 else {}
        stats.pop("size", None)
        results.append((result.status, stats, result.err))
        return results

    def same(self, content):
        """Both ways must give the same results, in the commands that show most and in one of the others,
        which the content chooses."""
        if isinstance(content, str):
            content = content.encode("utf-8")
        commands = self.FIND_ALL, self.OTHERS[zlib.crc32(content) % len(self.OTHERS)]
        in_parts = self.results(content, *commands)
        whole = self.results(content + WHOLE.encode(), *commands)
        self.assertEqual(in_parts[-1][0], 0, in_parts[-1])
        for one, other in zip(in_parts, whole):
            self.assertEqual(one, other)

    def refused(self, content):
        """The mistake must be reported as by a command that reads the whole text."""
        if isinstance(content, str):
            content = content.encode("utf-8")
        self.write("a.kel", content)
        checked = self.kel("check", "--from", "text", "a.kel")
        self.assertEqual(checked.status, 1)
        for command in (["find", "a.kel", "7", "-c"], ["stats", "a.kel"]):
            self.fails(3, checked.err, *command, "--from", "text")

    def test_random_arrays(self):
        for seed in range(4):
            with self.subTest(seed=seed):
                text = Text(seed)
                self.same("#define A 5\n[" + text.values(2000, 10) + text.values(2, 9000) + text.values(3000, 4) + "]")

    def test_random_root_values(self):
        for seed in range(4, 8):
            with self.subTest(seed=seed):
                text = Text(seed)
                array = "[" + text.values(3000, 8) + "]"
                self.same("#define A null\n" + text.values(2000, 10) + array + text.values(5, 1000) + array + array +
                          text.values(1000, 10))

    def test_odd_values_between_parts(self):
        for odd in ("[]", "{}", "[\n]", "{ a = [ { } ] }", "null", "[ null null ]", '""', "0x", "- -",
                    '"a""b"[1]"c"', "[1.5-2]", "true/**/false", "{@desc=1}", "{\n@type = 1 }",
                    '{ "@type" = 1 }', "{ a = 1 a = 2 }",
                    "12345678-4F89-11D3-9A0C-0305E82C3302 // c\n", "< [ 1 ] [ 2 ] >",
                    "{ @type = 50 a = 1 }", "{ @type = 8, @hashCode = 3F2504E0-4F89-11D3-9A0C-0305E82C3301 }",
                    "3F2504E0-4F89-11D3-9A0C-0305E82C3301 = [ 1 ]", "#define A [ 1 2 ]\n A A",
                    "( 3F2504E0-4F89-11D3-9A0C-0305E82C3301 = 5 )", '"' + "x" * PART + '"'):
            with self.subTest(odd=odd[:60]):
                self.same(f"[ {FILLER} {odd}\n {FILLER} {odd}\n]")
                self.same(f"{odd}\n [ {FILLER} {odd}\n] {odd}\n{FILLER} {odd}\n")

    def test_line_ends_of_every_kind(self):
        self.same(f"[ {FILLER} ]".replace("\n", "\r\n"))
        self.same(f"[ {FILLER} ]".replace("\n", "\f"))
        self.same(f"// c\n[ {FILLER} ] // \xff\0".encode("latin-1"))

    def test_definitions_of_scalars(self):
        for text in ("7", '"a b"', "0x10 // c", "null", "true", "\n\n 5"):
            with self.subTest(text=text):
                definitions = f"/* c */\n#define A {text}\n#define B 1\n#define B 2\n// c\n"
                self.same(f"{definitions}[ A B {FILLER} A {FILLER} B A ]")
                self.same(f"{definitions}A B {FILLER} A [ B {FILLER} ] {FILLER} B A")

    def test_other_definitions(self):
        for definitions in ("#define A [ 1 2 ]", "#define A B\n#define B 1", "#define A 1 2\n#define A 3",
                            '#define A "' + "x" * 300 + '"', "#define REF 5\n#define A 1", '#define "A" 1',
                            "#define A 1\n" + "// c\n" * 1000 + "#define B 2"):
            with self.subTest(definitions=definitions[:60]):
                self.same(f"{definitions}\n[ A {FILLER} A ]")

    def test_parts_share_no_budget(self):
        """A definition that is used too often is refused, as in the whole text."""
        self.refused(f'#define A "{"x" * 1000}"\n[ {"A " * 30000}]')
        self.refused(f'#define A [ [ 1 2 3 4 5 ] ]\n[ {"A " * 30000}]')
        self.same(f'#define A "{"x" * 254}"\n[ {"A " * 100000}]')

    def test_nulls_in_arrays_do_not_count(self):
        self.same("[ " + "null 1 " * 20000 + "]")
        self.same("[ " + "null " * 40000 + "]")
        self.write("a.kel", "[ " + "null 1 " * 20000 + "2 ]")
        self.assertEqual(self.ok("find", "a.kel", "2", "--values").out, b"[20000]: 2\n")

    def test_a_million_levels(self):
        deep = "[" * 10**6 + "]" * 10**6
        self.write("a.kel", f"[ {FILLER} {deep} {FILLER} 'x' ]".replace("'", '"'))
        self.assertEqual(self.ok("find", "a.kel", "x", small_stack=True).out, b'[40001]: "x"\n')
        self.assertEqual(self.ok("find", "a.kel", "--kind", "array", "-c", small_stack=True).out, b"1000001\n")

    def test_a_million_root_values(self):
        self.write("a.kel", "1\n" * 2**20 + '"x"')
        self.assertEqual(self.ok("find", "a.kel", "x").out, b'1048577:.: "x"\n')
        self.assertIn(b"1048577", self.ok("stats", "a.kel").out)

    def test_mistakes(self):
        for mistake in ("1, 2", "x", "}", ")", "[", "{ a }", "{ a = }", "{ = 1 }", '{ "" = 1 }', "{ a = 1, }",
                        '"open', "/* open", "1\r2", "\0", '"a\0b"', '{ "a\0b" = 1 }', "12e3", "1.5.2", "12ab",
                        'word"x"', "REF 3F2504E0-4F89-11D3-9A0C-0305E82C3301", "3F2504E0-4F89-11D3-9A0C-0305E82C3301 ]x",
                        "< [ 1 ] [ ] >", "( 5 )", "{ @type = 12 }", "#define", "#include", "\ufeff1", "inf",
                        "void[3] : 0x00000000", "#define A A\nA", "TRUE", "true-1", "a\"b\"", "@", "{ @ = }"):
            with self.subTest(mistake=mistake):
                self.refused(f"[ {FILLER}\n{mistake}\n{FILLER} ]")
                self.refused(f"{FILLER}\n{mistake}\n{FILLER}")
        for text in ("", " ", "// c", "#define A 1\n", f"[ {FILLER}", f"[ {FILLER} ] ]", f"[ {FILLER} ] /*",
                     f"\ufeff[ {FILLER} ]", f"[ {FILLER} ]\r"):
            with self.subTest(text=text[-20:]):
                self.refused(text)

    def test_a_mistake_is_found_before_anything_is_printed(self):
        self.write("a.kel", f"[ {FILLER} {FILLER} x ]")
        result = self.kel("find", "a.kel", "7")
        self.assertEqual((result.status, result.out), (3, b""))




class Layout(ToolTest):
    """kel fmt writes a text that is read in parts as it writes the whole text."""

    def laid_out(self, content):
        self.write("a.kel", content)
        return self.ok("fmt", "--force", "a.kel").out

    def test_random_texts(self):
        for seed in range(3):
            with self.subTest(seed=seed):
                text = Text(seed, True)
                array = "[" + text.values(3000, 8) + "]"
                content = "#define A 5\n" + array + text.values(1000, 10) + array
                out = self.laid_out(content)
                self.assertEqual(out, self.laid_out(content + WHOLE))
                self.write("b.kel", out)
                self.ok("fmt", "--check", "b.kel")
                self.assertEqual(self.ok("fmt", "b.kel").out, out)

    def test_empty_parts(self):
        for text in ("[ " + "null " * 40000 + "]", "[ " + "null " * 40000 + "1 ]", "[ 1 " + "null " * 40000 + "]",
                     "null " * 40000):
            with self.subTest(text=text[:8]):
                self.assertEqual(self.laid_out(text), self.laid_out(text + WHOLE))

    def test_files_are_changed_in_place(self):
        self.write("a.kel", f"[ {FILLER} ]" * 12)
        out = self.ok("fmt", "a.kel").out
        self.assertGreater(len(out), 1 << 20)
        self.assertEqual(self.kel("fmt", "--check", "a.kel").out, b"a.kel\n")
        self.ok("fmt", "-i", "a.kel")
        self.assertEqual(self.read("a.kel"), out)
        self.ok("fmt", "--check", "a.kel")
        for other in (out + b" ", out[:-1], out[:50000] + b" " + out[50000:]):
            self.write("a.kel", other)
            self.assertEqual(self.kel("fmt", "--check", "a.kel").status, 1)
            self.ok("fmt", "-i", "a.kel")
            self.assertEqual(self.read("a.kel"), out)

    def test_what_values_do_not_keep_is_refused(self):
        self.write("a.kel", f"[ {FILLER}\n99999999999 {FILLER} ]")
        self.fails(1, "kel: a.kel:20001:1: [20000]: 99999999999 does not fit in 32 bits and is "
                   "read as 1215752191\nnothing was written; use --force to write the rest\n", "fmt", "a.kel")
        self.write("a.kel", f"[ {FILLER} ] // c")
        self.fails(1, "kel: a.kel:20000: a comment would be lost; nothing was written; use --force to format "
                   "the rest\n", "fmt", "a.kel")

    def test_the_limit_counts_all_parts(self):
        self.write("a.kel", f"[ {FILLER} {FILLER} ]")
        self.fails(1, "kel: a.kel: as text the output would exceed 200000 bytes; use --max-output to allow more\n",
                   "fmt", "--max-output", "200000", "a.kel")
        self.ok("fmt", "--max-output", "1M", "a.kel")
