"""The tables of operations: what each one does, who owns what, and how it can fail.

The facts stand in the comments of the headers; this module sorts them into columns. A sentence about
ownership or about failures moves to its column, unless it is the first one. Rules for whole classes
stand in the comments of the classes, in paragraphs titled "Ownership" and "Failures", and RULES below
holds those for all values. complaints() lists operations about which nothing is known.
"""
import html
import re
import xml.etree.ElementTree as ElementTree

# What an operation means by saying nothing. The page "reference" shows these texts.
RULES = {
    "nothing": "&mdash;",
    "never": "Never fails.",
    "memory": "Out of memory: <code>JOutOfMemoryException</code>.",
    "hpp": '<a href="error_8hpp.html">Any failure of kel.hpp</a>.',
    "handle": "The result holds a reference of its own.",
    "place": "The result borrows the container for one expression.",
}

OWNERSHIP = re.compile(
    r"\bborrow|\bowned by\b|\bowns\b|\bremains the (?:caller|host)'s\b|\bshares\b|"
    r"\bshare (?:them|their|keys)\b|(?:, |\bwhich |\bnew or |descriptions )(?:are )?shared\b(?! in)|for the caller\b|"
    r"\badds? a reference\b|\bcaller owned\b|\breleases (?:it|the string|with)\b|\badopt|\bkeeps its reference|\bis valid\b|\bvalid until\b|\bpasses (?:its|the) "
    r"reference|\btakes over (?:its|the caller's|other's) reference|\bgives up\b|\btakes the reference|\bwhich it copies\b|"
    r"\ba copy of (?:the given|text)|\bcopies the (?:text|message)\b|\bthe library never owns\b|\bholds a reference", re.IGNORECASE)
FAILURE = re.compile(
    r"\bthrow(?:s|n)?\b|out of memory|cannot be allocated|\bno memory\b|\bnever fails\b|"
    r"\bis refused\b|\bfails?\b", re.IGNORECASE)
# How the first sentence, which stays where it is, is repeated in the column of ownership.
PHRASES = (
    (r"takes (?:over )?(?:the|other's|a) (?:caller's )?reference", "The argument's reference is taken over."),
    (r"gives up the caller's reference", "The caller's reference is given up."),
    (r"owned by (the [\w ]+?)(?= and| in| with|[,.;:]|$)", "The result is owned by {0}."),
    (r"(?<!that )\bthe (\w+) owns\b", "The result is owned by the {0}."),
    (r"one reference (?:added )?for the caller", "The result is owned by the caller."),
    (r"borrowed, or with a reference", "Borrowed, or with a reference of its own."),
    (r"\bborrowed, or as a handle", "Borrowed, or with a reference of its own."),
    (r"\bborrowed (until [^,.;:]+)", "The result is borrowed {0}."),
    (r"\bborrowed\b", "The result is borrowed."),
    (r"\bshares\b|\bshared\b", "The argument is shared."),
    (r"\ba copy of (?:the given|text)|\bcopies the (?:text|message)\b|which it copies", "The text is copied."),
    (r"passes (?:its|the) reference to the caller", "The result is owned by the caller."),
    (r"\badds a reference\b", "A reference is added; the holder of the argument keeps its own."),
    (r"\badopts\b|the caller owned", "The argument's reference is taken over."),
)
# Operations of values that only read, remove, select, exchange or release, by their names.
NEEDS_NO_MEMORY = re.compile(r"get|is|has|contains|indexOf|next|find|remove|clear|deselect|select|swap|"
                             r"addRef|release|free")
# Results of kel.hpp that hold references, or that borrow something (group 1).
HANDLE = re.compile(r"(?:(place|const_place)|value|ref(?: ?<.*>)?|[a-z]+_range|variable_description|"
                    r"typed_description(?: ?<.*>)?|reader|iterator)$")
# An operation that works as another one, with the name of that one.
LIKE = re.compile(r"\bas ((?!the|null)\w+) does\b|\bsame as (\w+)\.|\bCalls (\w+) with\b")
EXCEPTION = re.compile(r"(?:kel::|std::|\w+_error\b|not_\w+|error\b)")
OBJECT = re.compile(r"\b(?:KEL\w*|MetaKel\w*|J\w+|StringEnumeration|T|U|Observer|FILE) ?\*")


