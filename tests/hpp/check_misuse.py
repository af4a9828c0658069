#!/usr/bin/env python3
"""Compiles programs that misuse kel.hpp, which must fail with a message that helps.

    check_misuse.py INCLUDE COMPILER...

Each program is the body of a function in which `room` is a struct's handle. The first compiler must
be there; others are skipped if they are not installed. Compiles the header alone too, with every
warning an error, and with flags that it refuses.
"""
import concurrent.futures
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wshadow", "-Werror"]

# What a program must not do, the program, and a part of the message.
MISUSES = [
    ("keep a place", "auto size = room[\"size\"]; int n = size.get<int>(); (void)n;",
     "lasts for one expression"),
    ("store in a kept place", "auto size = room[\"size\"]; size = 3;", "lasts for one expression"),
    ("copy a place", "auto size = room[\"size\"]; auto other = size;", "deleted"),
    ("read a pointer into a value", "auto text = room[\"name\"].get<const char*>(); (void)text;",
     "Read text as std::string"),
    ("read a view into a value", "auto text = room[\"name\"].get<std::string_view>(); (void)text;",
     "Read text as std::string"),
    ("store a character", "room[\"letter\"] = 'x';", "neither a number nor text"),
    ("store a container", "room[\"sizes\"] = std::vector<int>{1, 2};", "kel::array(sizes)"),
    ("store a container of a name",
     "const std::vector<int> sizes{1, 2}; room[\"sizes\"] = sizes;", "kel::array(sizes)"),
    ("store a pointer", "int n = 1; room[\"n\"] = &n;", "say who owns the pointer"),
    ("store a raw value", "KEL* raw = CreateKELInt(1); kel::value v(raw);", "say who owns the pointer"),
    ("make a ref of a raw pointer", "kel::ref<KEL_Array> r = CreateKELArray();", ""),
    ("use a value as a ref of another class",
     "kel::ref<KEL_Struct> s = kel::adopt(CreateKELArray());", ""),
    ("store through a constant handle", "const kel::value fixed = room; fixed[\"a\"] = 1;",
     "a constant handle stores nothing"),
    ("store through the reference of a loop",
     "for (auto& part : room[\"parts\"].elements()) { part[\"price\"] = 4; }",
     "take the element by value"),
    ("change through a constant handle", "const kel::value fixed = room; fixed.set(\"a\", 1);", ""),
    ("assign through a constant handle", "const kel::value fixed = room; fixed[\"a\"].assign(1);", ""),
    ("merge into a constant handle", "const kel::value fixed = room; (void)fixed.merge(room);", ""),
    ("store through a constant checked struct",
     "const kel::checked fixed(room); fixed[\"a\"] = 1;", ""),
    ("set through a constant checked struct", "const kel::checked fixed(room); fixed.set(\"a\", 1);",
     ""),
    ("ignore what was not merged", "room.merge(room);", "nodiscard"),
    ("ignore what was not loaded", "kel::load_into(room, \"a.kel\");", "nodiscard"),
    ("ignore the outcome of a place", "room[\"a\"].try_set_text(\"1\");", "nodiscard"),
    ("ignore a subscription", "kel::watch(room, [](kel::value) {});", "nodiscard"),
    ("ignore an outcome",
     "kel::checked panel({{\"a\", kel::describe<int>()}}); panel.try_set(\"a\", 1);", "nodiscard"),
    ("ignore an adopted reference", "kel::adopt(CreateKELArray());", "nodiscard"),
    ("ignore a changed description",
     "const auto level = kel::describe<int>(); level.fallback(1);", "nodiscard"),
    ("describe a struct", "kel::checked c({{\"a\", kel::checked({{\"b\", kel::describe<int>()}})}}); (void)c;",
     "describes scalars"),
    ("assign a pair", "room.assign(std::pair<int, int>(1, 2));", "Make a struct with kel::object"),
    ("assign a pair to a place", "room[\"a\"].assign(std::pair<int, int>(1, 2));",
     "Make a struct with kel::object"),
    ("give text a range", "kel::describe<std::string>().range(\"a\", \"b\");",
     "only numbers have a range"),
    ("give text a step", "kel::describe<std::string>().step(1);", "only numbers have a step"),
    ("give text only steps", "kel::describe<std::string>().only_steps();",
     "only numbers have a step"),
    ("give a number a length", "kel::describe<int>().longest(3);", "only texts have a length"),
    ("describe another type", "kel::describe<const char*>();", "describe<bool>"),
    ("use a number as a name", "room.get_or(0, 7);", ""),
    ("assign to what find returns", "room.find(\"a\") = 5;", ""),
    ("store through the path of a constant handle",
     "const kel::value fixed = room; fixed.at_path(\"a.b\") = 5;",
     "a constant handle stores nothing"),
    ("assign through the path of a constant handle",
     "const kel::value fixed = room; fixed.at_path(\"a.b\").assign(5);", ""),
    ("keep a place at a path", "auto part = room.at_path(\"a.b\"); part = 5;",
     "lasts for one expression"),
    ("describe a bool by a text", "kel::describe<bool>().fallback(\"no\");", "takes a bool"),
    ("describe a number by a text", "kel::describe<int>().fallback(\"5\");", "takes numbers"),
    ("convert a value by itself", "int n = room[\"n\"]; (void)n;", ""),
    ("make an array of a text", "kel::value list = kel::array(std::string(\"ab\"));",
     "in braces or of a container"),
    ("make an array of a number", "kel::value list = kel::array(3);", "in braces or of a container"),
    ("loop over a value", "for (auto v : room) { (void)v; }", "loop over v.items()"),
    ("loop over a place", "for (auto v : room[\"tags\"]) { (void)v; }", "loop over v.items()"),
    ("visit text as a string",
     "kel::visit(kel::overloaded{[](const std::string&) {}, [](const auto&) {}}, room);",
     "text as std::string_view"),
    ("visit text as a changed copy",
     "kel::visit(kel::overloaded{[](std::string) mutable {}, [](auto&&) mutable {}}, room);",
     "text as std::string_view"),
    ("visit text as a pointer",
     "kel::visit(kel::overloaded{[](const char*) {}, [](const auto&) {}}, room);",
     "text as std::string_view"),
    ("visit only some kinds",
     "kel::visit(kel::overloaded{[](double) {}, [](std::string_view) {}}, room);",
     "needs a function for every type"),
    ("test a place as a condition", "if (room[\"n\"]) {}", ""),
    ("compare a kept place", "const auto one = room[\"a\"]; if (one != room[\"b\"]) {}",
     "lasts for one expression"),
    ("compare with a kept place", "auto one = room[\"a\"]; if (3 == one) {}",
     "lasts for one expression"),
    ("take the greater of two places", "(void)std::max(room[\"x\"], room[\"y\"]);",
     "have no order"),
    ("order a place and a number", "if (room[\"x\"] >= 3) {}", "have no order"),
    ("sort values", "std::vector<kel::value> all; std::sort(all.begin(), all.end());",
     "have no order"),
    ("move an object whose function captures it",
     "struct meter { kel::pinned_subscription watching; }; meter a; meter b = std::move(a);",
     "deleted"),
    ("copy a pinned subscription",
     "kel::pinned_subscription a; kel::pinned_subscription b; b = std::move(a);", "deleted"),
    ("keep a pinned subscription as a movable one",
     "kel::pinned_subscription a; kel::subscription b = std::move(a);", ""),
    ("describe by a table without rules",
     "struct control { std::string name; int column; }; std::vector<control> table; "
     "kel::checked panel(table);", "elements with a name and with rules"),
    ("describe by a table of numbers", "kel::checked panel(std::vector<int>{1});",
     "elements with a name and with rules"),
    ("describe by pairs without rules",
     "kel::checked panel(std::map<std::string, int>{{\"a\", 1}});",
     "elements with a name and with rules"),
    ("take a text for a checked struct", "kel::checked panel = std::string(\"a\"); (void)panel;", ""),
    ("take a container for a checked struct",
     "kel::checked panel = std::vector<int>{1}; (void)panel;", ""),
    ("ignore why a description refuses", "kel::describe<int>().why_not(1);", "nodiscard"),
    ("ignore differences", "kel::differences(room, room);", "nodiscard"),
]

