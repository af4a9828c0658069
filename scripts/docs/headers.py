"""The public headers as Doxygen reads them: copies in which every declaration has its comment.

The headers follow conventions that Doxygen does not know:

- A comment is about all declarations up to the next blank line or comment. Each gets a copy.
- KEL_SLOTS holds declarations, and KEL_EXCEPTION and KEL_RUNTIME_EXCEPTION make classes.
- The inline namespace of kel.hpp, its namespace detail, and what is not public are not for hosts.
- Destructors, and what is defaulted or deleted without a comment, need no words.
"""
import re

BLANKED = re.compile(r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])'", re.DOTALL)
SCOPE = re.compile(r"(?:class|struct|union|namespace)\b(?!.*\()", re.DOTALL)
# What exists only to refuse to compile, with its comment.
REFUSAL = re.compile(r"(?:^ *///[^\n]*\n)*^ *template <[^\n]*(?:\n[^\n;{}]*)?\{\s*"
                     r"static_assert\(\s*detail::never<.*?\);\s*\}$", re.MULTILINE | re.DOTALL)
LABEL = re.compile(r"\s*(public|protected|private):")


def blank(text):
    """Replaces every character except line ends by a space."""
    return re.sub(r"[^\n]", " ", text)


def code_of(text):
    """Returns the text with comments, strings and preprocessor lines blanked: equally long."""
    code = BLANKED.sub(lambda match: blank(match.group()), text)
    return re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", lambda match: blank(match.group()), code,
                  flags=re.MULTILINE)


def closing(code, start):
    """Returns the place of the bracket that closes the one at start."""
    depth = 0
    for at in range(start, len(code)):
        if code[at] in "({":
            depth += 1
        elif code[at] in ")}":
            depth -= 1
            if depth == 0:
                return at
    raise ValueError(f"no closing bracket: {code[start:start + 80]}")


def erase(text, begin, end):
    return text[:begin] + blank(text[begin:end]) + text[end:]


def unwrap_slots(text):
    """Replaces KEL_SLOTS(a;, b;) by its declarations."""
    at = 0
    while True:
        code = code_of(text)
        at = code.find("KEL_SLOTS(", at)
        if at < 0:
            return text
        start = at + len("KEL_SLOTS")
        end = closing(code, start)
        commas = []
        depth = 0
        for place in range(start, end):
            depth += {"(": 1, "{": 1, ")": -1, "}": -1}.get(code[place], 0)
            if depth == 1 and code[place] == ",":
                commas.append(place)
        for place in [*commas, end]:
            text = erase(text, place, place + 1)
        text = erase(text, at, start + 1)


def without_detail(text):
    """Removes the namespaces "detail" and "inline namespace v1"."""
    text = re.sub(r"^inline namespace v1 \{|^\} // namespace v1", "", text, flags=re.MULTILINE)
    while match := re.search(r"^namespace detail \{", text, flags=re.MULTILINE):
        text = erase(text, match.start(), closing(code_of(text), match.end() - 1) + 1)
        text = re.sub(r" *// namespace detail$", "", text, flags=re.MULTILINE)
    return text


def expand_macros(text):
    """Writes out the classes and enumerators that macros make."""
    for macro, base in (("KEL_EXCEPTION", "KELException"), ("KEL_RUNTIME_EXCEPTION", "JException")):
        text = re.sub(rf"^#define {macro}\((?:.*\\\n)*.*|^#undef {macro}$|^/// Declares .*\n(?=#define {macro})",
                      lambda match: blank(match.group()), text, flags=re.MULTILINE)
        text = re.sub(rf"^{macro}\((\w+)\); *///< *(.*)$",
                      lambda match: f"/// {match[2][0].upper()}{match[2][1:]}.\n"
                                    f"class {match[1]} : public virtual {base} {{}};\n",
                      text, flags=re.MULTILINE)
    kinds = re.findall(r"^    KIND\((\w+), *(\d+), *(\w+), *\"(.*?)\"", text, flags=re.MULTILINE)
    if kinds:
        rows = "\n".join(f"KELKind_{name} = {code}, ///< {words}: {owner}"
                         for name, code, owner, words in kinds)
        text = re.sub(r"(enum KELKind : int32_t \{\n).*?(\n\};)",
                      lambda match: match[1] + rows + match[2], text, flags=re.DOTALL)
        text = re.sub(r"(KELKinds\[\]) = \{.*?\n\};", r"\1 = {};", text, flags=re.DOTALL)
    # Only the first of several definitions of a macro is described, and helpers are not.
    text = re.sub(r"^#define KEL_(?:SLOTS_\w+|API \S).*", "", text, flags=re.MULTILINE)
    text = re.sub(r"((?:^///.*\n)+)(?=#if(?:.*\n)*?#define (\w+))", r"\1/// \\def \2\n", text,
                  flags=re.MULTILINE)
    text = re.sub(r"((?:^///.*\n)+)((?:^#define \w+ .*\n){2,})",
                  lambda match: "".join(match[1] + line for line in match[2].splitlines(True)), text,
                  flags=re.MULTILINE)
    return re.sub(r"^(?!#)(.*?)\bKEL_(?:API |CALL )", r"\1", re.sub(
        r"^(?!#)(.*?)\bKEL_API ", r"\1", text, flags=re.MULTILINE), flags=re.MULTILINE)


