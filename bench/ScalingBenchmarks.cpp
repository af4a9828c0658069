#include "Benchmarks.h"
#include "KelTree.h"
#include "Measure.h"

#include <functional>

namespace bench {

namespace {

/// The generated document of one size in the forms that the operations start from. Only one size is
/// held at a time, because the largest one takes gigabytes.
struct Prepared {
    std::size_t values = 0;
    Tree tree;
    std::string text;
    std::string bytes;
};

const Prepared& prepared(std::size_t values) {
    static Prepared current;
    static std::size_t size = 0;
    if (size != values) {
        current = Prepared();
        const Document document = makeRecords(values);
        current.tree = makeTree(document.json);
        current.text = textOf(current.tree.get());
        current.bytes = bytesOf(current.tree.get());
        current.values = document.values;
        size = values;
    }
    return current;
}

void add(const char* operation, std::size_t size,
         const std::function<void(benchmark::State&, const Prepared&)>& measure) {
    const std::string name = std::string("scaling_") + operation + "/KEL/" + std::to_string(size);
    benchmark::RegisterBenchmark(name.c_str(), [measure, size](benchmark::State& state) {
        measure(state, prepared(size));
    })->Unit(benchmark::kMicrosecond);
}

void addSize(std::size_t size) {
    add("text_read", size, [](benchmark::State& state, const Prepared& p) {
        measureMaking(state, p.values, [&p] { return readText(p.text); });
    });
    add("text_write", size, [](benchmark::State& state, const Prepared& p) {
        measureWork(state, p.values, [&p] { return writeText(p.tree.get()); });
    });
    add("binary_write", size, [](benchmark::State& state, const Prepared& p) {
        measureWork(state, p.values, [&p] { return writeBinary(p.tree.get()); });
    });
    add("binary_read", size, [](benchmark::State& state, const Prepared& p) {
        measureMaking(state, p.values, [&p] { return readBinary(p.bytes); });
    });
    add("copy", size, [](benchmark::State& state, const Prepared& p) {
        measureMaking(state, p.values, [&p] { return Tree(p.tree->copy()); });
    });
}

} // namespace

void registerScalingBenchmarks(std::size_t maximum) {
    for (std::size_t size = 10000; size <= maximum; size *= 10) {
        addSize(size);
    }
}

} // namespace bench
