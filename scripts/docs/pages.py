"""The pages of the repository as Doxygen reads them, and the pages that only the site has.

Doxygen's Markdown differs from that of the repository: it knows commands, it links words by itself,
and a link to a part of a page needs a name. Each heading gets one here, made of the page's name and of
the heading's words, and every link leads to such a name, to a page, or to the text of a file.
"""
import html
import pathlib
import re

# Pages in the menu, in this order: file, or page of the site only, and words in the menu.
MENU = (("README.md", "Start"), ("docs/tutorial.md", "Tutorial"), ("docs/cpp.md", "C++17"),
        ("docs/cookbook/README.md", "Cookbook"), ("docs/hosting.md", "Hosting"),
        ("docs/text-format.md", "Text"), ("docs/binary-format.md", "Binary"),
        ("reference", "Reference"), ("pages", "More"))
CODE = re.compile(r"(^ *```.*?^ *```$|(?<=\n\n)(?: {4}[^\n]*\n|\n(?= {4}))+|``.*?``|`[^`\n]*(?:\n[^`\n]+)?`)",
                  re.MULTILINE | re.DOTALL)
LINK = re.compile(r"\[([^][]*(?:\[[^][]*\][^][]*)*)\]\(([^()\s]+)\)")


def slug(title):
    """Returns the name that a heading has in links: lower case, with dashes."""
    words = re.sub(r"[`*]", "", title).strip().lower()
    return re.sub(r"[^\w\- ]", "", words).replace(" ", "-")


def name_of(path):
    """Returns the name of a page of the site for a file of the repository."""
    return "page_" + re.sub(r"\W", "_", str(pathlib.PurePosixPath(path).with_suffix("")).lower())


def label(page, anchor):
    return f"{page}__{re.sub(r'[^a-z0-9]', '_', anchor)}"


