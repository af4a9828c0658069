#!/usr/bin/env python3
"""Compiles the sources of the library (src) and the tool (tools) with clang, without warnings.

    check_clang.py ROOT CLANG FOLDER...

clang++ finds what our usual compiler does not: changes of signedness, for example. Other compilers
need sources without the extensions of ours. Therefore the library's sources are standard C++ only:
clang++ treats each extension that it knows as an error, those of GNU and of Microsoft, features of
C alone, and features newer than C++20. Extensions are allowed in src/platform, which holds the code
for each system, and in the tool.
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
         "-Wsign-conversion", "-Wshadow", "-Wno-inaccessible-base"]
WITHOUT_EXTENSIONS = ["-pedantic-errors", "-Wgnu", "-Wmicrosoft", "-Wlanguage-extension-token",
                      "-Wc++2b-extensions", "-Wc99-extensions", "-Wc11-extensions",
                      "-Wc99-designator", "-Wreorder-init-list", "-Wvla-extension",
                      "-Wflexible-array-extensions", "-Wzero-length-array",
                      "-Wembedded-directive", "-Winvalid-offsetof"]
OTHER_SYSTEM = ("Windows", "LibraryEntry")  # how the names of files for Windows begin


def flags_for(source):
    """Returns the flags for a source, whose path is relative to the root."""
    if source.parts[0] == "tools":
        return [*FLAGS, "-Itools/kel", "-Iinclude"]
    library = [*FLAGS, "-DKEL_BUILDING", "-Isrc", "-Iinclude"]
    return library if source.parts[1] == "platform" else library + WITHOUT_EXTENSIONS


def complaints(clang, root, source):
    result = subprocess.run([clang, *flags_for(source), str(source)], cwd=root, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return f"{source}:\n{result.stdout}" if result.returncode else None


def sources(root, folders):
    return [source.relative_to(root) for folder in folders
            for source in sorted((root / folder).rglob("*.cpp"))
            if not source.name.startswith(OTHER_SYSTEM)]


def main(arguments):
    if len(arguments) < 3:
        sys.exit(__doc__)
    root, clang = pathlib.Path(arguments[0]).resolve(), arguments[1]
    if not shutil.which(clang):
        print("Not checked: clang++ is not installed.")
        return 77
    files = sources(root, arguments[2:])
    if not files:
        sys.exit("nothing to check")
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count()) as pool:
        failures = [text for text in pool.map(lambda f: complaints(clang, root, f), files) if text]
    print("\n".join(failures))
    print(f"{len(files)} sources compiled by clang: {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
