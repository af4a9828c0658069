"""One call of the tool fails, at every place. faults/Faults.cpp makes it fail."""

import concurrent.futures
import dataclasses
import errno
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import unittest

from support import ARRAY, TOOL, ToolTest, int_record, record, reference, struct_record
from test_parts import without_identities

FAULTS = os.environ.get("KEL_FAULTS")
CANNOT_INJECT = 99
OLD = b"the old file"
WORKERS = os.cpu_count() or 1
DENSE = 300  # calls of a kind up to this number fail one by one, those after it in samples
SAMPLES = 12
# The reasons that may end a message about an injected fault.
REASONS = [os.strerror(number) for number in (errno.EIO, errno.ENOSPC, errno.EINTR, errno.ENOMEM)]
REASONS += ["out of memory", "Cannot create hash code."]

TEXT = """{ @type = 50
  @desc = { @type = 51
    a = { @type = 52
      type = 1
      enum = [ 1 [ "x" ] ] }
    b = { @type = 52
      type = 7
      enum = [ [ "x" 2.5 ] 7 ] } }
  a = 1
  b = [ "x" 2.5 ] }
"""
JSON = '{"a": 1, "b": ["x", 2.5, true, {"$guid": "00010203-0405-0607-0809-0a0b0c0d0e0f"}]}'


@dataclasses.dataclass
class Case:
    """A run of the tool, and what it gives without a fault."""

    arguments: list
    output: str = None  # the file that the run writes
    old: bytes = OLD  # its content before the run
    stdin: str = None  # the file that the run reads from stdin
    status: int = 0
    out: bytes = b""
    err: str = ""
    written: bytes = OLD
    counts: dict = None

    def __str__(self):
        return "kel " + " ".join(self.arguments)


@dataclasses.dataclass
class Outcome:
    """What a run gave."""

    status: int
    out: bytes
    err: str
    written: bytes
    files: set
    counts: dict


def comparable(content):
    """Returns text and binary without their identities, which differ from run to run."""
    if content.startswith(b"KEL\0"):
        try:
            return without_identities(content)
        except (IndexError, ValueError):
            return content  # cut off
    return re.sub(rb"@hashCode = [-0-9A-F]{36}", b"", content)


def run(folder, case, fault):
    """Runs a case with a fault, such as "malloc:7:once", in a folder with all inputs."""
    environment = {"LD_PRELOAD": FAULTS, "KEL_FAULT": fault, "LC_ALL": "C"}
    if "LLVM_PROFILE_FILE" in os.environ:  # a build that counts what tests reach
        environment["LLVM_PROFILE_FILE"] = os.environ["LLVM_PROFILE_FILE"]
    if not fault:
        environment["KEL_FAULT_COUNTS"] = os.path.join(folder, "counts")
    output = pathlib.Path(folder, case.output) if case.output else None
    if output:
        output.write_bytes(case.old)
    before = set(os.listdir(folder))
    stdin = open(os.path.join(folder, case.stdin), "rb") if case.stdin else subprocess.DEVNULL
    result = subprocess.run([TOOL, *case.arguments], cwd=folder, env=environment, stdin=stdin,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False,
                            close_fds=False)
    if case.stdin:
        stdin.close()
    counts = {}
    if not fault and result.returncode != CANNOT_INJECT:
        lines = pathlib.Path(folder, "counts").read_text("ascii").splitlines()
        counts = {kind: int(count) for kind, count in map(str.split, lines)}
        os.remove(os.path.join(folder, "counts"))
    files = set(os.listdir(folder)) - before
    for name in files:
        os.remove(os.path.join(folder, name))
    # A build that counts what tests reach allocates for that too, and reports a failure in its words.
    messages = re.sub(r"(?m)^LLVM Profile .*\n", "",
                      result.stderr.decode("utf-8", "backslashreplace"))
    return Outcome(result.returncode, comparable(result.stdout), messages,
                   comparable(output.read_bytes()) if output else OLD, files, counts)


