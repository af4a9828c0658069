#!/usr/bin/env python3
"""Tests how the report of the benchmarks judges their results.

    test_report.py FOLDER-OF-THE-REPORT
"""
import json
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv.pop(1))

import report
from results import HEAPS, read_run
from wanted import ROWS


def times(names_and_nanoseconds):
    """Returns an output of kel_bench."""
    return json.dumps({"benchmarks": [{"run_name": name, "per_value": nanoseconds / 1e9}
                                      for name, nanoseconds in names_and_nanoseconds]})


class Report(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)

    def run_of(self, fresh=(), aged=None, memory="", convert="", name="run"):
        folder = pathlib.Path(self.temporary.name, name)
        folder.mkdir()
        for heap, results in zip(HEAPS, (fresh, fresh if aged is None else aged)):
            (folder / f"{heap}-1-all.json").write_text(times(results))
        (folder / "memory.txt").write_text(memory)
        (folder / "convert.txt").write_text(convert)
        return read_run(folder)

    def verdict(self, what, *runs):
        row, = [row for row in ROWS if row.what == what]
        return row.verdict(runs)

    def figures(self, what, run):
        row, = [row for row in ROWS if row.what == what]
        return [round(figure, 6) for figure in row.figures(run)]

    def test_a_ratio_is_the_geometric_mean_over_the_documents(self):
        run = self.run_of([("copy/KEL/a", 10), ("copy/nlohmann/a", 10),
                           ("copy/KEL/b", 80), ("copy/nlohmann/b", 20)])
        self.assertEqual(self.figures("copy", run), [2, 2])
        self.assertEqual(self.verdict("copy", run), "met")

    def test_the_fastest_of_repeated_measurements_counts(self):
        run = self.run_of([("copy/KEL/a", 30), ("copy/KEL/a", 20), ("copy/nlohmann/a", 10)])
        self.assertEqual(self.figures("copy", run), [2, 2])

    def test_the_worse_heap_counts(self):
        fine = [("copy/KEL/a", 10), ("copy/nlohmann/a", 10)]
        slow = [("copy/KEL/a", 30), ("copy/nlohmann/a", 10)]
        self.assertEqual(self.verdict("copy", self.run_of(fine, slow, name="1")), "missed")
        self.assertEqual(self.verdict("copy", self.run_of(slow, fine, name="2")), "missed")

    def test_the_worse_run_counts(self):
        fine = self.run_of(memory="int_in_array KEL 130", name="1")
        large = self.run_of(memory="int_in_array KEL 131", name="2")
        self.assertEqual(self.verdict("memory, Int in an array", fine, fine), "met")
        self.assertEqual(self.verdict("memory, Int in an array", fine, large), "missed")

    def test_a_figure_without_results_was_not_measured(self):
        run = self.run_of()
        for row in ROWS:
            self.assertEqual(row.verdict([run]), "not measured", row.what)

    def test_text_is_written_next_to_rapidjson(self):
        run = self.run_of([("text_write/KEL/a", 10), ("text_write/nlohmann/a", 5),
                           ("text_write/RapidJSON/a", 20)])
        self.assertEqual(self.figures("text write", run), [0.5, 0.5])

    def test_finding_an_implementation_is_a_difference_for_the_slowest_kind(self):
        run = self.run_of([("host_equals_value/KEL/Int", 6), ("host_equals_null/KEL/Int", 2),
                           ("host_equals_value/KEL/Array", 9), ("host_equals_null/KEL/Array", 2)])
        self.assertEqual(self.figures("pointer to implementation", run), [7, 7])

    def test_the_slowest_document_counts_for_a_bound_in_nanoseconds(self):
        run = self.run_of([("host_all_names/KEL/a", 6), ("host_all_names/KEL/b", 8)])
        self.assertEqual(self.figures("all names of a struct", run), [8, 8])

    def test_a_spread_is_the_slowest_by_the_fastest_size(self):
        run = self.run_of([("scaling_copy/KEL/10000", 12), ("scaling_copy/KEL/100000", 10),
                           ("scaling_copy/KEL/1000000", 13)])
        self.assertEqual(self.figures("spread over sizes, copy", run), [1.3, 1.3])

    def test_documents_count_alike_for_memory(self):
        run = self.run_of(memory="document/a KEL 100\ndocument/b KEL 225\nint_in_array KEL 1\n"
                                 "document/a nlohmann 1")
        self.assertEqual(self.figures("memory, over the documents", run), [150])

    def test_conversions_take_their_times_together_and_the_greater_peak(self):
        run = self.run_of(convert="jq 2 100\nto_binary 0.5 90\nto_json 0.5 120\nto_json 0.6 130")
        self.assertEqual(self.figures("kel convert and back, time", run), [0.5])
        self.assertEqual(self.figures("kel convert and back, memory", run), [1.2])

    def test_a_failed_benchmark_ends_the_report(self):
        folder = pathlib.Path(self.temporary.name)
        (folder / "fresh-1.json").write_text(json.dumps({"benchmarks": [
            {"name": "copy/KEL/a", "error_occurred": True, "error_message": "no memory"}]}))
        with self.assertRaisesRegex(SystemExit, "copy/KEL/a failed: no memory"):
            read_run(folder)

    def test_caches_of_data_are_read_in_order(self):
        folder = pathlib.Path(self.temporary.name)
        for index, kind, level, size in ((0, "Data", 1, "48K"), (1, "Instruction", 1, "64K"),
                                         (2, "Unified", 2, "2048K")):
            cache = folder / f"index{index}"
            cache.mkdir()
            (cache / "type").write_text(kind + "\n")
            (cache / "level").write_text(f"{level}\n")
            (cache / "size").write_text(size + "\n")
        self.assertEqual(report.read_caches(folder),
                         [("the level 1 cache", 49152), ("the level 2 cache", 2097152)])


if __name__ == "__main__":
    unittest.main()
