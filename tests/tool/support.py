"""Helpers of the tool's tests: running the tool, files in a folder of their own, binary records.

The environment variable KEL_TOOL holds the path of the tool. KEL_LAUNCHER holds the path of a
program that runs it where the system cannot, and is empty where the system can.
"""

import atexit
import functools
import json
import os
import pathlib
import re
import shutil
import struct
import subprocess
import tempfile
import threading
import unittest

TOOL = os.environ["KEL_TOOL"]
LAUNCHER = [part for part in [os.environ.get("KEL_LAUNCHER")] if part]
WINDOWS = TOOL.endswith(".exe")
SMALL_STACK = 256 * 1024

if WINDOWS:
    import pefile
else:
    import resource

if os.name == "posix":
    import pty


def posix_only(reason):
    """Marks a test of a feature that Windows lacks. A skipped test reports the reason."""
    return unittest.skipIf(WINDOWS, reason)


class Result:
    """The exit status and output of one run: stderr as text, stdout as bytes."""

    def __init__(self, process):
        self.status = process.returncode
        self.out = process.stdout
        self.err = (process.stderr or b"").decode("utf-8", "backslashreplace")
        if WINDOWS:
            self.err = self.err.replace("\r\n", "\n")


def limit_stack():
    resource.setrlimit(resource.RLIMIT_STACK, (SMALL_STACK, SMALL_STACK))


def limited_to_files_of(size):
    """Returns the options of a run that can write only files of at most this many bytes. A build that
    counts what tests reach would cut off its counts, so it keeps them to itself."""
    return {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size)),
            "env": {**os.environ, "LLVM_PROFILE_FILE": os.devnull}}


@functools.lru_cache
def tool_with_small_stack():
    """Returns a copy of a Windows tool that requests a small stack from the system. The size is in
    its header."""
    folder = tempfile.mkdtemp(prefix="kel-small-stack-")
    atexit.register(shutil.rmtree, folder, ignore_errors=True)
    for library in pathlib.Path(TOOL).parent.glob("*.dll"):
        shutil.copy(library, folder)
    image = pefile.PE(TOOL)
    image.OPTIONAL_HEADER.SizeOfStackReserve = SMALL_STACK
    copy = pathlib.Path(folder, "kel.exe")
    image.write(str(copy))
    copy.chmod(0o755)
    return str(copy)


def command(*arguments, tool=TOOL):
    """Returns the command that runs the tool."""
    return [*LAUNCHER, tool, *arguments]


class Terminal:
    """A terminal on which programs print. The output that comes just before a terminal's last writer
    closes it can be lost, so this object is a writer too, until everything has been read."""

    END = b"\0end of the output\0"

    def __init__(self):
        self.reader, self.writer = pty.openpty()

    def shown_by(self, process):
        """Returns everything that was printed until the process ended, and closes the terminal."""
        def mark_the_end():
            process.wait()
            os.write(self.writer, self.END)
        marking = threading.Thread(target=mark_the_end)
        marking.start()
        shown = b""
        while not shown.endswith(self.END):
            shown += os.read(self.reader, 4096)
        marking.join()
        self.close()
        return shown.removesuffix(self.END).replace(b"\r\n", b"\n")

    def close(self):
        os.close(self.writer)
        os.close(self.reader)


class ToolTest(unittest.TestCase):
    """Runs the tool inside a folder that is removed after the test."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="kel-tool-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, content):
        if isinstance(content, str):
            content = content.encode("utf-8")
        with open(self.path(name), "wb") as file:
            file.write(content)

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def json(self, name):
        return json.loads(self.read(name))

    def files(self):
        return sorted(os.listdir(self.folder))

    def kel(self, *arguments, input=None, small_stack=False, **options):
        """Runs the tool without checking the result. Uses a small call stack on request."""
        if isinstance(input, str):
            input = input.encode("utf-8")
        options.setdefault("stdout", subprocess.PIPE)
        if input is not None:
            options["input"] = input
        else:
            options.setdefault("stdin", subprocess.DEVNULL)
        tool = TOOL
        if small_stack and WINDOWS:
            tool = tool_with_small_stack()
        elif small_stack:
            options["preexec_fn"] = limit_stack
        return Result(subprocess.run(command(*arguments, tool=tool), cwd=self.folder, check=False,
                                     stderr=subprocess.PIPE, **options))

    def ok(self, *arguments, **options):
        """Runs the tool, which must succeed without output on stderr."""
        result = self.kel(*arguments, **options)
        self.assertEqual((result.status, result.err), (0, ""))
        return result

    def fails(self, status, message, *arguments, **options):
        """Runs the tool, which must end with the status and exactly the message."""
        result = self.kel(*arguments, **options)
        self.assertEqual((result.status, result.err), (status, message))
        return result

    def headings(self, message):
        """Returns the lines of a message without the excerpts. The first hundred lines that have a
        place must have one, with the line's number, and with its mark at the column."""
        found = []
        count = 0
        lines = iter(message.splitlines())
        for line in lines:
            found.append(line)
            place = re.match(r"kel: [^:]+:(\d+):(\d+): ", line)
            count += place is not None
            if place and count <= 100:
                number, text = next(lines).split(" | ", 1)
                self.assertEqual(number, f"{place[1]:>5}")
                margin, mark = next(lines).split(" | ", 1)
                self.assertRegex(margin + mark, r"\A\s+\^+\Z")
                if not text.startswith("...") and "\\" not in text:
                    self.assertEqual(mark.index("^"), int(place[2]) - 1)
        return found


# Binary files, byte for byte.

INT, BOOLEAN, DOUBLE, GUID, MEMBLOCK, STRING, ARRAY, STRUCT, MANAGER = range(1, 10)
REFERENCE = 0x7FFFFFFF
NO_IDENTITY = bytes(16)


def identity(number):
    return struct.pack("<IIII", number, 1, 2, 3)


def record(kind, payload, number=1):
    """Returns a complete record. Values that are referred to need a number of their own."""
    return (b"KEL\0" + identity(number) + struct.pack("<iHQ", kind, 1, len(payload)) + payload)


def reference(number):
    return b"KEL\0" + identity(number) + struct.pack("<i", REFERENCE)


def int_record(value, number=1):
    return record(INT, struct.pack("<i", value), number)


def double_record(value, number=1):
    return record(DOUBLE, struct.pack("<d", value), number)


def string_record(text, number=1):
    return record(STRING, text, number)


def struct_record(members, number=1):
    """Returns the record of a struct. members: pairs of a name in bytes and a record."""
    return record(STRUCT, b"".join(name + b"\0" + value for name, value in members), number)
