#!/usr/bin/env python3
"""scripts/install-wine.sh chooses a way to get Wine, and leaves the machine as it was if none works.

The script runs beside stand-ins for the commands that change a machine. Each writes its call into a
log.
"""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "scripts/install-wine.sh"
OS_RELEASE = pathlib.Path("/etc/os-release")
IS_DEBIAN = OS_RELEASE.exists() and "ID=debian" in OS_RELEASE.read_text().splitlines()

# The state of the machine is a set of files: what fits, what is there, and the foreign architectures.
STAND_INS = {
    "bin/id": 'echo "${TEST_USER:-0}"',
    "bin/i686-w64-mingw32-g++-posix": "true",
    "bin/x86_64-w64-mingw32-g++-posix": "true",
    "bin/dpkg": """
        case $1 in
            --print-foreign-architectures) cat architectures ;;
            --add-architecture) echo "$2" >>architectures; echo "$*" >>log ;;
            --remove-architecture) : >architectures; echo "$*" >>log ;;
        esac""",
    "bin/apt-get": """
        case "$*" in
            *sourcelist=*update | *sourcelist=*--simulate*) [ -e fits-apart ] ;;
            *update) exit 1 ;;
            *--simulate*) [ -e fits ] ;;
            *install*) echo "install ${*#*install }" >>log; [ ! -e breaks ] && touch machine-wine ;;
        esac""",
    "scripts/winerun.sh": """
        [ "${KEL_WINE:-}" != root ] && [ -e machine-wine ] && exit 42
        [ "${KEL_WINE:-}" != machine ] && [ -e folder-wine ] && exit 42
        exit 77""",
    "scripts/mirror.sh": "echo http://archive/debian",
    "scripts/wine-root.sh": """
        echo "folder $1" >>log
        [ ! -e no-folder ] && touch folder-wine""",
}


@unittest.skipUnless(IS_DEBIAN, "the script installs on Debian only")
class InstallWine(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.root)
        for name, text in STAND_INS.items():
            path = self.root / name
            path.parent.mkdir(exist_ok=True)
            path.write_text("#!/bin/sh\n" + text + "\n")
            path.chmod(0o755)
        shutil.copy(SCRIPT, self.root / "scripts")
        self.given("architectures", "log")

    def given(self, *files):
        for name in files:
            (self.root / name).touch()

    def install(self, width="32", **environment):
        """Runs the script and returns its status. The variables that the caller has do not count."""
        plain = {name: value for name, value in os.environ.items() if not name.startswith("KEL_")}
        path = f"{self.root / 'bin'}:{plain['PATH']}"
        result = subprocess.run(["scripts/install-wine.sh", width, "reason"], cwd=self.root,
                                env={**plain, "PATH": path, **environment},
                                stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        self.said = result.stderr
        return result.returncode

    def done(self):
        """Returns what changed the machine, in order."""
        return (self.root / "log").read_text().splitlines()

    def reason(self):
        return (self.root / "reason").read_text()

    def test_a_wine_that_runs_is_enough(self):
        self.given("machine-wine")
        self.assertEqual(self.install(), 0)
        self.assertEqual(self.done(), [])

    def test_packages_that_fit_are_installed_on_the_machine(self):
        self.given("fits")
        self.assertEqual(self.install(), 0)
        self.assertEqual(self.done(), ["--add-architecture i386", "install wine wine32:i386"])

    def test_packages_that_fit_with_separate_indexes_are_installed_on_the_machine(self):
        self.given("fits-apart")
        self.assertEqual(self.install(), 0)
        self.assertEqual(self.done(), ["--add-architecture i386", "install wine wine32:i386"])

    def test_64_bits_need_no_other_architecture(self):
        self.given("fits")
        self.assertEqual(self.install("64"), 0)
        self.assertEqual(self.done(), ["install wine wine64"])

    def test_where_nothing_fits_the_architecture_is_taken_back_and_the_folder_is_made(self):
        self.assertEqual(self.install(), 0)
        self.assertEqual(self.done(), ["--add-architecture i386", "--remove-architecture i386",
                                       "folder build/cache/wine"])

    def test_packages_that_fit_but_cannot_be_installed_lead_to_the_folder_too(self):
        self.given("fits", "breaks")
        self.assertEqual(self.install(), 0)
        self.assertEqual(self.done(), ["--add-architecture i386", "install wine wine32:i386",
                                       "--remove-architecture i386", "folder build/cache/wine"])

    def test_an_architecture_that_was_there_before_stays(self):
        (self.root / "architectures").write_text("i386\n")
        self.assertEqual(self.install(), 0)
        self.assertEqual(self.done(), ["folder build/cache/wine"])

    def test_the_folder_can_be_elsewhere(self):
        self.assertEqual(self.install("64", KEL_CACHE="/elsewhere"), 0)
        self.assertEqual(self.done(), ["folder /elsewhere/wine"])

    def test_root_chooses_the_folder_although_the_machine_has_wine(self):
        self.given("fits", "machine-wine")
        self.assertEqual(self.install(KEL_WINE="root"), 0)
        self.assertEqual(self.done(), ["folder build/cache/wine"])

    def test_machine_makes_no_folder(self):
        self.given("folder-wine")
        self.assertEqual(self.install(KEL_WINE="machine"), 1)
        self.assertEqual(self.done(), ["--add-architecture i386", "--remove-architecture i386"])
        self.assertIn("Wine does not fit the packages of this machine", self.said)

    def test_no_changes_nothing_and_gives_the_reason(self):
        self.given("fits")
        self.assertEqual(self.install(KEL_WINE="no"), 10)
        self.assertEqual(self.done(), [])
        self.assertEqual(self.reason(), "KEL_WINE=no asks to do without Wine\n")

    def test_another_user_than_root_changes_nothing_and_is_given_the_reason(self):
        self.given("fits")
        self.assertEqual(self.install(TEST_USER="1000"), 10)
        self.assertEqual(self.done(), [])
        self.assertEqual(self.reason(),
                         "Wine for 32-bit programs is missing, and this is not root on Debian\n")

    def test_a_failure_of_every_way_is_a_failure(self):
        self.given("no-folder")
        self.assertEqual(self.install(), 1)
        self.assertFalse((self.root / "reason").exists())

    def test_a_width_or_a_way_that_does_not_exist_is_refused(self):
        self.assertEqual(self.install("16"), 2)
        self.assertEqual(self.install(KEL_WINE="elsewhere"), 1)
        self.assertEqual(self.done(), [])


if __name__ == "__main__":
    unittest.main()
