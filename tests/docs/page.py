"""Reads the blocks of a page: code in fences, and indented output."""
import re
import textwrap

FENCE = "```"
# Languages whose blocks are not code: diagrams and grammars.
PLAIN = "text"


class Block:
    """A block of a page, and what the page says about it."""

    def __init__(self, language, name, lines, first_line, notes):
        self.language = language
        self.name = name                # of the file that it makes, if it contains a point
        self.text = "".join(f"{line}\n" for line in lines)
        self.line = first_line          # of its text, counted from 1
        self.given, self.given_line = notes.get("given", ("", 0))
        self.not_run = notes.get("not run", ("", 0))[0].strip()
        self.is_malformed = "malformed" in notes
        self.is_for_windows = "windows" in notes
        self.expected = None            # its output, if the page shows it
        self.status = 0                 # the exit status that the page announces

    @property
    def is_program(self):
        return self._is_cpp and "int main(" in self.text

    @property
    def is_fragment(self):
        return self._is_cpp and "int main(" not in self.text

    @property
    def _is_cpp(self):
        return self.language == "cpp" and not self.is_for_windows

    @property
    def is_file(self):
        return "." in self.name


def note_of(comment):
    """Returns the word before the colon of a comment, and the text after it."""
    word, colon, rest = comment.partition(":")
    if not colon or "\n" in word:
        return comment.strip(), ""
    return word.strip(), rest.lstrip(" ").removeprefix("\n")


class Paragraph:
    """Lines of prose."""

    def __init__(self):
        self.lines = []
        self.end = 0                    # the index of the last line

    @property
    def announces_output(self):
        return bool(self.lines) and self.lines[-1].endswith("prints")


class Page:
    """The blocks of one page in their order. Faults are texts "LINE: what is wrong"."""

    def __init__(self, path):
        self.path = path
        self.blocks = []
        self.faults = []
        self._lines = path.read_text(encoding="utf-8").split("\n")
        self._read(0, len(self._lines))

    def _fault(self, index, message):
        self.faults.append(f"{index + 1}: {message}")

    def _end_of(self, begin, end, is_last):
        for index in range(begin, end):
            if is_last(self._lines[index]):
                return index
        self._fault(begin, "this block has no end")
        return end

    def _read(self, index, end):
        lines = self._lines
        notes = {}
        source = None                   # the block whose output can follow
        prose = Paragraph()             # the last one
        while index < end:
            line = lines[index]
            if line.startswith(FENCE):
                self._expect_no_output_after(prose)
                last = self._end_of(index + 1, end, lambda each: each == FENCE)
                source = self._block(index, last, notes)
                notes, prose = {}, Paragraph()
                index = last
            elif line.startswith("<!--"):
                self._expect_no_output_after(prose)
                last = self._end_of(index, end, lambda each: each.endswith("-->"))
                comment = "\n".join(lines[index:last + 1])[len("<!--"):-len("-->")]
                if FENCE in comment:
                    self._read(index + 1, last)     # blocks that the reader does not see
                else:
                    word, text = note_of(comment)
                    notes[word] = (text, index + 2)
                prose = Paragraph()
                index = last
            elif line.startswith("    ") and not lines[index - 1]:
                last = index
                while last < end and (not lines[last] or lines[last].startswith("    ")):
                    last += 1
                self._take_output(index, "\n".join(lines[index:last]), source, prose)
                source, prose = None, Paragraph()
                index = last - 1
            elif line:
                if not lines[index - 1]:
                    self._expect_no_output_after(prose)
                    source = None if prose.lines else source
                    prose = Paragraph()
                prose.lines.append(line)
                prose.end = index
            index += 1
        self._expect_no_output_after(prose)

    def _block(self, begin, end, notes):
        language, _, name = self._lines[begin][len(FENCE):].partition(" ")
        if not language:
            self._fault(begin, "this block has no language")
        block = Block(language, name, self._lines[begin + 1:end], begin + 2, notes)
        self.blocks.append(block)
        return block

    def _expect_no_output_after(self, prose):
        if prose.announces_output:
            self._fault(prose.end, "no output follows")

    def _take_output(self, index, text, source, prose):
        if source is None or not prose.announces_output:
            self._fault(index, "this indented block is not the output of the block before it")
            return
        source.expected = textwrap.dedent(text).rstrip("\n")
        status = re.search(r"status (\d+)", " ".join(prose.lines))
        source.status = int(status.group(1)) if status else 0


def anchors_of(path):
    """Returns the anchors of the headings of a page, as hosts of repositories make them."""
    prose = re.sub(r"```.*?```", "", path.read_text(encoding="utf-8"), flags=re.DOTALL)
    found = set()
    for heading in re.findall(r"^#+ (.*)$", prose, flags=re.MULTILINE):
        words = re.sub(r"[^\w\- ]", "", heading.replace("`", "").lower())
        found.add(words.replace(" ", "-"))
    return found


def dead_links(path):
    """Returns the links of a page that lead to no file or to no heading."""
    prose = re.sub(r"<!--.*?-->|```.*?```|`[^`\n]*`", "", path.read_text(encoding="utf-8"),
                   flags=re.DOTALL)
    for link in re.findall(r"\]\(([^)\s]+)\)", prose):
        if re.match(r"[a-z]+:", link):
            continue
        target, _, anchor = link.partition("#")
        file = path.parent / target if target else path
        if not file.exists():
            yield link
        elif anchor and (file.is_dir() or anchor not in anchors_of(file)):
            yield link
