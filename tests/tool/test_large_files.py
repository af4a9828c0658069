"""Large files are not copied into memory, and the memory of what has been read is given back."""

import os
import subprocess
import sys

from support import (ARRAY, ToolTest, command, int_record, posix_only, record, string_record,
                     struct_record)

MAPPED = 1 << 20  # bytes; smaller files are copied
ELEMENT = struct_record([(b"id", int_record(7)), (b"name", string_record(b"a name"))])
CONTENTS = {
    "a.kel": (b"[\n", b"\t{\n\t\tid = 7\n\t\tname = \"a name\"\n\t}\n", b"]\n"),
    "a.json": (b"[\n    {}", b",\n    {\n        \"id\": 7,\n        \"name\": \"a name\"\n    }", b"\n]\n"),
    "a.kelb": (record(ARRAY, b"")[:26], ELEMENT, b""),
}
# Runs a command and prints its status and its peak of memory, which is at least that of this process.
MEASURE = """
import resource, subprocess, sys
status = subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL).returncode
print(status, resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)
"""


class LargeFiles(ToolTest):
    def create(self, name, size):
        """Writes an array of at least so many bytes. Returns the number of its structs."""
        head, element, tail = CONTENTS[name]
        count = size // len(element) + 1
        if name == "a.kelb":
            head += (count * len(element)).to_bytes(8, "little")
        with open(self.path(name), "wb") as file:
            file.write(head)
            for begin in range(0, count, 1000):
                file.write(element * min(1000, count - begin))
            file.write(tail)
        return count

    def test_a_file_and_stdin_give_the_same(self):
        for name in CONTENTS:
            with self.subTest(name=name):
                count = self.create(name, 5 * MAPPED)
                content = self.read(name)
                found = self.ok("find", name, "id", "--names", "-c").out
                self.assertEqual(found, b"%d\n" % count)
                for verb, *rest in (["find", "7"], ["stats", "--json"],
                                    ["dump" if name == "a.kelb" else "fmt"]):
                    piped = self.ok(verb, "-", *rest, input=content).out
                    self.assertEqual(self.ok(verb, name, *rest).out,
                                     piped.replace(b'"-"', b'"%s"' % name.encode()))

    def test_a_file_is_replaced_by_what_was_made_of_it(self):
        for name, other in (("a.json", "binary"), ("a.kelb", "json"), ("a.kel", "json")):
            with self.subTest(name=name):
                self.create(name, 2 * MAPPED)
                self.ok("convert", name, "copy", "--to", other)
                self.ok("convert", name, name, "--to", other)
                self.assertEqual(len(self.read(name)), len(self.read("copy")))
        for name in ("a.json", "a.kel"):
            self.create(name, 2 * MAPPED)
            content = self.read(name)
            self.write(name, content.replace(b"7", b" 7"))
            self.ok("fmt", "-i", name)
            self.assertEqual(self.read(name), content)

    def test_a_mistake_in_a_large_file_has_its_place(self):
        for name in ("a.kel", "a.json"):
            self.create(name, 2 * MAPPED)
            content = self.read(name)
            self.write(name, content + b"?")
            lines = content.count(b"\n") + 1
            result = self.kel("stats", name)
            self.assertEqual(result.status, 3)
            self.assertIn(f"kel: {name}:{lines}:1: ", result.err)
        self.create("a.kelb", 2 * MAPPED)
        self.write("a.kelb", self.read("a.kelb")[:-1])
        self.assertIn("ends inside a payload: 1 byte is missing", self.kel("dump", "a.kelb").err)

    def skip_unless_the_tool_is_small(self):
        if self.kel("stats", "--max-memory", "60M", "-", input="1").status != 0:
            self.skipTest("the tool itself takes more memory than that")

    @posix_only("its peak of memory is not known there")
    def test_the_memory_does_not_grow_with_the_file(self):
        self.skip_unless_the_tool_is_small()
        size, most = 64 << 20, 48 << 10  # bytes, and KiB
        for name in CONTENTS:
            verbs = [["find", "x", "-c"], ["stats"]]
            verbs += [["dump"]] if name == "a.kelb" else [["fmt", "--check"], ["fmt"]]
            self.create(name, size)
            for verb, *rest in verbs:
                with self.subTest(name=name, verb=verb):
                    measured = subprocess.run(
                        [sys.executable, "-c", MEASURE, *command(verb, name, *rest)],
                        cwd=self.folder, stdout=subprocess.PIPE, check=True)
                    status, peak = map(int, measured.stdout.split())
                    self.assertEqual(status, 1 if verb == "find" else 0)
                    self.assertLess(peak, most)

    @posix_only("Windows does not shorten a file that is open in this way")
    def test_a_file_that_is_cut_short_meanwhile_is_unreadable(self):
        for name in CONTENTS:
            with self.subTest(name=name):
                self.create(name, 24 * MAPPED)
                child = subprocess.Popen(command("find", name, "7"), cwd=self.folder,
                                         stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                self.assertTrue(child.stdout.read(1))
                os.truncate(self.path(name), 0)  # while it waits for a reader
                _, message = child.communicate()
                self.assertEqual((child.returncode, message.decode()),
                                 (3, f"kel: {name}: the file was cut short while it was read\n"))

    @posix_only("kel cannot limit its memory there")
    def test_text_needs_no_memory_for_all_values_at_a_time(self):
        self.skip_unless_the_tool_is_small()
        for text in ("[\n" + "\t1\n" * 3000000 + "]\n", "1\n" * 3000000):
            self.write("a.kel", text)
            for arguments in (["find", "a.kel", "2"], ["stats", "a.kel"], ["fmt", "a.kel"],
                              ["fmt", "--check", "a.kel"]):
                result = self.kel(arguments[0], "--max-memory", "60M", *arguments[1:])
                self.assertEqual((result.status, result.err), (1 if arguments[0] == "find" else 0, ""))
