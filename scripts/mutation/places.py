"""Finds the places in the sources where a small mistake can be planted.

A place is a range of a file's bytes with the text that replaces it. The text is a list of strings and of
ranges of the original file: places inside those ranges are replaced too. "{N}" is the mutant's number.
"""
import ctypes
import dataclasses
import pathlib
import re

from clang import cindex
from clang.cindex import CursorKind as Kind, TypeKind

SWAPS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&",
         "+": "-", "-": "+", "+=": "-=", "-=": "+="}
STEPS = {"++": "--", "--": "++"}
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>="}

FUNCTIONS = {Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.DESTRUCTOR,
             Kind.CONVERSION_FUNCTION, Kind.FUNCTION_TEMPLATE}
SCOPES = {Kind.NAMESPACE, Kind.CLASS_DECL, Kind.STRUCT_DECL, Kind.CLASS_TEMPLATE, Kind.UNION_DECL,
          Kind.CLASS_TEMPLATE_PARTIAL_SPECIALIZATION, Kind.LINKAGE_SPEC, Kind.TRANSLATION_UNIT}
# The compiler evaluates these, so nothing in them can be switched when the program runs.
CONSTANT = {Kind.ENUM_CONSTANT_DECL, Kind.STATIC_ASSERT, Kind.TEMPLATE_NON_TYPE_PARAMETER,
            Kind.TEMPLATE_TYPE_PARAMETER, Kind.TEMPLATE_REF, Kind.TYPE_REF}
BODIES = {Kind.IF_STMT, Kind.FOR_STMT, Kind.WHILE_STMT, Kind.DO_STMT, Kind.CXX_FOR_RANGE_STMT,
          Kind.CASE_STMT, Kind.DEFAULT_STMT}
LITERALS = {Kind.INTEGER_LITERAL, Kind.CXX_BOOL_LITERAL_EXPR, Kind.CHARACTER_LITERAL,
            Kind.CXX_NULL_PTR_LITERAL_EXPR}
NUMBER = re.compile(r"true|false|'.*'|[0-9].*")
INTEGERS = set(range(TypeKind.CHAR_U.value, TypeKind.INT128.value + 1))
FLOATS = {TypeKind.FLOAT, TypeKind.DOUBLE, TypeKind.LONGDOUBLE}


@dataclasses.dataclass
class Place:
    """A mutant: where it is, what it is, and its text."""
    file: str       # below src
    function: str   # the function around it
    kind: str       # the name of the operator
    what: str       # the change in words
    line: int
    begin: int
    end: int
    text: list
    evaluated: bool  # in a function that the compiler can evaluate
    occurrence: int = 0  # among the same changes in the same function

    def name(self):
        """Returns what identifies the place while the lines around it change."""
        again = f" (number {self.occurrence + 1})" if self.occurrence else ""
        return f"{self.file}: {self.function}: {self.what}{again}"


def spelled_at(location):
    """Returns the byte offset of where a macro or the source itself spells what is at a location."""
    file, line, column, offset = ctypes.c_void_p(), ctypes.c_uint(), ctypes.c_uint(), ctypes.c_uint()
    function = cindex.conf.lib.clang_getSpellingLocation
    function.argtypes = [cindex.SourceLocation] + [ctypes.c_void_p] * 4
    function(location, *map(ctypes.byref, (file, line, column, offset)))
    return offset.value


def is_in_macro(extent):
    return spelled_at(extent.start) != extent.start.offset or spelled_at(extent.end) != extent.end.offset


def is_number(type_):
    return type_.kind.value in INTEGERS or type_.kind in FLOATS


