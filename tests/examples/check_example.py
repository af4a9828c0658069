#!/usr/bin/env python3
"""Runs an example and compares its output and the files that it makes with the stored ones.

    check_example.py PROGRAM FOLDER

The program runs in a scratch folder that holds copies of the files of FOLDER, with the arguments that
ARGUMENTS has for the example. Each file of
FOLDER/expected is compared: "stdout" with the output, any other with the file of that name.
The environment variable KEL_LAUNCHER names a program that runs it where the system cannot.
"""
import difflib
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

ARGUMENTS = {
    "hello": "",
    "import": "people.csv people.kel",
    "log": "events.kel from 3",
    "panel": "mixer.kel gain-6 mode+1 phase+3 mute pan+1000",
    "settings": "app.kel sound.gain=-3dB sound.voices=20 window.width=1024 window.size=3 "
                "open=second.txt open=first.txt",
    "undo": "app.kel volume=7 width=8x00 width=800 undo undo undo redo volume=9 redo",
    "watch": "settings.kel changed.kel 14 shelf[1].count",
}


def difference(name, expected, found):
    return list(difflib.unified_diff(expected.splitlines(True), found.splitlines(True),
                                     f"expected {name}", f"found {name}"))


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__)
    program, folder = arguments[0], pathlib.Path(arguments[1])
    with tempfile.TemporaryDirectory() as scratch:
        scratch = pathlib.Path(scratch)
        for path in folder.iterdir():
            if path.is_file():
                shutil.copy(path, scratch)
        launcher = [part for part in [os.environ.get("KEL_LAUNCHER")] if part]
        result = subprocess.run([*launcher, program, *ARGUMENTS[folder.name].split()], cwd=scratch, text=True, stdout=subprocess.PIPE)
        if result.returncode != 0:
            sys.exit(f"{program} ended with status {result.returncode}")
        differences = []
        for expected in sorted((folder / "expected").iterdir()):
            made = scratch / expected.name
            found = result.stdout if expected.name == "stdout" else (
                made.read_text() if made.is_file() else "")
            differences += difference(expected.name, expected.read_text(), found)
    if not (folder / "expected" / "stdout").is_file():
        differences.append(f"{folder} stores no expected output\n")
    sys.stdout.writelines(differences)
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
