"""What the tests reached of each source file, and what its comments excuse."""
import collections
import json
import os
import pathlib
import re

MARK = re.compile(r"// (not reached|reached by chance): \S")
SWITCH = re.compile(r"\bswitch \(([^;]*; )?$")


class Branch:
    """One way that a condition can turn out, or one label of a switch."""

    def __init__(self, line, column, outcome):
        self.line = line
        self.column = column
        self.outcome = outcome


class Source:
    """The counts of a file. Those of all instantiations of a template are added up."""

    def __init__(self, text):
        self.text = text.splitlines()
        self.lines = collections.Counter()          # the count of each line of code
        self.conditions = set()                     # the lines with conditions of the running program
        self.branches = collections.Counter()       # the count of each place and outcome
        self.excuses = dict(excuses(self.text))     # the lines that each comment excuses

    def missed_lines(self):
        return [line for line, count in sorted(self.lines.items()) if count == 0]

    def missed_branches(self):
        """Returns the branches that were not taken. Those of a line that was not reached are among
        them."""
        return [Branch(*place) for place, count in sorted(self.branches.items()) if count == 0]

    def excused(self):
        """Returns the lines that comments excuse."""
        return {line for lines in self.excuses.values() for line in lines}

    def wrong_excuses(self):
        """Returns the lines of the comments that excuse nothing, although what they excuse cannot be
        reached by chance."""
        missed = {*self.missed_lines(), *(branch.line for branch in self.missed_branches())}
        return [line for line, excused in self.excuses.items() if not missed.intersection(excused)
                and MARK.search(self.text[line - 1])[1] == "not reached"]


def indentation(line):
    return len(line) - len(line.lstrip())


def only_closes(line):
    """Returns whether a line has nothing but closing braces. It counts as reached only if the block
    runs to its end, and so not after a return."""
    return line.strip(" });,") == ""


def is_label(line):
    return line.lstrip().startswith("case ")


def statement_after(text, index):
    """Returns the lines, counted from 1, of the statement after a comment with a line of its own. It
    ends before the next line that is not indented deeper than the comment, or with it if that line
    only closes a brace. Labels one after the other, with what they lead to, are one statement."""
    depth = indentation(text[index])
    while text[index].lstrip().startswith("//"):
        index += 1
    first = index
    index += 1
    while index < len(text) and is_label(text[index - 1]) and is_label(text[index]):
        index += 1
    while index < len(text) and (not text[index] or indentation(text[index]) > depth):
        index += 1
    if index < len(text) and indentation(text[index]) == depth and only_closes(text[index]):
        index += 1
    return range(first + 1, index + 1)


def excuses(text):
    """Yields the line of each comment that excuses something, and the lines that it excuses."""
    for index, line in enumerate(text):
        found = MARK.search(line)
        if found and line[:found.start()].strip():
            yield index + 1, range(index + 1, index + 2)
        elif found:
            yield index + 1, statement_after(text, index)


class Sources(dict):
    """The sources below some roots, by their path in the repository."""

    def __init__(self, roots):
        super().__init__()
        self._roots = roots

    def source(self, name):
        """Returns the source of a name in an export, or None for a file outside the roots. The
        compiler writes paths from its own folder, so one file can have several names."""
        path = pathlib.PurePath(os.path.relpath(name))
        if path not in self and any(path.is_relative_to(root) for root in self._roots):
            self[path] = Source(pathlib.Path(path).read_text(encoding="utf-8"))
        return self.get(path)


def read_branches(export, sources):
    """Adds the branches of llvm-cov's JSON. Left out are those that the compiler decided, and that of
    a switch without a default for other values than its labels: such a switch lists every enumerator."""
    for file in json.loads(export)["data"][0]["files"]:
        source = sources.source(file["filename"])
        if source is None:
            continue
        for line, column, _, _, true, false, *_ in file["branches"]:
            if line in source.conditions and not SWITCH.search(source.text[line - 1][:column - 1]):
                source.branches[line, column, "true"] += true
                source.branches[line, column, "false"] += false


def read_lines(export, sources):
    """Adds the lines of llvm-cov's list in the format of lcov. It has the lines of branches too, but
    not their columns, and without those that the compiler decided."""
    for entry in export.splitlines():
        word, _, rest = entry.partition(":")
        if word == "SF":
            source = sources.source(rest)
        elif word == "DA" and source is not None:
            line, count = map(int, rest.split(","))
            text = source.text[line - 1]
            if not only_closes(text) and not text.startswith("#"):
                source.lines[line] += count
        elif word == "BRDA" and source is not None:
            source.conditions.add(int(rest.split(",")[0]))


def read(counts, roots):
    """Returns the sources below the roots, with the counts that scripts/coverage.sh has made."""
    sources = Sources(roots)
    read_lines(pathlib.Path(counts, "lcov").read_text(encoding="utf-8"), sources)
    read_branches(pathlib.Path(counts, "text").read_text(encoding="utf-8"), sources)
    return sources
