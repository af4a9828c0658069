import copy
import json
import random
import unittest

from support import ToolTest, WINDOWS

NAMES = ["a", "b1", "_c", "@d", "odd name", "a.b", "[0]", "q]", "\u00e4", "back\\slash", "1", "x#y"]


def random_value(source, depth=0):
    """Returns a value that JSON, text and binary hold."""
    kind = source.randrange(7 if depth < 4 else 5)
    if kind == 5:
        return [random_value(source, depth + 1) for _ in range(source.randrange(4))]
    if kind == 6:
        return {name: random_value(source, depth + 1)
                for name in source.sample(NAMES, source.randrange(4))}
    return [source.randrange(-1000, 1000), source.random() < 0.5, source.randrange(64) + 0.5,
            source.choice(["", "x", "two words", "\u00fc"]), source.randrange(5)][kind]


def places(value, steps=()):
    """Yields the steps to everything inside a value."""
    inside = value.items() if isinstance(value, dict) else \
        enumerate(value) if isinstance(value, list) else ()
    for step, child in inside:
        yield (*steps, step)
        yield from places(child, (*steps, step))


def path_of(steps):
    text = ""
    for step in steps:
        if isinstance(step, int):
            text += f"[{step}]"
        elif all(c.isascii() and (c.isalnum() or c in "_@") for c in step):
            text += ("." if text else "") + step
        else:
            text += '["' + step.replace("\\", "\\\\") + '"]'
    return text


def container_of(value, steps):
    for step in steps[:-1]:
        value = value[step]
    return value


class RandomEdits(ToolTest):
    """Edits of random documents are compared with the same edits of Python's own values."""

    def test_edits_in_every_format_agree_with_a_model(self):
        source = random.Random(7)
        for round_ in range(8 if WINDOWS else 24):
            document = {"a": random_value(source), "odd name": random_value(source)}
            steps = source.choice(list(places(document)))
            name = "a." + source.choice(["json", "kel", "kelb"])
            new = random_value(source)
            self.write("in.json", json.dumps(document))
            self.ok("convert", "in.json", name)
            with self.subTest(f"round {round_}", document=document, path=path_of(steps)):
                self.assertEqual(self.value_at(name, steps), at(document, steps))
                changed = copy.deepcopy(document)
                container_of(changed, steps)[steps[-1]] = new
                self.ok("set", "-i", "--json", name, path_of(steps), json.dumps(new))
                self.assertEqual(self.whole(name), changed)
                self.ok("rm", "-i", name, path_of(steps))
                del container_of(changed, steps)[steps[-1]]
                self.assertEqual(self.whole(name), changed)

    def value_at(self, name, steps):
        return json.loads(self.ok("get", "--to", "json", name, path_of(steps)).out)

    def whole(self, name):
        return json.loads(self.ok("convert", "--to", "json", name, "-").out)


def at(value, steps):
    for step in steps:
        value = value[step]
    return value


if __name__ == "__main__":
    unittest.main()
