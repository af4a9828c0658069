// Runs the benchmarks. The option --aged runs them in an aged heap (see AgedHeap.h). Two settings
// come from the environment:
//   KEL_BENCH_DATA        folder of JSON documents to use in addition to the generated one
//   KEL_BENCH_MAX_VALUES  size of the largest tree of the scaling benchmarks, 10000000 by default;
//                         that size takes about 8 GB of memory
#include "AgedHeap.h"
#include "Benchmarks.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <kel/kel.h>
#include <optional>

namespace {

std::size_t maximumFromEnvironment() {
    const char* text = std::getenv("KEL_BENCH_MAX_VALUES");
    return text == nullptr ? 10000000 : std::stoul(text);
}

void run(bool isAged) {
    std::optional<bench::AgedHeap> aged;
    if (isAged) {
        aged.emplace();
    }
    const std::vector<bench::Document> documents = bench::loadDocuments();
    bench::registerDocumentBenchmarks(documents);
    bench::registerBuildBenchmarks();
    bench::registerLookupBenchmarks();
    bench::registerInterfaceBenchmarks();
    bench::registerHeaderBenchmarks();
    bench::registerScalingBenchmarks(maximumFromEnvironment());
    benchmark::RunSpecifiedBenchmarks();
}

/// Removes the option --aged from the arguments. \return whether it was there
bool takeAged(int& count, char** arguments) {
    if (count < 2 || std::strcmp(arguments[1], "--aged") != 0) {
        return false;
    }
    std::copy(arguments + 2, arguments + count + 1, arguments + 1);
    --count;
    return true;
}

} // namespace

int main(int count, char** arguments) {
    const bool isAged = takeAged(count, arguments);
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) {
        return 2;
    }
    try {
        run(isAged);
        return 0;
    } catch (KELException* failure) {
        std::fprintf(stderr, "kel_bench: %s\n", failure->getMessage());
        DeleteKELException(failure);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kel_bench: %s\n", failure.what());
    }
    return 1;
}
