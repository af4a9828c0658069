"""The mutants that no test can notice, and the result of a run."""
import collections
import json
import sys


def read(file):
    """Returns the verdicts by the names of places. An entry is a name at the start of a line, and the
    verdict in the indented lines below it, which names above it share."""
    verdicts, names, lines = {}, [], []
    for line in [*file.read_text(encoding="utf-8").splitlines(), ""]:
        if line.startswith("#"):
            continue
        if line[:1].isspace():
            lines.append(line.strip())
            continue
        if lines:
            verdicts.update(dict.fromkeys(names, " ".join(lines)))
            names, lines = [], []
        if line:
            names.append(line)
    if names:
        sys.exit(f"{file}: {names[0]}: a verdict is missing")
    return verdicts


def survivor(place, result, verdicts):
    """Returns a line about a mutant that no test notices."""
    how = f"{result.reached} tests execute it" if result.reached else "no test executes it"
    if place.evaluated and not result.reached:
        how = "only the compiler evaluates it"
    verdict = ", has a verdict" if place.name() in verdicts else ""
    return f"src/{place.file}:{place.line}: survives: {place.name()} ({how}{verdict})"


def report(sample, results, verdicts, stale, share, folder, say):
    """Prints the result and writes all of it to a file. Returns the status of the program."""
    # The program never executes these, if only the compiler evaluates their function.
    compiled = {number for number, place in sample.items()
                if place.evaluated and not results[number].reached}
    killed = [number for number, result in results.items() if result.killer]
    alive = [number for number, result in results.items() if not result.killer and number not in compiled]
    excused = [number for number in alive if sample[number].name() in verdicts]
    open_ = sorted(set(alive) - set(excused), key=lambda number: (sample[number].file, sample[number].line))
    folder.joinpath("results.json").write_text(json.dumps(
        [{"name": place.name(), "kind": place.kind, "line": place.line, **vars(results[number])}
         for number, place in sample.items()], indent=1), encoding="utf-8")

    print("Without a verdict:" if open_ else "All that survive have a verdict.")
    for number in open_:
        print(survivor(sample[number], results[number], verdicts))
    for number in killed:
        if sample[number].name() in verdicts:
            print(f"survivors.txt: a test notices now: {sample[number].name()}")
    for name in stale:
        print(f"survivors.txt: not in the sources: {name}")
    kinds = collections.defaultdict(lambda: [0, 0])
    for number, place in sample.items():
        kinds[place.kind][0] += number not in compiled
        kinds[place.kind][1] += bool(results[number].killer)
    for kind, (count, dead) in sorted(kinds.items()):
        print(f"  {kind}: {dead} of {count} killed")
    judged = len(sample) - len(compiled) - len(excused)
    part = len(killed) / judged if judged else 1
    limits = sum(result.killer.startswith("(") for result in results.values())
    say(f"{len(sample)} mutants, {len(compiled)} of them in functions that only the compiler evaluates: "
        f"{len(killed)} killed ({limits} of them by a crash or a limit), "
        f"{len(excused)} survive with a verdict, {len(open_)} without: {100 * part:.1f} % of {judged}")
    return 1 if part < share or stale else 0
