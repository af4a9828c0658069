#!/usr/bin/env python3
"""Builds the reference and all pages, and checks them.

    check_reference.py ROOT FOLDER

The build itself fails for a warning of Doxygen, for a link that leads nowhere, and for an operation that
does not say who owns what or how it can fail. This test also counts the rows of the tables, and shows
that each of these faults is found.
"""
import html.parser
import pathlib
import re
import sys
import tempfile

# A small project, and faults in it: file, text, what replaces it, and what must be reported.
PROJECT = {
    "README.md": "# Start\n\n[A part](docs/cpp.md#a-part)\n",
    "CHANGELOG.md": "# Changes\n",
    **{f"docs/{name}.md": "# Page\n\n## A part\n\nText.\n"
       for name in ("tutorial", "cpp", "hosting", "text-format", "binary-format")},
    "include/kel/config.h": '''/// \\file
/// The version.

/// The version.
#define KEL_VERSION_STRING "1.0"
''',
    "include/kel/KELKind.h": "/// \\file\n/// The kinds.\n",
    "include/kel/cpp/error.hpp": '''/// \\file
/// The failures.
namespace kel {
/// Does nothing.
inline void nothing() {}
}
''',
    "include/kel/KEL_Array.h": '''/// \\file
/// A list.

/// A list.
class KEL_Array {
public:
    /// Returns another list, borrowed. Never fails.
    virtual KEL_Array* other() = 0;
};
''',
}
FAULTS = (
    ("KEL_Array.h", "Returns another list, borrowed. ", "Returns another list. ", "say who owns it"),
    ("KEL_Array.h", " Never fails.", "", "says nothing about failures"),
    ("KEL_Array.h", "    /// Returns another list, borrowed. Never fails.\n", "", "is not documented"),
    ("KEL_Array.h", "borrowed.", "borrowed \\unknown.", "unknown command"),
    ("KEL_Array.h", "class KEL_Array", "class Thing", "is in no group"),
    ("README.md", "cpp.md#a-part", "cpp.md#no-part", "page_docs_cpp__no_part"),
    ("README.md", "cpp.md#a-part", "missing.md", "leads nowhere"),
)


def expect(condition, message):
    if not condition:
        sys.exit(f"failed: {message}")


class Tables(html.parser.HTMLParser):
    """The rows of the tables of operations on a page: lists of [label, text]."""

    def __init__(self, text):
        super().__init__()
        self.rows, self.is_cell = [], False
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        label = dict(attributes).get("data-label")
        if tag == "td" and label:
            self.is_cell = True
            if label == "Operation":
                self.rows.append([])
            self.rows[-1].append([label, ""])

    def handle_endtag(self, tag):
        self.is_cell = self.is_cell and tag != "td"

    def handle_data(self, text):
        if self.is_cell:
            self.rows[-1][-1][1] += text


def rows_of(page):
    return Tables(page.read_text(encoding="utf-8")).rows


def without_blanks(text):
    return re.sub(r"\s", "", text)


def check_tables(root, site):
    """Checks that each operation of the binary contract has a row, and each row all its cells."""
    operations = re.findall(r"^(\w+) +\d+ (.*) [\d.]+$", (root / "docs/abi/slots.txt").read_text(),
                            re.MULTILINE)
    expect(len(operations) > 350, f"only {len(operations)} slots")
    tables = {}
    for name, operation in operations:
        page = site / f"class{name.replace('_', '__')}.html"
        if name not in tables:
            tables[name] = {without_blanks(row[0][1]) for row in rows_of(page)}
        expect(without_blanks(operation) in tables[name], f"{page.name} lacks {operation}")
    functions = {re.search(r"(\w+)\(", row[0][1])[1] for row in rows_of(site / "functions.html")}
    exported = set(re.findall(r"\b((?:Create|Delete)\w+)\(",
                              (root / "src/exports/exports.txt").read_text()))
    expect(exported and exported <= functions, f"functions without a row: {exported - functions}")
    rows = [row for page in site.glob("*.html") for row in rows_of(page)]
    labels = ["Operation", "What it does", "Ownership", "Failures"]
    for row in rows:
        expect([cell[0] for cell in row] == labels and all(cell[1].strip("? ") for cell in row),
               f"incomplete row: {row}")
    return len(rows)


def check_faults(build):
    """Checks that a small project without faults builds, and that each fault in it is found."""
    for name, before, after, complaint in (("README.md", "", "", None), *FAULTS):
        with tempfile.TemporaryDirectory() as scratch:
            root = pathlib.Path(scratch, "project")
            for path, text in PROJECT.items():
                file = root / path
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_text(text.replace(before, after) if path.endswith(name) else text)
            complaints = build(root, pathlib.Path(scratch, "site"))
            if complaint is None:
                expect(not complaints, f"complaints about a faultless project: {complaints}")
            else:
                expect(any(complaint in each for each in complaints),
                       f"{after!r} instead of {before!r} leads to {complaints}")


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__)
    root, folder = (pathlib.Path(argument).resolve() for argument in arguments)
    sys.path.insert(0, str(root / "scripts/docs"))
    from build import build
    complaints = build(root, folder)
    expect(not complaints, "\n".join(complaints))
    rows = check_tables(root, folder / "html")
    check_faults(build)
    print(f"{len(list((folder / 'html').glob('*.html')))} pages, {rows} rows, {len(FAULTS)} faults found")


if __name__ == "__main__":
    main(sys.argv[1:])
