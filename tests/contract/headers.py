"""Reads the public headers for the operations of their classes and for exported functions."""
import pathlib
import re

import contract

COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
CLASS = re.compile(r"^(?:template\s*<[^>]*>\s*)?class\s+(\w+)\b[^;{]*\{", re.MULTILINE)
BASES = re.compile(r"^(?:template\s*<[^>]*>\s*)?class\s+(\w+)\s*(?:final\s*)?:([^{;]*)\{", re.MULTILINE)
OPERATION = re.compile(r"\bvirtual\s+([^;{~]*?\))(\s*const)?\s*(?:=\s*0\s*)?[;{]", re.DOTALL)
FUNCTION = re.compile(r"^KEL_API\s+([^;{]*?)\bKEL_CALL\s+(\w+\s*\([^)]*\))\s*;", re.MULTILINE)
VERSION = re.compile(r"^#define KEL_VERSION_(?:MAJOR|MINOR) (\d+)$", re.MULTILINE)


def body_of(text, start):
    """Returns the text from start to the brace that closes the one before it."""
    depth = 1
    for place in range(start, len(text)):
        depth += {"{": 1, "}": -1}.get(text[place], 0)
        if depth == 0:
            return text[start:place]
    return text[start:]


def classes_of(header):
    """Returns the classes of a header's text that introduce virtual operations: name to
    signatures."""
    text = COMMENT.sub("", header)
    found = {}
    for match in CLASS.finditer(text):
        body = body_of(text, match.end())
        rows = [contract.normal(operation.group(1) + (" const" if operation.group(2) else ""))
                for operation in OPERATION.finditer(body)]
        if rows:
            found[match.group(1)] = rows
    return found


def bases_of(header):
    """Returns the direct bases of a header's classes that have any: name to bases in order, such as
    "virtual KEL"."""
    return {name: [" ".join(base.replace("public", "").split()) for base in bases.split(",")]
            for name, bases in BASES.findall(COMMENT.sub("", header))}


def functions_of(header):
    """Returns the declarations of a header's exported functions, without the macros."""
    return [contract.normal(result + function)
            for result, function in FUNCTION.findall(COMMENT.sub("", header))]


def _texts(include):
    return [path.read_text() for path in sorted(pathlib.Path(include).rglob("*.h"))]


def classes_in(include):
    return {name: rows for text in _texts(include) for name, rows in classes_of(text).items()}


def bases_in(include):
    return {name: bases for text in _texts(include) for name, bases in bases_of(text).items()}


def functions_in(include):
    return [declaration for text in _texts(include) for declaration in functions_of(text)]


def version_in(include):
    """Returns the version that new operations get, such as 1.0."""
    return ".".join(VERSION.findall(pathlib.Path(include, "kel", "config.h").read_text()))
