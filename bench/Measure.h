/// \file
/// Measures all benchmarks in the same way, so that the libraries can be compared.
#pragma once

#include <benchmark/benchmark.h>
#include <cstddef>
#include <string>
#include <utility>

namespace bench {

/// Registers a benchmark under the name operation/library/document.
template <class Function>
void add(const std::string& operation, const char* library, const std::string& document,
         Function function) {
    const std::string name = operation + "/" + library + "/" + document;
    benchmark::RegisterBenchmark(name.c_str(), function)->Unit(benchmark::kMicrosecond);
}

/// Reports the time of one iteration divided by the number of values that it handled.
inline void reportPerValue(benchmark::State& state, std::size_t values) {
    state.counters["per_value"] = benchmark::Counter(static_cast<double>(values),
                                                     benchmark::Counter::kIsIterationInvariantRate |
                                                         benchmark::Counter::kInvert);
}

/// Measures making a tree. Destroying it again is not measured.
template <class Make> void measureMaking(benchmark::State& state, std::size_t values, Make make) {
    for ([[maybe_unused]] auto iteration : state) {
        auto result = make();
        benchmark::DoNotOptimize(result);
        state.PauseTiming();
        { [[maybe_unused]] auto destroyed = std::move(result); }
        state.ResumeTiming();
    }
    reportPerValue(state, values);
}

/// Measures destroying a tree. Making it is not measured.
template <class Make>
void measureDestroying(benchmark::State& state, std::size_t values, Make make) {
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        auto result = make();
        benchmark::DoNotOptimize(result);
        state.ResumeTiming();
        { [[maybe_unused]] auto destroyed = std::move(result); }
    }
    reportPerValue(state, values);
}

/// Measures work that keeps nothing: its results are freed within the measured time.
template <class Work> void measureWork(benchmark::State& state, std::size_t values, Work work) {
    for ([[maybe_unused]] auto iteration : state) {
        auto result = work();
        benchmark::DoNotOptimize(result);
    }
    reportPerValue(state, values);
}

} // namespace bench
