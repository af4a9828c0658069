#!/usr/bin/python3
"""Uses the built pages in headless Chromium as a reader does, on a desktop and on a telephone.

    check_browser.py FOLDER [SCREENSHOTS]

FOLDER has index.html. With SCREENSHOTS, pictures of some pages are put there to be looked at.
"""
import base64
import pathlib
import sys

from selenium import webdriver
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

WIDTHS = (1280, 390)
PAGES = ("index.html", "page_docs_tutorial.html", "page_docs_hosting.html", "reference.html",
         "classKEL__Array.html", "classKELInterface__Array__V1.html", "classkel_1_1value.html",
         "functions.html")
LEAST_SIZE = 12.5 # pixels, of code in tables too
LEAST_CONTRAST = 4.5

# Returns the texts of the page that are too small or too faint, as [text, size, contrast].
UNREADABLE = """
const [leastSize, leastContrast] = arguments;
const channel = (c) => { c /= 255; return c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4; };
const numbers = (colour) => colour.match(/[\\d.]+/g).map(Number);
const light = (colour) => { const [r, g, b] = numbers(colour).map(channel);
                            return 0.2126 * r + 0.7152 * g + 0.0722 * b; };
const backOf = (element) => {
  for (let e = element; e; e = e.parentElement) {
    const back = getComputedStyle(e).backgroundColor;
    if (numbers(back).length === 3 || numbers(back)[3] === 1) return back;
  }
  return "rgb(255, 255, 255)";
};
const faults = [];
for (const element of document.body.querySelectorAll("*")) {
  const text = [...element.childNodes].filter((n) => n.nodeType === 3).map((n) => n.data).join("").trim();
  if (text === "" || element.getClientRects().length === 0) continue;
  const style = getComputedStyle(element);
  const [a, b] = [light(style.color), light(backOf(element))];
  const contrast = (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
  const size = parseFloat(style.fontSize);
  if (size < leastSize || contrast < leastContrast) faults.push([text.slice(0, 40), size, contrast]);
}
return faults;
"""
SIDEWAYS = "return document.scrollingElement.scrollWidth - document.documentElement.clientWidth"


def expect(condition, message):
    if not condition:
        sys.exit(f"failed: {message}")


