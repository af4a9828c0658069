"""What the tests of packages have in common: running commands and judging folders."""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent


def expect(condition, message):
    """Ends the test with the message unless the condition is true."""
    if not condition:
        sys.exit(f"failed: {message}")


def run(*command, **more):
    """Runs a command that must succeed, and returns its output."""
    print("+", *command, flush=True)
    result = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE, **more)
    output = result.stdout.decode("utf-8", "replace").replace("\r\n", "\n")
    expect(result.returncode == 0, f"status {result.returncode}\n{output}")
    return output


def fails(*command, **more):
    """Returns whether a command fails, and prints what it says."""
    print("+", *command, flush=True)
    return subprocess.run([str(part) for part in command], **more).returncode != 0


def files(folder):
    """Returns the paths of all files and links below a folder, relative to it."""
    return {str(path.relative_to(folder)) for path in folder.rglob("*")
            if path.is_symlink() or not path.is_dir()}


def headers():
    """Returns the paths of the public headers, relative to the root of the repository."""
    return {str(path.relative_to(ROOT)) for path in (ROOT / "include").rglob("*.h*")}


def expect_equal(found, expected, what):
    """Compares two sets of names."""
    expect(found == expected, f"{what}: missing {sorted(expected - found)}, "
                              f"surplus {sorted(found - expected)}")


def expect_links(folder):
    """Checks that every link to a file in the folder's texts leads to an existing file."""
    texts = list(folder.rglob("*.md"))
    expect(len(texts) > 5, f"only {len(texts)} texts")
    for text in texts:
        prose = re.sub(r"<!--.*?-->|```.*?```|`[^`\n]*`", "", text.read_text(encoding="utf-8"),
                       flags=re.DOTALL)
        for target in re.findall(r"\]\(([^)#:]+)[^):]*\)", prose):
            expect((text.parent / target).exists(), f"{text.name} leads to {target}")
