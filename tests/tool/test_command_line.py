import json
import os
import re
import subprocess
import unittest

from support import Terminal, ToolTest, int_record, limited_to_files_of, posix_only

HINT = 'run "kel --help" for help\n'


def hint(command):
    return f'run "kel {command} --help" for help\n'


class CommandLine(ToolTest):
    def test_version_goes_to_stdout(self):
        self.assertRegex(self.ok("--version").out, rb"\Akel \d+\.\d+\.\d+\n\Z")

    def commands(self):
        """Returns the names of the commands in the order of the help."""
        text = self.ok("--help").out.decode()
        listed = text[text.index("Subcommands:\n"):].split("\n\n")[0]
        return re.findall(r"^  ([a-z]+) ", listed, re.MULTILINE)

    def test_help_lists_the_commands_and_the_exit_statuses(self):
        self.assertEqual(self.commands()[:2], ["convert", "show"])
        text = self.ok("--help").out.decode()
        for word in ("Paths:", "Exit status:", "Examples:"):
            self.assertIn(word, text)

    def test_every_command_has_help_with_examples(self):
        for command in self.commands():
            text = self.ok(command, "--help").out.decode()
            self.assertIn("Usage: kel " + command, text)
            self.assertRegex(text, "Examples:\n  .*kel " + command)

    def test_the_version_is_printed_whatever_follows(self):
        self.assertEqual(self.ok("--version", "show").out, self.ok("--version").out)

    def test_one_input_without_a_name_is_stdin(self):
        self.assertIn(b"int 5", self.ok("dump", input=int_record(5)).out)

    def test_colours_are_chosen_by_the_terminal_if_nothing_else_is_said(self):
        self.write("colour.json", "[1]")
        self.assertEqual(self.ok("show", "--color", "auto", "colour.json").out,
                         self.ok("show", "colour.json").out)

    def test_no_command_is_a_usage_error(self):
        self.fails(2, "kel: A subcommand is required\n" + HINT)

    def test_an_unknown_command_is_a_usage_error(self):
        self.fails(2, 'kel: unknown command "frobnicate"\n' + HINT, "frobnicate", "a.kel")

    def test_a_mistyped_command_is_recognised(self):
        for typed, meant in (("covnert", "convert"), ("chek", "check"), ("SHOW", "show")):
            self.fails(2, f'kel: unknown command "{typed}" (did you mean "{meant}"?)\n' + HINT,
                       typed, "a.kel")

    def test_an_unknown_option_is_a_usage_error(self):
        self.fails(2, "kel: The following argument was not expected: --frobnicate\n" + hint("show"),
                   "show", "--frobnicate", "a.kel")

    def test_a_similar_option_is_proposed(self):
        for command, typed, meant in (("show", "--no-pagr", "--no-pager"),
                                      ("show", "--max-outptu=3", "--max-output"),
                                      ("fmt", "--forec", "--force")):
            self.fails(2, f"kel: The following argument was not expected: {typed} (did you mean "
                          f"{meant}?)\n" + hint(command), command, typed, "a.kel")

    def test_an_empty_name_of_a_file_is_a_usage_error(self):
        self.write("a.kel", "{ a = 1 }")
        for name, *command in (("IN", "show", ""), ("IN", "show", "a.kel", ""), ("IN", "html", ""),
                               ("IN", "dump", ""), ("FILE", "get", "", "a"),
                               ("FILE", "set", "", "a", "1"), ("OUT", "convert", "a.kel", ""),
                               ("NEW", "diff", "a.kel", ""), ("--output", "html", "a.kel", "-o", ""),
                               ("--schema", "check", "a.kel", "--schema", "")):
            self.fails(2, f"kel: {name}: the name of a file cannot be empty\n" + hint(command[0]),
                       *command)
        self.assertEqual(self.files(), ["a.kel"])

    def test_options_of_every_command_can_precede_the_command(self):
        self.write("a.json", "[null, 1]")
        for before in (["-q"], ["--quiet", "--color", "always"], ["--color=never", "-q"]):
            result = self.ok(*before, "show", "a.json")
            self.assertIn(b"1", result.out)
        self.fails(2, 'kel: unknown command "shwo" (did you mean "show"?)\n' + HINT,
                   "-q", "shwo", "a.json")
        self.fails(2, 'kel: --color: "red" is not auto or always or never\n' + hint("show"),
                   "--color", "red", "show", "a.json")
        self.assertEqual(self.ok("-q", "--help").out, self.ok("--help").out)

    def test_another_option_before_the_command_has_an_answer(self):
        for option, command in (("--force", "convert"), ("--json", "check"), ("-i", "fmt")):
            self.fails(2, f'kel: "{option}" stands before the command; did you mean "kel {command} '
                       f'{option}"?\n' + HINT, option, command, "a.kel")

    def test_a_missing_file_name_is_a_usage_error(self):
        self.assertEqual(self.kel("convert", "a.json").status, 2)

    def test_stdin_is_read_without_a_file_name(self):
        self.assertEqual(self.ok("show", input="{ a = 1 }").out, b"{\n\ta = 1\n}\n")
        self.fails(1, 'kel: -:1:1: found "}" without an open "{"\n'
                      "    1 | }\n"
                      "      | ^\n", "check", input="}")

    @posix_only("needs a terminal")
    def test_a_terminal_is_not_read_without_a_file_name(self):
        for command in ("show", "check"):
            terminal = Terminal()
            self.addCleanup(terminal.close)
            self.fails(2, "kel: IN is required: the name of a file, or - for stdin\n", command,
                       stdin=terminal.writer)

    def test_force_belongs_to_convert_alone(self):
        self.assertEqual(self.kel("show", "--force", "a.kel").status, 2)

    def test_an_unknown_format_is_a_usage_error(self):
        self.fails(2, "kel: --to: \"yaml\" is not text, binary or json\n" + hint("convert"),
                   "convert", "--to", "yaml", "a.json", "b")

    def test_sizes_are_numbers_of_bytes_with_an_optional_unit(self):
        self.write("a.kel", "1")
        for size in ("1000", "4k", "4M", "3g", "1T", "18446744073709551615", "16777215T"):
            self.ok("show", "--max-output", size, "a.kel")
        for size in ("", "M", "1X", "1.5G", "-1", "0", "0G", "1 G", "1GB", "16777216T",
                     "18446744073709551616"):
            self.fails(2, f'kel: --max-output: "{size}" is not a size such as 512M or 2G\n' +
                       hint("show"), "show", "--max-output", size, "a.kel")

    def test_an_output_name_without_known_extension_needs_a_format(self):
        self.write("a.json", "1")
        self.fails(2, "kel: b.txt: the name does not show the format; use --to text, "
                      "--to binary or --to json\n", "convert", "a.json", "b.txt")
        self.fails(2, "kel: -: the name does not show the format; use --to text, "
                      "--to binary or --to json\n", "convert", "a.json", "-")

    @posix_only("the size of files cannot be limited")
    def test_a_file_beyond_the_limit_of_its_size_is_a_failure_to_write(self):
        self.write("a.json", json.dumps(["x" * 100] * 2000))
        self.write("b.kel", "1")
        for name in ("b.kel", "b.kelb", "b.json"):
            self.fails(4, f"kel: {name}: cannot be written: File too large\n", "convert", "a.json",
                       name, **limited_to_files_of(1 << 16))
            self.assertEqual(self.files(), ["a.json", "b.kel"])
        self.assertEqual(self.read("b.kel"), b"1")

    @unittest.skipUnless(os.path.exists("/dev/full"), "needs /dev/full")
    def test_help_that_cannot_be_printed_is_an_output_error(self):
        with open("/dev/full", "wb") as full:
            self.fails(4, "kel: -: cannot be written: No space left on device\n",
                       "--help", stdout=full)

    @posix_only("closes a descriptor of the new process")
    def test_help_for_a_closed_stdout_is_an_output_error(self):
        for arguments in (["--help"], ["--version"], ["convert", "--help"]):
            self.fails(4, "kel: -: cannot be written: Bad file descriptor\n", *arguments,
                       preexec_fn=lambda: os.close(1))