def sampled(count):
    """Returns numbers of calls: the first ones all, and some of the others."""
    step = max(1, (count - DENSE) // SAMPLES)
    return [*range(1, min(count, DENSE) + 1), *range(DENSE + step, count + 1, step)]


@unittest.skipUnless(FAULTS, "needs a program of this system without sanitizers")
class Faults(ToolTest):
    def setUp(self):
        super().setUp()
        self.write("a.kel", TEXT)
        self.write("a.json", JSON)
        self.write("plain.json", '{"a": [1, 2.5, "x"]}')
        self.write("broken.json", "[1,")
        self.write("broken.kel", "#define A [ B ]\n{ a = A }")
        self.write("broken.kelb", record(ARRAY, int_record(1, 2) + reference(3)))
        self.write("schema.kel", "{ @type = 51\nb = { @type = 52\ntype = 1 } }")
        self.write("twice.json", '{"b": 1, "\\u0062": 2}')
        self.write("doubtful.kel", "#define A 1\n{ a = 99999999999 \"a\" = ( ) }")
        self.write("lossy.json", '[null, "a\\"b"]')
        self.write("a.kelb", struct_record([(b"a", int_record(1, 2)), (b"b", reference(2))]))
        self.write("cycle.kelb", record(ARRAY, reference(1)))
        self.write("large.json", "[" + ",".join(map(str, range(20000))) + "]")
        self.ok("convert", "large.json", "large.kelb")
        self.folders = []
        for _ in range(WORKERS):
            folder = tempfile.mkdtemp(prefix="kel-faults-")
            self.addCleanup(shutil.rmtree, folder, ignore_errors=True)
            for name in self.files():
                shutil.copy(self.path(name), folder)
            self.folders.append(folder)

    def small_cases(self):
        files = ("a.kel", "a.kelb", "plain.json")
        cases = [Case(["show", name]) for name in files]
        cases += [Case(["check", *files]), Case(["check", "-"], stdin="a.kelb"),
                  Case(["check", "--strict", "--schema", "schema.kel", *files]),
                  Case(["check", "--strict", "--json", "doubtful.kel", "twice.json",
                        "broken.json"]),
                  Case(["check", "--strict", "doubtful.kel", "lossy.json"])]
        for name, target in (("a.kel", "json"), ("plain.json", "kel"), ("plain.json", "kelb"),
                             ("a.kelb", "kel"), ("a.kelb", "json"), ("a.json", "kel")):
            cases.append(Case(["convert", "--force", name, "out." + target], "out." + target))
        cases += [Case(["find", name, "a"]) for name in files]
        cases += [Case(["find", "a.kelb", "--kind", "int", "--all", "--count"]),
                  Case(["stats", *files]), Case(["stats", "--json", "cycle.kelb"]),
                  Case(["dump", "a.kelb"]), Case(["fmt", "a.kel", "plain.json"]),
                  Case(["fmt", "--check", "a.kel", "plain.json"]), Case(["fmt", "lossy.json"])]
        for name in files[::2]:
            cases.append(Case(["convert", "--force", "--identities", "stable", name, "out.kelb"],
                              "out.kelb"))
        cases += [Case(["convert", "--to", "binary", "plain.json", "-"]),
                  Case(["convert", "--to", "json", "-", "-"], stdin="a.kelb"),
                  Case(["convert", "--to", "text", "-", "-"], stdin="a.json"),
                  Case(["convert", "--force", "lossy.json", "out.kelb"], "out.kelb"),
                  Case(["convert", "lossy.json", "out.kelb"], "out.kelb"),
                  Case(["convert", "broken.json", "out.kelb"], "out.kelb"),
                  Case(["diff", "a.json", "plain.json"]),
                  Case(["diff", "--json", "--sharing", "a.kel", "a.kelb"]),
                  Case(["show", "cycle.kelb"]), Case(["check", "broken.json", "a.kel"]),
                  Case(["html", "a.kel", "-o", "out.html"], "out.html"), Case(["html", "a.kelb"]),
                  Case(["get", "a.kel", "b", "a", "--to", "json"]),
                  Case(["get", "a.kelb", "--raw", "a"]), Case(["get", "a.json", "c"]),
                  Case(["set", "-", "a", "[ 1 ]"], stdin="a.kelb"), Case(["set", "a.kel", "a", "2"]),
                  *self.in_place_cases(),
                  Case(["check", "broken.kel", "broken.kelb"]),
                  Case(["--version"]), Case(["--help"]), Case(["convert", "--help"]),
                  Case(["show", "--frobnicate"])]
        return cases

    def in_place_cases(self):
        text = b"{ a = 1 b = [ 2 ] }"
        binary = self.read("a.kelb")
        return [Case(["set", "-i", "edit.kel", "b[1]", '"x"'], "edit.kel", text),
                Case(["set", "-i", "--json", "edit.json", "c", '{"d": [1.5]}'], "edit.json",
                     b'{"a": [1, 2]}'),
                Case(["set", "-i", "edit.kelb", "b", "7"], "edit.kelb", binary),
                Case(["rm", "-i", "edit.kelb", "b"], "edit.kelb", binary),
                Case(["mv", "-i", "edit.kel", "a", "c"], "edit.kel", text),
                Case(["set", "-i", "edit.kel", "a", "1"], "edit.kel", b"// x\n" + text)]

    def large_cases(self):
        return [Case(["convert", "large.json", "out.kelb"], "out.kelb"),
                Case(["convert", "large.kelb", "out.json"], "out.json"),
                Case(["convert", "large.kelb", "out.kel"], "out.kel"),
                Case(["show", "large.json"]), Case(["find", "large.json", "7"]),
                Case(["stats", "large.kelb"]), Case(["dump", "large.kelb"]),
                Case(["fmt", "large.json"]),
                Case(["convert", "--identities", "stable", "large.json", "out.kelb"], "out.kelb")]

    def prepare(self, cases):
        """Runs the cases without a fault, for their results and the numbers of their calls."""
        for case in cases:
            outcome = run(self.folders[0], case, "")
            if outcome.status == CANNOT_INJECT:
                self.skipTest("the system does not let a process trap its system calls")
            case.status, case.out, case.err = outcome.status, outcome.out, outcome.err
            case.written, case.counts = outcome.written, outcome.counts
            self.assertGreater(case.counts["malloc"], 0, "the tool's allocations are not replaced")

    def inject(self, faults):
        """Runs pairs of a case and a fault."""
        def run_share(number):
            return [(case, fault, run(self.folders[number], case, fault))
                    for case, fault in faults[number::WORKERS]]

        with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
            for share in pool.map(run_share, range(WORKERS)):
                for case, fault, outcome in share:
                    with self.subTest(f"{case} with {fault}"):
                        self.judge(case, fault, outcome)

    def judge(self, case, fault, outcome):
        self.assertIn(outcome.written, (comparable(case.old), case.written))
        if fault.endswith(":kill"):
            self.assertIn(outcome.status, (case.status, -signal.SIGKILL))
            return
        self.assertEqual(outcome.files, set())
        is_unharmed = ((outcome.status, outcome.out, outcome.written) ==
                       (case.status, case.out, case.written))
        if case.err and fault.startswith("write:"):  # the message itself may be what was not written
            self.assertTrue(is_unharmed or outcome.status in (3, 4))
        elif not is_unharmed or outcome.err != case.err:
            self.assertIn(outcome.status, (3, 4))
            self.assertRegex(outcome.err, r"\Akel: (.*\n)*.*\n\Z")
            self.assertTrue(any(reason in outcome.err for reason in REASONS), outcome.err)

    def test_every_allocation_that_fails_is_reported(self):
        cases = self.small_cases()
        self.prepare(cases)
        start = min(case.counts["malloc"] for case in cases)
        faults = []
        for index, case in enumerate(cases):
            for number in sampled(case.counts["malloc"]):
                # All runs begin with the same allocations, so each of these fails in one run.
                if number > start or number % len(cases) == index:
                    faults.append((case, f"malloc:{number}:once"))
                if number % 8 == index % 8:
                    faults.append((case, f"malloc:{number}:on"))
        self.inject(faults)

    def test_every_system_call_that_fails_is_reported(self):
        cases = self.small_cases()
        self.prepare(cases)
        faults = []
        for case in cases:
            for kind, ways in (("read", [errno.EIO, errno.EINTR, "short", "kill"]),
                               ("write", [errno.EIO, errno.ENOSPC, errno.EINTR, "short", "kill"]),
                               ("open", [errno.EIO, errno.EINTR, "kill"]),
                               ("fsync", [errno.EIO, errno.ENOSPC, "kill"]),
                               ("rename", [errno.EIO, errno.ENOSPC, "kill"]),
                               ("close", [errno.EIO, errno.ENOSPC, errno.EINTR, "kill"]),
                               ("getrandom", [errno.EIO, errno.EINTR, "short", "kill"])):
                faults += [(case, f"{kind}:{number}:{how}")
                           for number in range(1, case.counts[kind] + 1) for how in ways]
        self.inject(faults)

    def test_a_full_disk_ends_a_conversion_in_parts_at_once(self):
        self.prepare(self.small_cases()[:1])  # skips the test where faults cannot be injected
        for case in self.large_cases()[:2]:
            outcome = run(self.folders[0], case, f"write:1:{errno.ENOSPC}")
            self.assertEqual((outcome.status, outcome.err, outcome.written, outcome.files),
                             (4, f"kel: {case.output}: cannot be written: "
                              "No space left on device\n", OLD, set()))

    def test_large_files_survive_faults_too(self):
        cases = self.large_cases()
        self.prepare(cases)
        faults = []
        for case in cases:
            for kind, ways in (("malloc", ["once", "on"]), ("read", [errno.EIO, "short"]),
                               ("write", [errno.ENOSPC, "short", "kill"])):
                count = case.counts[kind]
                step = max(1, count // SAMPLES)
                faults += [(case, f"{kind}:{number}:{how}")
                           for number in range(count, 0, -step) for how in ways]
        self.inject(faults)
