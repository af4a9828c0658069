"""Makes a copy of the project that has all mutants of a sample at once, each behind a switch."""
import pathlib
import re
import shutil
import subprocess

HERE = pathlib.Path(__file__).resolve().parent

# The folders that the build of the tests needs.
COPIED = ("cmake", "docs", "fuzz", "include", "src", "tests", "tools")
TARGETS = ("kel_unit_tests", "kel_host_tests")

# A switched constant is not one, and gcc would make an array of variable size of it.
OPTIONS = ("-DCMAKE_CXX_FLAGS=-Werror=vla -Wno-narrowing", "-DCMAKE_COMPILE_WARNING_AS_ERROR=OFF",
           "-DCMAKE_BUILD_TYPE=RelWithDebInfo", "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1",
           "-DKEL_UNITY_BUILD=ON", "-DKEL_BUILD_SHARED=OFF", "-DKEL_BUILD_TOOL=OFF",
           "-DKEL_BUILD_EXAMPLES=OFF", "-DKEL_BUILD_BENCH=OFF", "-DKEL_BUILD_TESTS=ON")

# The calls of the store of small blocks, and what replaces them, so that malloc can take its place.
STORE_CALLS = (("takeBlock", "kel_take", "size"), ("giveBlock", "kel_give", "storage"))

ERROR = re.compile(r"^(?P<file>\S+?):(?P<line>\d+):\d+: (?:fatal )?error: ", re.MULTILINE)
MENTION = re.compile(r"^(?:In file included from |\s+from )?(?P<file>\S+?):(?P<line>\d+)[:,]", re.MULTILINE)


class BuildFailure(Exception):
    pass


class Instrumented:
    """The copy in one folder. Files that are the same as in the last run keep their times."""

    def __init__(self, root, folder, jobs):
        self.root = root
        self.tree = folder / "tree"
        self.build = folder / "build"
        self.jobs = jobs
        self.spans = {}

    def write(self, places):
        """Writes the copy with these mutants, which are given by their numbers."""
        self.spans.clear()
        wanted = {}
        for name in COPIED:
            for file in sorted((self.root / name).rglob("*")):
                if file.is_file() and "__pycache__" not in file.parts:
                    wanted[file.relative_to(self.root)] = file.read_bytes()
        for name in ("CMakeLists.txt", "LICENSE", "README.md"):
            wanted[pathlib.Path(name)] = (self.root / name).read_bytes()
        files = {}
        for number, place in places.items():
            files.setdefault(place.file, []).append((number, place))
        for file, inside in files.items():
            path = pathlib.Path("src") / file
            wanted[path] = self.rendered(wanted[path], path, inside)
        memory = pathlib.Path("src/platform/Memory.cpp")
        for call, function, argument in STORE_CALLS:
            text = f"{call}({argument})".encode()
            if text not in wanted[memory]:
                raise BuildFailure(f"{memory}: {text.decode()} is missing")
            wanted[memory] = wanted[memory].replace(text, f"{function}({call}, {argument})".encode())
        wanted[memory] = b'#include "platform/Store.h"\n' + wanted[memory]
        for name in ("Mutant.h", "Mutant.cpp", "Store.h"):
            wanted[pathlib.Path("src/platform") / name] = (HERE / name).read_bytes()
        # This file belongs to every test program.
        wanted[pathlib.Path("tests/support/EnvironmentLocale.cpp")] += (HERE / "Listener.cpp").read_bytes()
        self.replace(wanted)

    def replace(self, wanted):
        if self.tree.is_dir():
            for file in list(self.tree.rglob("*")):
                if file.is_file() and file.relative_to(self.tree) not in wanted:
                    file.unlink()
        for path, content in wanted.items():
            file = self.tree / path
            if not file.is_file() or file.read_bytes() != content:
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_bytes(content)

    def rendered(self, content, path, inside):
        """Returns a file's text with its mutants, and notes which lines belong to which mutant."""
        # Outer places come before those in them. Of two with one range, the one that keeps the range as a
        # whole is the outer one. The other divides it.
        def order(item):
            place = item[1]
            return place.begin, -place.end, (place.begin, place.end) not in place.text, item[0]

        inside = sorted(inside, key=order)
        out = [b'#include "platform/Mutant.h"\n#line 1\n']
        spans = self.spans.setdefault(path.as_posix(), [])

        def line():
            return b"".join(out).count(b"\n") - 1

        def render(begin, end, candidates):
            position = begin
            while candidates:
                number, place = candidates[0]
                nested = [item for item in candidates[1:] if item[1].begin < place.end]
                candidates = candidates[1 + len(nested):]
                out.append(content[position:place.begin])
                first = line()
                for part in place.text:
                    if isinstance(part, str):
                        out.append(part.replace("{N}", str(number)).encode())
                    else:
                        render(*part, [item for item in nested
                                       if part[0] <= item[1].begin and item[1].end <= part[1]])
                spans.append((first, line(), number))
                position = place.end
            out.append(content[position:end])

        render(0, len(content), inside)
        lost = {number for number, _ in inside} - {number for _, _, number in spans}
        if lost:
            raise BuildFailure(f"{path}: not in the copy: {sorted(lost)}")
        return b"".join(out)

    def make(self):
        """Builds the tests. Returns the numbers of mutants that do not compile; none after success."""
        self.run("cmake", "-G", "Ninja", "-S", self.tree, "-B", self.build, *OPTIONS, *self.launcher())
        # Most mistakes that do not compile are found before the tests, which include the headers.
        for targets in ("kel_objects",), TARGETS:
            result = subprocess.run(
                ["cmake", "--build", self.build, "--parallel", str(self.jobs),
                 "--target", *targets, "--", "-k", "0"],
                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
            if result.returncode != 0:
                broken = self.blamed(result.stdout)
                if not broken:
                    raise BuildFailure(result.stdout[-4000:])
                return broken
        return set()

    @staticmethod
    def launcher():
        found = shutil.which("ccache")
        return [f"-DCMAKE_CXX_COMPILER_LAUNCHER={found}"] if found else []

    @staticmethod
    def run(*command):
        result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if result.returncode != 0:
            raise BuildFailure(result.stdout[-4000:])

    def blamed(self, output):
        """Returns the innermost mutants at the lines of the compiler's errors."""
        broken = set()
        for error in ERROR.finditer(output):
            number = self.mutant_at(error)
            if number is not None:
                broken.add(number)
        if not broken:  # the error is in a template of somebody else, and a note has the line
            broken = {self.mutant_at(mention) for mention in MENTION.finditer(output)} - {None}
        return broken

    def mutant_at(self, match):
        file, line = match["file"], int(match["line"])
        for path, spans in self.spans.items():
            if file.endswith("/" + path):
                around = [(last - first, -number) for first, last, number in spans if first <= line <= last]
                return -min(around)[1] if around else None
        return None