class Finder:
    """Collects the places of one translation unit."""

    def __init__(self, source):
        self.source = source
        self.places = {}
        self.left_out = {}  # places, by the reason
        self.bytes = {}

    def find(self, unit, done):
        """Walks through what the unit declares in files of src, except for those in done."""
        declarations = []
        for cursor in unit.cursor.get_children():
            file = cursor.location.file
            if file is None:
                continue
            path = file.name
            if path not in self.bytes:
                inside = self.source in pathlib.Path(path).resolve().parents
                self.bytes[path] = pathlib.Path(path).read_bytes() if inside else None
            if self.bytes[path] is None or path in done:
                continue
            declarations.append(cursor)
        for cursor in declarations:
            self.visit(cursor, cursor.location.file.name, unit.cursor, "", False, False)
        done.update(path for path, content in self.bytes.items() if content is not None)

    def visit(self, cursor, path, parent, function, constant, evaluated):
        """constant: inside something that only the compiler evaluates; evaluated: in a constexpr function."""
        kind = cursor.kind
        begin, end = cursor.extent.start.offset, cursor.extent.end.offset
        if kind in FUNCTIONS:
            head = self.bytes[path][begin:cursor.location.offset].split()
            evaluated = b"constexpr" in head or b"consteval" in head
            scope = cursor.semantic_parent
            named = scope is not None and scope.kind not in (Kind.NAMESPACE, Kind.TRANSLATION_UNIT)
            function = f"{scope.spelling}::{cursor.spelling}" if named else cursor.spelling
        elif kind == Kind.FIELD_DECL:
            function = f"{parent.spelling}::{cursor.spelling}"
        elif kind == Kind.VAR_DECL:
            head = self.bytes[path][begin:cursor.location.offset].split()
            constant = constant or parent.kind in SCOPES or bool(
                {b"constexpr", b"static", b"thread_local", b"constinit"} & set(head))
        elif kind in CONSTANT:
            constant = True
        elif not is_in_macro(cursor.extent):
            for what, name, first, last, text in self.changes(cursor, path, begin, end, parent):
                if constant:
                    self.left_out[path, first, last, name] = "in a constant"
                    continue
                self.add(path, function, what, name, first, last, text, evaluated)
        children = list(cursor.get_children())
        for index, child in enumerate(children):
            label = kind == Kind.CASE_STMT and index == 0
            self.visit(child, path, cursor, function, constant or label, evaluated)

    def add(self, path, function, what, name, begin, end, text, evaluated):
        content = self.bytes[path]
        switch = "kel_mutant_or_constant({N})" if evaluated else "kel_mutant({N})"
        text = [part.replace("{M}", switch) if isinstance(part, str) else part for part in text]
        line = content.count(b"\n", 0, begin) + 1
        file = pathlib.Path(path).resolve().relative_to(self.source).as_posix()
        self.places[file, begin, end, name] = Place(file, function, what, name, line, begin, end, text,
                                                     evaluated)

    def shown(self, path, begin, end):
        """Returns a range in one line for a message."""
        text = " ".join(self.bytes[path][begin:end].decode().split())
        return text if len(text) <= 100 else text[:60] + " ... " + text[-35:]

    def changes(self, cursor, path, begin, end, parent):
        """Returns the changes at a cursor as (operator, change in words, begin, end, text)."""
        found = []
        children = list(cursor.get_children())
        kind = cursor.kind
        if kind in (Kind.BINARY_OPERATOR, Kind.COMPOUND_ASSIGNMENT_OPERATOR, Kind.CALL_EXPR):
            self.add_swap(found, cursor, path, begin, end, children)
        elif kind == Kind.UNARY_OPERATOR:
            self.add_step(found, path, begin, end, children)
        elif kind in LITERALS:
            self.add_constants(found, kind, path, begin, end)
        elif kind == Kind.RETURN_STMT and children:
            self.add_return(found, path, children[0])
        condition = self.condition(cursor, path, begin, children)
        if condition is not None:
            first, last = condition.extent.start.offset, condition.extent.end.offset
            found.append(("negated condition", f"`{self.shown(path, first, last)}` is negated", first, last,
                          ["({M} != static_cast<bool>(", (first, last), "))"]))
        if self.is_statement(cursor, parent):
            self.add_removal(found, cursor, path, begin, end, children)
        return found

    def operator(self, path, left, right):
        """Returns the text between two operands, which is their operator."""
        return self.bytes[path][left.extent.end.offset:right.extent.start.offset].decode().strip()

    def add_swap(self, found, cursor, path, begin, end, children):
        if cursor.kind == Kind.CALL_EXPR:
            if not cursor.spelling.startswith("operator") or len(children) != 3:
                return
            children = sorted(children, key=lambda child: child.extent.start.offset)
            children = [children[0], children[2]]
        if len(children) != 2:
            return
        operator = self.operator(path, *children)
        if operator not in SWAPS:
            return
        if operator in ("+", "-", "+=", "-="):
            left, right = (child.type.get_canonical() for child in children)
            pointers = TypeKind.POINTER, TypeKind.INCOMPLETEARRAY, TypeKind.CONSTANTARRAY
            unknown = TypeKind.DEPENDENT in (left.kind, right.kind)
            if not unknown and not (is_number(left) and is_number(right)
                                    or left.kind in pointers and is_number(right)):
                return
        left, right = (begin, children[0].extent.end.offset), (children[1].extent.start.offset, end)
        other = SWAPS[operator]
        found.append(("operator", f"`{self.shown(path, begin, end)}` has {other} instead of {operator}",
                      begin, end,
                      ["({M} ? ((", left, f") {other} (", right, ")) : (", left, f" {operator} ", right,
                       "))"]))

    def add_step(self, found, path, begin, end, children):
        content = self.bytes[path]
        for operator, other in STEPS.items():
            bare = children[0].extent if children else None
            if bare and content[begin:begin + 2].decode() == operator and bare.start.offset >= begin + 2:
                operand, shape = (begin + 2, end), ("{}", "")
            elif bare and content[end - 2:end].decode() == operator and bare.end.offset <= end - 2:
                operand, shape = (begin, end - 2), ("", "{}")
            else:
                continue
            text = ["({M} ? (", shape[0].format(other), operand, shape[1].format(other), ") : (",
                    shape[0].format(operator), operand, shape[1].format(operator), "))"]
            found.append(("operator",
                          f"`{self.shown(path, begin, end)}` has {other} instead of {operator}",
                          begin, end, text))

    def add_constants(self, found, kind, path, begin, end):
        text = self.bytes[path][begin:end].decode()
        if kind == Kind.CXX_NULL_PTR_LITERAL_EXPR or not NUMBER.fullmatch(text):
            return
        if kind == Kind.CXX_BOOL_LITERAL_EXPR:
            steps = [("!", {"true": "false"}.get(text, "true"))]
        elif text == "0":
            steps = [("1 +", "1")]
        else:
            steps = [("1 +", f"{text} + 1"), ("-1 +", f"{text} - 1")]
        for step, shown in steps:
            found.append(("constant", f"{text} is {shown}", begin, end,
                          ["kel_changed({M}, ", (begin, end), f", [](auto v) {{ return {step} v; }})"]))

    def add_return(self, found, path, value):
        kind = value.type.get_canonical().kind
        first, last = value.extent.start.offset, value.extent.end.offset
        if value.kind in LITERALS or value.kind == Kind.INIT_LIST_EXPR or first >= last:
            return
        inner = list(value.get_children())
        if len(inner) == 1 and inner[0].kind in LITERALS and inner[0].extent == value.extent:
            return
        if kind == TypeKind.BOOL:
            change, words = "[](auto v) { return !v; }", "the opposite of "
        elif kind.value in INTEGERS or kind in FLOATS:
            change, words = "[](auto v) { return v + 1; }", "1 more than "
        elif kind == TypeKind.POINTER:
            change, words = "[](auto) { return nullptr; }", "null instead of "
        else:
            return
        found.append(("return", f"returns {words}`{self.shown(path, first, last)}`", first, last,
                      ["kel_changed({M}, ", (first, last), f", {change})"]))

    def condition(self, cursor, path, begin, children):
        """Returns the expression that decides in a statement or in a conditional operator."""
        content = self.bytes[path]
        kind = cursor.kind
        if kind == Kind.CONDITIONAL_OPERATOR and len(children) == 3:
            found = children[0]
        elif kind == Kind.WHILE_STMT and len(children) == 2:
            found = children[0]
        elif kind == Kind.DO_STMT and len(children) == 2:
            found = children[1]
        elif kind == Kind.IF_STMT and not content[begin + 2:].lstrip().startswith(b"constexpr"):
            # The last statement in the parentheses decides, after a declaration perhaps.
            expressions = [child for child in children if child.kind.is_expression()]
            found = expressions[0] if expressions and children[0].kind != Kind.VAR_DECL else None
        elif kind == Kind.FOR_STMT:
            found = self.condition_of_for(content, begin, children)
        else:
            return None
        return found if found is not None and found.kind.is_expression() else None

    @staticmethod
    def condition_of_for(content, begin, children):
        semicolons, depth = [], 0
        for offset in range(begin, len(content)):
            byte = content[offset:offset + 1]
            depth += byte in (b"(", b"{", b"[")
            depth -= byte in (b")", b"}", b"]")
            if byte == b";" and depth == 1:
                semicolons.append(offset)
            if len(semicolons) == 2:
                break
        if len(semicolons) != 2:
            return None
        inside = [child for child in children
                  if semicolons[0] < child.extent.start.offset < semicolons[1]]
        return inside[0] if len(inside) == 1 else None

    @staticmethod
    def is_statement(cursor, parent):
        """Returns whether the cursor is a statement of its own, whose value nobody uses."""
        if not cursor.kind.is_expression():
            return False
        if parent.kind == Kind.COMPOUND_STMT:
            return True
        if parent.kind not in BODIES:
            return False
        children = list(parent.get_children())
        body = {Kind.DO_STMT: children[:1], Kind.IF_STMT: children[1:]}.get(parent.kind, children[-1:])
        return cursor in body and not (parent.kind == Kind.IF_STMT and cursor == children[0])

    def add_removal(self, found, cursor, path, begin, end, children):
        inner = cursor
        while inner.kind in (Kind.UNEXPOSED_EXPR, Kind.PAREN_EXPR):
            below = list(inner.get_children())
            if len(below) != 1:
                break
            inner = below[0]
        below = list(inner.get_children())
        if inner.kind == Kind.CALL_EXPR and inner.spelling != "operator=":
            kind = "removed call"
        elif inner.kind == Kind.COMPOUND_ASSIGNMENT_OPERATOR or inner.spelling == "operator=":
            kind = "removed assignment"
        elif inner.kind == Kind.BINARY_OPERATOR and len(below) == 2 \
                and self.operator(path, *below) in ASSIGNMENTS:
            kind = "removed assignment"
        elif inner.kind == Kind.UNARY_OPERATOR and (
                self.bytes[path][begin:begin + 2] in (b"++", b"--")
                or self.bytes[path][end - 2:end] in (b"++", b"--")):
            kind = "removed assignment"
        else:
            return
        found.append((kind, f"`{self.shown(path, begin, end)}` is removed", begin, end,
                      ["({M} ? void() : static_cast<void>(", (begin, end), "))"]))


def find_in(source, options, units):
    """Returns the places in some units, which are names with their contents, and the counts of what is
    left out. None stands for the contents of the file itself."""
    index = cindex.Index.create()
    finder, done = Finder(source), set()
    for name, contents in units:
        unit = index.parse(name, options, unsaved_files=[] if contents is None else [(name, contents)])
        errors = [str(d) for d in unit.diagnostics if d.severity >= cindex.Diagnostic.Error]
        if errors:
            raise RuntimeError("\n".join(errors))
        finder.find(unit, done)
    return finder.places, finder.left_out
