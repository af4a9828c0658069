#!/bin/sh
# Measures speed and memory and compares them with other libraries.
#
#   scripts/bench.sh [OPTION OF GOOGLE BENCHMARK...]
#
# KEL_BENCH_DATA is a folder of JSON documents to measure beside the generated ones. The default is
# ../shared/data, next to the repository. KEL_BENCH_MAX_VALUES is the size of the largest generated
# tree; the default of ten million takes about 8 GB of memory.
set -eu
cd "$(dirname "$0")/.."

scripts/install-deps.sh build bench
cmake --preset release -DKEL_BUILD_BENCH=ON
cmake --build --preset release --target kel_bench kel_bench_memory

KEL_BENCH_DATA=${KEL_BENCH_DATA:-$PWD/../shared/data}
export KEL_BENCH_DATA
results=build/release/bench
echo "Measuring everything three times. This takes several minutes."
build/release/bin/kel_bench --benchmark_repetitions=3 --benchmark_min_time=0.3 \
    --benchmark_out=$results/results.json --benchmark_out_format=json "$@" >$results/results.txt
build/release/bin/kel_bench_memory >$results/memory.txt
python3 -B bench/report.py $results/results.json $results/memory.txt
