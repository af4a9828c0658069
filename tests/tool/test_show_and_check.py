import os
import select
import signal
import subprocess
import time
import unittest

if os.name == "posix":
    import resource

from support import (ARRAY, MEMBLOCK, Terminal, ToolTest, command, double_record, int_record,
                     posix_only, record, reference, string_record, struct_record)


class Show(ToolTest):
    def test_the_text_form_goes_to_stdout(self):
        self.write("a.json", '{"a": [1, 2.5], "b": "x"}')
        self.assertEqual(self.ok("show", "a.json").out,
                         b'{\n\ta = [\n\t\t1\n\t\t2.500000\n\t]\n\tb = "x"\n}\n')

    def test_what_text_cannot_carry_is_shown_all_the_same(self):
        values = (record(MEMBLOCK, b"abc", 2) + string_record(b'a"b', 3) +
                  double_record(float("inf"), 4) + double_record(0.12345678, 5))
        self.write("a.kelb", record(ARRAY, values))
        result = self.kel("show", "a.kelb")
        self.assertRegex(result.out,
                         rb'\A\[\n\tvoid\[3\] : 0x[0-9a-f]{8}\n\t"a"b"\n\tinf\n\t0\.123457\n\]\n\Z')
        self.assertEqual((result.status, result.err),
                         (0, "kel: warning: a.kelb: 2 places cannot be printed exactly; kel convert "
                             "--to json is exact:\n"
                             "  [0]: a memory block, shown by its size\n"
                             "  [3]: a double that is rounded to six decimals\n"))
        self.ok("show", "--quiet", "a.kelb")

    def test_a_double_alone_that_is_rounded_is_listed_too(self):
        self.write("a.json", "0.3 1e-9")
        result = self.kel("show", "a.json")
        self.assertEqual((result.status, result.out), (0, b"0.300000\n0.000000\n"))
        self.assertEqual(result.err, "kel: warning: a.json: 1 place cannot be printed exactly; kel "
                                     "convert --to json is exact:\n  2:(the value itself): a "
                                     "double that is rounded to six decimals\n")

    def test_what_values_cannot_hold_of_json_is_a_warning(self):
        self.write("a.json", "[null, 1]")
        result = self.kel("show", "a.json")
        self.assertEqual((result.status, result.out), (0, b"[\n\t1\n]\n"))
        self.assertEqual(result.err, "kel: warning: a.json: 1 place cannot be converted from json "
                                     "to values:\n  [0]: null in an array\n")


class Check(ToolTest):
    def test_good_files_are_not_mentioned(self):
        self.write("a.json", '{"a": [null, 12345678901234567890, "\\""], "": 1}')
        self.write("b.kel", "{ a = 1 }")
        self.ok("convert", "b.kel", "c.kelb")
        self.assertEqual(self.ok("check", "a.json", "b.kel", "c.kelb").out, b"")

    def test_every_file_is_read_and_every_error_told(self):
        self.write("a.kel", "{ a = ? }")
        self.write("b.kel", "1")
        self.write("c.json", "[1,\n2")
        self.fails(1, 'kel: a.kel:1:7: expected a value for "a", found "?"\n'
                      "    1 | { a = ? }\n"
                      "      |       ^\n"
                      'kel: c.json:1:1: "[" is not closed before the end of the input at 2:2\n'
                      "    1 | [1,\n"
                      "      | ^\n", "check", "a.kel", "b.kel", "c.json")

    def test_an_unreadable_file_weighs_more_than_a_malformed_one(self):
        self.write("a.kel", "{ a = ? }")
        self.fails(3, "kel: none.kel: No such file or directory\n"
                      'kel: a.kel:1:7: expected a value for "a", found "?"\n'
                      "    1 | { a = ? }\n"
                      "      |       ^\n",
                   "check", "none.kel", "a.kel")

    def test_a_repeated_name_in_a_binary_file_is_told_with_its_path(self):
        inner = struct_record([(b"a", int_record(1, 11)), (b"b", int_record(2, 12)),
                               (b"a", reference(12))], 10)
        self.write("a.kelb", struct_record([(b"list", record(ARRAY, int_record(1, 3) + inner, 2))]))
        self.fails(1, "kel: a.kelb: names are repeated:\n"
                      "  offset 227: list[1].a: a repeated name; only its last value is kept\n",
                   "check", "a.kelb")
        self.fails(1, "kel: a.kelb: 1 place cannot be converted from binary to text:\n"
                      "  offset 227: list[1].a: a repeated name; only its last value is kept\n"
                      "nothing was written; use --force to convert the rest\n",
                   "convert", "a.kelb", "a.kel")

    def test_a_name_that_means_another_format_is_an_error(self):
        for name, content, form, named in (("a.json", "{ a = 5 }", "text", "json"),
                                           ("a.kel", '{"a": 5}', "json", "text"),
                                           ("a.kel", int_record(5), "binary", "text")):
            self.write(name, content)
            self.fails(1, f"kel: {name}: the content is {form}, but the name of the file means "
                       f"{named}; rename the file, or check it with --from {form}\n",
                       "check", name)
            self.ok("check", "--from", form, name)
        self.write("b.json", "[ 1 ]")
        self.write("b.txt", "{ a = 5 }")
        self.ok("check", "b.json", "b.txt")

    def test_stdin_is_checked_too(self):
        self.ok("check", "-", input="[ 1 2 ]")
        self.fails(1, 'kel: -:1:1: "[" is not closed before the end of the input at 1:6\n'
                      "    1 | [ 1 2 \n"
                      "      | ^\n", "check", "-", input="[ 1 2 ")

    def test_from_holds_for_all_files(self):
        self.write("a.kel", "1")
        self.fails(1, "kel: a.kel: offset 0: (the value itself): expected a record, which begins "
                      'with "KEL\\u0000", found "1"\n',
                   "check", "--from", "binary", "a.kel")


