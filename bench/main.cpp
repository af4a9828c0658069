// Runs the benchmarks. Two settings come from the environment:
//   KEL_BENCH_DATA        folder of JSON documents to use beside the generated one
//   KEL_BENCH_MAX_VALUES  greatest tree of the scaling benchmarks, 10000000 if not set; that size
//                         takes about 8 GB of memory
#include "Benchmarks.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <kel/kel.h>

namespace {

std::size_t maximumFromEnvironment() {
    const char* text = std::getenv("KEL_BENCH_MAX_VALUES");
    return text == nullptr ? 10000000 : std::stoul(text);
}

void run() {
    const char* folder = std::getenv("KEL_BENCH_DATA");
    std::vector<bench::Document> documents = bench::loadDocuments(folder == nullptr ? "" : folder);
    documents.push_back(bench::makeRecords(100000));
    bench::registerDocumentBenchmarks(documents);
    bench::registerValueBenchmarks();
    bench::registerScalingBenchmarks(maximumFromEnvironment());
    benchmark::RunSpecifiedBenchmarks();
}

} // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) {
        return 2;
    }
    try {
        run();
        return 0;
    } catch (KELException* failure) {
        std::fprintf(stderr, "kel_bench: %s\n", failure->getMessage());
        DeleteKELException(failure);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kel_bench: %s\n", failure.what());
    }
    return 1;
}
