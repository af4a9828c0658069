"""Reads what a run of the benchmarks left in its folder."""
import collections
import dataclasses
import json
import math
import pathlib
import sys

HEAPS = ("fresh", "aged")


@dataclasses.dataclass
class Run:
    """The results of one run. If something is measured more than once, the best result counts."""

    times: dict  # heap -> operation -> document -> library -> nanoseconds of processor time per value
    memory: dict  # what -> library -> bytes per value
    seconds: dict  # command -> seconds of processor time
    kilobytes: dict  # command -> peak memory

    def ratios(self, heap, operation, other):
        """Returns document -> KEL's time divided by that of another library."""
        documents = self.times[heap].get(operation, {})
        return {document: cell["KEL"] / cell[other]
                for document, cell in documents.items() if "KEL" in cell and other in cell}


def read_times(texts):
    """Returns operation -> document -> library -> nanoseconds, from outputs of kel_bench."""
    times = collections.defaultdict(lambda: collections.defaultdict(dict))
    for text in texts:
        for result in json.loads(text)["benchmarks"] if text else []:
            if result.get("run_type") == "aggregate":
                continue
            if result.get("error_occurred"):
                sys.exit(f"{result['name']} failed: {result['error_message']}")
            operation, library, document = result["run_name"].split("/")[:3]
            cell = times[operation][document]
            cell[library] = min(result["per_value"] * 1e9, cell.get(library, math.inf))
    return times


def read_memory(text):
    """Returns what -> library -> bytes, from the output of kel_bench_memory."""
    memory = collections.defaultdict(dict)
    for what, library, size in (line.split() for line in text.splitlines()):
        memory[what][library] = float(size)
    return memory


def read_commands(text):
    """Returns command -> seconds and command -> kilobytes, from the output of convert.sh."""
    seconds = {}
    kilobytes = {}
    for command, time, size in (line.split() for line in text.splitlines()):
        seconds[command] = min(float(time), seconds.get(command, math.inf))
        kilobytes[command] = min(float(size), kilobytes.get(command, math.inf))
    return seconds, kilobytes


def read_run(folder):
    """Returns the results in the folder of one run: files called fresh-*.json and aged-*.json,
    memory.txt and convert.txt."""
    folder = pathlib.Path(folder)
    times = {heap: read_times(path.read_text() for path in sorted(folder.glob(f"{heap}-*.json")))
             for heap in HEAPS}
    return Run(times, read_memory((folder / "memory.txt").read_text()),
               *read_commands((folder / "convert.txt").read_text()))


def geometric_mean(numbers):
    """Returns the geometric mean of the numbers, or None if there are none."""
    numbers = list(numbers)
    if not numbers:
        return None
    return math.exp(sum(math.log(number) for number in numbers) / len(numbers))
