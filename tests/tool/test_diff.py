"""kel diff: changes between two files, as lines and as JSON."""

import copy
import json
import random
import re
import unittest

from support import (ARRAY, DOUBLE, MEMBLOCK, WINDOWS, ToolTest, double_record, int_record, record,
                     reference, string_record, struct_record)

STEP = re.compile(r'\["((?:[^"\\]|\\.)*)"\]|\[(\d+)\]|\.?([A-Za-z0-9_@]+)')


def steps(path):
    """Returns the steps of a path as names and numbers, after the number of the root value."""
    root, colon, rest = path.partition(":")
    number = int(root) - 1 if colon and root.isdigit() else 0
    way = [number]
    rest = rest if colon and root.isdigit() else path
    while rest not in ("", "."):
        match = STEP.match(rest)
        quoted, index, name = match.groups()
        way.append(int(index) if index else
                   name if quoted is None else re.sub(r"\\(.)", r"\1", quoted))
        rest = rest[match.end():]
    return way


def found(roots, way):
    value = roots
    for step in way:
        value = value[step]
    return value


def patched(before, changes):
    """Returns the root values with the changes. Changed values keep their places, so they come
    first. Removing from the end keeps the other places, and so does adding from the beginning."""
    roots = copy.deepcopy(before)
    removed, added, repeated = [], [], []
    for change in changes:
        way = steps(change["path"])
        if change["change"] == "changed":
            found(roots, way[:-1])[way[-1]] = change["new"]
        elif change["change"] == "removed":
            removed.append(way)
        elif change["change"] == "added":
            added.append((way, change["new"]))
        elif change["change"] == "moved":
            removed.append(way)
            added.append((steps(change["newPath"]), found(before, way)))
        elif change["change"] == "repeated":
            repeated.append((steps(change.get("newPath", change["path"])), steps(change["as"])))
        else:
            raise ValueError(change)
    comparable = [[(isinstance(step, str), step) for step in way] for way in removed]
    for key in sorted(comparable, reverse=True):
        way = [step for _, step in key]
        del found(roots, way[:-1])[way[-1]]
    for way, value in sorted(added, key=lambda one: [(isinstance(s, str), s) for s in one[0]]):
        container = found(roots, way[:-1])
        if isinstance(container, list):
            container.insert(way[-1], copy.deepcopy(value))
        else:
            container[way[-1]] = copy.deepcopy(value)
    for way, first in repeated:
        found(roots, way[:-1])[way[-1]] = copy.deepcopy(found(roots, first))
    return roots


def record_of(value, numbers):
    """Returns the record of a value, or a reference to a container that was written before.
    numbers: of the containers by their id, and of all values under None."""
    if id(value) in numbers:
        return reference(numbers[id(value)])
    number = numbers[None] = numbers.get(None, 0) + 1
    if isinstance(value, int):
        return int_record(value, number)
    if isinstance(value, str):
        return string_record(value.encode(), number)
    numbers[id(value)] = number
    if isinstance(value, list):
        return record(ARRAY, b"".join(record_of(inner, numbers) for inner in value), number)
    return struct_record([(name.encode(), record_of(value[name], numbers))
                          for name in sorted(value)], number)


def longest_common(a, b):
    """Returns the length of the longest sequence that is left of both by removing elements."""
    row = [0] * (len(b) + 1)
    for x in a:
        above, row = row, [0]
        for j, y in enumerate(b):
            row.append(above[j] + 1 if x == y else max(above[j + 1], row[j]))
    return row[-1]


