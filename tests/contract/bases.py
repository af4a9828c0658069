"""The bases of the public classes, docs/abi/bases.txt. A host converts a pointer to a base by where the
base is among all bases of the class, in every ABI."""
import re

ROW = re.compile(r"^(\w+): (.+)$")


def parse(text):
    """Returns the bases of each class in order, and complaints about lines."""
    found, bad = {}, []
    for line in text.splitlines():
        match = ROW.match(line)
        if match:
            found[match.group(1)] = match.group(2).split(", ")
        elif line.strip() and not line.startswith("#"):
            bad.append(f"not a row of bases.txt: {line}")
    return found, bad


def text_with(old, declared):
    """Returns bases.txt with other rows below the comment of its old text."""
    head = [line for line in old.splitlines() if line.startswith("#")]
    rows = [f"{name}: {', '.join(bases)}" for name, bases in sorted(declared.items())]
    return "\n".join([*head, "", *rows, ""])


def compare(listed, declared):
    """Yields the differences between bases.txt and the headers."""
    for name in sorted(set(listed) | set(declared)):
        ours, theirs = listed.get(name, []), declared.get(name, [])
        if ours != theirs:
            yield (f"{name}: the bases {', '.join(ours) or 'none'} in bases.txt, "
                   f"{', '.join(theirs) or 'none'} declared")
