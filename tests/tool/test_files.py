import json
import os
import signal
import stat
import subprocess
import time
import unittest

from support import ARRAY, WINDOWS, ToolTest, command, int_record, posix_only, record

ROOT = not WINDOWS and os.geteuid() == 0
NOBODY = 65534
NEEDS_FULL = unittest.skipUnless(os.path.exists("/dev/full"), "needs /dev/full")


class Links(ToolTest):
    @posix_only("needs symbolic links")
    def test_a_link_to_itself_cannot_be_written(self):
        os.symlink("loop.json", self.path("loop.json"))
        self.write("a.json", "[1]")
        self.fails(4, "kel: loop.json: cannot be written: Too many levels of symbolic links\n",
                   "convert", "a.json", "loop.json")


class UnreadableInput(ToolTest):
    def test_a_missing_file_cannot_be_read(self):
        for command in (("show", "none.kel"), ("check", "none.kel"),
                        ("convert", "none.kel", "out.json")):
            self.fails(3, "kel: none.kel: No such file or directory\n", *command)
        self.assertEqual(self.files(), [])

    def test_a_folder_cannot_be_read(self):
        os.mkdir(self.path("folder.kel"))
        for command in (("show", "folder.kel"), ("check", "folder.kel"),
                        ("convert", "folder.kel", "out.json")):
            self.fails(3, "kel: folder.kel: Is a directory\n", *command)

    @posix_only("closes a descriptor of the new process")
    def test_a_closed_stdin_cannot_be_read(self):
        self.fails(3, "kel: -: Bad file descriptor\n", "show", "-",
                   preexec_fn=lambda: os.close(0))

    @posix_only("permissions are modes")
    def test_a_forbidden_file_cannot_be_read(self):
        self.write("a.kel", "1")
        os.chmod(self.path("a.kel"), 0)
        os.chmod(self.folder, 0o755)
        self.fails(3, "kel: a.kel: Permission denied\n", "show", "a.kel",
                   preexec_fn=(lambda: os.setuid(NOBODY)) if ROOT else None)


class MalformedInput(ToolTest):
    def malformed(self, name, content, message):
        self.write(name, content)
        self.fails(3, f"kel: {name}{message}\n", "show", name)
        self.fails(3, f"kel: {name}{message}\n", "convert", name, "out.kelb")
        self.fails(1, f"kel: {name}{message}\n", "check", name)
        self.assertFalse(os.path.exists(self.path("out.kelb")))

    def test_text_has_a_place_and_its_line(self):
        self.malformed("a.kel", "{\n\ta = 1\n\tb = ?\n}\n",
                       ':3:6: expected a value for "b", found "?"\n'
                       "    3 | \tb = ?\n"
                       "      | \t    ^")

    def test_a_value_that_ends_too_early_is_not_the_end_of_the_file(self):
        self.malformed("a.kel", "1\n2\n[ 3\n",
                       ':3:1: "[" is not closed before the end of the input at 3:4\n'
                       "    3 | [ 3\n"
                       "      | ^")

    def test_a_file_without_a_value_is_malformed(self):
        self.malformed("a.kel", "", ":1:1: the input is empty; expected at least one value")
        self.malformed("b.kel", "// nothing\n",
                       ":1:11: the input has no value; expected at least one value\n"
                       "    1 | // nothing\n"
                       "      |           ^")
        self.malformed("c.kelb", b"",
                       ": offset 0: the input is empty; expected at least one record")
        self.malformed("d.json", "", ":1:1: the input is empty; expected a value")

    def test_binary_tells_the_offset_where_it_ends_too_early(self):
        content = record(ARRAY, int_record(1, 2) + int_record(2, 3))
        for size in range(1, len(content)):
            self.write("a.kelb", content[:size])
            result = self.kel("check", "--from", "binary", "a.kelb")
            self.assertEqual(result.status, 1, size)
            self.assertRegex(result.err, r"\Akel: a\.kelb: offset \d+: .+\n\Z")
    def test_json_roots_need_white_space_between_them(self):
        for roots in ("01", "1-2", "1- 2", "1+ 2", '"a""b"', "truefalse", "01 2", "-01"):
            self.write("a.json", roots)
            self.assertEqual(self.kel("show", "--from", "json", "a.json").status, 3, roots)
        self.malformed("a.json", '{"a":1} 1"b"',
                       ":1:10: white space is missing between two values\n"
                       "    1 | {\"a\":1} 1\"b\"\n"
                       "      |          ^")

    def test_long_tokens_are_not_repeated_whole(self):
        self.write("a.json", '{"a": "' + "x" * 1000000)
        result = self.kel("show", "a.json")
        self.assertEqual(result.status, 3)
        self.assertLess(len(result.err), 300)
        self.assertIn("xxx...\n", result.err)

    def test_a_genuine_end_mark_in_the_content_is_a_value(self):
        self.write("a.kel", '"\x01 end of input \x01"\n"\x01 end of input \x01"\n7\n')
        self.assertEqual(self.ok("show", "a.kel").out.count(b"\n"), 3)


