#!/bin/sh
# Counts which lines and branches the tests reach, and judges the figures.
#
#   scripts/coverage.sh [--report] [PATH...]
#
# Builds the preset coverage, runs the tests, and prints a table of the folders of src, tools/kel and
# include/kel/cpp. PATH is a file or folder of these: then the lines and branches in it that were not
# reached are listed too. --report judges the last run again, without building or running anything.
#
# docs/testing.md says how the counts are made, and how a comment excuses what nothing can reach.
set -eu
cd "$(dirname "$0")/.."

folder=build/coverage
counts=$folder/counts
binaries="-object=$folder/lib/libkel.so -object=$folder/bin/kel_hpp_tests -object=$folder/bin/kel"

# Every process adds its counts to the files of the program and of the library that it runs. Some
# tests run the tool as other users, so these files are made before, and everybody can write them.
run() {
    scripts/install-deps.sh build tool test coverage
    cmake --preset coverage -DKEL_UNITY_BUILD=ON -DKEL_BUILD_TOOL=ON -DKEL_BUILD_EXAMPLES=OFF \
        -DKEL_BUILD_TESTS=ON
    cmake --build --preset coverage
    rm -rf "$counts"
    mkdir -p "$counts"
    export LLVM_PROFILE_FILE="$PWD/$counts/%m.profraw"
    $folder/bin/kel --version
    chmod a+w "$counts" "$counts"/*
    ctest --preset coverage --parallel "$(nproc)"
    unset LLVM_PROFILE_FILE
    llvm-profdata-14 merge -sparse -o "$counts/all.profdata" "$counts"/*.profraw
    # shellcheck disable=SC2086 # a list of words
    for format in text lcov; do
        llvm-cov-14 export "$folder/bin/kel_unit_tests" $binaries -skip-functions -skip-expansions \
            -instr-profile="$counts/all.profdata" -format=$format >"$counts/$format"
    done
}

if [ "${1:-}" = --report ]; then
    shift
else
    run
fi
exec python3 -B scripts/coverage/report.py "$counts" "$@"
