#!/bin/sh
# Measures speed and memory, compares them with other libraries and with jq, and judges the figures.
#
#   scripts/bench.sh [--twice] [OPTION OF GOOGLE BENCHMARK...]
#
# Every operation of every library runs in processes of its own, with a fresh heap and with an aged
# one (see bench/AgedHeap.h). The worse of the two figures counts. With --twice everything is
# measured twice, and the worst of all four figures counts.
#
# KEL_BENCH_DATA is a folder of JSON documents to measure beside the generated ones; the default is
# that of the package iso-codes. KEL_BENCH_MAX_VALUES is the size of the largest generated tree; the
# default of ten million takes about 8 GB of memory.
set -eu
cd "$(dirname "$0")/.."

runs="run-1"
if [ "${1:-}" = --twice ]; then
    runs="run-1 run-2"
    shift
fi

scripts/install-deps.sh build tool demo bench
cmake --preset release -DKEL_BUILD_BENCH=ON -DKEL_BUILD_TOOL=ON
cmake --build --preset release \
    --target kel_tool kel_bench kel_bench_memory kel_bench_document

KEL_BENCH_DATA=${KEL_BENCH_DATA:-/usr/share/iso-codes/json}
export KEL_BENCH_DATA
[ -d "$KEL_BENCH_DATA" ] || {
    echo "bench.sh: KEL_BENCH_DATA is not a folder: $KEL_BENCH_DATA" >&2
    exit 2
}
bin=build/release/bin
results=build/release/bench
rm -rf $results/run-*

# If several processes measure the same, the fastest counts. They take turns, so that a busy spell
# of the machine does not fall on one library alone. The operations of the host interface share a
# process, because they hardly touch the heap. The operations on trees of many sizes share a process
# and its trees.
groups=$($bin/kel_bench --benchmark_list_tests=true | cut -d/ -f1,2 |
    sed -E 's/^(host|scaling)_.*/\1_.*/' | sort -u)

# measure HEAP FILE FILTER OPTION...
measure() {
    aged=""
    [ "$1" = fresh ] || aged=--aged
    out=$2
    filter=$3
    shift 3
    $bin/kel_bench $aged --benchmark_filter="^$filter/" --benchmark_min_time=0.05 \
        --benchmark_out="$out" --benchmark_out_format=json "$@" >$results/output.txt 2>&1 || {
        cat $results/output.txt >&2
        exit 1
    }
}

echo "Measuring. Each run takes several minutes."
for run in $runs; do
    folder=$results/$run
    mkdir -p "$folder"
    for turn in 1 2; do
        for group in $groups; do
            for heap in fresh aged; do
                name=$heap-$turn-$(echo "$group" | tr -d '/.*')
                measure $heap "$folder/$name.json" "$group" "$@"
            done
        done
    done
    $bin/kel_bench_memory >"$folder/memory.txt"
    bench/convert.sh $bin 30000000 >"$folder/convert.txt"
done
python3 -B bench/report.py $results/run-*
