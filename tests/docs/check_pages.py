#!/usr/bin/env python3
"""Compiles, runs and reads the blocks of the pages, and compares what they print.

    check_pages.py --cmake CMAKE --build BUILD --compiler CXX --libdir LIB [PAGE...]

The pages are README.md and docs/**/*.md, or those that are named. The blocks of a page are taken in
their order, in a folder of the page's own:

- cpp with a main is a program. It is compiled and run, and the page shows its output.
- cpp without a main is the inside of a function. A comment <!-- given: ... --> before it holds what it
  uses from elsewhere. It is compiled, and run if the page shows its output.
- cpp after a comment <!-- windows --> is a source for Windows, which is only compiled, and only where
  mingw-w64 is installed.
- sh is run, with the installed tool on the path. A comment <!-- not run: REASON --> prevents that.
- kel, hex and json are read by the tool, which must find no error, or must find one if the comment
  <!-- malformed --> stands before. If the block has the name of a file (```kel room.kel), later blocks
  can use the file.
- cmake is a file for later blocks.
- text is not code.

An indented block is the output of the block before it. The paragraph between them ends in "prints",
and can announce the exit status ("ends with status 1 and prints"). Blocks in a comment are taken too,
so a page can use files that it does not show. All relative links must lead to a file or a heading.
"""
import argparse
import concurrent.futures
import os
import pathlib
import subprocess
import sys
import tempfile

from page import PLAIN, Page, dead_links
from workshop import Workshop, fragments_source

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
FILES = {"kel": ".kel", "hex": ".kelb", "json": ".json"}


class Checker:
    """Checks the blocks of one page."""

    def __init__(self, page, workshop):
        self._page = page
        self._workshop = workshop
        self.name = str(page.path.relative_to(ROOT))
        self.fragments = [block for block in page.blocks if block.is_fragment]
        self.complaints = [*page.faults, *(f"dead link {link}" for link in dead_links(page.path))]
        self.not_run = [block for block in page.blocks if block.not_run]

    def count(self, is_counted):
        return sum(1 for block in self._page.blocks if is_counted(block))

    def compilations(self):
        """Yields a function without arguments for each compilation."""
        for number, block in enumerate(self._page.blocks):
            if block.is_program:
                source = f'#line {block.line} "{self.name}"\n{block.text}'
                yield lambda n=number, s=source: self._compile(n, s)
        if self.fragments:
            options = ["-Wno-unused"] # an example can name what it does not use
            if all(block.expected is None for block in self.fragments):
                options.append("-fsyntax-only")
            source = fragments_source(self.name, self.fragments)
            yield lambda: self._compile("fragments", source, *options)
        for block in self._page.blocks:
            if block.is_for_windows:
                yield lambda source=block.text: self._take(
                    self._workshop.compile_for_windows(source))

    def _compile(self, number, source, *options):
        place = self._workshop.place_of(self.name, number)
        self._take(self._workshop.build(place, source, *options))

    def _take(self, complaint):
        if complaint:
            self.complaints.append(f"does not compile:\n{complaint}")

    def run(self):
        """Runs and reads the blocks, unless some do not compile."""
        if self.complaints:
            return
        for number, block in enumerate(self._page.blocks):
            complaint = self._complaint_about(number, block)
            if complaint:
                self.complaints.append(f"{block.line}: {complaint}")

    def _complaint_about(self, number, block):
        if block.not_run or block.is_for_windows or block.language == PLAIN:
            return None
        if block.language in FILES:
            return self._workshop.check_file(self.name, block, FILES[block.language])
        if block.language == "cmake":
            (self._workshop.folder_of(self.name) / block.name).write_text(block.text)
            return None if block.name else "this block needs the name of a file"
        if block.is_program:
            if block.is_file:
                (self._workshop.folder_of(self.name) / block.name).write_text(block.text)
            return self._compare(block, [self._workshop.place_of(self.name, number)])
        if block.is_fragment:
            if block.expected is None:
                return None
            program = self._workshop.place_of(self.name, "fragments")
            return self._compare(block, [program, str(self.fragments.index(block))])
        if block.language == "sh":
            return self._compare(block, ["sh", "-c", "exec 2>&1\n" + block.text])
        return f"nobody checks a block of the language {block.language}"

    def _compare(self, block, command):
        status, said = self._workshop.run(self.name, command, stdin=subprocess.DEVNULL)
        if status != block.status:
            return f"ends with status {status} and prints\n{said}"
        if block.expected is None:
            is_silent = block.language == "sh"
            return None if is_silent else f"its output is not shown:\n{said}"
        if said.rstrip("\n") != block.expected:
            return f"prints\n{said}\nand not\n{block.expected}"
        return None


def all_pages():
    return [ROOT / "README.md", *sorted((ROOT / "docs").rglob("*.md"))]


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    for option in ["--cmake", "--build", "--compiler", "--libdir"]:
        parser.add_argument(option, required=True)
    parser.add_argument("pages", nargs="*", type=pathlib.Path)
    options = parser.parse_args()
    paths = [path.resolve() for path in options.pages] or all_pages()
    with tempfile.TemporaryDirectory() as folder, \
            concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        workshop = Workshop(pathlib.Path(folder), options)
        checkers = [Checker(Page(path), workshop) for path in paths]
        list(pool.map(lambda compilation: compilation(),
                      [each for checker in checkers for each in checker.compilations()]))
        list(pool.map(Checker.run, checkers))
    for checker in checkers:
        for complaint in checker.complaints:
            print(f"{checker.name}:{complaint}")
        for block in checker.not_run:
            print(f"{checker.name}:{block.line}: not run, {block.not_run}")
    failures = sum(len(checker.complaints) for checker in checkers)

    def count(is_counted):
        return sum(checker.count(is_counted) for checker in checkers)

    programs = count(lambda block: block.is_program)
    print(f"{programs} programs, "
          f"{count(lambda block: block.is_fragment and block.expected is not None)} fragments with "
          f"output, {count(lambda block: block.is_fragment and block.expected is None)} without, "
          f"{count(lambda block: block.language == 'sh' and not block.not_run)} commands, "
          f"{count(lambda block: block.language in FILES)} documents: {failures} failures")
    return 1 if failures or not programs else 0


if __name__ == "__main__":
    sys.exit(main())
