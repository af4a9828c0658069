import os
import shutil
import subprocess
import unittest

from support import Terminal, ToolTest, command, posix_only

SETTINGS = '{ name = "Kitchen" windows = 3 open = true }'
PAINTED = ("{\n\t\x1b[34mname\x1b[0m = \x1b[32m\"Kitchen\"\x1b[0m\n"
           "\t\x1b[34mopen\x1b[0m = \x1b[35mtrue\x1b[0m\n"
           "\t\x1b[34mwindows\x1b[0m = \x1b[36m3\x1b[0m\n}\n").encode()


class Manners(ToolTest):
    def setUp(self):
        super().setUp()
        self.write("a.kel", SETTINGS)

    def on_terminal(self, *arguments, status=0, **environment):
        """Returns what the tool prints if stdout is a terminal. It must end with the status."""
        terminal = Terminal()
        settings = {name: value for name, value in os.environ.items()
                    if name not in ("NO_COLOR", "PAGER", "LESS")}
        process = subprocess.Popen(command(*arguments), cwd=self.folder, stdout=terminal.writer,
                                   stdin=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                   env={**settings, **environment})
        shown = terminal.shown_by(process)
        self.assertEqual((process.stderr.read(), process.wait()), (b"", status))
        process.stderr.close()
        return shown

    def test_output_is_coloured_on_request(self):
        self.assertEqual(self.ok("show", "--color", "always", "a.kel").out, PAINTED)
        self.assertNotIn(b"\x1b", self.ok("show", "a.kel").out)

    def test_a_comment_has_one_colour(self):
        self.write("list.kel", "< [ 1 ] [ -2 ] >")
        shown = self.ok("show", "--color", "always", "list.kel").out
        self.assertIn(b"\x1b[2m/* keys: */\x1b[0m", shown)
        self.assertIn(b"\x1b[36m-2\x1b[0m", shown)

    @posix_only("needs a terminal")
    def test_terminals_have_colours_unless_they_are_refused(self):
        self.assertEqual(self.on_terminal("show", "--no-pager", "a.kel"), PAINTED)
        plain = self.ok("show", "a.kel").out
        for refusal in ({"NO_COLOR": "1"}, {"PAGER": "cat", "NO_COLOR": "1"}):
            self.assertEqual(self.on_terminal("show", "--no-pager", "a.kel", **refusal), plain)
        self.assertEqual(self.on_terminal("show", "--no-pager", "--color", "never", "a.kel"), plain)
        self.assertEqual(self.on_terminal("show", "--no-pager", "a.kel", NO_COLOR=""), PAINTED)

    @posix_only("needs a terminal")
    def test_without_less_the_whole_output_is_shown_at_once(self):
        os.symlink(shutil.which("cat"), self.path("cat"))
        for settings in ({}, {"PAGER": ""}):
            self.assertEqual(self.on_terminal("show", "a.kel", PATH=self.folder, **settings),
                             PAINTED)

    def test_messages_are_coloured_on_request(self):
        self.fails(3, "\x1b[1;31mkel: \x1b[0mnone.kel: No such file or directory\n",
                   "show", "--color", "always", "none.kel")

    @posix_only("needs a terminal")
    def test_a_pager_shows_all_files_on_a_terminal(self):
        self.write("b.kel", "7")
        shown = self.on_terminal("show", "--color", "never", "a.kel", "b.kel", PAGER="tr a-z A-Z")
        self.assertEqual(shown, self.ok("show", "a.kel", "b.kel").out.upper())

    @posix_only("needs a terminal")
    def test_a_pager_that_cannot_be_started_is_left_out(self):
        self.write("b.kel", "[ 1 ]")
        self.write("no-program", "text")
        plain = self.ok("show", "a.kel", "b.kel").out
        for pager in ("no-such-pager", "./no-program"):
            shown = self.on_terminal("show", "--color", "never", "a.kel", "b.kel",
                                     PAGER=pager + " 2>/dev/null")
            self.assertEqual(shown, plain, pager)

    @posix_only("needs a terminal")
    def test_a_terminal_gets_no_control_characters_of_values(self):
        text = '{ a = "x\x1b[2J\x07y\tz"\n  "n\x1b" = 1 }'
        self.write("c.kel", text)
        for options in (["--no-pager"], ["--no-pager", "--color", "never"], []):
            shown = self.on_terminal("show", *options, "c.kel", PAGER="cat")
            self.assertIn(rb'"x\u001b[2J\u0007y' + b'\tz"', shown)
            self.assertNotIn(b"\x1b[2J", shown)
            self.assertIn(rb"n\u001b", shown)
        self.assertIn(b"\x1b[2J\x07", self.ok("show", "c.kel").out)

    @posix_only("needs a terminal, and names with control characters")
    def test_names_of_files_are_shown_without_control_characters(self):
        self.write("a\x1b[2J\n.json", "{}  ")
        self.write("b\x1b[2J\n.json", "{ ]")
        self.assertEqual(self.kel("fmt", "--check", "a\x1b[2J\n.json").out, b"a\x1b[2J\n.json\n")
        self.assertEqual(self.on_terminal("fmt", "--check", "a\x1b[2J\n.json", status=1),
                         b"a\\u001b[2J\\u000a.json\n")
        for command in ("check", "show", "stats", "dump", "find", "get", "fmt"):
            pattern = {"find": ["x"], "get": ["x"]}.get(command, [])
            result = self.kel(command, "b\x1b[2J\n.json", *pattern)
            self.assertIn("kel: b\\u001b[2J\\u000a.json:", result.err, command)
            self.assertNotIn("\x1b", result.err)
        self.fails(2, 'kel: unknown command "a\\u001b"\nrun "kel --help" for help\n', "a\x1b")

    @posix_only("needs a terminal")
    def test_a_pager_can_be_left_at_any_time(self):
        self.write("a.json", "[" + ",".join(["1234567"] * 100000) + "]")
        self.assertEqual(self.on_terminal("show", "a.json", PAGER="true"), b"")

    def test_show_prints_several_files_and_goes_on_after_an_error(self):
        self.write("b.kel", "7")
        result = self.kel("show", "b.kel", "none.kel", "b.kel")
        self.assertEqual((result.status, result.out, result.err),
                         (3, b"7\n7\n", "kel: none.kel: No such file or directory\n"))

    def test_quiet_leaves_warnings_out_and_errors_in(self):
        self.write("a.json", '[1, null]')
        self.assertIn("warning", self.kel("convert", "--force", "a.json", "b.kel").err)
        self.ok("convert", "-q", "--force", "a.json", "b.kel")
        self.fails(3, "kel: none.kel: No such file or directory\n", "show", "--quiet", "none.kel")

    def test_help_describes_a_command(self):
        self.assertEqual(self.ok("help", "show").out, self.ok("show", "--help").out)
        self.assertEqual(self.ok("help").out, self.ok("--help").out)
        self.fails(2, 'kel: unknown command "sho" (did you mean "show"?)\n'
                      'run "kel --help" for help\n', "help", "sho")


if __name__ == "__main__":
    unittest.main()
