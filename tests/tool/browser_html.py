#!/usr/bin/python3
"""The pages of "kel html" in headless Chromium, used with keys and clicks as readers do.

KEL_TOOL is the tool. KEL_PICTURES can be a folder for pictures to be looked at.
"""
import json
import os
import pathlib
import sys
import unittest

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

from support import ARRAY, STRING, ToolTest, int_record, record, reference, struct_record

sys.path.append(str(pathlib.Path(__file__).parent.parent / "docs"))
from check_browser import LEAST_CONTRAST, LEAST_SIZE, SIDEWAYS, UNREADABLE, WIDTHS, Browser  # noqa: E402

SETTINGS = """{ @type = 50
  @desc = { @type = 51, @hashCode = E30E6F6B-C5DF-4541-9A11-F0F34DCD730C
    gain = { @type = 52 default = 0.0 max = 6.0 min = -60.0 postadorn = " dB" stepsize = 0.5 type = 3 }
    mute = { @type = 52 default = false type = 2 }
    mode = { @type = 52 default = "stereo" enum = [ "mono" "stereo" "surround" ] type = 6 }
    pan = { @type = 52 default = 0 max = 100 min = -100 postadorn = " %" type = 1 } }
  gain = -12.5
  mode = "stereo"
  pan = 130
  colours = 00000000-0000-0000-0000-0000000000C1 = { back = "#101418" text = "#f0f0f0" }
  windows = [
    { title = "Main" colours = REF 00000000-0000-0000-0000-0000000000C1 size = [ 1280 800 ] }
    { title = "Mixer" colours = REF 00000000-0000-0000-0000-0000000000C1 size = [ 640 480 ] }
    { title = "A title that does not fit into a narrow window and is cut off there" none = NULL } ]
  presets = ( 3F2504E0-4F89-11D3-9A0C-0305E82C3301 = { name = "Warm" gain = -3.0 } )
  keys = < [ "ctrl+s" "ctrl+o" ] [ "save" "open" ] > }
"""
MANY = 100000
QUICK = 100  # milliseconds
MOST_ELEMENTS = 1500
ATTACK = "</script><img src=x onerror=\"window.hurt=1\"><!--<script>window.hurt=1</script>"

# Calls a function of the page's text and returns the milliseconds until everything is drawn.
TIMED = """
const began = performance.now();
(new Function("argument", arguments[0]))(arguments[1]);
document.getElementById("tree").getBoundingClientRect();
return performance.now() - began;
"""
PRESS = ("document.getElementById('tree').dispatchEvent("
         "new KeyboardEvent('keydown', { key: argument, bubbles: true }))")
SEARCH = ("const input = document.getElementById('query'); input.value = argument;"
          "input.dispatchEvent(new InputEvent('input'))")
SCROLL = ("const tree = document.getElementById('tree');"
          "tree.scrollTop = argument * tree.scrollHeight; tree.dispatchEvent(new Event('scroll'))")
CLICK = "document.getElementById(argument).click()"


