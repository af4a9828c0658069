"""Vocabulary of the tool's tests: running the tool, files in a folder of their own, binary records.

The environment variable KEL_TOOL holds the path of the tool.
"""

import json
import os
import resource
import struct
import subprocess
import tempfile
import unittest

TOOL = os.environ["KEL_TOOL"]
SMALL_STACK = 256 * 1024


class Result:
    """Exit status and output of one run; stderr as text, stdout as bytes."""

    def __init__(self, process):
        self.status = process.returncode
        self.out = process.stdout
        self.err = (process.stderr or b"").decode("utf-8", "backslashreplace")


def limit_stack():
    resource.setrlimit(resource.RLIMIT_STACK, (SMALL_STACK, SMALL_STACK))


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

    def kel(self, *arguments, input=None, **options):
        """Runs the tool whatever comes of it."""
        if isinstance(input, str):
            input = input.encode("utf-8")
        options.setdefault("stdout", subprocess.PIPE)
        if input is not None:
            options["input"] = input
        else:
            options.setdefault("stdin", subprocess.DEVNULL)
        return Result(subprocess.run([TOOL, *arguments], cwd=self.folder, check=False,
                                     stderr=subprocess.PIPE, **options))

    def ok(self, *arguments, **options):
        """Runs the tool, which has to succeed without a word on stderr."""
        result = self.kel(*arguments, **options)
        self.assertEqual((result.status, result.err), (0, ""))
        return result

    def fails(self, status, message, *arguments, **options):
        """Runs the tool, which has to end with the status and exactly the message."""
        result = self.kel(*arguments, **options)
        self.assertEqual((result.status, result.err), (status, message))
        return result


# Binary files, byte for byte.

INT, BOOLEAN, DOUBLE, GUID, MEMBLOCK, STRING, ARRAY, STRUCT, MANAGER = range(1, 10)
REFERENCE = 0x7FFFFFFF
NO_IDENTITY = bytes(16)


def identity(number):
    return struct.pack("<IIII", number, 1, 2, 3)


def record(kind, payload, number=1):
    """A complete record; values that are referred to need a number of their own."""
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
    """members: pairs of a name in bytes and a record."""
    return record(STRUCT, b"".join(name + b"\0" + value for name, value in members), number)
