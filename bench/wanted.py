"""The wanted figures: one row for each, with the most that is accepted."""
import dataclasses
import typing

from results import HEAPS, geometric_mean

POINTER_KINDS = ("Int", "String", "Array", "Struct")
SCALING_OPERATIONS = ("text_read", "text_write", "binary_write", "binary_read", "copy", "destroy")


@dataclasses.dataclass
class Row:
    """A figure and the most that it should be. A timed figure has a value for each heap."""

    what: str
    wanted: float
    unit: str
    figure: typing.Callable  # of a run, and of a heap if the row is timed; None if not measured
    is_timed: bool = True

    def figures(self, run):
        """Returns the figures of a run: two for a timed row, else one. Those not measured are None."""
        if self.is_timed:
            return [self.figure(run, heap) for heap in HEAPS]
        return [self.figure(run)]

    def verdict(self, runs):
        """Judges the worst figure of all runs."""
        figures = [figure for run in runs for figure in self.figures(run)]
        if None in figures:
            return "not measured"
        return "met" if max(figures) <= self.wanted else "missed"


def mean_ratio(operation, other="nlohmann"):
    return lambda run, heap: geometric_mean(run.ratios(heap, operation, other).values())


def ratio(operation, document):
    return lambda run, heap: run.ratios(heap, operation, "nlohmann").get(document)


def beside_raw(call):
    return lambda run, heap: run.ratios(heap, "header", "raw").get(call)


def worst_time(operation):
    """Returns a figure: the time of the slowest document."""
    def figure(run, heap):
        documents = run.times[heap].get(operation, {})
        return max((cell["KEL"] for cell in documents.values()), default=None)
    return figure


def pointer_time(run, heap):
    """Returns by how much equals is slower with a value than with null, for the slowest kind."""
    value = run.times[heap].get("host_equals_value", {})
    null = run.times[heap].get("host_equals_null", {})
    return max((value[kind]["KEL"] - null[kind]["KEL"] for kind in POINTER_KINDS
                if kind in value and kind in null), default=None)


def spread(operation):
    """Returns a figure: the slowest time per value divided by the fastest one, over all sizes; None
    with fewer than two."""
    def figure(run, heap):
        times = [cell["KEL"] for cell in run.times[heap].get("scaling_" + operation, {}).values()]
        return max(times) / min(times) if len(times) > 1 else None
    return figure


def bytes_per_value(what):
    return lambda run: run.memory.get(what, {}).get("KEL")


def document_bytes(run):
    return geometric_mean(cell["KEL"] for what, cell in run.memory.items()
                          if what.startswith("document/"))


def by_jq(figures, combine):
    """Returns a figure: both conversions divided by jq's, the sum of their times or the greater of
    their peaks."""
    def figure(run):
        table = figures(run)
        if not {"jq", "to_binary", "to_json"} <= table.keys():
            return None
        return combine((table["to_binary"], table["to_json"])) / table["jq"]
    return figure


ROWS = [
    Row("text read, whole", 0.45, "x nlohmann", mean_ratio("text_read")),
    Row("text write", 1.0, "x RapidJSON", mean_ratio("text_write", "RapidJSON")),
    Row("binary write", 1.0, "x nlohmann", mean_ratio("binary_write")),
    Row("binary read", 0.55, "x nlohmann", mean_ratio("binary_read")),
    Row("copy", 2.0, "x nlohmann", mean_ratio("copy")),
    Row("destroy after reading", 1.0, "x nlohmann", mean_ratio("destroy_after_read")),
    Row("destroy after copying", 1.0, "x nlohmann", mean_ratio("destroy_after_copy")),
    Row("a million: Ints in an array", 2.0, "x nlohmann", ratio("build_and_destroy", "ints")),
    Row("a million: structs of ten Ints", 2.0, "x nlohmann",
        ratio("build_and_destroy", "structs_of_ten")),
    Row("a million: Strings in nested arrays", 2.0, "x nlohmann",
        ratio("build_and_destroy", "nested_strings")),
    Row("lookup among 10 names", 0.8, "x nlohmann", ratio("lookup", "ten_names")),
    Row("lookup among 1,000 names", 0.8, "x nlohmann", ratio("lookup", "thousand_names")),
    Row("memory, over the documents", 150, "bytes/value", document_bytes, is_timed=False),
    Row("memory, Int in an array", 130, "bytes", bytes_per_value("int_in_array"), is_timed=False),
    Row("memory, String in a struct of ten", 200, "bytes", bytes_per_value("string_in_struct"),
        is_timed=False),
    Row("pointer to implementation", 5, "ns", pointer_time),
    Row("Array::setVar", 25, "ns", worst_time("host_array_set_var")),
    Row("Array::setInt", 25, "ns", worst_time("host_array_set_int")),
    Row("Struct::setInt", 25, "ns", worst_time("host_struct_set_int")),
    Row("all names of a struct", 15, "ns each", worst_time("host_all_names")),
    Row("all variables of a struct", 15, "ns each", worst_time("host_all_variables")),
    *(Row(f"kel.hpp, {call.replace('_', ' ')}", 1.05, "x raw calls", beside_raw(call))
      for call in ("read", "put", "assign", "make_and_release")),
    *(Row(f"spread over sizes, {operation.replace('_', ' ')}", 1.3, "x fastest", spread(operation))
      for operation in SCALING_OPERATIONS),
    Row("kel convert and back, time", 0.7, "x jq", by_jq(lambda run: run.seconds, sum),
        is_timed=False),
    Row("kel convert and back, memory", 1.0, "x jq", by_jq(lambda run: run.kilobytes, max),
        is_timed=False),
]
