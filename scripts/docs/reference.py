"""The reference: tables of operations on the page of each class, and the pages that lead to them."""
import html
import re

from operations import RULES, href

# Public classes by what a newcomer looks for. Every class of the headers is in one group.
GROUPS = (
    ("Values", r"KEL$|KEL_(?:Int|Boolean|Double|guid|MemBlock|String|RefCount|Casting)$"),
    ("Containers", r"KEL_(?:Array|Struct|Manager|IndexList|Selector|MultiSelector)$|KELVarCursor$"),
    ("Checked structs", r"MetaKel\w*$"),
    ("Observers", r"KEL_Observ\w+$"),
    ("Streams", r"KEL\w*Stream$"),
    ("Failures", r"KEL\w*Exception$|J\w*Exception$|TokenizerException$"),
    ("Names, kinds and identities", r"StringEnumeration$|KELKindFacts$|JHashCode$|KELGuid$"),
    ("Objects of the runtime", r"J(?:Object|Pointer|String)$"),
)
STOPS = re.compile(r"KEL$|KEL_Observable$|KEL_Struct$|KELException$|KEL(?:In|Out)putStream$|JException$|"
                   r"JObject$|const_place$")
LEGEND = f"""
Each operation of the interfaces, each exported function and each operation of kel.hpp has a row in a
table, which says who owns what, and how it can fail.

| In the column of ownership | Meaning |
| --- | --- |
| owned by the caller | You hold one reference. Release it with the function that the comment names, or with DeleteKEL. |
| borrowed | Somebody else holds the reference. Add one of your own if you keep the object. |
| shared | The container or stream adds a reference of its own. You keep yours. |
| a reference of its own | The handle of kel.hpp holds the object as long as it lives. |
| &mdash; | Nothing changes hands: numbers, truth values, and results that are stored in your own variable. Constant objects and text that you pass are only read or copied. |

| In the column of failures | Meaning |
| --- | --- |
| {RULES['never']} | It throws nothing and returns what it promises. |
| Throws ..., or the name of an exception | It throws a pointer, which you delete, unless the row says "by value". A call that throws has changed nothing. |
| {RULES['memory']} | It throws that by value if there is not enough memory. |
| Any failure of kel.hpp | It throws an exception of [error.hpp](@ref error.hpp) or `std::bad_alloc`. |

An operation that changes something also passes on what an observer throws, after the change is complete.
"""


