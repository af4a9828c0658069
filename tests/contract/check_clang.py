#!/usr/bin/env python3
"""Compiles the sources of the library with clang, without warnings and extensions.

    check_clang.py ROOT CLANG

Other compilers need sources without the extensions of ours. Therefore the library's sources are
standard C++ only: clang++ treats each extension that it knows as an error, those of GNU and of
Microsoft, features of C alone, and features newer than C++20. Extensions are allowed in
src/platform, which holds the code for each system.
Prints one line per file that fails and ends with status 1 if there is any. Ends with status 77 if
CLANG is not there.
"""
import concurrent.futures
import os
import pathlib
import shutil
import subprocess
import sys

FLAGS = ["-std=c++20", "-fsyntax-only", "-Werror", "-Wall", "-Wextra", "-Wpedantic", "-Wconversion",
         "-Wsign-conversion", "-Wshadow", "-Wno-inaccessible-base", "-DKEL_BUILDING", "-Isrc",
         "-Iinclude"]
WITHOUT_EXTENSIONS = ["-pedantic-errors", "-Wgnu", "-Wmicrosoft", "-Wlanguage-extension-token",
                      "-Wc++2b-extensions", "-Wc99-extensions", "-Wc11-extensions",
                      "-Wc99-designator", "-Wreorder-init-list", "-Wvla-extension",
                      "-Wflexible-array-extensions", "-Wzero-length-array",
                      "-Wembedded-directive", "-Winvalid-offsetof"]
OTHER_SYSTEM = ("Windows", "LibraryEntry")  # how the names of files for Windows begin


def flags_for(source):
    """Returns the flags for a source, whose path is relative to the root."""
    return FLAGS if source.parts[1] == "platform" else FLAGS + WITHOUT_EXTENSIONS


def complaints(clang, root, source):
    result = subprocess.run([clang, *flags_for(source), str(source)], cwd=root, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return f"{source}:\n{result.stdout}" if result.returncode else None


def sources(root):
    return [source.relative_to(root) for source in sorted((root / "src").rglob("*.cpp"))
            if not source.name.startswith(OTHER_SYSTEM)]


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__)
    root, clang = pathlib.Path(arguments[0]).resolve(), arguments[1]
    if not shutil.which(clang):
        print("Not checked: clang++ is not installed.")
        return 77
    files = sources(root)
    if not files:
        sys.exit("nothing to check")
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count()) as pool:
        failures = [text for text in pool.map(lambda f: complaints(clang, root, f), files) if text]
    print("\n".join(failures))
    print(f"{len(files)} sources compiled by clang: {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
