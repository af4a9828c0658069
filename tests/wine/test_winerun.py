#!/usr/bin/env python3
"""scripts/winerun.sh starts Wine's server and services once, before the first program, and apart from
every program's output. A program that finds them running is started at once.

The script runs beside stand-ins for Wine. Each writes its call into a log. The services take some time
to start, as they do in reality.
"""
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "scripts/winerun.sh"
HEADER_AT = 0x40
STAND_INS = {
    # The second server ends with status 2, because the first one runs.
    "wineserver": '[ ! -e server ] || exit 2; touch server; echo server >>log',
    "wine64": """
        case $1 in
            wineboot)
                sleep 1
                echo "the services' output"
                echo "the services' errors" >&2
                echo services >>log ;;
            *)
                echo program >>log
                echo "the program's errors" >&2 ;;
        esac""",
}


def program_for(machine):
    """Returns as much of a Windows program as says for which processor it is."""
    return bytes(60) + HEADER_AT.to_bytes(4, "little") + b"PE\0\0" + machine.to_bytes(2, "little")


class WineRun(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.root)
        for name, text in STAND_INS.items():
            path = self.root / name
            path.write_text("#!/bin/sh\n" + text + "\n")
            path.chmod(0o755)
        (self.root / "program.exe").write_bytes(program_for(0x8664))

    def start(self):
        environment = {**os.environ, "PATH": f"{self.root}:{os.environ['PATH']}",
                       "KEL_WINE": "machine", "WINEPREFIX": str(self.root / "prefix")}
        return subprocess.Popen([SCRIPT, "program.exe"], cwd=self.root, env=environment,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def test_programs_that_start_at_once_wait_for_the_services(self):
        started = [self.start() for _ in range(4)]
        for process in started:
            self.assertEqual(process.communicate(), ("", "the program's errors\n"))
        self.assertEqual((self.root / "log").read_text().split(),
                         ["server", "services"] + 4 * ["program"])

    def started_while(self, process, folder):
        """Runs a program where this process and its folder were noted as the server's. Returns the log."""
        (self.root / "prefix").mkdir()
        (self.root / "prefix/.server").write_text(f"{process} {folder} {self.root}/wine64\n")
        self.assertEqual(self.start().communicate()[1], "the program's errors\n")
        return (self.root / "log").read_text().split()

    def test_the_server_that_was_started_is_found_again(self):
        (self.root / "wineserver").write_text("""#!/bin/sh
            echo asked >>log
            folder=server-$(stat -c %D prefix)-$(printf %x "$(stat -c %i prefix)")
            mkdir "$folder"
            cp "$(command -v sleep)" "$folder/wineserver"
            cd "$folder"
            ./wineserver 60 9>&- &
            echo $! >../server""")
        self.assertEqual(self.start().communicate()[1], "the program's errors\n")
        self.addCleanup(os.kill, int((self.root / "server").read_text()), signal.SIGKILL)
        self.assertEqual(self.start().communicate()[1], "the program's errors\n")
        self.assertEqual((self.root / "log").read_text().split(), ["asked", "services", "program", "program"])

    def test_a_server_that_runs_is_not_asked(self):
        self.assertEqual(self.started_while(os.getpid(), os.getcwd()), ["program"])

    def test_another_process_with_the_number_of_a_server_that_ended_is_not_the_server(self):
        self.assertEqual(self.started_while(os.getpid(), self.root), ["server", "services", "program"])


if __name__ == "__main__":
    unittest.main()