class RandomDocument:
    """Makes random values and changes them."""

    def __init__(self, seed):
        self.random = random.Random(seed)

    def value(self, depth=0):
        kind = self.random.randrange(8 if depth < 4 else 5)
        if kind == 0:
            return self.random.randrange(5)
        if kind == 1:
            return self.random.choice([0.5, 1.0, -2.0])
        if kind == 2:
            return self.random.choice([True, False])
        if kind in (3, 4):
            return self.random.choice(["", "x", "a longer string", "another long string", "\u00e4"])
        if kind == 5:
            return {self.name(): self.value(depth + 1) for _ in range(self.random.randrange(6))}
        return [self.value(depth + 1) for _ in range(self.random.randrange(8))]

    def name(self):
        return self.random.choice(["a", "b", "c", "d", "e f", "g.h", "1", "\u00fc", "[0]", "a\\b"])

    def changed(self, value):
        """Returns the value with a few changes."""
        if self.random.randrange(12) == 0:
            return self.value(2)
        if isinstance(value, dict):
            pairs = [(name, self.changed(inner)) for name, inner in value.items()
                     if self.random.randrange(8)]
            if self.random.randrange(4) == 0:
                pairs.append((self.name(), self.value(2)))
            return dict(pairs)
        if isinstance(value, list):
            elements = [self.changed(inner) for inner in value if self.random.randrange(8)]
            if self.random.randrange(4) == 0:
                elements.insert(self.random.randrange(len(elements) + 1), self.value(2))
            if self.random.randrange(5) == 0:
                self.random.shuffle(elements)
            return elements
        return value


