import shutil
import subprocess
import unittest

from support import ToolTest


def runs(shell):
    return unittest.skipUnless(shutil.which(shell), f"needs {shell}")


class Completion(ToolTest):
    """What shells offer after the beginning of a command line."""

    def setUp(self):
        super().setUp()
        for shell in ("bash", "zsh", "fish"):
            self.write(shell, self.ok("completion", shell).out)

    def run_shell(self, shell, *arguments):
        result = subprocess.run([shell, *arguments], cwd=self.folder, text=True, check=False,
                                stdin=subprocess.DEVNULL, capture_output=True)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout.split()

    def bash(self, *words):
        line = " ".join(f"'{word}'" for word in ("kel", *words))
        return self.run_shell("bash", "-c", f"source ./bash; COMP_WORDS=({line}); "
                              f"COMP_CWORD={len(words)}; _kel; echo \"${{COMPREPLY[@]}}\"")

    @runs("bash")
    def test_bash_completes_commands_options_and_their_values(self):
        self.assertEqual(self.bash("conv"), ["convert"])
        self.assertIn("check", self.bash("ch"))
        self.assertEqual(self.bash("convert", "--fo"), ["--force"])
        self.assertEqual(self.bash("convert", "a.kel", "b", "--to", ""), ["text", "binary", "json"])
        self.assertEqual(self.bash("convert", "--to", "b"), ["binary"])
        self.assertEqual(self.bash("help", "sho"), ["show"])
        self.assertEqual(self.bash("completion", ""), ["bash", "zsh", "fish"])

    @runs("bash")
    def test_bash_completes_file_names_itself(self):
        self.assertEqual(self.bash("show", "a"), [])

    @runs("fish")
    def test_fish_completes_commands_options_and_their_values(self):
        def offered(line):
            lines = self.run_shell("fish", "--no-config", "-c",
                                   f"source ./fish; complete -C '{line}' | string split -f1 \\t")
            return lines
        self.assertEqual(offered("kel conv"), ["convert"])
        self.assertEqual(offered("kel convert --fo"), ["--force"])
        self.assertEqual(sorted(offered("kel convert --to ")), ["binary", "json", "text"])

    @runs("zsh")
    def test_zsh_takes_the_script(self):
        self.run_shell("zsh", "-n", "./zsh")
        names = self.run_shell("zsh", "-fc",
                               "autoload -Uz compinit; compinit -u -D; source ./zsh; "
                               "echo $_comps[kel]")
        self.assertEqual(names, ["_kel"])

    def test_other_shells_are_refused(self):
        self.fails(2, 'kel: "tcsh" is not bash, zsh or fish\n', "completion", "tcsh")
