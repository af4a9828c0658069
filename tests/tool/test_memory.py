import os

from support import ARRAY, ToolTest, int_record, posix_only, record, reference

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

    def test_json_and_binary_need_no_memory_for_all_values_at_a_time(self):
        self.write("a.kelb", record(ARRAY, int_record(1, 2) * 1200000))
        self.ok("convert", "a.kelb", "b.json", preexec_fn=limit_memory)
        self.ok("convert", "b.json", "b.kelb", preexec_fn=limit_memory)
        self.assertEqual(len(self.read("b.kelb")), len(self.read("a.kelb")))
