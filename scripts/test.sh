#!/bin/sh
# Builds everything twice, optimized and sanitized, and runs every test of both. Stops at the first
# preset that fails, so the summary of CTest at the end always is the one that counts.
set -eu
cd "$(dirname "$0")/.."

scripts/install-deps.sh build tool test bench package

# Large documents that may lie beside the repository; the tool's tests convert them if they do.
data=$PWD/../shared/data
[ -d "$data" ] || data=

# What is asked for by name must be there: no test goes missing quietly.
for preset in release asan; do
    bench=OFF
    [ $preset = asan ] || bench=ON
    cmake --preset $preset -DKEL_BUILD_TOOL=ON -DKEL_BUILD_EXAMPLES=ON -DKEL_BUILD_TESTS=ON \
        -DKEL_BUILD_BENCH=$bench -DKEL_TEST_DATA="$data"
    cmake --build --preset $preset
    ctest --preset $preset --parallel "$(nproc)"
done
