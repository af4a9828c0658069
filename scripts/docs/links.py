"""Checks that every link of the built site leads to a page, and to an element of it."""
import html.parser
import urllib.parse


class Page(html.parser.HTMLParser):
    """The names, the links and the files that a page uses."""

    def __init__(self, text):
        super().__init__()
        self.names, self.links, self.uses = set(), [], set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.names.update(values[key] for key in ("id", "name") if values.get(key))
        if tag == "a" and values.get("href"):
            self.links.append(values["href"])
        for key in ("src", "href"):
            if tag in ("link", "script", "img") and values.get(key):
                self.uses.add(values[key])


def read(folder):
    """Returns the pages of a folder by their names."""
    return {path.name: Page(path.read_text(encoding="utf-8")) for path in sorted(folder.glob("*.html"))}


def broken(folder, rows):
    """Yields a line for each link that leads nowhere. rows are those of the search."""
    pages = read(folder)
    for name, page in pages.items():
        for link in page.links:
            if complaint := fault(link, name, pages):
                yield f"{name}: {complaint}"
        for used in page.uses:
            if not (folder / used).is_file():
                yield f"{name}: uses {used}, which is missing"
    for row in rows:
        if complaint := fault(row[2], "", pages):
            yield f"the search: {row[0]}: {complaint}"


def fault(link, name, pages):
    """Returns what is wrong with a link on a page, or None."""
    parts = urllib.parse.urlsplit(link)
    if parts.scheme or parts.netloc:
        return f"{link} leads away from the site"
    target = urllib.parse.unquote(parts.path) or name
    if target not in pages:
        return f"{link} leads to no page"
    if parts.fragment and urllib.parse.unquote(parts.fragment) not in pages[target].names:
        return f"{link} leads to no part of {target}"
    return None


def unused(folder):
    """Returns the pages to which no way leads from the start, and the files that no page uses."""
    pages = read(folder)
    known, waiting = set(), ["index.html"]
    while waiting:
        name = waiting.pop()
        if name in pages and name not in known:
            known.add(name)
            waiting += [urllib.parse.urlsplit(link).path for link in pages[name].links]
    known |= {used for name in known for used in pages[name].uses}
    return [path for path in folder.iterdir() if path.is_file() and path.name not in known]
