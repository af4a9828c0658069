#!/usr/bin/env python3
"""Compiles every public header alone, like a host that includes only that one.

    check_headers.py INCLUDE COMPILER...

The headers are compiled as C++17, with every warning an error, and without the folders of the C++
standard library, so that a header that needs part of it fails. clang++ also compiles them for
Windows, for mingw and for Microsoft's compiler, without any system's headers. A compiler that is
not installed is skipped, except the first, which builds the library.
"""
import concurrent.futures
import pathlib
import shutil
import subprocess
import sys
import tempfile

import clang

FLAGS = ["-std=c++17", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wshadow",
         "-Wnon-virtual-dtor", "-Werror", "-x", "c++", "-"]
WINDOWS = [target for target in clang.TARGETS if "linux" not in target]


def compile_alone(command, include, header):
    source = f"#include <{header}>\n#include <{header}>\nint main() {{}}\n"
    result = subprocess.run([*command, "-I", include, *FLAGS], input=source, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return None if result.returncode == 0 else f"{' '.join(command)}: {header}:\n{result.stdout}"


def commands(compilers, system):
    """Yields the command that calls each compiler. system: a folder that replaces a system's
    headers."""
    for compiler in compilers:
        yield [compiler, "-nostdinc++"]
        if "clang++" in pathlib.Path(compiler).name:
            for target in WINDOWS:
                yield [compiler, f"--target={target}", *clang.ALONE, "-isystem", system]


def main(arguments):
    if len(arguments) < 2:
        sys.exit(__doc__)
    include, first, *others = arguments
    compilers = [first] + [c for c in others if shutil.which(c) and c != first]
    headers = sorted(str(h.relative_to(include)) for h in pathlib.Path(include).rglob("*.h"))
    if not headers:
        sys.exit(f"{include} holds no headers")
    with tempfile.TemporaryDirectory() as system:
        clang.write_stdio(system, WINDOWS[0])
        ways = list(commands(compilers, system))
        with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
            jobs = [pool.submit(compile_alone, way, include, h) for way in ways for h in headers]
            failures = [job.result() for job in jobs if job.result()]
    print("\n".join(failures))
    print(f"{len(headers)} headers, {len(ways)} compilers and targets "
          f"({', '.join(compilers)}): {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