def href(refid, kind):
    """Returns the address of what the XML calls refid."""
    if kind == "member":
        page, anchor = refid.rsplit("_1", 1)
        return f"{page}.html#{anchor}"
    return f"{refid}.html"


def fragment(node, skip=()):
    """Returns the inside of a node of the XML as HTML."""
    parts = [html.escape(node.text or "", quote=False)]
    tags = {"computeroutput": "code", "bold": "b", "emphasis": "em"}
    for child in node:
        if child.tag in skip:
            pass
        elif child.tag == "ref":
            parts.append(f'<a href="{href(child.get("refid"), child.get("kindref"))}">'
                         f"{fragment(child)}</a>")
        elif child.tag in tags:
            parts.append(f"<{tags[child.tag]}>{fragment(child)}</{tags[child.tag]}>")
        elif child.tag == "ndash":
            parts.append("&ndash;")
        elif child.tag == "itemizedlist":
            items = [fragment(item.find("para")).strip().rstrip(".") for item in child]
            parts.append(" " + "; ".join(items) + ".")
        elif child.tag not in ("programlisting", "verbatim", "table", "anchor"):
            parts.append(fragment(child, skip))
        parts.append(html.escape(child.tail or "", quote=False))
    return re.sub(r"\s+", " ", "".join(parts)).replace("%KEL", "KEL")


def plain(text):
    return html.unescape(re.sub(r"<[^>]+>", "", text))


def sentences(text):
    """Splits HTML into sentences. A text in quotes belongs to one sentence."""
    found, start, quoted, tag = [], 0, False, False
    for at, character in enumerate(text):
        tag = (tag or character == "<") and character != ">"
        if character == '"' and not tag:
            quoted = not quoted
        ends = character in ".!?" or (character in ")\"" and text[at - 1:at] in (".", "!"))
        if ends and not quoted and re.match(r"\s+[\"(A-Z<&]|\s*$", text[at + 1:]):
            found.append(text[start:at + 1].strip())
            start = at + 1
    found.append(text[start:].strip())
    return [sentence for sentence in found if sentence]


class Operation:
    """One operation: a member function or a function."""

    def __init__(self, node, owner):
        self.owner = owner
        self.id = node.get("id")
        self.name = node.findtext("name")
        self.type = "".join(node.find("type").itertext()) if node.find("type") is not None else ""
        self.arguments = node.findtext("argsstring") or ""
        self.is_const = node.get("const") == "yes"
        self.is_noexcept = "noexcept" in self.arguments or node.get("noexcept") == "yes"
        self.file = node.find("location").get("file")
        self.line = int(node.find("location").get("line"))
        self.does, self.owning, self.failing = [], [], []
        self.read(node)

    def read(self, node):
        texts, results = [], []
        for description in ("briefdescription", "detaileddescription"):
            for para in node.find(description).findall("para"):
                texts += sentences(fragment(para, ("simplesect", "parameterlist", "xrefsect")))
                for section in para.findall("simplesect"):
                    if section.get("kind") == "return":
                        results += [fragment(each) for each in section.findall("para")]
                for item in para.findall("parameterlist/parameteritem"):
                    self.parameter(item)
        if results:
            texts.append("Returns " + " ".join(results).strip().rstrip(".") + ".")
        for number, text in enumerate(texts):
            words = plain(text)
            fails = FAILURE.search(words)
            owns = OWNERSHIP.search(words)
            if number > 0 and fails:
                self.failing.insert(len(self.failing), text)
            elif number > 0 and owns:
                self.owning.append(text)
            else:
                self.does.append(text)
                if number == 0 and owns:
                    self.owning += self.phrase(words)
                if number == 0 and re.match(r"Throws ", words):
                    self.failing.append(text)

    def parameter(self, item):
        names = [fragment(name).strip() for name in item.findall("parameternamelist/parametername")]
        words = " ".join(fragment(para) for para in item.findall("parameterdescription/para")).strip()
        name = " ".join(names)
        if plain(name)[:1].islower() and not EXCEPTION.match(plain(name)):
            self.does.append(f"<code>{name}</code>: {words.rstrip('.')}.")
        else:
            comma = "," if EXCEPTION.match(plain(words)) else ""
            text = f"<code>{name}</code>{comma} {words}".rstrip(". ")
            self.failing.append(text if text.endswith('"') else text + ".")

    @staticmethod
    def phrase(words):
        found = {} # one about the result and one about the argument, by their first words
        for pattern, text in PHRASES:
            if match := re.search(pattern, words, re.IGNORECASE):
                found.setdefault(" ".join(text.split()[:2]), text.format(*match.groups()))
        return list(found.values())

    @property
    def result(self):
        return re.sub(r"\b(?:virtual|static|constexpr|inline|explicit|KEL_API|KEL_CALL)\b", "",
                      self.type).strip()

    def signature(self):
        """Returns the declaration, as short as it can be read."""
        arguments = re.sub(r"\s*=\s*0$", "", self.arguments)
        arguments = re.sub(r"\s*(?:noexcept|override|= *default)(?!\w)", "", arguments)
        text = f"{self.result} {self.name}{arguments}".strip()
        text = re.sub(r"(?<! const) ([*&]+)(?=[ ,)]|\w)", r"\1 ", text)
        for before, after in (("* )", "*)"), ("& )", "&)"), ("< ", "<"), (" >", ">"), ("  ", " ")):
            text = text.replace(before, after)
        return text

    def takes_object(self):
        """Returns whether an argument is a pointer to an object that the operation can keep."""
        return any(OBJECT.search(part) and not re.match(r"\s*const\b", part)
                   for part in self.arguments.strip("()").split(","))

    def returns_pointer(self):
        return "*" in self.result and not self.name.startswith("operator")