class Browser:
    """Chromium, showing the pages of a folder."""

    def __init__(self, folder):
        self.folder = folder
        options = webdriver.ChromeOptions()
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        options.binary_location = "/usr/bin/chromium"
        self.driver = webdriver.Chrome(
            service=webdriver.chrome.service.Service("/usr/bin/chromedriver"), options=options)
        self.driver.implicitly_wait(5)

    def screen(self, width, scheme="light"):
        """Becomes a screen of this width, of a reader who prefers light or dark."""
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": 900, "deviceScaleFactor": 1, "mobile": width < 600})
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "features": [{"name": "prefers-color-scheme", "value": scheme}]})

    def open(self, page):
        self.driver.get((self.folder / page).as_uri())

    def page(self):
        return self.driver.current_url.rsplit("/", 1)[-1]

    def find(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def follow(self, words, page):
        """Clicks on a link with these words, which leads to this page."""
        self.driver.find_element(By.LINK_TEXT, words).click()
        expect(self.page() == page, f"{words!r} leads to {self.page()} instead of {page}")

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def picture(self, file):
        size = self.run("return [innerWidth, Math.min(2400, document.documentElement.scrollHeight)]")
        picture = self.driver.execute_cdp_cmd("Page.captureScreenshot", {
            "captureBeyondViewport": True,
            "clip": {"x": 0, "y": 0, "width": size[0], "height": size[1], "scale": 1}})
        file.write_bytes(base64.b64decode(picture["data"]))


def check_layout(browser, pictures):
    """Checks that no page scrolls sideways and that every text can be read, in both schemes."""
    for width in WIDTHS:
        for scheme in ("light", "dark"):
            browser.screen(width, scheme)
            for page in PAGES:
                browser.open(page)
                faults = browser.run(UNREADABLE, LEAST_SIZE, LEAST_CONTRAST)
                expect(not faults, f"{page} at {width}, {scheme}: unreadable: {faults[:5]}")
                if pictures:
                    browser.picture(pictures / f"{page.removesuffix('.html')}-{width}-{scheme}.png")
    browser.screen(WIDTHS[0], "dark")
    dark = browser.run("return getComputedStyle(document.body).backgroundColor")
    browser.screen(WIDTHS[0], "light")
    expect(dark != browser.run("return getComputedStyle(document.body).backgroundColor"),
           "dark looks like light")
    every = sorted(path.name for path in browser.folder.glob("*.html"))
    for width, pages in zip(WIDTHS, (PAGES, every)): # what fits a telephone also fits a desktop
        browser.screen(width)
        for page in pages:
            browser.open(page)
            wider = browser.run(SIDEWAYS)
            expect(wider <= 0, f"{page} is {wider} pixels wider than the screen of {width}")
            expect(browser.run("return document.body.innerText.length") > 100, f"{page} is empty")


def check_ways(browser, width):
    """Checks the way of a newcomer: from the start to the tutorial, and to an operation."""
    browser.screen(width)
    browser.open("index.html")
    browser.follow("Tutorial", "page_docs_tutorial.html")
    current = browser.find("header nav [aria-current=page]").text
    expect(current == "Tutorial", f"the menu marks {current!r}")
    browser.follow("Reference", "reference.html")
    browser.follow("KEL_Array", "classKEL__Array.html")
    row = browser.find("table.operations tbody tr")
    cells = {cell.get_attribute("data-label"): cell for cell in row.find_elements(By.TAG_NAME, "td")}
    for column in ("Ownership", "Failures"):
        expect(cells[column].is_displayed() and cells[column].text, f"{column} is not shown at {width}")
        if width > 800:
            heads = [head.text for head in browser.driver.find_elements(By.CSS_SELECTOR, "th")]
            expect(column in heads, f"the columns are {heads}")
        else:
            label = browser.run("return getComputedStyle(arguments[0], '::before').content", cells[column])
            expect(column in label, f"the label of {column} is {label}")
    cells["Operation"].find_element(By.TAG_NAME, "a").click()
    target = browser.page()
    expect(target.startswith("classKELInterface__Array__V1.html#"), f"getVar leads to {target}")
    top = browser.run("return document.getElementById(location.hash.slice(1)).getBoundingClientRect().top")
    expect(-10 < top < 900, f"the operation is at {top}")


def check_search(browser, width):
    """Checks that typing finds an operation and a heading, and that the keys lead to them."""
    browser.screen(width)
    browser.open("index.html")
    browser.find("#search").send_keys("getVarNames")
    first = browser.find("#found a")
    expect("getVarNames" in first.text and first.is_displayed(), f"the search shows {first.text!r}")
    first.click()
    expect(browser.page().startswith("classKELInterface__Struct__V1.html#"), browser.page())
    browser.find("#search").send_keys("who owns what")
    browser.find("#found a")
    browser.find("#search").send_keys(Keys.ENTER)
    expect("who_owns_what" in browser.page(), f"Enter leads to {browser.page()}")
    browser.find("#search").send_keys("no such name at all")
    expect("Nothing" in browser.find("#found").text, "the search does not say that it finds nothing")
    browser.find("#search").send_keys(Keys.ESCAPE)
    expect(not browser.find("#found").is_displayed(), "Escape does not close the search")


def main(arguments):
    if not 1 <= len(arguments) <= 2:
        sys.exit(__doc__)
    folder = pathlib.Path(arguments[0]).resolve()
    pictures = pathlib.Path(arguments[1]) if len(arguments) == 2 else None
    if pictures:
        pictures.mkdir(parents=True, exist_ok=True)
    browser = Browser(folder)
    try:
        check_layout(browser, pictures)
        for width in WIDTHS:
            check_ways(browser, width)
            check_search(browser, width)
    finally:
        browser.driver.quit()
    print(f"{len(list(folder.glob('*.html')))} pages at {len(WIDTHS)} widths")


if __name__ == "__main__":
    main(sys.argv[1:])
