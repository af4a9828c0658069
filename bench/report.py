#!/usr/bin/env python3
"""Prints the results of kel_bench and kel_bench_memory, and how KEL compares.

    report.py RESULTS.json MEMORY.txt

RESULTS.json is the file that kel_bench wrote with --benchmark_out. Of repeated runs the fastest
counts. MEMORY.txt is the output of kel_bench_memory. The status is 0 whether or not the wanted
figures are met: the report states which are.
"""
import collections
import json
import math
import pathlib
import sys

# The wanted geometric mean, over the documents, of KEL's time divided by nlohmann's.
WANTED_RATIOS = {"text_read": 1.0, "text_write": 1.0, "binary_write": 1.5, "binary_read": 1.2}
OTHER_OPERATIONS = ["copy", "build_and_destroy", "lookup"]
WANTED_BYTES_PER_INT = 320
WANTED_SPREAD = 1.3  # slowest divided by fastest time per value over all sizes
WANTED_IDENTITY_NS = 40


def read_results(text):
    """Returns operation -> document -> library -> nanoseconds of CPU time per value."""
    results = collections.defaultdict(lambda: collections.defaultdict(dict))
    for run in json.loads(text)["benchmarks"]:
        if run.get("run_type") == "aggregate":
            continue
        if run.get("error_occurred"):
            sys.exit(f"{run['name']} failed: {run['error_message']}")
        operation, library, document = run["run_name"].split("/")[:3]
        time = run["per_value"] * 1e9
        cell = results[operation][document]
        cell[library] = min(time, cell.get(library, math.inf))
    return results


def read_memory(text):
    """Returns (what, library) -> bytes per value."""
    return {(what, library): float(size)
            for what, library, size in (line.split() for line in text.splitlines())}


def geometric_mean(numbers):
    return math.exp(sum(math.log(number) for number in numbers) / len(numbers))


def verdict(figure, wanted):
    return f"wanted at most {wanted:g}: {'met' if figure <= wanted else 'MISSED'}"


def print_raw(results):
    print("Nanoseconds per value")
    for operation, documents in results.items():
        for document, cell in documents.items():
            times = "  ".join(f"{library} {time:9.1f}" for library, time in cell.items())
            print(f"  {operation:<24} {document:<18} {times}")


def print_ratios(results):
    print("\nKEL's time by nlohmann's (and by RapidJSON's)")
    for operation in list(WANTED_RATIOS) + OTHER_OPERATIONS:
        ratios = []
        for document, cell in results.get(operation, {}).items():
            if "KEL" not in cell or "nlohmann" not in cell:
                continue
            ratio = cell["KEL"] / cell["nlohmann"]
            ratios.append(ratio)
            rapid = f"  ({cell['KEL'] / cell['RapidJSON']:.2f})" if "RapidJSON" in cell else ""
            print(f"  {operation:<24} {document:<18} {ratio:6.2f}{rapid}")
        if ratios:
            mean = geometric_mean(ratios)
            note = verdict(mean, WANTED_RATIOS[operation]) if operation in WANTED_RATIOS else ""
            print(f"  {operation:<24} {'GEOMETRIC MEAN':<18} {mean:6.2f}  {note}")


def print_scaling(results):
    print("\nTime per value from the smallest to the largest tree")
    for operation, sizes in results.items():
        if operation.startswith("scaling_"):
            times = [cell["KEL"] for _, cell in sorted(sizes.items(), key=lambda s: int(s[0]))]
            spread = max(times) / min(times)
            row = "  ".join(f"{time:8.1f}" for time in times)
            note = verdict(spread, WANTED_SPREAD) if len(times) > 1 else "only one size measured"
            print(f"  {operation:<24} {row}  slowest by fastest {spread:.2f}, {note}")


def print_single_figures(results, memory):
    print()
    created = results.get("create", {})
    if len(created) == 2:
        drawing = created["fresh_identity"]["KEL"] - created["given_identity"]["KEL"]
        print(f"Drawing an identity: {drawing:.1f} ns, {verdict(drawing, WANTED_IDENTITY_NS)}")
    for (what, library), size in memory.items():
        wanted = (what, library) == ("int_in_array", "KEL")
        note = f", {verdict(size, WANTED_BYTES_PER_INT)}" if wanted else ""
        print(f"Resident memory, {what.replace('_', ' ')}, {library}: {size:.1f} bytes{note}")


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__)
    results = read_results(pathlib.Path(arguments[0]).read_text())
    memory = read_memory(pathlib.Path(arguments[1]).read_text())
    print_raw(results)
    print_ratios(results)
    print_scaling(results)
    print_single_figures(results, memory)


if __name__ == "__main__":
    main(sys.argv[1:])