def seconds_used_by(process):
    """Returns the processor time that a process has used in its own code."""
    with open(f"/proc/{process.pid}/stat", encoding="utf-8") as file:
        ticks = int(file.read().rpartition(")")[2].split()[11])
    return ticks / os.sysconf("SC_CLK_TCK")


class Progress(ToolTest):
    def run_slowly(self, seconds):
        """Shows stdin that remains open until a message comes, or for at most this long. Returns what
        is on the terminal that is stderr."""
        terminal = Terminal()
        process = subprocess.Popen(command("show", "-"), stdin=subprocess.PIPE,
                                   stdout=subprocess.DEVNULL, stderr=terminal.writer,
                                   cwd=self.folder)
        select.select([terminal.reader], [], [], seconds)
        process.stdin.write(b"1")
        process.stdin.close()
        shown = terminal.shown_by(process)
        self.assertEqual(process.wait(), 0)
        return shown

    @posix_only("the console draws in its own way")
    def test_long_work_shows_progress_on_a_terminal_and_removes_it(self):
        self.assertRegex(self.run_slowly(60), rb"\Akel: reading -, \d+ s(?s:.*)\r\x1b\[K\Z")

    @posix_only("the console draws in its own way")
    def test_progress_says_how_much_has_been_read(self):
        self.write("a.kel", "[" + "1234567 " * 6_000_000 + "]")
        terminal = Terminal()
        process = subprocess.Popen(command("check", "a.kel"), stderr=terminal.writer,
                                   cwd=self.folder)
        while process.poll() is None and seconds_used_by(process) < 0.05:
            time.sleep(0.01)
        process.send_signal(signal.SIGSTOP)  # patience runs out before the file has been read
        time.sleep(1)
        process.send_signal(signal.SIGCONT)
        shown = terminal.shown_by(process)
        self.assertEqual(process.wait(), 0)
        self.assertRegex(shown, rb"kel: reading a\.kel, \d+ s, \d+ %")

    @posix_only("Windows does not count a user's processes")
    @unittest.skipUnless(os.name == "posix" and os.geteuid() == 0,
                         "only root can become somebody else")
    def test_work_goes_on_without_progress_where_no_thread_can_be_had(self):
        def become_one_process():
            somebody = 54321  # a user who runs nothing else
            resource.setrlimit(resource.RLIMIT_NPROC, (1, 1))
            os.setuid(somebody)

        terminal = Terminal()
        self.addCleanup(terminal.close)
        # A sanitizer's search for leaks would itself need a thread.
        environment = {**os.environ, "ASAN_OPTIONS": "detect_leaks=0"}
        process = subprocess.run(command("show", "-"), input=b"1", stdout=subprocess.PIPE,
                                 stderr=terminal.writer, env=environment,
                                 preexec_fn=become_one_process, check=False)
        self.assertEqual((process.returncode, process.stdout), (0, b"1\n"))

    def test_short_work_shows_nothing(self):
        self.assertEqual(self.run_slowly(0.1), b"")

    def test_without_a_terminal_nothing_is_shown(self):
        process = subprocess.Popen(command("show", "-"), stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        time.sleep(1.5)
        self.assertEqual(process.communicate(b"1"), (b"1\n", b""))
