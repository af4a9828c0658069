import json
import random
import re
import struct

from support import ToolTest


def bits(number):
    return struct.pack("<d", number)


def sample(count):
    """Returns doubles of every magnitude. Many of them are close to what six decimals can carry."""
    source = random.Random(4711)
    numbers = [0.0, -0.0, 0.1, -0.1, 0.3, 2147483647.0, 2147483647.999999, -2147483647.999999,
               2147483648.0, -2147483648.0, 4294967295.5, 4294967296.0, 1e-6, 5e-7, 4.9e-7, 1e308]
    while len(numbers) < count:
        numbers.append(source.choice((
            lambda: struct.unpack("<d", source.randbytes(8))[0],
            lambda: round(source.uniform(-1000, 1000), source.randint(0, 7)),
            lambda: source.randint(-2**32, 2**32) / 2**source.randint(0, 8),
            lambda: round(source.uniform(-2**31, 2**31), source.randint(0, 6)),
            lambda: source.uniform(-1, 1)))())
    return [number for number in numbers if number - number == 0]


class Doubles(ToolTest):
    def test_exactly_the_doubles_that_the_text_reader_changes_are_listed(self):
        numbers = sample(100000)
        self.write("a.json", json.dumps(numbers))
        result = self.kel("convert", "--force", "a.json", "b.kel")
        listed = int(re.match(r"kel: warning: a.json: (\d+) places", result.err).group(1))
        self.kel("convert", "--force", "b.kel", "c.json")
        read_back = self.json("c.json")
        changed = sum(bits(a) != bits(b) for a, b in zip(numbers, read_back, strict=True))
        self.assertEqual(listed, changed)
        self.assertGreater(changed, 10000)
        self.assertGreater(len(numbers) - changed, 10000)

    def test_each_double_alone_is_carried_or_refused_rightly(self):
        for number in sample(60):
            self.write("a.json", repr(number))
            status = self.kel("convert", "a.json", "b.kel").status
            self.kel("convert", "--force", "a.json", "b.kel")
            self.kel("convert", "--force", "b.kel", "c.json")
            self.assertEqual(status, 0 if bits(self.json("c.json")) == bits(number) else 1, number)

    def test_binary_and_json_carry_every_finite_double(self):
        numbers = sample(20000)
        self.write("a.json", json.dumps(numbers))
        self.ok("convert", "a.json", "b.kelb")
        self.ok("convert", "b.kelb", "c.json")
        self.assertEqual([bits(n) for n in self.json("c.json")], [bits(n) for n in numbers])
