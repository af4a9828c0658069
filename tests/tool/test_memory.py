import os
import unittest

from support import ARRAY, WINDOWS, ToolTest, int_record, posix_only, record, reference

if os.name == "posix":
    import resource

MEMORY = 100 << 20  # bytes, enough for the files but not for their values


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


@posix_only("Windows limits no address space of a process")
class Memory(ToolTest):
    """Too little memory is not a defect of a file."""

    def setUp(self):
        super().setUp()
        if self.kel("--version", preexec_fn=limit_memory).status != 0:
            self.skipTest("the tool itself takes more memory than that")

    def runs_out(self, name):
        for command in (("check", name), ("show", name), ("convert", name, "out.json")):
            self.fails(3, f"kel: {name}: out of memory\n", *command, preexec_fn=limit_memory)
        self.assertEqual(self.files(), [name])

    def test_text_that_memory_does_not_hold_is_unreadable(self):
        self.write("a.kel", "[\n" + "1\n" * 3000000 + "]\n")
        self.runs_out("a.kel")

    def test_binary_that_memory_does_not_hold_is_unreadable(self):
        self.write("a.kelb", record(ARRAY, int_record(1, 2) * 1200000 + reference(2)))
        self.runs_out("a.kelb")

    def test_an_object_that_begins_like_a_guid_needs_no_memory_for_all_values(self):
        self.write("a.json", '{"$guid": 1, "b": [' + "1," * 1200000 + "1]}")
        self.ok("convert", "a.json", "b.kelb", preexec_fn=limit_memory)

    def test_containers_nested_moderately_need_no_memory_for_all_values(self):
        self.write("a.json", "[" * 180 + "1," * 1200000 + "1" + "]" * 180)
        self.ok("convert", "a.json", "b.kelb", preexec_fn=limit_memory)
        self.ok("convert", "b.kelb", "a.json", preexec_fn=limit_memory)

    def test_json_and_binary_need_no_memory_for_all_values_at_a_time(self):
        self.write("a.kelb", record(ARRAY, int_record(1, 2) * 1200000))
        self.ok("convert", "a.kelb", "b.json", preexec_fn=limit_memory)
        self.ok("convert", "b.json", "b.kelb", preexec_fn=limit_memory)
        self.assertEqual(len(self.read("b.kelb")), len(self.read("a.kelb")))


class Limit(ToolTest):
    """--max-memory limits the memory of a run."""

    LIMIT = ("--max-memory", "60M")
    MORE = "more memory is needed than --max-memory allows"

    def setUp(self):
        super().setUp()
        self.write("small.kel", "1")
        if not WINDOWS and self.kel("check", *self.LIMIT, "small.kel").status != 0:
            self.skipTest("the tool itself takes more memory than that")
        os.remove(self.path("small.kel"))

    @posix_only("kel cannot limit its memory there")
    def test_a_run_that_needs_more_memory_fails(self):
        self.write("a.kel", "[\n" + "1\n" * 3000000 + "]\n")
        for command, rest in (("check", ["a.kel"]), ("show", ["a.kel"]),
                              ("convert", ["a.kel", "out.json"])):
            self.fails(3, f"kel: a.kel: {self.MORE}\n", command, *self.LIMIT, *rest)
            self.ok(command, "--max-memory", "2G", *rest)
        os.remove(self.path("out.json"))
        self.assertEqual(self.files(), ["a.kel"])

    @posix_only("kel cannot limit its memory there")
    def test_other_files_are_still_checked(self):
        self.write("a.kel", "[\n" + "1\n" * 3000000 + "]\n")
        self.write("b.kel", "[")
        result = self.kel("check", *self.LIMIT, "a.kel", "b.kel")
        self.assertEqual((result.status, result.err),
                         (3, f"kel: a.kel: {self.MORE}\nkel: b.kel:1:1: \"[\" is not closed before the "
                             "end of the input at 1:2\n    1 | [\n      | ^\n"))

    @unittest.skipUnless(WINDOWS, "kel can limit its memory here")
    def test_a_system_without_limits_refuses_the_option(self):
        self.write("a.kel", "1")
        self.fails(2, "kel: --max-memory: kel cannot limit its memory on this system\n",
                   "check", *self.LIMIT, "a.kel")
