"""The table of exported functions, src/exports/exports.txt, and the lists that CMake makes from it."""
import collections
import re

ROW = re.compile(r"^ *(\d+) \| (.+?\))(?: \| (\S+) \| (\S+))?$")
DEF_ROW = re.compile(r"^ +(\S+) +@(\d+)$")
DEF_HEAD = ["LIBRARY KEL.dll", "EXPORTS"]
MAP_ROW = re.compile(r"^ +(\w+);$")

# microsoft and standard_call are empty in the row of a function whose names are not filled in yet.
Export = collections.namedtuple("Export", "ordinal declaration microsoft standard_call")


def parse(text):
    """Returns the rows of exports.txt, and complaints about lines."""
    rows, bad = [], []
    for line in text.splitlines():
        match = ROW.match(line)
        if match:
            row = Export(int(match.group(1)), *(field or "" for field in match.groups()[1:]))
            if rows and row.ordinal <= rows[-1].ordinal:
                bad.append(f"ordinal {row.ordinal} does not ascend")
            rows.append(row)
        elif line.strip() and not line.startswith("#"):
            bad.append(f"not a row of exports.txt: {line}")
    return rows, bad if rows else bad + ["exports.txt holds no functions"]


def line_of(row):
    return f"{row.ordinal:3} | {' | '.join(row[1:])}"


def plain_name(row):
    """Returns the name of mingw for 64 bits: the standard-call name without decoration."""
    return re.sub(r"@\d+$", "", row.standard_call)


def linux_name(row):
    """Returns the name on Linux: the plain name with the other tag of FILE."""
    return plain_name(row).replace("6_iobuf", "8_IO_FILE")


def parse_def(text):
    """Returns the pairs of ordinal and name in a .def file, and None for any other line except its
    head."""
    lines = text.splitlines()
    head, rows = lines[:len(DEF_HEAD)], [DEF_ROW.match(line) for line in lines[len(DEF_HEAD):]]
    return [None] * (head != DEF_HEAD) + [row and (int(row.group(2)), row.group(1)) for row in rows]


def parse_map(text):
    """Returns the functions that a version script exports."""
    return [match.group(1) for match in map(MAP_ROW.match, text.splitlines()) if match]
