#!/usr/bin/env python3
"""Checks that the includes of the repository follow its layers.

    check_layers.py ROOT

The rules, each with its reason:
- A layer under src/ includes itself and the layers below it, never one above.
- In a layer with rooms (folders of its own), a room includes itself, the rooms that ROOMS lists for
  it and the files beside the rooms, the hall. The hall includes no room.
- include/kel includes itself and three C headers, so that a host needs no C++ standard library.
- The tool, the host tests, the tests of kel.hpp, the examples and the benchmarks are hosts. Of our
  files they include only include/kel and the files of their own folder.
- kel.hpp and include/kel/cpp need the C++ standard library. No header *.h includes them.
- Headers of a system, and code for one compiler or system, are in src/platform and in
  include/kel/config.h only. Everywhere else the library is standard C++.
- No source of the repository includes a file twice, because the second time has no effect.
Prints one line per offence and ends with status 1 if there is any.
"""
import pathlib
import re
import sys

LAYERS = ["platform", "runtime", "streams", "values", "meta", "serial", "exports"]
# The rooms of a layer, each with the rooms that it may include.
ROOMS = {"serial": {"tokens": [], "text": ["tokens"], "binary": []}}
HOSTS = ["tools", "tests/host", "tests/hpp", "examples", "bench", "tests/install"]
FOLDERS = ["bench", "cmake", "examples", "fuzz", "include", "scripts", "src", "tests", "tools"]
C_HEADERS = {"stdint.h", "stddef.h", "stdio.h"}

INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)
CONDITION = re.compile(r"^\s*#\s*(?:if|ifdef|ifndef|elif)\b(.*)$", re.MULTILINE)
SYSTEM_MACRO = re.compile(r"\b(_\w+|WIN32|unix|linux|__has_\w+)\b")
EXTENSION = re.compile(r"\b(__\w+|_mm_\w+)\b|\[\[\s*(?:gnu|clang|msvc)\s*::")
STANDARD_MACROS = {"__cplusplus", "__VA_ARGS__", "__FILE__", "__LINE__", "__func__"}
NOT_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', re.DOTALL)


def includes_of(text):
    """Yields the included names of a source text, each with "quoted" or "angled"."""
    without_comments = re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.DOTALL)
    for match in INCLUDE.finditer(without_comments):
        yield (match.group(1), "quoted") if match.group(1) else (match.group(2), "angled")


def check_public(name, text):
    for included, style in includes_of(text):
        own = style == "angled" and included.startswith("kel/")
        if not own and not (style == "angled" and included in C_HEADERS):
            yield f"{name}: a public header must not include {included}"


def check_layer(name, text, layer, exists):
    for included, style in includes_of(text):
        if style == "quoted":
            target = included.split("/")[0]
            if target not in LAYERS or not exists(f"src/{included}"):
                yield f"{name}: {included} is not a file of a layer"
            elif LAYERS.index(target) > LAYERS.index(layer):
                yield f"{name}: {layer} must not include {included}, which is above it"
        elif included.startswith("kel/"):
            if not exists(f"include/{included}"):
                yield f"{name}: {included} is not a public header"
        elif layer != "platform" and ("/" in included or included.endswith(".h")):
            yield f"{name}: {included} is not a standard C++ header"


def room_of(folders):
    """Returns the room that a file belongs to, from its folders below src/, or None for every
    hall."""
    return folders[1] if len(folders) > 1 else None


def check_room(name, text, layer, room):
    rooms = ROOMS.get(layer, {})
    if room is not None and room not in rooms:
        yield f"{name}: {layer}/{room} is not a room"
        return
    for included, style in includes_of(text):
        folders = included.split("/")[:-1]
        target = room_of(folders)
        if style != "quoted" or folders[:1] != [layer] or target in (None, room):
            continue
        if room is None:
            yield f"{name}: the hall of {layer} must not include {included}, which is in a room"
        elif target not in rooms[room]:
            yield f"{name}: {layer}/{room} must not include {included}"


def check_host(name, text, folders, exists):
    for included, style in includes_of(text):
        if style == "quoted" and not any(exists(f"{folder}/{included}") for folder in folders):
            yield f"{name}: a host must not include {included}"
        if style == "angled" and included.startswith("kel/") and not exists(f"include/{included}"):
            yield f"{name}: {included} is not a public header"


def check_portable(name, text):
    code = NOT_CODE.sub(" ", text)
    for match in CONDITION.finditer(code):
        if SYSTEM_MACRO.search(match.group(1)):
            yield f"{name}: a condition on the compiler or system:{match.group(1)}"
    for match in EXTENSION.finditer(code):
        if match.group(0) not in STANDARD_MACROS:
            yield f"{name}: {match.group(0)} is an extension of one compiler"


def check_once(name, text):
    names = [included for included, _ in includes_of(text)]
    for included in sorted({included for included in names if names.count(included) > 1}):
        yield f"{name}: {included} is included twice"


def check_umbrella(headers):
    """Checks that every public header is reached from kel.h. headers: name to text."""
    reached, waiting = set(), ["kel/kel.h"]
    while waiting:
        name = waiting.pop()
        if name not in reached and name in headers:
            reached.add(name)
            waiting += [included for included, _ in includes_of(headers[name])]
    for name in sorted(set(headers) - reached):
        yield f"include/{name}: not reached from kel.h"


def sources(folder):
    return sorted(p for p in folder.rglob("*") if p.suffix in {".h", ".cpp"})


def check_repository(root):
    def exists(name):
        return (root / name).is_file()

    rooms = [f"src/{layer}/{room}" for layer in ROOMS for room in ROOMS[layer]]
    for folder in ["include/kel"] + [f"src/{layer}" for layer in LAYERS] + rooms:
        if not sources(root / folder):
            yield f"{folder}: nothing to check"

    headers = {}
    for path in sources(root / "include"):
        name, text = str(path.relative_to(root)), path.read_text()
        headers[name.removeprefix("include/")] = text
        yield from check_public(name, text)
        if name != "include/kel/config.h":
            yield from check_portable(name, text)
    yield from check_umbrella(headers)

    for path in sources(root / "src"):
        name, text = str(path.relative_to(root)), path.read_text()
        folders = path.relative_to(root / "src").parts[:-1]
        layer = folders[0] if folders else ""
        if layer not in LAYERS:
            yield f"{name}: belongs to no layer"
            continue
        yield from check_layer(name, text, layer, exists)
        if layer in ROOMS:
            yield from check_room(name, text, layer, room_of(folders))
        if layer != "platform":
            yield from check_portable(name, text)

    for folder in HOSTS:
        for path in sources(root / folder):
            name = str(path.relative_to(root))
            own = [str(parent) for parent in path.relative_to(root).parents
                   if parent.is_relative_to(folder)]
            yield from check_host(name, path.read_text(), own, exists)

    for folder in FOLDERS:
        for path in sources(root / folder):
            yield from check_once(str(path.relative_to(root)), path.read_text())


def main(arguments):
    if len(arguments) != 1:
        sys.exit(__doc__)
    offences = list(check_repository(pathlib.Path(arguments[0]).resolve()))
    print("\n".join(offences) if offences else "Every include points downward.")
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
