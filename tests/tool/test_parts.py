import base64
import json
import random
import struct

from support import (ARRAY, REFERENCE, STRUCT, ToolTest, double_record, int_record, record,
                     reference, string_record, struct_record)

HEADER = 34
IDENTITY = slice(4, 20)
LENGTH = slice(26, 34)
INT_SIZE = HEADER + 4


def without_identities(content):
    """Returns the records with all identities set to zero."""
    result = bytearray(content)
    ends = []  # of the open containers, and whether each is a struct
    at = 0
    while at < len(content):
        while ends and at == ends[-1][0]:
            ends.pop()
        if at == len(content):
            break
        if ends and ends[-1][1]:
            at = content.index(b"\0", at) + 1
        result[at + 4:at + 20] = bytes(16)
        kind, = struct.unpack_from("<i", content, at + 20)
        if kind == REFERENCE:
            at += 24
            continue
        length, = struct.unpack_from("<Q", content, at + 26)
        at += HEADER
        if kind in (ARRAY, STRUCT):
            ends.append((at + length, kind == STRUCT))
        else:
            at += length
    return bytes(result)


def with_reference_at_end(content):
    """Returns an array's record whose last two elements are Ints, the last one replaced by a
    reference to the one before."""
    before = content[-2 * INT_SIZE:-INT_SIZE]
    content = content[:-INT_SIZE] + before[:20] + struct.pack("<i", REFERENCE)
    return content[:26] + struct.pack("<Q", len(content) - HEADER) + content[HEADER:]


