import json
import os
import tempfile
import unittest

from support import ToolTest

FOLDER = os.environ.get("KEL_TEST_DATA", "")
NAMES = sorted(name for name in os.listdir(FOLDER) if name.endswith(".json")) if FOLDER else []

# What documents of texts and small integers lack: every obstacle, and numbers close to one.
NUMBERS = {
    "doubles": [0.0, -0.5, 0.1, 2.5, -1e-7, 1e300, 123456.75, 5e-324, 3.0, -4294967297.0],
    "integers": [2147483647, -2147483648, 4294967301, 9007199254740992, 9007199254740993],
    "texts": ["", "a \"quoted\" word", "\u20ac", "tab\tand\nline"],
    "odd name": {"a.b": [True, {"c": -0.25, "none": None}]},
}


def same(a, b):
    """Returns whether JSON contents are equal. An integer beyond 32 bits can have become a
    double."""
    waiting = [(a, b)]
    while waiting:
        a, b = waiting.pop()
        if isinstance(a, dict) and isinstance(b, dict) and a.keys() == b.keys():
            waiting += [(a[key], b[key]) for key in a]
        elif isinstance(a, list) and isinstance(b, list) and len(a) == len(b):
            waiting += list(zip(a, b))
        elif isinstance(a, (int, float)) and isinstance(b, (int, float)):
            if float(a) != float(b) or isinstance(a, bool) != isinstance(b, bool):
                return False
        elif a != b or type(a) is not type(b):
            return False
    return True


def read_from_text(number):
    """Returns the double that the rules of the text format give for the six-decimals form."""
    whole, decimals = f"{abs(number):.6f}".split(".")
    wrapped = (int(whole) + 2**31) % 2**32 - 2**31
    result, weight = float(wrapped), 0.1
    for digit in decimals:
        result, weight = result + int(digit) * weight, weight * 0.1
    return -result if number < 0 else result


def obstacle(value, to_text):
    """Returns why a value of a JSON document cannot be carried, or None."""
    if isinstance(value, bool) or value is None:
        return None
    if isinstance(value, str):
        return "a string with a double quote" if to_text and '"' in value else None
    if isinstance(value, int) and -2**31 <= value < 2**31:
        return None
    if isinstance(value, int) and int(float(value)) != value:
        return "an integer that no double holds exactly"
    if not to_text or read_from_text(float(value)) == float(value):
        return None
    return ("a double whose integer part does not fit in 32 bits" if abs(value) >= 2**31 else
            "a double that six decimals cannot hold")


def step(name):
    bare = name and all(c.isascii() and (c.isalnum() or c in "_@") for c in name)
    return "." + name if bare else f"[{json.dumps(name, ensure_ascii=False)}]"


def obstacles(document, to_text):
    """Returns all places with an obstacle, in the order of the document."""
    found, waiting = [], [("", document)]
    while waiting:
        path, value = waiting.pop()
        if isinstance(value, dict):
            waiting += [(path + step(name), value[name]) for name in reversed(value)]
        elif isinstance(value, list):
            waiting += [(f"{path}[{i}]", value[i]) for i in reversed(range(len(value)))]
        elif reason := obstacle(value, to_text):
            found.append(f"{path.removeprefix('.')}: {reason}")
    return found


class Documents(ToolTest):
    """Large real-world documents, and one of numbers."""

    def documents(self):
        """Yields the name, the path and the content of each document."""
        for name in NAMES:
            path = os.path.join(FOLDER, name)
            with open(path, encoding="utf-8") as file:
                yield name, path, json.load(file)
        with tempfile.NamedTemporaryFile("w", suffix=".json", encoding="utf-8") as file:
            json.dump(NUMBERS, file)
            file.flush()
            yield "numbers", file.name, NUMBERS

    def test_a_folder_of_documents_has_some(self):
        if not FOLDER:
            self.skipTest("KEL_TEST_DATA names no folder")
        self.assertNotEqual(NAMES, [])

    def test_the_document_of_numbers_has_every_obstacle(self):
        reasons = {line.rpartition(": ")[2] for line in obstacles(NUMBERS, True)}
        self.assertEqual(len(reasons), 4, reasons)
        self.assertNotEqual(obstacles(NUMBERS, False), [])

    def convert(self, document, source, output):
        """Converts a document. Expects the list of losses first, then forces the conversion."""
        for old in self.files():
            os.remove(self.path(old))
        to_text = output.endswith(".kel")
        lost = obstacles(document, to_text)
        result = self.kel("convert", source, output)
        if not lost:
            self.assertEqual((result.status, result.err), (0, ""))
            return
        lines = result.err.splitlines()
        count = f"{len(lost)} place{'' if len(lost) == 1 else 's'}"
        self.assertEqual(result.status, 1)
        self.assertEqual(lines[0], f"kel: {source}: {count} cannot be converted from json to "
                                   f"{'text' if to_text else 'binary'}:")
        self.assertEqual(lines[1:1 + min(10, len(lost))], ["  " + place for place in lost[:10]])
        self.assertEqual(self.files(), [])
        self.assertEqual(self.kel("convert", "--force", source, output).status, 0)

    def test_binary_keeps_their_content(self):
        for name, path, document in self.documents():
            with self.subTest(name):
                self.convert(document, path, "a.kelb")
                self.ok("convert", "a.kelb", "b.json")
                self.assertTrue(same(document, self.json("b.json")))

    def test_text_keeps_what_it_can(self):
        for name, path, document in self.documents():
            with self.subTest(name):
                self.convert(document, path, "a.kel")
                self.ok("convert", "a.kel", "b.kelb")
                self.ok("convert", "b.kelb", "c.kel")
                self.ok("convert", "c.kel", "d.kelb")
                self.ok("convert", "d.kelb", "e.kel")
                self.assertEqual(self.read("c.kel"), self.read("e.kel"))
                first, later = (self.read(made).split(b"\n") for made in ("a.kel", "c.kel"))
                changed = set(first) ^ set(later)
                self.assertEqual([line for line in changed if not line.endswith(b".000000")], [])
