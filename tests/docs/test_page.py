#!/usr/bin/env python3
"""The blocks of a page are read as check_pages.py describes, and mistakes are found."""
import pathlib
import tempfile
import unittest

from page import Page, dead_links
from workshop import bytes_of_dump


def page_of(text):
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, "page.md")
        path.write_text(text, encoding="utf-8")
        return Page(path)


class Blocks(unittest.TestCase):
    def test_a_block_has_its_language_its_file_and_its_line(self):
        block = page_of("# Title\n\n```kel room.kel\n{ a = 1 }\n```\n").blocks[0]
        self.assertEqual((block.language, block.name, block.text, block.line),
                         ("kel", "room.kel", "{ a = 1 }\n", 4))
        self.assertTrue(block.is_file)

    def test_a_main_makes_a_program(self):
        blocks = page_of("```cpp\nint main() {}\n```\n```cpp\nrun();\n```\n").blocks
        self.assertEqual([block.is_program for block in blocks], [True, False])
        self.assertEqual([block.is_fragment for block in blocks], [False, True])

    def test_output_and_status_belong_to_the_block_before(self):
        block = page_of("```sh\nrun\n```\n\nends with status 3 and prints\n\n    a\n\n      b\n").blocks[0]
        self.assertEqual((block.expected, block.status), ("a\n\n  b", 3))

    def test_comments_are_notes_about_the_next_block(self):
        blocks = page_of("<!-- given:\nint a;\n-->\n```cpp\nuse(a);\n```\n\n"
                         "<!-- not run: it is slow -->\n```sh\nsleep\n```\n").blocks
        self.assertEqual((blocks[0].given, blocks[0].given_line), ("int a;\n", 2))
        self.assertEqual((blocks[0].not_run, blocks[1].not_run), ("", "it is slow"))

    def test_blocks_in_comments_are_read(self):
        page = page_of("<!--\n```json a.json\n{}\n```\n-->\n```sh\ncat a.json\n```\n")
        self.assertEqual([block.language for block in page.blocks], ["json", "sh"])

    def test_a_dump_is_read_up_to_its_words(self):
        self.assertEqual(bytes_of_dump("4B 45  magic\n  00\n"), b"KE\0")


class Faults(unittest.TestCase):
    def faults_in(self, text):
        return page_of(text).faults

    def test_correct_pages_have_none(self):
        self.assertEqual(self.faults_in("```sh\nls\n```\n\nThe command prints\n\n    a\n\nText.\n"), [])

    def test_a_block_without_a_language_is_found(self):
        self.assertEqual(self.faults_in("```\nls\n```\n"), ["1: this block has no language"])

    def test_a_block_without_an_end_is_found(self):
        self.assertEqual(self.faults_in("```sh\nls\n"), ["2: this block has no end"])

    def test_indented_text_that_is_not_output_is_found(self):
        fault = "this indented block is not the output of the block before it"
        self.assertEqual(self.faults_in("It prints\n\n    ls\n"), [f"3: {fault}"])
        self.assertEqual(self.faults_in("```sh\nls\n```\n\nText.\n\n    ls\n"), [f"7: {fault}"])

    def test_missing_output_is_found(self):
        for rest in ["Text.\n", "```sh\nls\n```\n", ""]:
            self.assertEqual(self.faults_in(f"```sh\nls\n```\n\nprints\n\n{rest}"),
                             ["5: no output follows"], rest)


class Links(unittest.TestCase):
    def test_links_lead_to_files_and_headings(self):
        with tempfile.TemporaryDirectory() as folder:
            page = pathlib.Path(folder, "page.md")
            page.write_text("# A `b`: c\n\n[1](page.md#a-b-c) [2](#a-b-c) [3](https://host/x) [4](.)\n"
                            "[5](gone.md) [6](#gone) `[7](gone)`\n")
            self.assertEqual(list(dead_links(page)), ["gone.md", "#gone"])


if __name__ == "__main__":
    unittest.main()