class Text:
    """Writes random JSON. Objects have names in any order, and some of them twice."""

    WORDS = ["tree", "a", "caf\u00e9", "\u65e5\u672c", "line\nend", "tab\t", "quote\"", "\\", "\x7f",
             "\U0001F600", "", "$memblock", "2147483648"]

    def __init__(self, seed):
        self.random = random.Random(seed)

    def scalar(self):
        choice = self.random.randrange(8)
        if choice < 2:
            return str(self.random.randrange(-2**31, 2**31))
        if choice == 2:
            return repr(self.random.uniform(-1e6, 1e6))
        if choice == 3:
            return self.random.choice(["true", "false", "1e300", "4294967296", "-0.0", "1.5"])
        size = self.random.randrange(12) if self.random.randrange(500) else 30000
        words = self.random.choices(self.WORDS, k=size)
        return json.dumps(" ".join(words), ensure_ascii=self.random.randrange(2) == 0)

    def name(self):
        return self.random.choice(["n", "name", "a_long_name_of_a_variable", "$x", "caf\u00e9"]) + \
            str(self.random.randrange(20))

    def value(self, budget):
        """Returns a value with about that many values in it."""
        if budget < 1:
            return self.scalar()
        shares = []
        while budget > 0:
            shares.append(min(self.random.choice([1, 1, 1, 5, 20, budget // 2 + 1]), budget))
            budget -= shares[-1]
        if self.random.randrange(2):
            return "[" + ",".join(self.value(share - 1) for share in shares) + "]"
        members = []
        for number, share in enumerate(shares):
            value = self.value(share - 1) if self.random.randrange(6) else "null"
            name = self.name() if self.random.randrange(3) else f"{number * 7919 % 9973}"
            members.append(json.dumps(name) + ":" + value)
        return "{" + ",".join(members) + "}"


class Parts(ToolTest):
    """JSON and binary are converted part by part if nothing is lost and nothing is shared. The
    result is that of a conversion of the whole document."""

    def binary(self, text, *options):
        self.write("a.json", text)
        result = self.kel("convert", *options, "a.json", "a.kelb")
        self.assertEqual(result.status, 0)
        self.assertEqual(result.err == "", not options)
        return without_identities(self.read("a.kelb"))

    def json_of(self, content):
        self.write("b.kelb", content)
        self.ok("convert", "b.kelb", "b.json")
        return self.read("b.json")

    def same_binary(self, before, after):
        """A null in an array is lost, so that a document with one is converted as a whole."""
        self.assertEqual(self.binary(before + "[]" + after),
                         self.binary(before + "[null]" + after, "--force"))

    def same_json(self, array):
        """A reference makes the tool convert a document as a whole."""
        self.write("a.json", array[:-1] + ",7,7]")
        self.ok("convert", "a.json", "a.kelb")
        content = self.read("a.kelb")
        self.assertEqual(self.json_of(content), self.json_of(with_reference_at_end(content)))

    def test_random_documents(self):
        for seed in range(8):
            with self.subTest(seed=seed):
                value = Text(seed).value(30000)
                self.same_binary(f"[{value},", "]")
                self.same_json(f"[{value}]")

    def test_random_objects(self):
        for seed in range(8, 12):
            with self.subTest(seed=seed):
                value = Text(seed).value(15000)
                other = Text(seed + 100).value(15000)
                self.same_binary(f'{{"m":{value},"lost":', f',"b":{other}, "n":1}}')
                self.same_binary(f'{{"lost":1,"m":{value},"lost":', f',"m":{other}}}')
                self.same_json(f'[{{"m":{value},"b":{other}}}]')

    def test_many_roots(self):
        values = [Text(seed).value(3000) for seed in range(8)]
        text = "\n".join(values * 2) + "\n"
        self.same_binary(text, "\n" + text)
        self.write("a.json", text)
        self.ok("convert", "a.json", "a.kelb")
        content = self.read("a.kelb")
        self.assertEqual(self.json_of(content + int_record(7, 2) * 2),
                         self.json_of(content + int_record(7, 2) + reference(2)))

    def test_a_large_object_of_small_members(self):
        members = ",".join(f'"{number * 7919 % 99991}":{number}' for number in range(30000))
        self.same_binary(f"{{{members},\"lost\":", "}")
        self.same_json(f"[{{{members}}}]")

    def test_deep_containers(self):
        depth = 3000
        text = "[" * depth + ",".join(["1"] * 20000) + "]" * depth
        self.same_binary(f"[{text},", "]")
        self.same_json(f"[{text}]")
        text = '{"a":1,"c":' * depth + '"x"' * 1 + ',"b":[2]}' * depth
        self.same_binary(f"[{text},", "]")
        self.same_json(f"[{text}]")

    def test_a_large_memory_block(self):
        text = base64.b64encode(bytes(range(256)) * 4000).decode()
        self.write("a.json", f'[{{"$memblock": "{text}"}}]')
        self.ok("convert", "a.json", "a.kelb")
        self.assertEqual(len(self.read("a.kelb")), 2 * HEADER + 256 * 4000)
        self.ok("convert", "a.kelb", "b.json")
        self.assertEqual(self.json("b.json"), self.json("a.json"))
        self.same_binary(f'[{{"$memblock": "{text}", "a": [{"1," * 20000}1], "b":', '}]')

    def test_objects_with_reserved_names(self):
        large = "[" + "1," * 20000 + "1]"
        guid = '"$guid": "00010203-0405-0607-0809-0a0b0c0d0e0f"'
        block = '"$memblock": "AAAA"'
        for members in (block, f"{block}, {block}", f'{guid}, "b": {large}', f'"b": {large}, {guid}',
                        f'{guid}, {block}, "b": {large}',
                        f'{block}, "b": {large}, {block}', f'"$memblock": {large}',
                        f'"$guid": {large}, {block}', f'"$memblock": {large}, {block}'):
            with self.subTest(members=members[:60]):
                self.same_binary(f"[{{{members}}}, ", ', "end"]')

    def test_stdout_gets_the_same_bytes(self):
        self.write("a.json", Text(20).value(30000))
        self.ok("convert", "a.json", "a.kelb")
        self.ok("convert", "a.kelb", "b.json")
        self.assertEqual(self.ok("convert", "a.kelb", "-", "--to", "json").out,
                         self.read("b.json"))
        piped = self.ok("convert", "-", "-", "--to", "binary", input=self.read("a.json")).out
        self.assertEqual(without_identities(piped), without_identities(self.read("a.kelb")))

    def test_nothing_reaches_stdout_before_a_loss(self):
        self.write("a.kelb", record(ARRAY, int_record(1) * 50000 + double_record(float("nan"))))
        result = self.kel("convert", "a.kelb", "-", "--to", "json")
        self.assertEqual((result.status, result.out), (1, b""))
        result = self.kel("convert", "-", "-", "--to", "binary", input="[" + "1," * 50000 + "null]")
        self.assertEqual((result.status, result.out), (1, b""))

    def test_a_loss_at_the_end(self):
        self.write("a.json", "[" + "1," * 50000 + "null]")
        self.fails(1, "kel: a.json: 1 place cannot be converted from json to binary:\n"
                   "  [50000]: null in an array\n"
                   "nothing was written; use --force to convert the rest\n",
                   "convert", "a.json", "out.kelb")
        ones = [int_record(1)] * 50000
        infinite = record(ARRAY, b"".join(ones + [double_record(float("inf"))]))
        self.write("b.kelb", infinite)
        self.fails(1, "kel: b.kelb: 1 place cannot be converted from binary to json:\n"
                   "  [50000]: a double that is not a finite number\n"
                   "nothing was written; use --force to convert the rest\n",
                   "convert", "b.kelb", "out.json")
        self.assertEqual(self.files(), ["a.json", "b.kelb"])

    def test_a_fault_at_the_end(self):
        self.write("a.json", "[\n" + "1,\n" * 50000 + "}")
        result = self.kel("convert", "a.json", "out.kelb")
        self.assertEqual(result.status, 3)
        self.assertIn('kel: a.json:50001:2: expected a value after ",", found "}"', result.err)
        content = record(ARRAY, int_record(1) * 50000)
        self.write("b.kelb", content[:-1])
        self.fails(3, f"kel: b.kelb: offset {len(content) - 1}: [49999]: the payload needs 4 bytes, "
                      "but the input has only 3 left\n",
                   "convert", "b.kelb", "out.json")
        self.assertEqual(self.files(), ["a.json", "b.kelb"])

    def test_faults_around_large_containers(self):
        large = record(ARRAY, int_record(1) * 10000, 2)
        bad_version = large[:24] + b"\2" + large[25:]
        for content, message in (
                (struct_record([(b'a"b', large)]),
                 'offset 35: ["a\\"b"]: a name cannot contain a double quote'),
                (struct_record([(b"", large)]), "offset 34: (the value itself): a name cannot be empty"),
                (record(ARRAY, bad_version), "offset 58: [0]: expected version 1, found 2"),
                (record(ARRAY, b"X" + large[1:]), 'offset 34: [0]: expected a record, which begins with "KEL\\u0000", '
                 'found "XEL\\u0000"')):
            with self.subTest(message=message):
                self.write("a.kelb", content)
                self.fails(3, f"kel: a.kelb: {message}\n", "convert", "a.kelb", "out.json")

    def test_names_that_are_repeated_or_not_in_order(self):
        large = record(ARRAY, int_record(1) * 10000, 2)
        small = string_record(b"x")
        self.assertEqual(json.loads(self.json_of(struct_record([(b"b", large), (b"a", small)])),
                                    object_pairs_hook=list),
                         [("a", "x"), ("b", [1] * 10000)])
        self.write("a.kelb", struct_record([(b"a", large), (b"a", small)]))
        self.fails(1, "kel: a.kelb: 1 place cannot be converted from binary to json:\n"
                   "  offset 380072: a: a repeated name; only its last value is kept\n"
                   "nothing was written; use --force to convert the rest\n",
                   "convert", "a.kelb", "out.json")

    def test_a_name_that_json_cannot_hold(self):
        large = record(ARRAY, int_record(1) * 10000, 2)
        self.write("a.kelb", struct_record([(b"\xff", large)]))
        self.fails(1, "kel: a.kelb: 1 place cannot be converted from binary to json:\n"
                   "  [\"\\xff\"]: a name that is not UTF-8\n"
                   "nothing was written; use --force to convert the rest\n",
                   "convert", "a.kelb", "out.json")

    def test_a_struct_that_looks_like_a_guid(self):
        guid = b"00000001-0002-0003-0405-060708090A0B"
        shape = struct_record([(b"$guid", string_record(guid))])
        self.write("a.kelb", record(ARRAY, int_record(1) * 10000 + shape))
        self.fails(1, "kel: a.kelb: 1 place cannot be converted from binary to json:\n"
                   "  [10000]: a struct that looks like a guid or memory block in JSON\n"
                   "nothing was written; use --force to convert the rest\n",
                   "convert", "a.kelb", "out.json")
        other = struct_record([(b"$guid", string_record(b"x"))])
        self.assertEqual(json.loads(self.json_of(record(ARRAY, int_record(1) * 10000 + other))),
                         [1] * 10000 + [{"$guid": "x"}])
