"""Compiles and runs the blocks of pages against an installed copy of the library."""
import json
import os
import re
import shutil
import subprocess

# What a fragment can use without an include.
FRAGMENT_HEAD = """#include <kel/kel.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <mutex>
#include <thread>
#include <vector>
"""
COMPONENTS = ["libkel1", "libkel-dev", "kel", "tree"]


def run(command, **more):
    """Runs a command. Returns its status and what it wrote."""
    result = subprocess.run(command, text=True, stdout=subprocess.PIPE, errors="replace", **more)
    return result.returncode, result.stdout


def fragments_source(page, fragments):
    """Returns the source of a program that runs the fragment of the number in its argument."""
    name = json.dumps(str(page))
    parts = [FRAGMENT_HEAD]
    for number, block in enumerate(fragments):
        parts.append(f"namespace page{number} {{ void run(); void run() {{\n")
        if block.given:
            parts.append(f"#line {block.given_line} {name}\n{block.given}\n")
        parts.append(f"#line {block.line} {name}\n{block.text}}} }}\n")
    parts.append("int main(int, char** arguments) { switch (std::atoi(arguments[1])) {\n")
    for number, _ in enumerate(fragments):
        parts.append(f"case {number}: page{number}::run(); break;\n")
    parts.append("} }\n")
    return "".join(parts)


def bytes_of_dump(dump):
    """Returns the bytes at the beginning of each line of a dump."""
    rows = [re.match(r"\s*((?:[0-9A-F]{2} ?)*)", line).group(1) for line in dump.splitlines()]
    return bytes.fromhex("".join(rows))


class Workshop:
    """An installed library in a folder of its own, a compiler, and one folder for each page."""

    def __init__(self, folder, options):
        self._folder = folder
        self._compiler = options.compiler
        self._library = folder / "installed" / options.libdir
        for component in COMPONENTS:
            status, said = run([options.cmake, "--install", options.build, "--component", component,
                                "--prefix", folder / "installed"])
            if status != 0:
                raise SystemExit(said)
        self._environment = {
            **os.environ,
            "CMAKE_PREFIX_PATH": str(folder / "installed"), "CXX": options.compiler,
            "PATH": f"{folder / 'installed' / 'bin'}{os.pathsep}{os.environ['PATH']}",
            "PKG_CONFIG_PATH": str(self._library / "pkgconfig"),
            "LD_LIBRARY_PATH": str(self._library)}
        self._precompile()

    def _compile(self, file, text, output, language, *more, compiler=None):
        """Compiles a file, "-" for the text. Returns the complaint of the compiler, or None."""
        command = [compiler or self._compiler, "-std=c++17", "-Wall", "-Wextra", "-Werror", "-I",
                   self._folder / "precompiled", "-I", self._folder / "installed" / "include",
                   "-x", language, file, "-o", output, *more]
        result = subprocess.run(command, input=text, text=True, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT)
        return result.stdout if result.returncode != 0 else None

    def _precompile(self):
        """Compiles the header once. g++ takes the result in place of the header if it is the first
        that a source includes. Other compilers read the header."""
        folder = self._folder / "precompiled"
        (folder / "kel").mkdir(parents=True)
        (folder / "all.hpp").write_text("#include <kel/kel.hpp>\n")
        fault = self._compile(folder / "all.hpp", "", folder / "kel/kel.hpp.gch", "c++-header")
        if fault:
            raise SystemExit(fault)

    def build(self, output, source, *options):
        """Makes a program of a source. Returns the complaint or None."""
        output.parent.mkdir(parents=True, exist_ok=True)
        return self._compile("-", source, output, "c++", *options, "-x", "none", "-L",
                             self._library, "-lkel", "-pthread")

    def compile_for_windows(self, source):
        """Compiles a source for Windows, if that is possible here. Returns the complaint or None."""
        compiler = shutil.which("i686-w64-mingw32-g++-posix")
        return compiler and self._compile("-", source, "", "c++", "-fsyntax-only",
                                          compiler=compiler)

    def place_of(self, page, number):
        """Returns the name of a compiled block."""
        return self._folder / "compiled" / page / str(number)

    def folder_of(self, page):
        """Returns the folder in which the blocks of a page run."""
        folder = self._folder / "pages" / page
        folder.mkdir(parents=True, exist_ok=True)
        return folder

    def run(self, page, command, **more):
        """Runs a command in the folder of a page."""
        return run(command, cwd=self.folder_of(page), env=self._environment, **more)

    def check_file(self, page, block, extension):
        """Returns what kel check finds wrong in a block, or None."""
        name = block.name if block.is_file else f".block{extension}"
        path = self.folder_of(page) / name
        if block.language == "hex":
            path.write_bytes(bytes_of_dump(block.text))
        else:
            path.write_text(block.text, encoding="utf-8")
        status, said = self.run(page, ["kel", "check", name], stderr=subprocess.STDOUT)
        if (status != 0) != block.is_malformed:
            return f"kel check ends with status {status}: {said}"
        return None
