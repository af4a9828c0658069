#!/usr/bin/env python3
"""Builds the reference and all pages as a site. scripts/docs.sh calls it.

    build.py ROOT FOLDER

Ends with status 1 and a list if Doxygen warns, if a link leads nowhere, or if an operation does not say
who owns what or how it can fail. The site is then in FOLDER/html all the same.
"""
import json
import pathlib
import re
import shutil
import subprocess
import sys

import links
from headers import prepared
from operations import Reference
from pages import Site
from reference import Pages

HERE = pathlib.Path(__file__).resolve().parent

# What Doxygen adds to the names of classes and files in titles.
TITLE = re.compile(r" (?:Class|Struct|Class Template|Struct Template|Namespace|File) Reference(?=[ <])"
                   r"(?:<span class=\"mlabels\">.*?</span></span>)?")


def doxygen(folder, options):
    """Runs Doxygen and returns its warnings."""
    settings = (HERE / "Doxyfile").read_text(encoding="utf-8") + "\n" + "\n".join(options)
    result = subprocess.run(["doxygen", "-"], input=settings, text=True, cwd=folder,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if result.returncode != 0:
        sys.exit(result.stderr)
    return [line.replace(f"{folder}/", "") for line in result.stderr.splitlines()]


def build(root, folder):
    """Builds the site and returns the complaints."""
    shutil.rmtree(folder, ignore_errors=True)
    (folder / "pages").mkdir(parents=True)
    version = re.search(r'KEL_VERSION_STRING "(.*)"', (root / "include/kel/config.h").read_text())[1]
    for path in sorted((root / "include").rglob("*.h*")):
        copy = folder / "include" / path.relative_to(root / "include")
        copy.parent.mkdir(parents=True, exist_ok=True)
        copy.write_text(prepared(path.read_text(encoding="utf-8")), encoding="utf-8")
    # A namespace without a description would have its functions on the pages of its files.
    (folder / "pages/tables.dox").write_text("/** \\namespace kel\nFunctions */\n", encoding="utf-8")
    # Doxygen reports what is not documented when it lists the members, which the site does not do.
    undocumented = [line for line in doxygen(folder, [
        "INPUT = include pages", "GENERATE_XML = YES", "GENERATE_HTML = NO"])
                    if "is not documented" in line]
    reference = Reference(folder / "xml")
    site = Site(root, folder / "pages")
    site.write_all()
    front = Pages(reference, folder)
    front.write_all()
    header = (HERE / "header.html").read_text(encoding="utf-8").replace("@MENU@", site.menu())
    (folder / "header.html").write_text(header, encoding="utf-8")
    warnings = doxygen(folder, [
        "INPUT = include pages", f"PROJECT_NUMBER = {version}", "HTML_HEADER = header.html",
        f"HTML_FOOTER = {HERE}/footer.html", f"HTML_STYLESHEET = {HERE}/style.css",
        f"LAYOUT_FILE = {HERE}/layout.xml"])
    finish(folder / "html", [*reference.index(), *site.index])
    complaints = [*site.unknown, *front.complaints, *reference.complaints(), *undocumented, *warnings]
    # What is not documented has no place to link to, so its links are not worth a report.
    return complaints or list(links.broken(folder / "html", [*reference.index(), *site.index]))


def finish(html, rows):
    """Shortens the titles, adds the search, and removes what no page leads to."""
    for page in html.glob("*.html"):
        text = TITLE.sub("", page.read_text(encoding="utf-8"))
        # The sign against links, which Doxygen leaves in quotes.
        page.write_text(text.replace("%KEL", "KEL"), encoding="utf-8")
    shutil.copy(HERE / "site.js", html)
    text = json.dumps(rows, ensure_ascii=False, separators=(",", ":"))
    (html / "search-index.js").write_text(f"const SEARCH_INDEX = {text};\n", encoding="utf-8")
    for path in links.unused(html):
        path.unlink()


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__)
    root, folder = (pathlib.Path(argument).resolve() for argument in arguments)
    complaints = build(root, folder)
    for complaint in complaints:
        print(complaint)
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