class InputFormat(ToolTest):
    """Contents take precedence over names when the tool chooses the format."""

    def shown(self, name, content):
        self.write(name, content)
        return self.ok("show", name).out

    def test_json_is_known_by_its_colons_and_commas(self):
        self.assertEqual(self.shown("a.kel", '{"a": 1}'), b"{\n\ta = 1\n}\n")
        self.assertEqual(self.shown("b.kel", "[1,2]"), b"[\n\t1\n\t2\n]\n")

    def test_text_is_known_by_its_equals_signs_words_and_comments(self):
        self.assertEqual(self.shown("a.json", "{ a = 1 }"), b"{\n\ta = 1\n}\n")
        self.assertEqual(self.shown("b.json", "// 1, 2\n7\n"), b"7\n")
        self.assertEqual(self.shown("c.json", "#define seven 7\nseven\n"), b"7\n")

    def test_binary_is_known_by_its_first_bytes(self):
        self.write("a.json", "[1, 2]")
        self.ok("convert", "a.json", "b.kelb")
        self.assertEqual(self.shown("c.json", self.read("b.kelb")), b"[\n\t1\n\t2\n]\n")

    def test_what_could_be_both_goes_by_the_name(self):
        self.assertEqual(self.shown("a.json", r'["a\tb"]'), b'[\n\t"a\tb"\n]\n')
        self.assertEqual(self.shown("a.kel", r'["a\tb"]'), b'[\n\t"a\\tb"\n]\n')

    def test_what_could_be_both_is_text_without_a_known_name(self):
        self.assertEqual(self.ok("show", "-", input=r'["a\tb"]').out, b'[\n\t"a\\tb"\n]\n')

    def test_from_overrides_content_and_name(self):
        self.write("a.kel", r'["a\tb"]')
        self.assertEqual(self.ok("show", "--from", "json", "a.kel").out, b'[\n\t"a\tb"\n]\n')

    def test_a_quoted_line_end_makes_text(self):
        self.assertEqual(self.shown("a.json", '"a\nb"'), b'"a\nb"\n')

    def test_a_damaged_binary_file_is_not_taken_for_text(self):
        self.write("a.kelb", b"KEM\0\1\2\3")
        self.fails(3, "kel: a.kelb: offset 0: (the value itself): expected a record, which "
                      'begins with "KEL\\u0000", found "KEM\\u0000"\n', "show", "a.kelb")


if __name__ == "__main__":
    unittest.main()
