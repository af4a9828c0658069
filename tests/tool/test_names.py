from support import ToolTest


class Names(ToolTest):
    """File names are UTF-8 on every system."""

    def test_names_beyond_ascii_are_read_and_written(self):
        self.write("café 設定.json", "[1, 2]")
        self.ok("convert", "café 設定.json", "Übung 😀.kelb")
        self.assertEqual(self.files(), sorted(["café 設定.json", "Übung 😀.kelb"]))
        self.assertEqual(self.ok("show", "Übung 😀.kelb").out, b"[\n\t1\n\t2\n]\n")
        self.ok("check", "Übung 😀.kelb")

    def test_messages_name_the_file_as_it_was_given(self):
        self.fails(3, "kel: настройки.kel: No such file or directory\n", "show",
                   "настройки.kel")