# Programs that must compile, so that a failure above is not one of the frame.
USES = ["int n = room[\"n\"].get<int>(); (void)n;",
        "room[\"n\"] = 3; room[\"d\"] = 19; room[\"s\"] = std::string(\"x\");",
        "kel::value size = room[\"size\"]; size[\"w\"] = 1;",
        "const kel::value fixed = room; int n = fixed[\"n\"].get<int>(); (void)n;",
        "for (auto [name, v] : room.items()) { (void)v; }",
        "for (kel::value part : room[\"parts\"].elements()) { part[\"price\"] = 4; }",
        "room[std::string_view(\"n\")] = room[std::string_view(\"d\")];",
        "const auto done = kel::watch(room[\"n\"], [](kel::value) {}); (void)done;",
        "const auto& rules = kel::describe<double>().range(0, 1).fallback(0); (void)rules;",
        "if (room[\"a\"] != room[\"b\"] || room[\"a\"] == 3 || 3 != room[\"a\"]) {}",
        "const double place = 1; if (place != room[\"b\"]) {}",
        "const kel::value one = room[\"a\"]; if (one == room[\"b\"]) {}",
        "kel::ref<KEL_Array> raw = kel::adopt(CreateKELArray()); kel::value v(raw);",
        "kel::overloaded{[](const kel::value&) {}, [](const kel::checked&) {}}(std::string(\"x\"));",
        "const kel::checked panel = std::vector<kel::described>{}; (void)panel;"]