def comment_text(line):
    """Makes a line of a comment plain text for Doxygen, which has commands and tags."""
    if re.match(r"\s*///     ", line):
        return line
    head, words = re.match(r"(.*?//[/!]<?)(.*)", line).groups()
    words = re.sub(r"(?<![\"'])@", r"\\@", words)
    words = re.sub(r"<(?=[a-zA-Z/])", r"\\<", words)
    return head + re.sub(r"\bKEL\b(?![:*.])", "%KEL", words)


class Declarations:
    """The declarations of a header, each with its scope and the comment before it."""

    def __init__(self, text):
        self.text = text
        self.code = code_of(text)
        self.found = []  # (start, end) of each
        self.hidden = [] # (start, end) of the parts of classes that are not public
        self.walk(0, len(text))

    def walk(self, begin, end):
        at = begin
        hidden_from = None
        while True:
            while at < end and (self.code[at].isspace() or self.code[at] == ";"):
                at += 1
            label = LABEL.match(self.code, at)
            if hidden_from is not None and (label or at >= end):
                self.hidden.append((hidden_from, min(at, end)))
                hidden_from = None
            if at >= end:
                return
            if label:
                hidden_from = None if label[1] == "public" else at
                at = label.end()
                continue
            stop = at
            while stop < end and self.code[stop] not in ";{":
                stop = closing(self.code, stop) if self.code[stop] == "(" else stop
                stop += 1
            if stop >= end or self.code[stop] == ";":
                self.found.append((at, stop + 1))
                at = stop + 1
                continue
            last = closing(self.code, stop)
            head = self.without_template(self.code[at:stop])
            if SCOPE.match(head):
                if not head.startswith("namespace"):
                    self.found.append((at, stop + 1))
                self.walk(stop + 1, last)
                at = last + 1
                continue
            after = re.compile(r"\s*;").match(self.code, last + 1)
            at_end = after.end() if after else last + 1
            self.found.append((at, at_end))
            at = at_end

    @staticmethod
    def without_template(head):
        """Returns a declaration's beginning without template <...>."""
        while match := re.match(r"\s*template\s*<", head):
            depth, at = 1, match.end()
            while depth > 0:
                depth += {"<": 1, ">": -1}.get(head[at], 0)
                at += 1
            head = head[at:]
        return head.strip()

    def shared(self):
        """Yields (place, comment) for each declaration that shares the comment before another."""
        comment, before = "", 0
        for start, end in self.found:
            gap = self.text[before:start]
            lines = [line.strip() for line in gap.split("\n")]
            own = [line for line in lines if line.startswith("///") and not line.startswith("///<")]
            trailing = re.match(r"[^\n]*///<", self.text[end:]) is not None
            if own and not any(line.startswith(r"/// \file") for line in own):
                comment = own
            elif own or trailing or gap.count("\n") != 1 or self.text[before - 1] == "{":
                comment = []
            elif comment:
                yield start, comment
            before = end


def needless(declaration):
    """Returns whether a declaration without a comment needs none."""
    words = " ".join(declaration.split())
    return bool(re.match(r"(?:virtual )?~|(?:template <[^>]*> )?friend class", words)
                or re.search(r"= (?:default|delete) ?;$", words)
                or re.match(r"class \w+;|struct \w+;", words) or words.startswith("using ")
                or re.search(r"\) -> \w+<", words))


def prepared(text):
    """Returns a header for Doxygen."""
    text = expand_macros(unwrap_slots(without_detail(text)))
    for begin, end in Declarations(text).hidden:
        text = erase(text, begin, end)
    # Operations that are defined after their class have their comments in it.
    text = re.sub(r"^(?:template <[^\n]*>\n?)?[^\n;{}]*\b(?:value|const_place|place)::(?:operator\b|\w+\()"
                  r"[^\n;]*\{\n.*?^\}$", lambda match: blank(match.group()), text,
                  flags=re.MULTILINE | re.DOTALL)
    text = re.sub(r"((?:^///[^\n]*\n)+)^template <> struct std::(\w+<kel::value>) \{(.*?)^\};",
                  r"namespace std {\n\1template <> struct \2 {\3};\n}", text,
                  flags=re.MULTILINE | re.DOTALL)
    text = REFUSAL.sub(lambda match: blank(match.group()), text)
    for start, end in reversed(Declarations(text).found):
        before = text[:start].rstrip(" \t").rstrip("\n").rsplit("\n", 1)[-1].strip()
        if needless(text[start:end]) and (not before.startswith("///")
                                          or text[start:end].lstrip().startswith(("class", "~"))
                                          and text[start:end].endswith(";")):
            text = erase(text, start, end)
    for place, comment in reversed(list(Declarations(text).shared())):
        text = text[:place] + "\n" + "\n".join(comment) + "\n" + text[place:]
    return "\n".join(comment_text(line) if re.search(r"//[/!]", line) else line
                     for line in text.split("\n"))