class Html(ToolTest):
    @classmethod
    def setUpClass(cls):
        cls.browser = Browser(pathlib.Path("/"))
        cls.browser.driver.implicitly_wait(1)

    @classmethod
    def tearDownClass(cls):
        cls.browser.driver.quit()

    def setUp(self):
        super().setUp()
        self.browser.folder = pathlib.Path(self.folder)
        self.drain("browser")
        self.drain("performance")
        self.browser.screen(WIDTHS[0])

    def tearDown(self):
        """The page has caused no message and no request."""
        self.assertEqual([entry["message"] for entry in self.drain("browser")], [])
        events = [json.loads(entry["message"])["message"] for entry in self.drain("performance")]
        requested = {event["params"]["request"]["url"] for event in events
                     if event["method"] == "Network.requestWillBeSent"}
        self.assertEqual({url for url in requested if not url.endswith("/page.html")}, set())
        super().tearDown()

    def drain(self, log):
        return self.browser.driver.get_log(log)

    def open(self, name, content=None):
        """Makes the page of a file and opens it."""
        if content is not None:
            self.write(name, content)
        self.ok("html", name, "-o", "page.html")
        self.browser.driver.get("about:blank")
        self.browser.open("page.html")

    def picture(self, name):
        folder = os.environ.get("KEL_PICTURES")
        if folder:
            self.browser.picture(pathlib.Path(folder, f"html-{name}.png"))

    def find(self, selector):
        return self.browser.find(selector)

    def find_all(self, selector):
        return self.browser.driver.find_elements(By.CSS_SELECTOR, selector)

    def row(self, label, number=0):
        """Returns one of the rows with the label that are in the document."""
        rows = [row for row in self.find_all(".row")
                if row.find_element(By.CSS_SELECTOR, ".name").text == label]
        return rows[number]

    def labels(self):
        return [name.text for name in self.find_all(".row .name")]

    def active(self):
        """Returns the row that the tree names as the active one."""
        row = self.find("#" + self.find("#tree").get_attribute("aria-activedescendant"))
        self.assertEqual(row.get_attribute("aria-selected"), "true")
        return row

    def active_label(self):
        return self.active().find_element(By.CSS_SELECTOR, ".name").text

    def shown_path(self):
        return self.find("#details .path").text

    def press(self, *keys):
        """Types into whatever has the focus."""
        ActionChains(self.browser.driver).send_keys(*keys).perform()

    def is_in_sight(self, row):
        return self.browser.run("""
            const [row, tree] = [arguments[0], document.getElementById("tree")].map(
              (element) => element.getBoundingClientRect());
            return row.top >= tree.top - 1 && row.bottom <= tree.bottom + 1;""", row)

    def timed(self, script, argument, *before):
        """Returns the shortest time of five, because other programs use the machine too. Every time
        the tree has been scrolled to other rows before, and the given steps were taken."""
        times = []
        for part in (0.31, 0.42, 0.53, 0.64, 0.75):
            for step in ((SCROLL, part), *before):
                self.browser.run(TIMED, *step)
            times.append(self.browser.run(TIMED, script, argument))
        return min(times)

    def element_count(self):
        return self.browser.run("return document.querySelectorAll('*').length")

    def test_the_tree_folds_and_unfolds_by_clicks(self):
        self.open("a.json", '{"a": {"b": [1, 2]}, "c": "text"}')
        self.assertEqual(self.labels(), ["root", "a", "b", "0", "1", "c"])
        twist = self.row("a").find_element(By.CSS_SELECTOR, ".twist")
        twist.click()
        self.assertEqual(self.labels(), ["root", "a", "c"])
        self.assertEqual(self.row("a").get_attribute("aria-expanded"), "false")
        self.row("a").find_element(By.CSS_SELECTOR, ".twist").click()
        self.assertEqual(self.labels(), ["root", "a", "b", "0", "1", "c"])
        self.find("#fold").click()
        self.assertEqual(self.labels(), ["root"])
        self.find("#unfold").click()
        self.assertEqual(self.labels(), ["root", "a", "b", "0", "1", "c"])

    def test_keys_move_fold_and_unfold(self):
        self.open("a.json", '{"a": {"b": [1, 2]}, "c": "text"}')
        for key, label in ((Keys.ARROW_DOWN, "a"), (Keys.END, "c"), (Keys.ARROW_UP, "1"),
                           (Keys.ARROW_LEFT, "b"), (Keys.ARROW_LEFT, "b"), (Keys.ARROW_LEFT, "a"),
                           (Keys.ARROW_RIGHT, "b"), (Keys.ENTER, "b"), (Keys.ARROW_RIGHT, "0"),
                           (Keys.HOME, "root"), ("c", "c"), (Keys.PAGE_UP, "root")):
            self.press(key)
            self.assertEqual(self.active_label(), label)
        self.press(Keys.ARROW_LEFT)
        self.assertEqual(self.labels(), ["root"])
        self.press("*")
        self.assertEqual(self.labels(), ["root", "a", "b", "0", "1", "c"])

    def test_rows_have_roles_levels_and_places_for_screen_readers(self):
        self.open("a.json", '{"a": {"b": [1, 2]}, "c": "text"}')
        self.assertEqual(self.find("#tree").get_attribute("role"), "tree")
        names = ("role", "aria-level", "aria-expanded", "aria-setsize", "aria-posinset", "aria-label")
        rows = [tuple(row.get_attribute(name) for name in names) for row in self.find_all(".row")]
        self.assertEqual(rows, [
            ("treeitem", "1", "true", "1", "1", "root: struct, 2 variables"),
            ("treeitem", "2", "true", "2", "1", "a: struct, 1 variable"),
            ("treeitem", "3", "true", "1", "1", "b: array, 2 elements"),
            ("treeitem", "4", None, "2", "1", "0: int, 1"),
            ("treeitem", "4", None, "2", "2", "1: int, 2"),
            ("treeitem", "2", None, "2", "2", 'c: string, "text"')])

    def test_the_search_leads_from_match_to_match(self):
        self.open("a.json", json.dumps({"list": [{"name": f"item {i}"} for i in range(2000)],
                                        "needle": 1, "other": {"deep": "a Needle"}}))
        self.press("/")
        self.press("needle")
        self.assertEqual(self.find("#matches").text, "1 of 2")
        self.assertEqual(self.shown_path(), "needle")
        self.press(Keys.ENTER)
        self.assertEqual((self.find("#matches").text, self.shown_path()), ("2 of 2", "other.deep"))
        self.assertEqual(self.active().find_element(By.TAG_NAME, "mark").text, "Needle")
        self.press(Keys.SHIFT, Keys.ENTER)
        self.assertEqual(self.shown_path(), "needle")
        self.press(Keys.ESCAPE, Keys.ARROW_UP)
        self.assertNotEqual(self.shown_path(), "needle")
        self.find("#query").clear()
        self.find("#query").send_keys("item 1999")
        self.assertEqual(self.shown_path(), "list[1999].name")
        self.assertTrue(self.is_in_sight(self.active()))
        self.find("#query").send_keys("x")
        self.assertEqual(self.find("#matches").text, "not found")

    def test_the_search_takes_a_path_as_kel_prints_it(self):
        names = {"a": {"ab": [{"odd name": 1}, {"q\\": 2}]}, "ab": 3}
        self.open("a.json", json.dumps(names) + "[4]")
        for path in ("1:a.ab[1]", '1:a.ab[1]["q\\\\"]', '1:a.ab[0]["odd name"]', "1:ab", "2:[0]"):
            self.find("#query").clear()
            self.find("#query").send_keys(path)
            self.assertEqual(self.shown_path(), path)
        self.find("#query").clear()
        self.find("#query").send_keys("1:a.b")
        self.assertEqual(self.find("#matches").text, "not found")

    def test_the_path_above_the_tree_is_that_of_the_first_row_in_sight(self):
        self.open("a.json", json.dumps({"list": [{"name": f"item {i}"} for i in range(2000)]}))
        self.find("#unfold").click()
        self.find("#tree").send_keys(Keys.END)
        self.assertRegex(self.find("#around").text, r"\Alist\[19[5-9]\d\]\Z|\Alist\Z")

    def test_links_lead_through_the_places_of_a_shared_value_and_back(self):
        self.open("settings.kel", SETTINGS)
        chip = self.row("colours").find_element(By.CSS_SELECTOR, ".chip.link")
        self.assertEqual(chip.text, "shared × 3")
        chip.click()
        self.assertEqual(self.shown_path(), "windows[0].colours")
        self.assertTrue(self.is_in_sight(self.active()))
        links = self.find_all("#details .places button")
        self.assertEqual([link.text for link in links],
                         ["colours", "windows[0].colours", "windows[1].colours"])
        links[2].click()
        self.assertEqual(self.shown_path(), "windows[1].colours")
        self.assertEqual(len(self.find_all("#details svg g.place")), 3)
        self.assertIn("00000000-0000-0000-0000-0000000000C1", self.find("#details").text)
        self.picture("sharing")
        self.find_all("#details svg g.place")[0].click()
        self.assertEqual(self.shown_path(), "colours")
        self.find("#fold").click()
        self.find("#back").click()
        self.assertEqual(self.shown_path(), "windows[1].colours")
        self.assertTrue(self.is_in_sight(self.active()))
        self.press(Keys.BACKSPACE)
        self.assertEqual(self.shown_path(), "windows[0].colours")
        self.browser.driver.back()
        self.assertNotEqual(self.shown_path(), "windows[0].colours")
        self.assertFalse(self.find("#back").is_enabled())

    def test_a_value_inside_itself_links_to_itself(self):
        inner = struct_record([(b"again", reference(1)), (b"x", int_record(5, 3))], 2)
        self.open("cycle.kelb", record(ARRAY, inner, 1))
        row = self.row("again")
        self.assertIsNone(row.get_attribute("aria-expanded"))
        self.assertEqual(row.find_element(By.CSS_SELECTOR, ".chip").text, "↺ contains itself")
        row.click()
        self.assertEqual(len(self.find_all("#details svg path.inside")), 1)
        self.press(Keys.ENTER)
        self.assertEqual(self.active_label(), "root")
        self.find("#unfold").click()
        self.assertEqual(self.labels(), ["root", "0", "again", "x"])

    def test_descriptors_stand_beside_their_values(self):
        self.open("settings.kel", SETTINGS)
        self.picture("tree")
        meter = self.row("gain").find_element(By.CSS_SELECTOR, "[role=meter]")
        self.assertEqual([meter.get_attribute("aria-value" + name) for name in ("min", "now", "max")],
                         ["-60", "-12.5", "6"])
        self.assertIn("-12.5 dB", self.row("gain").text)
        self.assertIn('one of "mono", "stereo", "surround"', self.row("mode").text)
        self.row("mode").click()
        allowed = self.find_all("#details .allowed li")
        self.assertEqual([item.text for item in allowed], ['"mono"', '"stereo"', '"surround"'])
        self.assertEqual([item.get_attribute("aria-current") for item in allowed], [None, "true", None])
        self.find("#details p button").click()
        self.assertEqual(self.shown_path(), "@desc.mode")
        self.row("root").click()
        self.assertEqual(self.find("#details .places").text, "mute: default false")

    def test_only_numbers_in_a_range_have_a_slider(self):
        self.open("settings.kel", SETTINGS.replace("gain = -12.5", 'gain = "loud"'))
        row = self.row("gain")
        self.assertEqual(row.find_elements(By.CSS_SELECTOR, "[role=meter]"), [])
        self.assertIn("text", [chip.text for chip in row.find_elements(By.CSS_SELECTOR, ".chip")])
        self.open("settings.kel", SETTINGS.replace("min = -60.0", "min = 60.0"))
        self.assertEqual(self.row("gain").find_elements(By.CSS_SELECTOR, "[role=meter]"), [])

    def test_what_is_not_valid_is_marked_and_explained(self):
        self.open("settings.kel", SETTINGS)
        self.assertEqual(len(self.find_all(".row .chip.bad")), 1)
        self.find("#jumps .bad").click()
        self.assertEqual(self.active_label(), "pan")
        self.assertEqual(self.active().find_element(By.CSS_SELECTOR, ".chip.bad").text, "not valid")
        self.assertEqual(self.find("#details .violation").text,
                         "130 is not allowed (allowed: -100 to 100)")
        self.picture("invalid")

    def test_bytes_characters_and_blocks_are_shown_safely(self):
        values = record(STRING, b"a\xffb\\", 2) + record(STRING, "x\u202ey\nz".encode(), 3)
        self.open("a.kelb", record(ARRAY, values + record(5, bytes(range(40)), 4)))
        contents = [content.text for content in self.find_all(".row .content")][1:]
        self.assertEqual(contents, ['"a\\xffb\\\\"', '"x\\u202ey␊z"', "40 bytes"])
        self.row("0").click()
        self.assertIn("bytes that are not UTF-8 are shown as \\xHH", self.find("#details").text)
        self.row("1").click()
        self.assertEqual(self.find("#details pre").text, "x\\u202ey\nz")
        self.row("2").click()
        self.assertIn("000010  10 11 12", self.find("#details pre").text)
        self.assertIn("·!\"#$%&'", self.find("#details pre").text)

    def test_nothing_of_a_hostile_file_runs(self):
        name = "a" + ATTACK.replace('"', "'")
        self.write("a.json", json.dumps({name: ATTACK, "javascript:hurt": [ATTACK, "{{script}}"]}))
        self.open("a.json")
        for row in range(len(self.find_all(".row"))):
            self.find_all(".row")[row].click()
        self.find("#query").send_keys("onerror")
        self.assertIsNone(self.browser.run("return window.hurt ?? null"))
        self.assertEqual(self.find_all("img"), [])
        self.assertEqual(len(self.find_all("script")), 2)
        self.assertIn(ATTACK, self.find("#details").text)

    def test_the_policy_of_the_page_stops_every_other_script(self):
        self.open("a.json", "[]")
        self.browser.run("""const script = document.createElement("script");
                            script.textContent = "window.hurt = 1";
                            document.body.append(script);
                            document.body.setAttribute("onclick", "window.hurt = 2");
                            document.body.click();""")
        self.assertIsNone(self.browser.run("return window.hurt ?? null"))
        messages = [entry["message"] for entry in self.drain("browser")]
        self.assertEqual(len([text for text in messages if "Content Security Policy" in text]), 2)

    def test_several_roots_have_numbered_paths(self):
        self.open("a.json", '{"a": 1}\n[2]\nnull\n')
        self.assertEqual(self.labels(), ["root 1", "a", "root 2", "0", "root 3"])
        self.row("root 3").click()
        self.assertEqual(self.shown_path(), "3:.")
        self.row("0").click()
        self.assertEqual(self.shown_path(), "2:[0]")

    def test_many_values_do_not_slow_the_page(self):
        values = {"long": list(range(MANY // 2)),
                  "wide": [{"name": f"n{i}", "at": [i, i + 1]} for i in range(MANY // 10)]}
        self.open("a.json", json.dumps(values))
        slowest = {"unfold all": self.timed(CLICK, "unfold", (CLICK, "fold"))}
        height = self.browser.run("return document.getElementById('rows').clientHeight")
        row_height = self.browser.run("return document.querySelector('.row').clientHeight")
        self.assertGreater(height / row_height, MANY)
        for key, *before in (("End", "Home"), ("ArrowUp", "End"), ("PageUp", "End"), ("Home", "End"),
                             ("ArrowDown", "Home"), ("ArrowLeft", "Home"), ("ArrowRight", "Home", "ArrowLeft")):
            slowest[key] = self.timed(PRESS, key, (CLICK, "unfold"), *((PRESS, step) for step in before))
            self.assertLess(self.element_count(), MOST_ELEMENTS)
        for part in (0, 0.2, 0.5, 0.9, 1):
            slowest[f"scroll to {part}"] = self.timed(SCROLL, part)
            self.assertLess(self.element_count(), MOST_ELEMENTS)
            self.assertGreater(len(self.find_all(".row")), 20)
        for query in ("n", "n9999", "49999", "nowhere"):
            slowest[f"search {query}"] = self.timed(SEARCH, query)
        slowest["fold all"] = self.timed(CLICK, "fold", (CLICK, "unfold"))
        if os.environ.get("KEL_PICTURES"):
            print({what: round(time, 1) for what, time in slowest.items()})
        self.assertEqual({what: time for what, time in slowest.items() if time > QUICK}, {})

    def test_more_rows_than_a_scroll_bar_has_pixels(self):
        self.open("a.json", json.dumps(list(range(1000000))))
        self.press(Keys.END)
        self.assertEqual(self.shown_path(), "[999999]")
        self.assertTrue(self.is_in_sight(self.active()))
        self.press(*[Keys.ARROW_UP] * 3)
        self.assertEqual(self.shown_path(), "[999996]")
        self.assertTrue(self.is_in_sight(self.active()))

    def test_deep_trees_open(self):
        depth = 100000
        self.open("a.kel", "{ a = " * depth + '"bottom"' + "}" * depth)
        self.find("#query").send_keys("bottom")
        self.assertEqual(self.active().get_attribute("aria-level"), str(depth + 1))
        self.assertTrue(self.is_in_sight(self.active()))
        self.find("#fold").click()
        self.assertEqual(self.labels(), ["root"])
        self.find("#unfold").click()
        self.find("#tree").send_keys(Keys.END)
        self.assertEqual(self.active().get_attribute("aria-level"), str(depth + 1))

    def test_every_text_can_be_read_and_nothing_is_too_wide(self):
        self.open("settings.kel", SETTINGS)
        backgrounds = set()
        for width in WIDTHS:
            for scheme in ("light", "dark"):
                self.browser.screen(width, scheme)
                for link in ("#jumps button:nth-child(1)", "#jumps .bad"):
                    self.find(link).click()
                    self.assertTrue(self.is_in_sight(self.active()))
                    self.assertEqual(self.browser.run(UNREADABLE, LEAST_SIZE, LEAST_CONTRAST), [])
                    self.assertLessEqual(self.browser.run(SIDEWAYS), 0)
                    self.picture(f"{width}-{scheme}-{'invalid' if 'bad' in link else 'sharing'}")
                backgrounds.add(self.browser.run("return getComputedStyle(document.body).backgroundColor"))
        self.assertEqual(len(backgrounds), 2)


if __name__ == "__main__":
    unittest.main()
