#include "Benchmarks.h"
#include "GeneratedDocument.h"
#include "KelTree.h"
#include "Measure.h"

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
        const Document document = makeDocument("records", makeRecords(values));
        current.tree = makeTree(document.json);
        current.text = textOf(current.tree.get());
        current.bytes = bytesOf(current.tree.get());
        current.values = document.values;
        size = values;
    }
    return current;
}

using Measure = void (*)(benchmark::State&, const Prepared&);

void addOperation(const char* operation, std::size_t size, Measure measure) {
    add(std::string("scaling_") + operation, "KEL", std::to_string(size),
        [measure, size](benchmark::State& state) { measure(state, prepared(size)); });
}

void addSize(std::size_t size) {
    addOperation("text_read", size, [](benchmark::State& state, const Prepared& p) {
        measureMaking(state, p.values, [&p] { return readText(p.text); });
    });
    addOperation("text_write", size, [](benchmark::State& state, const Prepared& p) {
        measureWork(state, p.values, [&p] { return writeText(p.tree.get()); });
    });
    addOperation("binary_write", size, [](benchmark::State& state, const Prepared& p) {
        Bytes bytes;
        writeBinary(p.tree.get(), bytes); // so that the buffer has grown
        measureWork(state, p.values, [&] { return writeBinary(p.tree.get(), bytes); });
    });
    addOperation("binary_read", size, [](benchmark::State& state, const Prepared& p) {
        measureMaking(state, p.values, [&p] { return readBinary(p.bytes); });
    });
    addOperation("copy", size, [](benchmark::State& state, const Prepared& p) {
        measureMaking(state, p.values, [&p] { return Tree(p.tree->copy()); });
    });
    addOperation("destroy", size, [](benchmark::State& state, const Prepared& p) {
        measureDestroying(state, p.values, [&p] { return Tree(p.tree->copy()); });
    });
}

} // namespace

void registerScalingBenchmarks(std::size_t maximum) {
    for (std::size_t size = 10000; size <= maximum; size *= 10) {
        addSize(size);
    }
}

} // namespace bench