class Reference:
    """All classes and functions of the headers, from Doxygen's XML."""

    def __init__(self, folder):
        self.classes, self.functions = {}, {}
        for path in sorted(folder.glob("*.xml")):
            if not re.match(r"class|struct|namespacekel\.|.*_8h", path.name):
                continue
            for compound in ElementTree.parse(path).getroot().findall("compounddef"):
                if compound.get("prot") == "private":
                    continue
                if compound.get("kind") in ("class", "struct"):
                    entry = Class(compound)
                    self.classes[entry.name] = entry
                elif compound.get("kind") in ("file", "namespace"):
                    self.add_functions(compound)
        for entry in self.classes.values():
            entry.is_value = "KEL" in self.all_bases(entry.name) | self.heirs_bases(entry.name)
        for entry in list(self.classes.values()):
            entry.is_value = any(self.classes[name].is_value for name in self.all_bases(entry.name)
                                 if name in self.classes)

    def add_functions(self, compound):
        for member in compound.iter("memberdef"):
            if member.get("kind") == "function":
                operation = Operation(member, None)
                self.functions.setdefault(operation.id, operation)

    def all_bases(self, name):
        """Returns the name of a class and those of all its bases."""
        found = {name}
        for base in self.classes[name].bases if name in self.classes else ():
            found |= self.all_bases(base)
        return found

    def heirs_bases(self, name):
        return set().union(*(self.all_bases(heir) for heir in self.classes
                             if name in self.all_bases(heir) and heir != name), set())

    def failures(self, operation):
        """Returns the cell of failures, or None if nothing is known."""
        own = self.with_full_names(operation)
        owner = operation.owner
        if operation.is_noexcept:
            return RULES["never"]
        if any(re.search(r"[Nn]ever (?:throws|fails)", text) for text in own):
            return " ".join(own)
        if operation.file.endswith(".hpp"):
            return " ".join(own) or (owner and owner.rules.get("Failures")) or RULES["hpp"]
        if owner is None:
            return " ".join(own) or None
        if owner.is_value:
            silent = not any(re.search("memory", text, re.IGNORECASE) for text in own)
            if silent and "Failures" not in owner.rules and not operation.is_const \
                    and not NEEDS_NO_MEMORY.match(operation.name):
                own = own + [RULES["memory"]]
            if operation.is_const:
                return " ".join(own) or RULES["never"]
            return " ".join(own) or owner.rules.get("Failures") or RULES["never"]
        return " ".join(own) or owner.rules.get("Failures")

    @staticmethod
    def with_full_names(operation):
        """Adds what a short name of the class means: "Throws on a bad index"."""
        texts = []
        for text in operation.failing:
            known = operation.owner.short_names if operation.owner else {}
            used = [name for name in known if re.search(rf"\b{name}\b", plain(text), re.IGNORECASE)]
            if used:
                text = f"{text.rstrip('.')}: {known[max(used, key=len)]}"
            texts.append(text)
        if any(text.startswith("Throws as") for text in texts):
            return texts
        if model := LIKE.search(plain(" ".join(operation.does))):
            texts.insert(0, f"As {next(filter(None, model.groups()))} fails.")
        elif re.match("Forwards ", plain(" ".join(operation.does))):
            texts.insert(0, "As that form fails.")
        return texts

    def ownership(self, operation):
        """Returns the cell of ownership, or None if it is needed and nothing is known."""
        owner = operation.owner
        said = " ".join(operation.owning)
        rule = owner.rules.get("Ownership") if owner else None
        needs = operation.returns_pointer() or operation.takes_object() \
            or "KELVarCursor" in operation.arguments
        if said:
            return said
        if needs:
            return rule
        if operation.file.endswith(".hpp") and (match := HANDLE.match(operation.result)):
            return RULES["place" if match[1] else "handle"]
        return RULES["nothing"]

    def operations(self):
        for entry in self.classes.values():
            yield from entry.operations
        yield from self.functions.values()

    def index(self):
        """Returns a row [name, where, address] for each class and operation."""
        rows = [(entry.name, "class", f"{entry.id}.html") for entry in self.classes.values()]
        for operation in self.operations():
            where = operation.owner.name if operation.owner else "function"
            rows.append((operation.name, where, href(operation.id, "member")))
        return sorted(set(rows))

    def complaints(self):
        """Yields a line for each operation about which a fact is missing."""
        for operation in self.operations():
            where = f"{operation.file}:{operation.line}: {operation.signature()}"
            if not operation.does:
                yield f"{where}: does not say what it does"
            if self.ownership(operation) is None:
                yield f"{where}: takes or returns a pointer to an object, and does not say who owns it"
            if self.failures(operation) is None:
                yield f"{where}: says nothing about failures"

    def table(self, operations):
        rows = []
        for operation in operations:
            link = f'<a href="{href(operation.id, "member")}">' \
                   f"<code>{html.escape(operation.signature())}</code></a>"
            cells = (("Operation", link), ("What it does", " ".join(operation.does)),
                     ("Ownership", self.ownership(operation) or "?"),
                     ("Failures", self.failures(operation) or "?"))
            rows.append("<tr>" + "".join(f'<td data-label="{label}">{text}</td>'
                                         for label, text in cells) + "</tr>")
        return ('<table class="operations"><thead><tr><th>Operation</th><th>What it does</th>'
                "<th>Ownership</th><th>Failures</th></tr></thead><tbody>\n"
                + "\n".join(rows) + "\n</tbody></table>")


class Class:
    """A class or struct with its operations."""

    def __init__(self, compound):
        self.id = compound.get("id")
        self.name = compound.findtext("compoundname")
        self.bases = [base.text for base in compound.findall("basecompoundref")]
        self.brief = " ".join(fragment(para) for para in compound.find("briefdescription"))
        self.file = compound.find("location").get("file")
        self.line = int(compound.find("location").get("line"))
        self.rules, self.short_names = {}, {}
        for section in compound.find("detaileddescription").iter("simplesect"):
            if section.get("kind") == "par":
                title = section.findtext("title").strip()
                self.rules[title] = " ".join(fragment(para).strip() for para in section.findall("para"))
        words = " ".join(fragment(part) for part in compound.find("detaileddescription"))
        for name, meaning in re.findall(r'"([\w ]+)" (?:below )?means ((?:<[^>]*>)?\w+(?:</a>)? ".*?")(?=[.;,]|\s)',
                                        words):
            self.short_names[name] = meaning
        self.operations = [Operation(member, self) for member in compound.iter("memberdef")
                           if member.get("kind") == "function" and member.get("prot") == "public"]
        self.is_value = False
