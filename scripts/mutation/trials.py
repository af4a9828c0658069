"""Runs the tests with one mutant after the other."""
import collections
import concurrent.futures
import dataclasses
import os
import pathlib
import resource
import shutil
import signal
import subprocess
import tempfile

PROGRAMS = ("kel_unit_tests", "kel_host_tests")
MEMORY = 6 << 30
FILE_SIZE = 1 << 30
# Finds leaks in any program. Blocks come from malloc then, as in the sanitized builds of the project.
LEAKS = {"LD_PRELOAD": "liblsan.so.0", "KEL_MALLOC": "1", "LSAN_OPTIONS": "exitcode=23"}
LEAK_STATUS = 23
# Tests whose time together is below this, in seconds, run first. Single ones that take longer run late.
QUICK = 0.3


@dataclasses.dataclass
class Test:
    program: str
    name: str
    seconds: float


@dataclasses.dataclass
class Result:
    killer: str   # the test or the limit that ended the mutant; empty for a survivor
    reached: int  # how many tests execute the place


class Trials:
    def __init__(self, binaries, folder, jobs):
        self.binaries = binaries
        self.folder = folder
        self.jobs = jobs
        self.tests = []
        self.reaching = collections.defaultdict(list)
        self.everywhere = set()
        self.without_leak_check = set()
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)

    def watch(self):
        """Runs all tests without a mutant and notes which mutants' places each one executes. Returns the
        names of tests that fail even so; they are left out."""
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            reports = list(pool.map(self.report, PROGRAMS))
            leaks = list(pool.map(
                lambda program: self.report(program, "--gtest_filter=-*Depth*", **LEAKS), PROGRAMS))
        for report in leaks:
            for line in report.read_text().splitlines():
                if line.split()[2] == "0":
                    self.without_leak_check.add(line.split()[0])
        failing = []
        for program, report in zip(PROGRAMS, reports):
            for line in report.read_text().splitlines():
                name, milliseconds, passed, *numbers = line.split()
                if name == "-":
                    self.everywhere.update((program, int(number)) for number in numbers)
                elif passed == "0":
                    failing.append(name)
                else:
                    test = Test(program, name, int(milliseconds) / 1000)
                    self.tests.append(test)
                    for number in numbers:
                        self.reaching[int(number)].append(test)
        return failing

    def report(self, program, *arguments, **environment):
        report = self.folder / f"{program}{'.leaks' if environment else '.reached'}"
        with self.scratch() as scratch:
            status, output = self.run([self.binaries / program, *arguments], scratch, 1200,
                                      KEL_MUTANT_REPORT=str(report), **environment)
        if not report.is_file():
            raise RuntimeError(f"{program} does not run without a mutant ({status}):\n{output[-4000:]}")
        return report

    def scratch(self):
        return tempfile.TemporaryDirectory(dir=self.folder)

    def run(self, command, scratch, seconds, **environment):
        """Runs a program and returns its status and its output. A negative status is a signal."""
        def limit():
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            resource.setrlimit(resource.RLIMIT_DATA, (MEMORY, MEMORY))
            resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_SIZE, FILE_SIZE))
            resource.setrlimit(resource.RLIMIT_CPU, (int(seconds) + 1, int(seconds) + 2))

        names = {**os.environ, "LC_ALL": "C", "TMPDIR": scratch, **environment}
        process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                   errors="replace", cwd=scratch, env=names, preexec_fn=limit,
                                   start_new_session=True)
        try:
            # Processor time is the limit, because it does not depend on what else runs. A program that
            # waits takes none.
            output, _ = process.communicate(timeout=20 * seconds + 60)
        except subprocess.TimeoutExpired:
            output, process.returncode = "", -signal.SIGALRM
        finally:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
        return process.returncode, output

    def all(self, numbers, done):
        """Tries the mutants and calls done(number, result) for each."""
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            running = {pool.submit(self.one, number): number for number in numbers}
            for future in concurrent.futures.as_completed(running):
                done(running[future], future.result())

    def one(self, number):
        reaching = self.reaching[number]
        always = {program for program, other in self.everywhere if other == number}
        chosen = [test for test in self.tests if test.program in always] if always else []
        chosen += [test for test in reaching if test.program not in always]
        quick, usual, slow, deep = [], [], [], []
        total = 0.0
        for test in sorted(chosen, key=lambda test: test.seconds):
            total += test.seconds
            (deep if "Depth" in test.name else quick if total < QUICK
             else usual if test.seconds < QUICK else slow).append(test)
        for group in (quick, usual, slow, deep):
            for program in PROGRAMS:
                killer = self.kill(number, program, [test for test in group if test.program == program])
                if killer:
                    return Result(killer, len(chosen))
        # Once more, for leaks. This takes longer, and few mutants come here.
        for program in PROGRAMS:
            tests = [test for test in quick + usual
                     if test.program == program and test.name not in self.without_leak_check]
            killer = self.kill(number, program, tests, **LEAKS)
            if killer and killer != self.kill(-1, program, tests, **LEAKS):
                return Result(killer, len(chosen))
        return Result("", len(chosen))

    def kill(self, number, program, tests, **environment):
        """Returns what ended the program, or nothing if all tests passed."""
        if not tests:
            return ""
        with self.scratch() as scratch:
            flags = pathlib.Path(scratch) / "flags"
            flags.write_text("--gtest_filter=" + ":".join(test.name for test in tests) + "\n")
            seconds = 3 + 4 * sum(test.seconds for test in tests)
            status, output = self.run(
                [self.binaries / program, f"--gtest_flagfile={flags}", "--gtest_fail_fast",
                 "--gtest_color=no", "--gtest_brief=1"], scratch, seconds, KEL_MUTANT=str(number),
                **environment)
        if status == 0:
            return ""
        if status == LEAK_STATUS and environment:
            return "(leak)"
        failed = [line for line in output.splitlines() if line.startswith("[  FAILED  ] ")]
        if failed and status > 0:
            return failed[0].split()[3].rstrip(",")
        if status < 0:
            limits = {signal.SIGXCPU: "time", signal.SIGKILL: "time", signal.SIGALRM: "time"}
            return f"({limits.get(-status, signal.Signals(-status).name)})"
        return f"(status {status})"
