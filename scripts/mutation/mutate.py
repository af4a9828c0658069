#!/usr/bin/python3
"""Plants small mistakes into src and reports which of them no test notices. scripts/mutate.sh calls it."""
import argparse
import collections
import concurrent.futures
import hashlib
import json
import os
import pathlib
import pickle
import subprocess
import sys
import time

import places as finding
import survivors as known
from instrumented import BuildFailure, Instrumented
from trials import Trials

ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDER = ROOT / "build" / "mutation"
SOURCE = ROOT / "src"
SHARE = 0.95
# How clang parses the sources.
OPTIONS = ["-std=c++20", f"-I{SOURCE}", f"-I{ROOT / 'include'}", "-DKEL_BUILDING", "-DKEL_STATIC",
           "-DKEL_SLAB_STORE"]


def units():
    """Returns what clang parses: file names with their contents. The sources of a folder are one unit,
    which takes a fraction of the time, except for those that include headers of the system."""
    folders = collections.defaultdict(list)
    for file in sorted(SOURCE.rglob("*.cpp")):
        folder = file.relative_to(SOURCE).parts[:-1]
        if "library" not in folder:
            folders[file if "platform" in folder else file.parent / "all.cpp"].append(file)
    return [(str(name), "".join(f'#include "{file}"\n' for file in files))
            for name, files in folders.items() if name.name == "all.cpp"] + [
                (str(name), None) for name in folders if name.name != "all.cpp"]


def all_places(folder):
    """Returns all places in a fixed order, and the counts of those left out. Sources that did not change
    are not parsed again."""
    digest = hashlib.sha256()
    for file in sorted([*SOURCE.rglob("*"), *(ROOT / "include").rglob("*.h"), pathlib.Path(finding.__file__)]):
        if file.is_file():
            digest.update(str(file).encode() + b"\0" + file.read_bytes() + b"\0")
    cache = folder / f"places-{digest.hexdigest()[:16]}"
    if cache.is_file():
        return pickle.loads(cache.read_bytes())
    found, left_out = {}, {}
    jobs = os.cpu_count()
    parsed = units()
    with concurrent.futures.ProcessPoolExecutor(jobs) as pool:
        for places, left in pool.map(finding.find_in, [SOURCE] * jobs, [OPTIONS] * jobs,
                                     [parsed[i::jobs] for i in range(jobs)]):
            found.update(places)
            left_out.update(left)
    left_out = collections.Counter(left_out.values())
    places = sorted(found.values(), key=lambda place: (place.file, place.begin, place.end, place.what))
    seen = collections.Counter()
    for place in places:
        same = place.file, place.function, place.what
        place.occurrence = seen[same]
        seen[same] += 1
    for old in folder.glob("places-*"):
        old.unlink()
    cache.write_bytes(pickle.dumps((places, left_out)))
    return places, left_out


def shuffled(places, seed):
    """Returns the places in an order by chance that an unrelated change to a source keeps."""
    return sorted(places, key=lambda place: hashlib.sha256(f"{seed} {place.name()}".encode()).digest())


def built(copy, order, count, folder):
    """Builds the first count places that compile. Returns them by their numbers, which are their indices
    in order, and how many before them do not compile. What did not compile in an earlier run is known."""
    memory = folder / "does-not-compile.txt"
    broken = set(memory.read_text(encoding="utf-8").splitlines()) if memory.is_file() else set()
    while True:
        good = [number for number, place in enumerate(order) if place.name() not in broken][:count]
        chosen = {number: order[number] for number in good}
        copy.write(chosen)
        numbers = copy.make()
        if not numbers:
            return chosen, max(good, default=-1) + 1 - len(good)
        broken.update(order[number].name() for number in numbers)
        memory.write_text("".join(f"{name}\n" for name in sorted(broken)), encoding="utf-8")


def parse():
    parser = argparse.ArgumentParser(prog="scripts/mutate.sh", description=__doc__)
    parser.add_argument("--sample", type=int, default=500, metavar="N", help="how many mutants (500)")
    parser.add_argument("--seed", default="1", metavar="S", help="chooses other mutants (1)")
    parser.add_argument("--list", action="store_true", help="print all places, and run nothing")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="how many tests run at once")
    parser.add_argument("--folder", type=pathlib.Path, default=FOLDER, help="where to build (build/mutation)")
    parser.add_argument("files", nargs="*", metavar="FILE", help="source files; all of src by default")
    return parser.parse_args()


def main():
    options = parse()
    folder = options.folder.resolve()
    folder.mkdir(parents=True, exist_ok=True)
    start = time.monotonic()

    def say(text):
        print(f"{time.monotonic() - start:6.0f} s  {text}", flush=True)

    places, left_out = all_places(folder)
    register = known.read(ROOT / "scripts/mutation/survivors.txt")
    stale = sorted(set(register) - {place.name() for place in places})
    wanted = {pathlib.Path(name).resolve() for name in options.files}
    order = shuffled([place for place in places if not wanted or (SOURCE / place.file) in wanted], options.seed)
    say(f"{len(places)} places; left out: " + ", ".join(f"{n} {why}" for why, n in left_out.items()))
    if options.list:
        for place in order[:options.sample]:
            print(f"src/{place.file}:{place.line}: {place.kind}: {place.name()}")
        return 0
    copy = Instrumented(ROOT, folder, options.jobs)
    sample, broken = built(copy, order, options.sample, folder)
    say(f"{len(sample)} mutants are built; {broken} more do not compile")
    trials = Trials(copy.build / "bin", folder / "trials", options.jobs)
    failing = trials.watch()
    say(f"{len(trials.tests)} tests pass without a mutant")
    for name in failing:
        print(f"  fails without a mutant: {name}")
    results = {}

    def done(number, result):
        results[number] = result
        if not result.killer:
            print(known.survivor(sample[number], result, register), flush=True)
        if len(results) % 50 == 0:
            say(f"{len(results)} tried")

    trials.all(sample, done)
    return known.report(sample, results, register, stale, SHARE, folder, say) or bool(failing)


if __name__ == "__main__":
    try:
        sys.exit(main())
    except BuildFailure as failure:
        sys.exit(f"mutate.sh: the copy cannot be built:\n{failure}")