class RandomSharing:
    """Makes random values that share containers, and changes some of the containers."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.containers = []
        self.root = [self.value(0) for _ in range(4)]

    def value(self, depth):
        kind = self.random.randrange(9)
        if kind < 2 or depth > 4:
            return self.random.choice([1, 2, 3, "x", "a longer string"])
        if kind < 5 and self.containers:
            return self.random.choice(self.containers)
        count = self.random.randrange(1, 4)
        if kind < 7:
            made = [self.value(depth + 1) for _ in range(count)]
        else:
            made = {self.random.choice("abcd"): self.value(depth + 1) for _ in range(count)}
        self.containers.append(made)
        return made

    def change(self):
        for _ in range(self.random.randrange(1, 4)):
            container = self.random.choice([self.root, *self.containers])
            value = self.random.choice([7, 8, {"n": 9}])
            if isinstance(container, dict):
                container[self.random.choice("abcde")] = value
            elif container and self.random.randrange(2):
                container[self.random.randrange(len(container))] = value
            else:
                container.insert(self.random.randrange(len(container) + 1), value)


class Diff(ToolTest):
    def compare(self, before, after, *options):
        """Returns the lines about two files, whose status must fit."""
        result = self.kel("diff", *options, before, after)
        self.assertEqual(result.err, "")
        self.assertEqual(result.status, 1 if result.out else 0)
        return result.out.decode("utf-8").replace("\r\n", "\n").splitlines()

    def lines(self, before, after, *options):
        """Returns the lines about two JSON texts."""
        self.write("a.json", before)
        self.write("b.json", after)
        return self.compare("a.json", "b.json", *options)

    def changes(self, before, after, *options):
        """Returns the changes between two files as JSON."""
        result = self.kel("diff", "--json", *options, before, after)
        changes = json.loads(result.out)["changes"]
        self.assertEqual((result.status, result.err), (1 if changes else 0, ""))
        return changes


class Lines(Diff):
    def test_variables_are_matched_by_their_names(self):
        self.assertEqual(self.lines('{"size": [640, 480], "old": {"a": 1, "b": 2, "c": [3]}}',
                                    '{"size": [800, 480], "theme": "dark"}'),
                         ["- old: { 3 variables }", "~ size[0]: 640 -> 800", '+ theme: "dark"'])

    def test_names_are_compared_byte_by_byte(self):
        self.assertEqual(self.lines('{"a": 1, "\u00e4": 1, "Z": 1, "a\U0001f600": 1}',
                                    '{"a": 2, "\u00e4": 2, "Z": 2, "aa": 1}'),
                         ["~ Z: 1 -> 2", "~ a: 1 -> 2", "+ aa: 1", '- ["a\U0001f600"]: 1',
                          '~ ["\u00e4"]: 1 -> 2'])

    def test_kinds_count(self):
        self.assertEqual(self.lines('{"a": 1, "b": "1", "c": [], "d": null}',
                                    '{"a": 1.0, "b": 1, "c": {}, "d": 0}'),
                         ["~ a: 1 (an int) -> 1 (a double)", '~ b: "1" -> 1', "~ c: [ ] -> { }",
                          "~ d: null -> 0"])

    def test_doubles_are_equal_as_numbers(self):
        nan, other_nan = b"\0\0\0\0\0\0\xf8\x7f", b"\1\0\0\0\0\0\xf8\xff"
        self.write("a.kelb", record(ARRAY, record(DOUBLE, nan, 2) + double_record(0.0, 3)))
        self.write("b.kelb", record(ARRAY, record(DOUBLE, other_nan, 2) + double_record(-0.0, 3)))
        self.assertEqual(self.compare("a.kelb", "b.kelb"), [])

    def test_elements_are_matched_by_a_common_subsequence(self):
        self.assertEqual(self.lines("[1, 2, 3, 4]", "[0, 1, 3, 4, 5]"),
                         ["+ [0]: 0", "- [1]: 2", "+ [4]: 5"])

    def test_elements_with_common_values_are_compared(self):
        self.assertEqual(self.lines('[{"id": 1, "n": "a"}, {"id": 2, "n": "b"}]',
                                    '[{"id": 2, "n": "c"}]'),
                         ["- [0]: { 2 variables }", '~ [1].n: "b" -> "c"'])

    def test_equally_many_elements_are_compared_one_by_one(self):
        self.assertEqual(self.lines('[1, [2], 3, "x"]', '[1, [5], 6, "x"]'),
                         ["~ [1][0]: 2 -> 5", "~ [2]: 3 -> 6"])

    def test_a_container_or_a_longer_string_can_be_moved(self):
        before = '{"a": {"b": [1]}, "s": "a longer string", "t": "short", "e": []}'
        after = '{"c": {"d": [1]}, "r": "a longer string", "q": "short", "f": []}'
        self.assertEqual(self.lines(before, after),
                         ["- a: { 1 variable }", "+ c: { 1 variable }", "- e: [ ]", "+ f: [ ]",
                          '+ q: "short"', "> s -> r", '- t: "short"'])
        self.assertEqual(self.lines('{"a": {"b": [1]}}', '{"a": {"c": [1]}}'), ["> a.b -> a.c"])
        self.assertEqual(self.lines('[["x", "y"], 1, 2, 3, 4]', '[1, 2, 9, ["x", "y"], 4]'),
                         ["> [0] -> [3]", "~ [3]: 3 -> 9"])

    def test_a_move_is_unambiguous(self):
        self.assertEqual(self.lines('{"a": [1], "b": [1]}', '{"c": [1]}'),
                         ["- a: [ 1 element ]", "- b: [ 1 element ]", "+ c: [ 1 element ]"])

    def test_the_difference_of_long_strings_is_shown(self):
        self.assertEqual(self.lines(json.dumps("x" * 100 + "y"), json.dumps("x" * 100 + "z")),
                         ["~ .: ...\"" + "x" * 16 + "y\" -> ...\"" + "x" * 16 + "z\""])
        self.assertEqual(self.lines(json.dumps("a" + "x" * 100), json.dumps("b")),
                         ['~ .: "a' + "x" * 59 + '..." -> "b"'])

    def test_memory_blocks_are_compared_by_their_bytes(self):
        self.write("a.kelb", record(MEMBLOCK, b"\1\2\3"))
        self.write("b.kelb", record(MEMBLOCK, b"\1\2\4"))
        self.write("c.kelb", record(MEMBLOCK, b"\1\2\3", 7))
        words = "a memory block of 3 bytes"
        self.assertEqual(self.compare("a.kelb", "b.kelb"),
                         [f"~ .: {words} -> {words} with other contents"])
        self.assertEqual(self.compare("a.kelb", "c.kelb"), [])

    def test_control_characters_are_escaped(self):
        self.assertEqual(self.lines('{"\\u001b[1m": 1}', '{"\\u001b[1m": "\\u0007"}'),
                         ['~ ["\\u001b[1m"]: 1 -> "\\u0007"'])

    def test_root_values_have_numbers(self):
        self.assertEqual(self.lines("[1] [2] {}", "[1] [3] 5"),
                         ["~ 2:[0]: 2 -> 3", "~ 3:.: { } -> 5"])
        self.assertEqual(self.lines('[1] {"a": 1} [2]', '[1] [2]'), ["- 2:.: { 1 variable }"])
        self.assertEqual(self.lines("[1]", "[0] [1]"), ["+ 1:.: [ 1 element ]"])

    def test_formats_do_not_matter(self):
        self.write("a.json", '{"a": [1, 2.5, true], "b": "x"}')
        self.ok("convert", "a.json", "a.kel")
        self.ok("convert", "a.json", "a.kelb")
        for other in ("a.kel", "a.kelb"):
            self.assertEqual(self.compare("a.json", other), [])
            self.assertEqual(self.ok("diff", "-", other, input=self.read("a.json")).out, b"")


    def test_a_long_string_is_shown_from_a_whole_character_on(self):
        same = "x" * 41 + "\u20ac" * 10
        self.assertEqual(self.lines(json.dumps({"a": same + "1"}), json.dumps({"a": same + "2"})),
                         ['~ a: ..."' + "\u20ac" * 6 + '1" -> ..."' + "\u20ac" * 6 + '2"'])

    def test_null_is_a_value_of_a_variable(self):
        self.assertEqual(self.lines('{"a": null}', '{"a": 1}'), ["~ a: null -> 1"])
        self.assertEqual(self.lines('{"a": "x"}', '{"a": null}'), ['~ a: "x" -> null'])
        self.assertEqual(self.lines('{"a": null}', '{"a": null, "b": null}'), ["+ b: null"])
        self.assertEqual(self.lines('{"a": null, "b": null}', '{"a": null}'), ["- b: null"])


    def test_null_is_a_root_value(self):
        self.assertEqual(self.lines('null 1 {"id": 1} null', '1 null {"id": 2}'),
                         ["- 1:.: null", "- 3:.: { 1 variable }", "+ 3:.: { 1 variable }"])


class OtherKinds(Diff):
    FIRST, SECOND, THIRD = (f"0000000{n}-0000-0000-0000-000000000000" for n in (1, 2, 3))

    def text_lines(self, before, after, *options):
        self.write("a.kel", before)
        self.write("b.kel", after)
        return self.compare("a.kel", "b.kel", *options)

    def manager(self, *values):
        """Returns a manager with structs of an identity and a variable each."""
        return "( " + " ".join("%s = { x = %d }" % value for value in values) + " )"

    def test_values_of_a_manager_are_matched_by_identity(self):
        before = self.manager((self.FIRST, 1), (self.SECOND, 2))
        self.assertEqual(self.text_lines(before, self.manager((self.SECOND, 5), (self.THIRD, 7))),
                         [f"- #{self.FIRST}: {{ 1 variable }}", f"~ #{self.SECOND}.x: 2 -> 5",
                          f"+ #{self.THIRD}: {{ 1 variable }}"])
        self.assertEqual(self.text_lines(before, self.manager((self.FIRST, 1), (self.THIRD, 2))),
                         [f"> #{self.SECOND} -> #{self.THIRD}"])
        reordered = self.manager((self.SECOND, 2), (self.FIRST, 1))
        self.assertEqual(self.text_lines(before, reordered),
                         ["~ .: the same values in another order"])
        self.assertEqual(self.changes("a.kel", "b.kel"),
                         [{"change": "reordered", "path": ".", "order": [1, 0]}])
        self.assertEqual(self.text_lines(before, before + "\n"), [])

    def test_values_of_different_kinds_are_named_in_short(self):
        described = "{ @type = 51\n x = { @type = 52\n type = 1 } }"
        for before, words in ((f"( {self.FIRST} = 1 )", "a manager of 1 value"),
                              ("< [ 1 2 ] [ 3 4 ] >", "an index list of 2 pairs"),
                              (described, "a struct descriptor of 1 variable"),
                              ("{ @type = 52\n type = 1 }", "a variable descriptor of 1 variable"),
                              ("{ @type = 50\n @desc = " + described + "\n}",
                               "a checked struct of 1 variable"),
                              ("[ ]", "[ ]"), ("{ }", "{ }"), (self.FIRST, self.FIRST)):
            with self.subTest(words):
                self.assertEqual(self.text_lines("{ v = " + before + " }", "{ v = 1 }"),
                                 [f"~ v: {words} -> 1"])

    def test_guids_are_equal_if_all_their_words_are(self):
        self.assertEqual(self.text_lines(f"[ {self.FIRST} ]", f"[ {self.FIRST} ]"), [])
        self.assertEqual(self.text_lines(f"[ {self.FIRST} ]", f"[ {self.SECOND} ]"),
                         [f"~ [0]: {self.FIRST} -> {self.SECOND}"])

    def test_one_of_several_pairs_with_equal_keys_can_be_removed(self):
        self.assertEqual(self.text_lines("< [ 1 1 ] [ 2 3 ] >", "< [ 1 ] [ 2 ] >"),
                         ["- [1].item: 3 (key 1)"])

    def test_a_changed_item_of_a_pair_has_the_path_of_the_item(self):
        self.assertEqual(self.text_lines("< [ 1 2 ] [ 3 4 ] >", "< [ 1 2 ] [ 3 5 ] >"),
                         ["~ [1].item: 4 -> 5"])

    def test_pairs_are_matched_by_key(self):
        before = '{ l = < ["a" 2 [3]] ["x" "y" "z"] > }'
        self.assertEqual(self.text_lines(before, '{ l = < ["a" [3] "n"] ["x" {} "new"] > }'),
                         ['- l[1].item: "y" (key 2)', '~ l[2].item: "z" -> { }',
                          '+ l[2].item: "new" (key "n")'])
        change = {change["change"]: change for change in self.changes("a.kel", "b.kel")}
        self.assertEqual(change["changed"]["newPath"], "l[1].item")
        self.assertEqual((change["removed"]["key"], change["removed"]["old"]), (2, "y"))
        self.assertEqual((change["added"]["key"], change["added"]["new"]), ("n", "new"))
        self.assertEqual(self.text_lines(before, '{ l = < [2 [3] "a"] ["y" "z" "x"] > }'),
                         ["~ l: the same values in another order"])

    def test_equal_keys_are_matched_in_their_order(self):
        self.assertEqual(self.text_lines('< ["a" "a"] [1 2] >', '< ["a" "a" "a"] [1 3 2] >'),
                         ["~ [1].item: 2 -> 3", '+ [2].item: 2 (key "a")'])

    def test_checked_structs_are_compared_with_their_descriptors(self):
        text = """{ @type = 50
          @desc = { @type = 51
            level = { @type = 52
              default = 5
              type = 1 } }
          level = %d }"""
        self.assertEqual(self.text_lines(text % 3, text.replace("default = 5", "default = 6") % 4),
                         ["~ @desc.level.default: 5 -> 6", "~ level: 3 -> 4"])
        self.assertEqual(self.text_lines(text % 3, "{ level = 3 }"),
                         ["~ .: a checked struct of 2 variables -> { 1 variable }"])

    def test_json_replaces_what_it_cannot_hold_with_a_warning(self):
        self.write("a.kel", "{ }")
        self.write("b.kel", '{ l = < ["a"] [1] > }')
        result = self.kel("diff", "--json", "a.kel", "b.kel")
        self.assertEqual(result.err, "kel: warning: a.kel and b.kel: 1 place of the changes cannot "
                                     "be written as json:\n  changes[0].new: an index list\n")
        self.assertEqual(json.loads(result.out)["changes"],
                         [{"change": "added", "path": "l", "new": [["a", 1]]}])


class SharedValues(Diff):
    def pair(self, name, first, second, number=9):
        """Writes a struct with two variables."""
        self.write(name, struct_record([(b"a", first), (b"b", second)], number))

    def test_changes_of_a_shared_value_are_listed_once(self):
        for name, value in (("a.kelb", 1), ("b.kelb", 2)):
            self.pair(name, record(ARRAY, int_record(value, 3), 2), reference(2))
        self.assertEqual(self.compare("a.kelb", "b.kelb"),
                         ["~ a[0]: 1 -> 2", "~ b: the same changes as in a"])
        self.assertEqual(self.changes("a.kelb", "b.kelb")[1],
                         {"change": "repeated", "path": "b", "as": "a"})

    def test_sharing_counts_on_request(self):
        self.pair("a.kelb", record(ARRAY, int_record(1, 3), 2), reference(2))
        self.pair("b.kelb", record(ARRAY, int_record(1, 3), 2),
                  record(ARRAY, int_record(1, 4), 5))
        self.assertEqual(self.compare("a.kelb", "b.kelb"), [])
        self.assertEqual(self.compare("a.kelb", "a.kelb", "--sharing"), [])
        self.assertEqual(self.compare("a.kelb", "b.kelb", "--sharing"),
                         ["& b: shared with a -> not shared"])
        self.assertEqual(self.compare("b.kelb", "a.kelb", "--sharing"),
                         ["& b: not shared -> shared with a"])
        self.assertEqual(self.changes("a.kelb", "b.kelb", "--sharing"),
                         [{"change": "sharing", "path": "b", "old": "a", "new": None}])

    def test_identities_count_on_request(self):
        self.pair("a.kelb", int_record(1, 3), int_record(2, 4))
        self.pair("b.kelb", int_record(1, 3), int_record(2, 5))
        self.assertEqual(self.compare("a.kelb", "b.kelb"), [])
        number = "-0001-0000-0200-000003000000"
        self.assertEqual(self.compare("a.kelb", "b.kelb", "--identities"),
                         [f"# b: 00000004{number} -> 00000005{number}"])
        self.assertEqual(self.changes("a.kelb", "b.kelb", "--identities"),
                         [{"change": "identity", "path": "b", "old": f"00000004{number}",
                           "new": f"00000005{number}"}])

    def test_identities_need_binary(self):
        self.write("a.kel", "{ }")
        self.pair("a.kelb", int_record(1, 3), int_record(2, 4))
        self.fails(2, "kel: --identities: a.kel is text, and only binary keeps all identities\n",
                   "diff", "--identities", "a.kelb", "a.kel")

    def test_values_that_contain_themselves_are_equal_if_no_difference_is_found(self):
        self.write("once.kelb", record(ARRAY, reference(1)))
        self.write("twice.kelb", record(ARRAY, record(ARRAY, reference(1), 2)))
        self.assertEqual(self.compare("once.kelb", "twice.kelb"), [])
        self.write("c.kelb", record(ARRAY, record(ARRAY, reference(1) + int_record(1, 3), 2)))
        self.assertEqual(self.compare("twice.kelb", "c.kelb"), ["+ [0][1]: 1"])
        self.assertEqual(self.compare("once.kelb", "c.kelb"), ["+ [0][1]: 1"])
        self.write("d.kelb", record(ARRAY, record(ARRAY, int_record(1, 3), 2)))
        self.assertEqual(self.kel("diff", "twice.kelb", "d.kelb").status, 1)

    def test_a_cycle_in_a_change_becomes_null_in_json(self):
        self.write("a.kelb", struct_record([]))
        self.write("b.kelb", struct_record([(b"a", struct_record([(b"b", reference(2))], 2))]))
        result = self.kel("diff", "--json", "a.kelb", "b.kelb")
        self.assertEqual(result.status, 1)
        self.assertIn("changes[0].new.b: a value that contains itself", result.err)
        self.assertEqual(json.loads(result.out)["changes"],
                         [{"change": "added", "path": "a", "new": {"b": None}}])

    def test_sharing_that_ends_or_begins_is_a_change_of_json(self):
        shared = record(ARRAY, int_record(1, 3), 2)
        self.write("a.kelb", struct_record([(b"a", shared), (b"b", reference(2))]))
        self.write("b.kelb", struct_record([(b"a", shared),
                                            (b"b", record(ARRAY, int_record(1, 5), 4))]))
        self.assertEqual(self.changes("a.kelb", "b.kelb", "--sharing"),
                         [{"change": "sharing", "path": "b", "old": "a", "new": None}])
        self.assertEqual(self.changes("b.kelb", "a.kelb", "--sharing"),
                         [{"change": "sharing", "path": "b", "old": None, "new": "a"}])

    def test_values_that_unfold_enormously_are_compared_quickly(self):
        def doubling(last):
            value = record(ARRAY, int_record(last, 1000), 100)
            for number in range(101, 160):
                value = record(ARRAY, value + reference(number - 1), number)
            return value
        self.write("a.kelb", doubling(1))
        self.write("b.kelb", doubling(2))
        lines = self.compare("a.kelb", "b.kelb")
        self.assertEqual(len(lines), 60)
        self.assertEqual(lines[0], "~ " + 60 * "[0]" + ": 1 -> 2")
        self.assertEqual(lines[-1], "~ [1]: the same changes as in [0]")
        self.assertEqual(len(self.compare("a.kelb", "b.kelb", "--sharing")), 60)


class Output(Diff):
    def test_brief_prints_nothing(self):
        self.write("a.json", "[1]")
        self.write("b.json", "[2]")
        for option in ("-q", "--quiet"):
            result = self.kel("diff", option, "a.json", "b.json")
            self.assertEqual((result.status, result.out, result.err), (1, b"", ""))
            self.assertEqual(self.ok("diff", option, "a.json", "a.json").out, b"")

    def test_statuses(self):
        self.write("a.json", "[1]")
        self.write("broken.json", "[1,")
        self.fails(2, "kel: OLD and NEW cannot both be stdin\n", "diff", "-", "-", input="")
        for arguments in (("a.json", "broken.json"), ("broken.json", "a.json"),
                          ("broken.json", "broken.json"), ("a.json", "missing.json")):
            result = self.kel("diff", *arguments)
            self.assertEqual(result.status, 3, (arguments, result.err))

    def test_the_output_is_bounded(self):
        self.write("a.json", "[]")
        self.write("b.json", json.dumps(["x" * 100] * 100))
        for options in ((), ("--json",)):
            self.fails(4, "kel: a.json and b.json: the differences would take more than 1024 "
                          "bytes; use --max-output to allow more\n",
                       "diff", "--max-output", "1K", *options, "a.json", "b.json")

    def test_losses_of_json_are_reported(self):
        self.write("a.json", "[null]")
        self.write("b.json", "[]")
        result = self.kel("diff", "a.json", "b.json")
        self.assertEqual((result.status, result.out), (0, b""))
        self.assertIn("kel: warning: a.json: 1 place cannot be converted from json to values:",
                      result.err)

    def test_equal_files_have_no_changes_in_json(self):
        self.write("a.json", "[1]")
        self.assertEqual(self.changes("a.json", "a.json"), [])

    def test_deep_trees(self):
        depth = 100000
        self.write("a.json", "[" * depth + "1" + "]" * depth)
        self.write("b.json", "[" * depth + "2" + "]" * depth)
        result = self.kel("diff", "a.json", "b.json", small_stack=True)
        self.assertEqual((result.status, result.err), (1, ""))
        self.assertEqual(result.out.rstrip(), b"~ " + b"[0]" * depth + b": 1 -> 2")
        for options in (("-q",), ("--max-output", "1M", "--json")):
            result = self.kel("diff", *options, "a.json", "b.json", small_stack=True)
            self.assertEqual((result.status, result.err), (1, ""))


class Patches(Diff):
    def test_the_changes_make_the_second_document_of_the_first(self):
        for seed in range(20 if WINDOWS else 100):
            with self.subTest(seed=seed):
                document = RandomDocument(seed)
                before = [document.value(1) for _ in range(document.random.choice([1, 1, 1, 3]))]
                after = [document.changed(root) for root in before
                         if len(before) == 1 or document.random.randrange(4)] or [document.value()]
                for name, roots in (("a.json", before), ("b.json", after)):
                    self.write(name, "\n".join(json.dumps(root) for root in roots))
                changes = self.changes("a.json", "b.json")
                self.assertEqual(self.exact(patched(before, changes)), self.exact(after))
                self.assertEqual(len(self.compare("a.json", "b.json")), len(changes))

    def test_as_few_elements_as_possible_are_removed_and_added(self):
        choose = random.Random(5)
        before, after = ({f"p{number}": [choose.randrange(4) for _ in range(choose.randrange(10))]
                          for number in range(300)} for _ in range(2))
        self.write("a.json", json.dumps(before))
        self.write("b.json", json.dumps(after))
        counts = dict.fromkeys(before, 0)
        for change in self.changes("a.json", "b.json"):
            counts[change["path"].partition("[")[0]] += 2 if change["change"] == "changed" else 1
        for name, array in before.items():
            with self.subTest(before=array, after=after[name]):
                self.assertEqual(counts[name], len(array) + len(after[name]) -
                                 2 * longest_common(array, after[name]))

    def test_a_moved_element_has_both_its_places(self):
        self.write("a.json", '["first element", "second element", 3, "the last element"]')
        self.write("b.json", '["the last element", "first element", "second element", 3]')
        self.assertEqual(self.changes("a.json", "b.json"),
                         [{"change": "moved", "path": "[3]", "newPath": "[0]"}])

    def test_the_changes_of_arrays_of_all_kinds_of_values_too(self):
        choose = random.Random(11)

        def element():
            number = choose.randrange(6)
            return choose.choice([number, [number, [number]], f"the text {number}", True,
                                  {"id": number, "list": [choose.randrange(3)], "none": None},
                                  {"list": [number], "id": choose.randrange(6)}])

        for number in range(20 if WINDOWS else 100):
            before = [element() for _ in range(choose.randrange(12))]
            after = [value for value in before if choose.randrange(3)]
            for _ in range(choose.randrange(5)):
                after.insert(choose.randrange(len(after) + 1), element())
            with self.subTest(before=before, after=after):
                self.write("a.json", json.dumps(before))
                self.write("b.json", json.dumps(after))
                changes = self.changes("a.json", "b.json")
                self.assertEqual(self.exact(patched([before], changes)), self.exact([after]))

    def test_the_changes_of_shared_values_too(self):
        for seed in range(20 if WINDOWS else 150):
            with self.subTest(seed=seed):
                values = RandomSharing(seed)
                before = json.loads(json.dumps(values.root))
                self.write("a.kelb", record_of(values.root, {}))
                values.change()
                self.write("b.kelb", record_of(values.root, {}))
                changes = self.changes("a.kelb", "b.kelb")
                self.assertEqual(self.exact(patched([before], changes)), self.exact([values.root]))
                self.assertEqual(self.compare("b.kelb", "b.kelb", "--sharing", "--identities"), [])

    def test_long_arrays_with_little_in_common(self):
        document = RandomDocument(7)
        before = [document.random.randrange(100000) for _ in range(20000)]
        after = list(before)
        document.random.shuffle(after)
        for name, array in (("a.json", before), ("b.json", after)):
            self.write(name, json.dumps(array))
        self.assertEqual(patched([before], self.changes("a.json", "b.json")), [after])

    def test_long_arrays_of_records_are_matched_by_the_variable_that_identifies_them(self):
        before = [{"id": number, "time": 1} for number in range(3000)]
        after = [{"id": number, "time": 2} for number in range(-1, 2999)]
        for name, array in (("a.json", before), ("b.json", after)):
            self.write(name, json.dumps(array))
        lines = ["+ [0]: { 2 variables }"]
        lines += [f"~ [{number}].time: 1 -> 2" for number in range(2999)]
        self.assertEqual(self.compare("a.json", "b.json"), lines + ["- [2999]: { 2 variables }"])

    def test_few_changes_in_a_long_array_are_found_exactly(self):
        before = [{"id": number, "values": [number] * 3} for number in range(20000)]
        after = copy.deepcopy(before)
        after[15000]["values"][1] = -1
        del after[10000]
        after.insert(100, {"id": -1})
        for name, array in (("a.json", before), ("b.json", after)):
            self.write(name, json.dumps(array))
        self.assertEqual(self.compare("a.json", "b.json"),
                         ["+ [100]: { 1 variable }", "- [10000]: { 2 variables }",
                          "~ [15000].values[1]: 15000 -> -1"])

    @staticmethod
    def exact(value):
        """Returns a text that distinguishes 1 from 1.0 and from true."""
        return json.dumps(value, sort_keys=True)


if __name__ == "__main__":
    unittest.main()