class Output(ToolTest):
    def mode(self, name):
        return stat.S_IMODE(os.stat(self.path(name)).st_mode)

    @posix_only("permissions are modes")
    def test_a_new_file_has_the_usual_permissions(self):
        self.write("a.json", "1")
        self.ok("convert", "a.json", "b.kel", umask=0o027)
        self.assertEqual(self.mode("b.kel"), 0o640)

    @posix_only("permissions are modes")
    def test_an_existing_file_is_replaced_and_keeps_its_permissions(self):
        self.write("a.json", "1")
        self.write("b.kel", "old")
        os.chmod(self.path("b.kel"), 0o604)
        before = os.stat(self.path("b.kel")).st_ino
        self.ok("convert", "a.json", "b.kel", umask=0o077)
        self.assertEqual(self.read("b.kel"), b"1\n")
        self.assertEqual(self.mode("b.kel"), 0o604)
        self.assertNotEqual(os.stat(self.path("b.kel")).st_ino, before)

    @unittest.skipUnless(ROOT, "only root can give files away")
    def test_an_existing_file_keeps_its_owner(self):
        self.write("a.json", "1")
        self.write("b.kel", "old")
        os.chown(self.path("b.kel"), NOBODY, NOBODY)
        self.ok("convert", "a.json", "b.kel")
        self.assertEqual(os.stat(self.path("b.kel")).st_uid, NOBODY)

    @posix_only("Windows runs no file as its owner")
    def test_a_file_that_ran_as_its_owner_does_so_no_more(self):
        self.write("a.json", "1")
        self.write("b.kel", "old")
        os.chmod(self.path("b.kel"), 0o6755)
        self.ok("convert", "a.json", "b.kel")
        self.assertEqual(self.mode("b.kel"), 0o755)

    @unittest.skipUnless(ROOT, "only root can become somebody else")
    def test_permissions_of_a_group_are_given_to_no_other_group(self):
        def become_nobody():
            os.setgroups([])
            os.setgid(NOBODY)
            os.setuid(NOBODY)

        os.chmod(self.folder, 0o777)
        for group, mode in ((0, 0o606), (NOBODY, 0o666)):
            self.write("a.json", "1")
            self.write("b.kel", "old")
            os.chown(self.path("b.kel"), 0, group)
            os.chmod(self.path("b.kel"), 0o666)
            self.ok("convert", "a.json", "b.kel", preexec_fn=become_nobody)
            self.assertEqual((self.mode("b.kel"), self.read("b.kel")), (mode, b"1\n"))
            os.remove(self.path("b.kel"))

    def test_a_protected_file_is_not_replaced(self):
        self.write("a.json", "1")
        self.write("b.kel", "old")
        os.chmod(self.path("b.kel"), 0o444)
        os.chmod(self.folder, 0o777)
        self.fails(4, "kel: b.kel: cannot be written: Permission denied\n",
                   "convert", "a.json", "b.kel",
                   preexec_fn=(lambda: os.setuid(NOBODY)) if ROOT else None)
        self.assertEqual(self.read("b.kel"), b"old")
        self.assertEqual(self.files(), ["a.json", "b.kel"])

    @posix_only("a file takes the place of a link")
    def test_a_symbolic_link_stays_and_its_target_is_replaced(self):
        os.mkdir(self.path("sub"))
        self.write("a.json", "1")
        self.write("sub/real.kel", "old")
        os.symlink("real.kel", self.path("sub/second.kel"))
        os.symlink("sub/second.kel", self.path("first.kel"))
        self.ok("convert", "a.json", "first.kel")
        self.assertEqual(os.readlink(self.path("first.kel")), "sub/second.kel")
        self.assertEqual(self.read("sub/real.kel"), b"1\n")
        self.assertEqual(sorted(os.listdir(self.path("sub"))), ["real.kel", "second.kel"])

    @posix_only("a file takes the place of a link")
    def test_a_dangling_link_gets_its_target(self):
        self.write("a.json", "1")
        os.symlink("real.kel", self.path("link.kel"))
        self.ok("convert", "a.json", "link.kel")
        self.assertTrue(os.path.islink(self.path("link.kel")))
        self.assertEqual(self.read("real.kel"), b"1\n")

    def test_a_refusal_leaves_the_old_file_alone(self):
        self.write("a.json", "[null]")
        self.write("b.kel", "old")
        self.assertEqual(self.kel("convert", "a.json", "b.kel").status, 1)
        self.assertEqual(self.read("b.kel"), b"old")
        self.assertEqual(self.files(), ["a.json", "b.kel"])

    def test_a_malformed_input_leaves_the_old_file_alone(self):
        self.write("a.json", "[1,")
        self.write("b.kel", "old")
        self.assertEqual(self.kel("convert", "a.json", "b.kel").status, 3)
        self.assertEqual(self.read("b.kel"), b"old")

    def test_a_missing_folder_is_an_output_error(self):
        self.write("a.json", "1")
        self.fails(4, "kel: none/b.kel: cannot be written: No such file or directory\n",
                   "convert", "a.json", "none/b.kel")

    def test_a_folder_is_an_output_error(self):
        self.write("a.json", "1")
        os.mkdir(self.path("b.kel"))
        self.fails(4, "kel: b.kel: cannot be written: Is a directory\n",
                   "convert", "a.json", "b.kel")

    @NEEDS_FULL
    @posix_only("the device has no name there")
    def test_a_full_device_is_an_output_error(self):
        self.write("a.json", json.dumps(list(range(100000))))
        self.write("b.json", "1")
        for name in ("a.json", "b.json"):
            for form in ("text", "binary", "json"):
                self.fails(4, "kel: /dev/full: cannot be written: No space left on device\n",
                           "convert", "--to", form, name, "/dev/full")
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/full").st_mode))

    @NEEDS_FULL
    def test_a_full_stdout_is_an_output_error(self):
        self.write("a.json", json.dumps(list(range(100000))))
        self.write("b.json", "1")
        for name in ("a.json", "b.json"):
            for command in (("show", name), ("convert", name, "-", "--to", "text"),
                            ("convert", name, "-", "--to", "binary"),
                            ("convert", name, "-", "--to", "json")):
                with open("/dev/full", "wb") as full:
                    self.fails(4, "kel: -: cannot be written: No space left on device\n", *command,
                               stdout=full)

    @NEEDS_FULL
    def test_a_warning_that_cannot_be_printed_is_an_output_error(self):
        self.write("a.json", "[null]")
        with open("/dev/full", "wb") as full:
            process = subprocess.run(command("convert", "--force", "a.json", "b.kel"),
                                     cwd=self.folder, stderr=full, check=False)
        self.assertEqual((process.returncode, self.read("b.kel")), (4, b"[\n]\n"))

    @posix_only("closes a descriptor of the new process")
    def test_a_message_for_a_closed_stderr_is_not_written_into_the_output(self):
        self.write("a.json", '["\\"" , 1]')
        result = self.kel("convert", "--force", "a.json", "b.kel", preexec_fn=lambda: os.close(2))
        self.assertEqual((result.status, self.read("b.kel")), (4, b"[\n\t\"'\"\n\t1\n]\n"))

    def test_a_closed_pipe_is_an_output_error_without_a_message(self):
        self.write("a.json", json.dumps(list(range(100000))))
        self.write("b.json", "1")
        for name in ("a.json", "b.json"):
            for command in (("show", name), ("convert", name, "-", "--to", "binary"),
                            ("convert", name, "-", "--to", "json")):
                reading, writing = os.pipe()
                os.close(reading)
                self.fails(4, "", *command, stdout=writing)
                os.close(writing)

    @posix_only("pipes stand in no folder")
    def test_a_pipe_may_be_the_output_file(self):
        self.write("a.json", "[1]")
        os.mkfifo(self.path("pipe.kel"))
        process = subprocess.Popen(command("convert", "a.json", "pipe.kel"), cwd=self.folder)
        self.assertEqual(self.read("pipe.kel"), b"[\n\t1\n]\n")
        self.assertEqual(process.wait(), 0)
        self.assertTrue(stat.S_ISFIFO(os.stat(self.path("pipe.kel")).st_mode))

    def interrupt(self, how):
        """Interrupts runs until one is caught while it writes. Returns its exit status."""
        self.write("a.json", "[" + ",".join(['"' + "x" * 30 + '"'] * 500000) + "]")
        for _ in range(20):
            process = subprocess.Popen(command("convert", "a.json", "b.kel"), cwd=self.folder)
            while process.poll() is None and len(self.files()) == 1:
                time.sleep(0.0005)
            process.send_signal(how)
            process.wait()
            if "b.kel" not in self.files():
                break
            os.remove(self.path("b.kel"))
        self.assertEqual(self.files(), ["a.json"])
        return process.returncode

    @posix_only("has no signals from other processes")
    def test_a_signal_leaves_no_unfinished_file(self):
        self.assertEqual(self.interrupt(signal.SIGTERM), -signal.SIGTERM)

    def test_an_interruption_leaves_no_unfinished_file(self):
        interrupted = 0x3A if WINDOWS else -signal.SIGINT  # the last byte of 0xC000013A
        self.assertEqual(self.interrupt(signal.SIGINT), interrupted)
