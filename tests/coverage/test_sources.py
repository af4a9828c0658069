"""Tests how scripts/coverage reads counts and excuses: test_sources.py FOLDER-OF-THE-SCRIPTS"""
import json
import os
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv.pop(1))
import sources

TEXT = """\
void first() {
    if (a) { // not reached: a is never true
        // not reached: neither is b
        if (b ||
            c) {
            leave();
        }
    }
    switch (kind) {
    }
}
"""


class Excuses(unittest.TestCase):
    def test_at_the_end_of_a_line_it_is_about_that_line(self):
        self.assertEqual(list(dict(sources.excuses(TEXT.splitlines()))[2]), [2])

    def test_on_a_line_of_its_own_it_is_about_the_statement_after_it(self):
        self.assertEqual(list(dict(sources.excuses(TEXT.splitlines()))[3]), [4, 5, 6, 7])

    def test_before_labels_it_is_about_them_and_what_they_lead_to(self):
        text = ["// not reached: no", "case a:", "case b:", "    f();", "    break;", "case c:"]
        self.assertEqual(list(dict(sources.excuses(text))[1]), [2, 3, 4, 5])

    def test_other_comments_excuse_nothing(self):
        self.assertEqual(dict(sources.excuses(["f(); // not reached", "// not reached:", "g();"])), {})


class Counts(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)
        os.mkdir("src")
        pathlib.Path("src", "a.cpp").write_text(TEXT, encoding="utf-8")

    def read(self, lines, branches):
        """Returns the source with these counts of lines and branches."""
        name = os.path.abspath("src/a.cpp")
        other = os.path.abspath("tests/a.cpp")
        conditions = "".join(f"BRDA:{branch[0]},0,0,0\n" for branch in branches)
        pathlib.Path("lcov").write_text(
            f"SF:{other}\nDA:1,0\nend_of_record\n"
            f"SF:{name}\n" + "".join(f"DA:{line},{count}\n" for line, count in lines) + conditions,
            encoding="utf-8")
        pathlib.Path("text").write_text(json.dumps({"data": [{"files": [
            {"filename": other, "branches": []}, {"filename": name, "branches": branches}]}]}),
            encoding="utf-8")
        read = sources.read(".", ["src"])
        self.assertEqual(list(map(str, read)), [os.path.join("src", "a.cpp")])
        return read[pathlib.PurePath("src/a.cpp")]

    def test_a_line_is_missed_if_it_never_ran(self):
        source = self.read([(1, 5), (2, 0), (6, 0)], [])
        self.assertEqual(source.missed_lines(), [2, 6])

    def test_a_closing_brace_is_not_counted(self):
        self.assertEqual(self.read([(1, 5), (11, 0)], []).missed_lines(), [])

    def test_the_instantiations_of_a_branch_are_added_up(self):
        source = self.read([(2, 5)], [[2, 9, 2, 10, 0, 5, 0, 0, 4], [2, 9, 2, 10, 3, 0, 0, 0, 4],
                                      [4, 13, 4, 14, 0, 7, 0, 0, 4]])
        self.assertEqual([(branch.line, branch.column, branch.outcome)
                          for branch in source.missed_branches()], [(4, 13, "true")])

    def test_the_hidden_branch_of_a_switch_is_left_out(self):
        source = self.read([(9, 5)], [[9, 13, 9, 17, 0, 5, 0, 0, 4]])
        self.assertEqual(source.missed_branches(), [])

    def test_a_comment_is_wrong_if_nothing_in_its_statement_is_missed(self):
        self.assertEqual(self.read([(2, 0), (6, 1)], []).wrong_excuses(), [3])
        self.assertEqual(self.read([(2, 1), (6, 0)], []).wrong_excuses(), [2])


if __name__ == "__main__":
    unittest.main()