class Site:
    """All pages. Files of the repository that are not pages become listings."""

    def __init__(self, root, out):
        self.root, self.out = root, out
        self.texts = [pathlib.PurePosixPath("README.md"), *(
            pathlib.PurePosixPath(path.relative_to(root).as_posix())
            for folder in ("docs", "docs/cookbook", ".")
            for path in sorted((root / folder).glob("*.md")) if path != root / "README.md")]
        self.titles = {path: self.title(path) for path in self.texts}
        self.listings = {}
        self.index = [] # a row [name, where, address] for each page and heading
        self.unknown = []

    def title(self, path):
        text = (self.root / path).read_text(encoding="utf-8")
        return re.match(r"# (.*)", text)[1]

    def id_of(self, path):
        return "mainpage" if str(path) == "README.md" else name_of(path)

    def address(self, page):
        return "index.html" if page == "mainpage" else f"{page}.html"

    # ---- Links ---------------------------------------------------------------------------------

    def target(self, page, link):
        """Returns what a link of a page leads to: a name for \\ref, an address, or None."""
        if re.match(r"[a-z]+:", link):
            return link
        path, _, anchor = link.partition("#")
        file = page
        if path:
            parts = []
            for part in (page.parent / path).parts:
                parts = parts[:-1] if part == ".." else [*parts, part]
            file = pathlib.PurePosixPath(*parts)
        if file in self.titles:
            return "\\ref " + (label(self.id_of(file), anchor) if anchor else
                               "index" if self.id_of(file) == "mainpage" else self.id_of(file))
        full = self.root / file
        if not full.exists():
            self.unknown.append(f"{page}: {link} leads nowhere")
            return None
        if str(file) == "include/kel":
            return "\\ref reference"
        if str(file) == "docs":
            return "\\ref pages"
        if file / "README.md" in self.titles:
            return f"\\ref {self.id_of(file / 'README.md')}"
        if str(file) == "examples":
            return "\\ref examples"
        if file.parts[0] == "examples":
            return f"\\ref example_{file.parts[1]}"
        if full.is_file():
            self.listings[file] = name_of(file)
            return f"\\ref {name_of(file)}"
        return None # a folder of sources: only its name is shown

    def prose(self, page, text):
        """Converts text outside of code."""
        text = re.sub(r"<!--.*?-->", "", text, flags=re.DOTALL)

        def link(match):
            words, target = self.words(match[1]).replace("%", ""), self.target(page, match[2])
            if target is None:
                return words
            if target.startswith("\\ref "):
                return f"[{words}](@ref {target[5:]})"
            return f"[{words}]({target})"

        parts, at = [], 0
        for match in LINK.finditer(text):
            parts += [self.words(text[at:match.start()]), link(match)]
            at = match.end()
        return "".join([*parts, self.words(text[at:])])

    @staticmethod
    def words(text):
        """Makes commands, tags and names of classes plain text."""
        text = re.sub(r"(?<![\"'])@", r"\\@", text.replace("\\", "\\\\"))
        text = re.sub(r"<(?=[a-zA-Z/])", r"\\<", text)
        return re.sub(r"\b(KEL)\b(?![:*])", r"%\1", text)

    @staticmethod
    def code(text):
        """Converts a piece of code: a span or a block."""
        if text.lstrip().startswith("```"):
            info, body = re.match(r" *```([^\n]*)\n(.*?)^ *```$", text, re.DOTALL | re.MULTILINE).groups()
            kind = "{.cpp}" if info.split()[:1] == ["cpp"] else "{.unparsed}"
            return f"~~~{kind}\n{body}~~~"
        if text.startswith("    ") or text.startswith("\n"):
            body = re.sub(r"^ {4}", "", text, flags=re.MULTILINE).strip("\n")
            return f"\n~~~{{.unparsed}}\n{body}\n~~~\n"
        return text

    def converted(self, page):
        """Returns a page for Doxygen."""
        text = (self.root / page).read_text(encoding="utf-8")
        pieces, spans = [], []
        for number, piece in enumerate(CODE.split(text)):
            if number % 2 == 0:
                pieces.append(piece)
            elif piece.startswith("`") and not piece.startswith("```"):
                spans.append(piece)
                pieces.append(f"\0{len(spans) - 1}\0")
            else:
                spans.append(self.code(piece))
                pieces.append(f"\0{len(spans) - 1}\0")
        converted = self.prose(page, "".join(pieces))
        converted = re.sub("\0(\\d+)\0", lambda match: spans[int(match[1])], converted)
        return self.with_headings(page, converted)

    def with_headings(self, page, text):
        """Gives every heading a name. A long page begins with its contents."""
        lines, in_code, heads = [], False, 0
        for line in text.split("\n"):
            in_code ^= line.startswith("~~~")
            head = None if in_code else re.match(r"(#+) (.*)", line)
            if not head:
                lines.append(line)
            elif len(head[1]) == 1:
                lines += [f"# {head[2]} {{#{self.id_of(page)}}}", "", "@@CONTENTS@@"]
                self.index.append((self.titles[page], "page", self.address(self.id_of(page))))
            else:
                heads += len(head[1]) == 2
                plain = re.sub(r"[%\\]", "", head[2])
                name = label(self.id_of(page), slug(plain))
                lines.append(f"{head[1]} {re.sub('[%`]', '', head[2])} {{#{name}}}")
                self.index.append((re.sub("[`*]", "", plain), self.titles[page],
                                   f"{self.address(self.id_of(page))}#{name}"))
        contents = "[TOC]" if heads > 3 and page.parent.name == "docs" else ""
        return "\n".join(lines).replace("@@CONTENTS@@", contents)

    # ---- Pages of the site only ----------------------------------------------------------------

    def write(self, name, text):
        (self.out / f"{name}.md").write_text(text, encoding="utf-8")

    def write_all(self):
        for page in self.texts:
            self.write(self.id_of(page), self.converted(page))
        self.write_examples()
        for file, name in sorted(self.listings.items()):
            body = (self.root / file).read_text(encoding="utf-8")
            self.write(name, f"# {file} {{#{name}}}\n\n~~~{{.unparsed}}\n{body.rstrip()}\n~~~\n")
        others = [path for path in self.texts
                  if str(path) not in [entry for entry, _ in MENU] and path.parts[:2] != ("docs", "cookbook")]
        self.write("pages", "# More {#pages}\n\n" + self.entries(others)
                   + "- [Examples](@ref examples)\n"
                   + "".join(f"- [{file}](@ref {name})\n" for file, name in sorted(self.listings.items())))

    def entries(self, pages):
        return "".join(f"- [{self.words(self.titles[path])}](@ref {self.id_of(path)})\n"
                       for path in pages)

    def write_examples(self):
        rows = []
        for folder in sorted((self.root / "examples").glob("*/main.cpp")):
            example = folder.parent
            name = f"example_{example.name}"
            parts = [f"# Example: {example.name} {{#{name}}}\n"]
            for path in [folder, *sorted(path for path in example.rglob("*")
                                         if path.is_file() and path != folder)]:
                kind = ".cpp" if path.suffix == ".cpp" else ".unparsed"
                body = path.read_text(encoding="utf-8", errors="replace").rstrip()
                parts.append(f"\n## {path.relative_to(example)} {{#{label(name, str(path.relative_to(example)))}}}\n\n"
                             f"~~~{{{kind}}}\n{body}\n~~~\n")
            self.write(name, "".join(parts))
            lead = re.match(r"(?:// ?.*\n)+", folder.read_text(encoding="utf-8"))
            words = " ".join(line.lstrip("/ ") for line in lead[0].splitlines()) if lead else ""
            rows.append(f"- [{example.name}](@ref {name}): {self.words(words)}\n")
        self.write("examples", "# Examples {#examples}\n\nEach example is a program whose output a test "
                               "compares with the files shown.\n\n" + "".join(rows))

    def menu(self):
        """Returns the links of the menu as HTML."""
        links = []
        for entry, words in MENU:
            path = pathlib.PurePosixPath(entry)
            if path.suffix == ".md" and path not in self.titles:
                continue
            if path in self.titles:
                address = self.address(self.id_of(path))
            else:
                address = f"{entry}.html"
            links.append(f'<a href="$relpath^{address}">{html.escape(words)}</a>')
        return "\n".join(links)