class Compiler:
    """A compiler, and the header compiled ahead for its programs."""

    def __init__(self, command, include, folder):
        self.command = command
        self.options = ["-std=c++17", *WARNINGS, "-I", include]
        self.all_errors = "-ferror-limit=0" if "clang" in pathlib.Path(command).name else "-fmax-errors=0"
        self.ahead = pathlib.Path(folder, pathlib.Path(command).name + ".hpp")
        self.ahead.write_text("#include <kel/kel.hpp>\n")
        self.run("-x", "c++-header", str(self.ahead), "-o", f"{self.ahead}.gch")
        self.refuses = refused_together(self)

    def run(self, *arguments, **more):
        result = subprocess.run([self.command, *self.options, *arguments], text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **more)
        return result.returncode, result.stdout

    def check(self, source, flags):
        return self.run("-fsyntax-only", *flags, "-x", "c++", "-", input=source)

    def check_program(self, *bodies):
        """Compiles a program with a function for each body, in a file BODY0, BODY1 and so on."""
        source = "".join(f'#line 1 "BODY{i}"\nvoid f{i}(kel::value room);\n'
                         f"void f{i}(kel::value room) {{ (void)room; {body} }}\n"
                         for i, body in enumerate(bodies))
        return self.check(source, [self.all_errors, "-include", str(self.ahead)])


def says(output, text):
    """Returns whether a compiler's output has the text. gcc calls a result "unused" where clang names the
    attribute."""
    return text in output or text == "nodiscard" and "unused" in output


def refused(what, text):
    """Returns a check: the program does not compile, and the text is in the message."""
    def complaint(status, output):
        if status == 0:
            return f"compiles, although it must not ({what})"
        if not says(output, text):
            return f"({what}) expected \"{text}\" in the message:\n{output[:2000]}"
        return None
    return complaint


# Lines that come before an error and say how the compiler got there.
CONTEXT = re.compile(r"^In file included from |^\s+from |: In |: {2,}required |: {2,}recursively required ")


def errors(output):
    """Yields the messages of a compiler, each with the lines before and after it that say where."""
    lines, has_error = [], False
    for line in output.splitlines():
        is_error = " error: " in line
        if has_error and (is_error or CONTEXT.search(line)):
            yield "\n".join(lines)
            lines, has_error = [], False
        lines.append(line)
        has_error = has_error or is_error
    yield "\n".join(lines)


def refused_together(compiler):
    """Compiles all misuses as one program, which takes a fraction of the time. Returns those that are
    refused where they stand, with their text. A template is refused once in a program, so another
    misuse of the same one is not among them."""
    messages = list(errors(compiler.check_program(*(body for _, body, _ in MISUSES))[1]))
    return {body for i, (_, body, text) in enumerate(MISUSES)
            if any(re.search(rf"\bBODY{i}:", message) and says(message, text) for message in messages)}


def accepted(status, output):
    return f"does not compile:\n{output[:2000]}" if status != 0 else None


def trials(compiler, include):
    """Yields calls of the compiler, each with the check of what it says."""
    header = "#include <kel/kel.hpp>\n#include <kel/kel.hpp>\n"
    standard = sorted({line for path in pathlib.Path(include, "kel/cpp").glob("*.hpp")
                       for line in path.read_text().splitlines()
                       if line.startswith("#include <") and "<kel/" not in line
                       and not line.endswith(".h>")})
    # A header of Windows defines these two macros.
    macros = "\n".join(standard) + "\n#define min(a, b) a\n#define max(a, b) b\n" + header
    yield "the header behind the macros min and max", lambda: compiler.check(macros, []), accepted
    for flags, check in (([], accepted),
                         (["-fno-exceptions"], refused("no exceptions", "needs exceptions")),
                         (["-fno-rtti"], refused("no types", "needs run-time type information")),
                         (["-std=c++14"], refused("C++14", "needs C++17"))):
        yield f"the header alone {flags}", lambda flags=flags: compiler.check(header, flags), check
    for body in USES:
        yield body, lambda body=body: compiler.check_program(body), accepted
    for what, body, text in MISUSES:
        if body not in compiler.refuses:
            yield body, lambda body=body: compiler.check_program(body), refused(what, text)


def main(arguments):
    if len(arguments) < 2:
        sys.exit(__doc__)
    include, first, *others = arguments
    paths = {pathlib.Path(shutil.which(each)).resolve(): each for each in [*others, first]
             if shutil.which(each)} # the same compiler can have several names

    def complaint(compiler, what, call, check):
        found = check(*call())
        return f"{compiler.command}: {what}\n{found}" if found else None

    with tempfile.TemporaryDirectory() as folder, \
            concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        compilers = list(pool.map(lambda each: Compiler(each, include, folder), paths.values()))
        jobs = [pool.submit(complaint, compiler, *trial) for compiler in compilers
                for trial in trials(compiler, include)]
        failures = [job.result() for job in jobs if job.result()]
    print("\n".join(failures))
    together = ", ".join(str(len(each.refuses)) for each in compilers)
    print(f"{len(MISUSES)} misuses ({together} of them together), {len(USES)} uses, "
          f"{len(compilers)} compilers: {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
