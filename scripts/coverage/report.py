"""Prints what the tests reached, and judges it: report.py COUNTS [PATH...]

COUNTS is the folder that scripts/coverage.sh has made. PATH is a file or folder whose missed lines
and branches are listed.
"""
import collections
import pathlib
import sys

import sources

# The least share, in percent, of what can be reached. kel.hpp has no bound of its own.
WANTED = {"src": 100, "tools/kel": 97, "include/kel/cpp": 0}


class Tally:
    """How many lines or branches there are, were reached, and cannot be reached."""

    def __init__(self):
        self.all = self.missed = self.excused = 0

    def add(self, other):
        self.all += other.all
        self.missed += other.missed
        self.excused += other.excused

    def count(self, places, missed, excused):
        """Counts the places. missed: the lines of the missed ones. excused: the excused lines."""
        self.all += len(places)
        self.excused += sum(line in excused for line in missed)
        self.missed += sum(line not in excused for line in missed)

    @property
    def percent(self):
        reachable = self.all - self.excused
        return 100 * (reachable - self.missed) / reachable if reachable else 100


class Row:
    """The tallies of a file or folder."""

    def __init__(self):
        self.lines = Tally()
        self.branches = Tally()

    def add(self, other):
        self.lines.add(other.lines)
        self.branches.add(other.branches)

    def __str__(self):
        return "".join(f"{tally.all:>8}{tally.missed:>8}{tally.excused:>8}{shown(tally.percent):>9}"
                       for tally in (self.lines, self.branches))


def shown(percent):
    """Returns the percentage with one decimal, rounded down: only what is complete has 100.0."""
    return f"{int(percent * 10) / 10:.1f}"


def row_of(source):
    row = Row()
    excused = source.excused()
    row.lines.count(source.lines, source.missed_lines(), excused)
    row.branches.count(source.branches, [branch.line for branch in source.missed_branches()], excused)
    return row


def root_of(path):
    return next(root for root in WANTED if path.is_relative_to(root))


def folder_of(path):
    """Returns the folder that a file is counted in: below a root, the first one."""
    root = pathlib.PurePath(root_of(path))
    return root.joinpath(*path.relative_to(root).parts[:-1][:1])


def print_table(read):
    """Prints a row for each folder and returns the totals of the roots."""
    folders = collections.defaultdict(Row)
    totals = collections.defaultdict(Row)
    for path, source in read.items():
        row = row_of(source)
        folders[folder_of(path)].add(row)
        totals[root_of(path)].add(row)
    columns = "".join(f"{word:>8}" for word in ("all", "missed", "excused")) + f"{'%':>9}"
    print(f"{'':<28}{'lines':>33}{'branches':>33}\n{'':<28}{columns}{columns}")
    for root in WANTED:
        for folder in sorted(folders):
            if root_of(folder) == root and str(folder) != root:
                print(f"{folder!s:<28}{folders[folder]}")
        print(f"{root + ' (all)':<28}{totals[root]}\n")
    return totals


def print_missed(path, source):
    """Prints the missed lines and branches of a file that no comment excuses."""
    excused = source.excused()
    for line in source.missed_lines():
        if line not in excused:
            print(f"{path}:{line}: not reached: {source.text[line - 1].strip()}")
    for branch in source.missed_branches():
        if branch.line not in excused and source.lines[branch.line] > 0:
            print(f"{path}:{branch.line}:{branch.column}: never {branch.outcome}: "
                  f"{source.text[branch.line - 1][branch.column - 1:]}")


def faults(read, totals):
    """Yields what is wrong."""
    for path, source in sorted(read.items()):
        for line in source.wrong_excuses():
            yield f"{path}:{line}: the comment excuses nothing: all of it is reached"
    for root, wanted in WANTED.items():
        for word, tally in (("lines", totals[root].lines), ("branches", totals[root].branches)):
            if tally.percent < wanted:
                yield f"{root}: {shown(tally.percent)} % of the {word}, wanted are {wanted} %"


def main():
    read = sources.read(sys.argv[1], WANTED)
    totals = print_table(read)
    for wanted in sys.argv[2:]:
        for path, source in sorted(read.items()):
            if path.is_relative_to(wanted.rstrip("/")):
                print_missed(path, source)
    found = list(faults(read, totals))
    for fault in found:
        print(f"coverage.sh: {fault}", file=sys.stderr)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
