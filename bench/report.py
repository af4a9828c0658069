#!/usr/bin/env python3
"""Prints the results of the benchmarks and judges them.

    report.py FOLDER...

Each FOLDER holds one run as scripts/bench.sh leaves it. The worst of the runs counts, and the worse
of a fresh and an aged heap. The status is 0 whether or not the wanted figures are met: the report
states which are.
"""
import pathlib
import sys

from results import HEAPS, geometric_mean, read_run
from wanted import ROWS

OTHER_LIBRARIES = ("nlohmann", "RapidJSON")
CACHES = pathlib.Path("/sys/devices/system/cpu/cpu0/cache")


def side_by_side(figures, decimals):
    """Returns the figures of the heaps as text; those not measured are "-"."""
    return " / ".join("-" if figure is None else f"{figure:.{decimals}f}" for figure in figures)


def print_times(run):
    print("Nanoseconds per value with a fresh heap / with an aged heap")
    for operation, documents in run.times["fresh"].items():
        for document, libraries in documents.items():
            aged = run.times["aged"].get(operation, {}).get(document, {})
            times = "  ".join(f"{library} {side_by_side((time, aged.get(library)), 1)}"
                              for library, time in libraries.items())
            print(f"  {operation:<20} {document:<16} {times}")


def print_ratios(run):
    print("\nKEL's time by that of another library, fresh / aged")
    for operation in run.times["fresh"]:
        for other in OTHER_LIBRARIES:
            fresh, aged = (run.ratios(heap, operation, other) for heap in HEAPS)
            if not fresh:
                continue
            mean = side_by_side([geometric_mean(r.values()) for r in (fresh, aged)], 2)
            each = ", ".join(f"{document} {side_by_side((ratio, aged.get(document)), 2)}"
                             for document, ratio in fresh.items())
            print(f"  {operation:<20} by {other:<10} mean {mean}  ({each})")


def print_sizes(run, caches):
    print("\nNanoseconds per value from the smallest to the largest tree")
    for heap in HEAPS:
        for operation, sizes in run.times[heap].items():
            if operation.startswith("scaling_"):
                row = "  ".join(f"{int(size):,}: {cell['KEL']:.1f}" for size, cell
                                in sorted(sizes.items(), key=lambda item: int(item[0])))
                print(f"  {operation:<22} {heap:<6} {row}")
    size = run.memory.get("document/records", {}).get("KEL")
    if size:
        print(f"These trees take {size:.1f} bytes for each value. So a tree leaves")
        for name, capacity in caches:
            print(f"  {name} ({capacity // 1024:,} KiB) at {capacity / size:,.0f} values")


def read_caches(folder):
    """Returns the name and size in bytes of each cache of data, the nearest first."""
    caches = []
    for index in sorted(folder.glob("index*")):
        if (index / "type").read_text().strip() != "Instruction":
            kilobytes = (index / "size").read_text().strip().removesuffix("K")
            caches.append((f"the level {(index / 'level').read_text().strip()} cache",
                           int(kilobytes) * 1024))
    return caches


def print_single_figures(run):
    print()
    for heap in HEAPS:
        identity = run.times[heap].get("host_identity", {})
        if len(identity) == 2:
            drawing = identity["drawn"]["KEL"] - identity["given"]["KEL"]
            print(f"Drawing an identity takes {drawing:.1f} ns with the {heap} heap.")
    for what, cell in run.memory.items():
        sizes = ", ".join(f"{library} {size:.1f}" for library, size in cell.items())
        print(f"Resident bytes per value, {what.replace('_', ' ')}: {sizes}")
    for command, seconds in run.seconds.items():
        print(f"{command}: {seconds:.2f} s of processor time, {run.kilobytes[command]:.0f} kB at most")


def print_table(runs):
    print(f"\n{'':<36}{'wanted':>8}  {'fresh and aged, of each run':<28}")
    for row in ROWS:
        figures = [figure for run in runs for figure in row.figures(run)]
        shown = "  ".join("     -" if figure is None else f"{figure:6.2f}" for figure in figures)
        print(f"{row.what:<36}{row.wanted:8g}  {shown:<28} {row.unit:<12} {row.verdict(runs)}")


def main(folders):
    if not folders:
        sys.exit(__doc__)
    runs = [read_run(folder) for folder in folders]
    for number, run in enumerate(runs, 1):
        print(f"{'' if number == 1 else chr(10)}RUN {number} OF {len(runs)}")
        print_times(run)
        print_ratios(run)
        print_sizes(run, read_caches(CACHES))
        print_single_figures(run)
    print_table(runs)


if __name__ == "__main__":
    main(sys.argv[1:])
