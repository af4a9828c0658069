#!/usr/bin/env python3
"""The names that compilers give the exported functions, from the public headers alone.

    compiled_names.py CLANG INCLUDE TARGET

Prints one line per function, "NAME  DECLARATION", in the order of the headers. Clang knows the
naming rules of every target without its system headers; all that the public headers need of those
is FILE, whose tag differs.
"""
import pathlib
import re
import subprocess
import sys
import tempfile

DECLARATION = re.compile(r"^KEL_API\s+([^;{]*?\bKEL_CALL\s+\w+\s*\([^)]*\))\s*;", re.MULTILINE)
DEFINED = re.compile(r'^define (?!linkonce_odr|internal)[^@]*@("(?:[^"\\]|\\.)*"|[\w.$]+)\(', re.MULTILINE)
FILE_TAG = {"linux": "_IO_FILE", "windows": "_iobuf"}


def declarations_in(include):
    """Every exported function's declaration, without the macro in front."""
    found = []
    for header in sorted(pathlib.Path(include).rglob("*.h")):
        found += [" ".join(d.split()) for d in DECLARATION.findall(header.read_text())]
    return found


def source_of(declarations):
    """A program that defines each of the functions, so that its name is seen."""
    bodies = [f"{d} {{{'' if d.startswith('void ') else ' return nullptr; '}}}"
              for d in declarations]
    return "\n".join(["#define KEL_BUILDING", "#include <kel/kel.h>", *bodies, ""])


def plain(symbol):
    """A symbol of clang's output as the linker sees it, less the lead that 32-bit Windows adds."""
    name = symbol.strip('"')
    if name.startswith("\\01"):
        name = name[len("\\01"):]
        return name[1:] if name.startswith("__Z") else name
    return name


def names_for(clang, include, target):
    """Pairs of name and declaration for a target such as i686-pc-windows-msvc."""
    declarations = declarations_in(include)
    tag = FILE_TAG["windows" if "windows" in target or "mingw" in target else "linux"]
    with tempfile.TemporaryDirectory() as folder:
        stub = pathlib.Path(folder, "stdio.h")
        stub.write_text(f"#pragma once\ntypedef struct {tag} FILE;\n")
        result = subprocess.run(
            [clang, f"--target={target}", "-std=c++17", "-w", "-ffreestanding", "-nostdlibinc",
             "-isystem", folder, "-I", include, "-S", "-emit-llvm", "-o", "-", "-x", "c++", "-"],
            input=source_of(declarations), text=True, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE)
    if result.returncode != 0:
        sys.exit(f"{clang} for {target} fails:\n{result.stderr}")
    names = [plain(symbol) for symbol in DEFINED.findall(result.stdout)]
    if len(names) != len(declarations):
        sys.exit(f"{len(declarations)} functions are declared, {len(names)} compiled for {target}")
    return list(zip(names, declarations))


def main(arguments):
    if len(arguments) != 3:
        sys.exit(__doc__)
    for name, declaration in names_for(*arguments):
        print(f"{name}  {declaration}")


if __name__ == "__main__":
    main(sys.argv[1:])