class Pages:
    """Writes the pages of the reference."""

    def __init__(self, reference, folder):
        self.reference, self.folder = reference, folder
        self.complaints = []

    def write_all(self):
        front = self.front()
        self.insert_tables()
        functions = sorted(self.reference.functions.values(), key=lambda each: (each.file, each.line))
        modern = [each for each in functions if each.file.endswith(".hpp")]
        exported = [each for each in functions if re.match("Create|Delete", each.name)]
        others = [each for each in functions if each not in modern and each not in exported]
        pages = (
            "/** \\namespace kel\nThe functions of kel.hpp. \\ref reference says how to read the table.\n"
            f"{self.raw(self.reference.table(modern))}*/\n",
            "/** \\page functions Functions\nThe exported functions create values and streams, and release "
            "objects. \\ref reference says how to read the tables.\n"
            f"{self.raw(self.reference.table(exported))}\nThe headers define these functions themselves:\n"
            f"{self.raw(self.reference.table(others))}*/\n")
        (self.folder / "pages/tables.dox").write_text("\n".join(pages), encoding="utf-8")
        (self.folder / "pages/reference.md").write_text(front, encoding="utf-8")

    def insert_tables(self):
        """Puts the table of each class at the end of its comment."""
        for entry in sorted(self.reference.classes.values(), key=lambda each: -each.line):
            if tables := self.tables(entry):
                path = self.folder / entry.file
                lines = path.read_text(encoding="utf-8").split("\n")
                at = entry.line - 1
                while not lines[at - 1].lstrip().startswith("///"):
                    at -= 1
                lead = re.match(r"\s*///", lines[at - 1])[0]
                lines[at:at] = [lead, f"{lead} {self.raw(tables).rstrip()}"]
                path.write_text("\n".join(lines), encoding="utf-8")

    @staticmethod
    def raw(text):
        return "\\htmlonly " + text.replace("*/", "*&#47;").replace("\n", "") + " \\endhtmlonly\n"

    def tables(self, entry):
        """Returns the tables of a class: its own operations, and those of its interfaces."""
        parts = []
        if entry.operations:
            parts.append(self.reference.table(entry.operations))
        inherited = []
        for base in self.interfaces(entry):
            if STOPS.match(base.name):
                inherited.append(base)
            elif base.operations:
                parts.append(f'<h3 class="from">From <a href="{base.id}.html">{base.name}</a></h3>\n'
                             + self.rules(base) + self.reference.table(base.operations))
        if inherited:
            links = ", ".join(f'<a href="{base.id}.html">{base.name}</a>' for base in inherited)
            parts.append(f'<p class="from">It also has every operation of {links}.</p>')
        if parts:
            parts.insert(0, '<h2 class="groupheader" id="operations">Operations</h2>')
        return "\n".join(parts)

    @staticmethod
    def rules(base):
        """Returns the description of an interface, which has the rules for its operations."""
        return f"<p>{base.brief}</p>\n" if base.brief else ""

    def interfaces(self, entry):
        """Returns all bases in order, up to and including the classes with a page for hosts."""
        found = []
        for name in entry.bases:
            base = self.reference.classes.get(re.sub(r"^kel::", "", name)) \
                or self.reference.classes.get(name) or self.reference.classes.get(f"kel::{name}")
            if base is None or base in found:
                continue
            found.append(base)
            if not STOPS.match(base.name):
                found += [each for each in self.interfaces(base) if each not in found]
        return found

    def front(self):
        parts = ["# Reference {#reference}\n", LEGEND, "\n## kel.hpp {#reference_hpp}\n\n",
                 "[The functions of kel.hpp](@ref kel), [its failures](@ref error.hpp), and these classes:\n\n",
                 self.listed(entry for entry in self.reference.classes.values()
                             if re.match("kel::|std::", entry.name))]
        parts.append("\n## Interfaces {#reference_interfaces}\n\n"
                     "[The functions](@ref functions) create and release what these classes describe. "
                     "[KELKind.h](@ref KELKind.h) lists the kinds, [config.h](@ref config.h) has the version.\n")
        known = [entry for entry in self.reference.classes.values() if not entry.file.endswith(".hpp")]
        for entry in known:
            if "Interface" not in entry.name and not any(re.match(pattern, entry.name)
                                                         for _, pattern in GROUPS):
                self.complaints.append(f"{entry.file}:{entry.line}: {entry.name} is in no group of the "
                                       "reference")
        for title, pattern in GROUPS:
            parts.append(f"\n### {title} {{#reference_{re.sub('[^a-z]', '_', title.lower())}}}\n\n")
            parts.append(self.listed(entry for entry in known if re.match(pattern, entry.name)
                                     and "Interface" not in entry.name))
        parts.append("\n### Versioned interfaces {#reference_versioned}\n\n")
        parts.append(self.listed(entry for entry in known if "Interface" in entry.name))
        return "".join(parts)

    @staticmethod
    def listed(entries):
        rows = []
        for entry in sorted(entries, key=lambda each: each.name.lower()):
            name = html.escape(entry.name.removeprefix("kel::"))
            rows.append(f'<dt><a href="{entry.id}.html"><code>{name}</code></a></dt>'
                        f"<dd>{entry.brief.strip()}</dd>")
        return '\\htmlonly\n<dl class="classes">\n' + "\n".join(rows) + "\n</dl>\n\\endhtmlonly\n"
