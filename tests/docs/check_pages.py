#!/usr/bin/env python3
"""Compiles the C++ of the pages, runs the whole programs, and compares what they print.

    check_pages.py ROOT COMPILER LIBRARY-FOLDER

A block ```cpp with a main is a program. It is run if the text after it ends with "prints", and its
output must be the indented block that follows. Every other block is the inside of a function; a
comment <!-- given: ... --> before it holds what it uses from elsewhere. All these blocks of a page
are compiled together.
"""
import pathlib
import re
import subprocess
import sys
import tempfile
import textwrap

HEAD = """#include <kel/kel.hpp>
#include <cstdio>
#include <iostream>
#include <vector>
"""
BLOCK = re.compile(r"(?:<!-- given:\n(?P<given>.*?)-->\n+)?```cpp\n(?P<code>.*?)```\n"
                   r"(?P<after>[^`]*)", re.DOTALL)


def expected_output(after):
    """Returns the indented block after "prints", or None if there is none."""
    match = re.match(r"\s*(?:[^\n]+\n)*?[^\n]*prints\n\n((?:(?:    [^\n]*)?\n)+)", after)
    return textwrap.dedent(match.group(1)).rstrip("\n") if match else None


class Page:
    """The blocks of one page."""

    def __init__(self, path):
        self.path = path
        self.programs = []
        self.fragments = []
        for match in BLOCK.finditer(path.read_text()):
            code = match.group("code")
            if "int main(" in code:
                self.programs.append((code, expected_output(match.group("after"))))
            else:
                self.fragments.append((match.group("given") or "") + code)

    def functions(self):
        """Returns the source of all fragments."""
        parts = [HEAD]
        for number, fragment in enumerate(self.fragments):
            parts.append(f"namespace page{number} {{ void run(); void run() {{\n{fragment}}} }}\n")
        return "".join(parts)


def compile_source(compiler, root, source, options):
    command = [compiler, "-std=c++17", "-I", str(root / "include"), "-x", "c++", "-", *options]
    result = subprocess.run(command, input=source, text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT)
    return result.stdout if result.returncode != 0 else None


def complaints(page, root, compiler, library):
    if page.fragments:
        fault = compile_source(compiler, root, page.functions(), ["-fsyntax-only"])
        if fault:
            yield f"its fragments do not compile:\n{fault}\n{page.functions()}"
    for code, expected in page.programs:
        with tempfile.TemporaryDirectory() as folder:
            program = pathlib.Path(folder, "program")
            fault = compile_source(compiler, root, code,
                                   ["-L", library, "-lkel", f"-Wl,-rpath,{library}", "-o", program])
            if fault:
                yield f"a program does not compile:\n{fault}\n{code}"
                continue
            ran = subprocess.run([program], cwd=folder, text=True, stdout=subprocess.PIPE)
            if ran.returncode != 0:
                yield f"a program ends with status {ran.returncode}:\n{code}"
            elif expected is None:
                yield f"a program whose output is not shown:\n{code}"
            elif ran.stdout.rstrip("\n") != expected:
                yield f"a program prints\n{ran.stdout}\nand not\n{expected}"


def main(arguments):
    if len(arguments) != 3:
        sys.exit(__doc__)
    root, compiler, library = pathlib.Path(arguments[0]), arguments[1], arguments[2]
    pages = [Page(path) for path in [root / "README.md", *sorted((root / "docs").glob("*.md"))]]
    failures = 0
    for page in pages:
        for complaint in complaints(page, root, compiler, library):
            failures += 1
            print(f"{page.path.relative_to(root)}: {complaint}")
    fragments = sum(len(page.fragments) for page in pages)
    programs = sum(len(page.programs) for page in pages)
    print(f"{fragments} fragments, {programs} programs: {failures} failures")
    return 1 if failures or not programs else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
