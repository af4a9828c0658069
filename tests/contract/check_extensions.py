#!/usr/bin/env python3
"""Compiles the library's sources as standard C++ only.

    check_extensions.py ROOT CLANG

Other compilers need sources without the extensions of our compiler. clang++ treats each extension
that it knows as an error: those of GNU and of Microsoft, features of C alone, and features newer
than C++20. src/platform is left out, because it holds the code for each system.
Prints one line per file that fails and ends with status 1 if there is any. Ends with status 77 if
CLANG is not there.
"""
import concurrent.futures
import pathlib
import shutil
import subprocess
import sys

FLAGS = ["-std=c++20", "-fsyntax-only", "-pedantic-errors", "-Werror",
         "-Wgnu", "-Wmicrosoft", "-Wlanguage-extension-token", "-Wc++2b-extensions",
         "-Wc99-extensions", "-Wc11-extensions", "-Wc99-designator", "-Wreorder-init-list",
         "-Wvla-extension", "-Wflexible-array-extensions", "-Wzero-length-array",
         "-Wembedded-directive", "-Winvalid-offsetof", "-Wno-inaccessible-base"]


def complaints(clang, root, source):
    command = [clang, *FLAGS, "-DKEL_BUILDING", "-I", str(root / "src"), "-I", str(root / "include"),
               str(source)]
    result = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return f"{source.relative_to(root)}:\n{result.stdout}" if result.returncode else None


def sources(root):
    return [source for source in sorted((root / "src").rglob("*.cpp"))
            if source.relative_to(root / "src").parts[0] != "platform"]


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
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        failures = [text for text in pool.map(lambda f: complaints(clang, root, f), files) if text]
    print("\n".join(failures))
    print(f"{len(files)} sources without extensions: {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
