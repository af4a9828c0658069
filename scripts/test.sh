#!/bin/sh
# Builds and runs every test.
#
#   scripts/test.sh            on this machine: once optimized and once sanitized
#   scripts/test.sh threads    on this machine: the tests of threads, with the thread sanitizer
#   scripts/test.sh linux32    for 32-bit Linux
#   scripts/test.sh windows    KEL.dll for 32-bit Windows, run under Wine
#
# Stops at the first preset that fails, so the last summary of CTest is always the one that counts.
# Ends with status 77 if everything for Windows was built but there is no Wine to run it. In that
# case everything that needs no Wine has been checked.
set -eu
cd "$(dirname "$0")/.."

# Large documents can lie beside the repository. If they do, the tool's tests convert them.
data=$PWD/../shared/data
[ -d "$data" ] || data=

# The locale with a decimal comma has been installed; tests that need it must not be skipped.
export KEL_REQUIRE_LOCALE=1

# build PRESET [OPTION...]: builds with every feature required, so that no test is silently missing.
build() {
    preset=$1
    shift
    cmake --preset "$preset" -DKEL_BUILD_TOOL=ON -DKEL_BUILD_EXAMPLES=ON -DKEL_BUILD_TESTS=ON \
        -DKEL_TEST_DATA="$data" "$@"
    cmake --build --preset "$preset"
}

# run PRESET [OPTION...]
run() {
    preset=$1
    shift
    ctest --preset "$preset" --parallel "$(nproc)" "$@"
}

case ${1:-} in
    "")
        scripts/install-deps.sh build tool test bench package docs browser
        build release -DKEL_BUILD_BENCH=ON
        run release
        build asan -DKEL_BUILD_BENCH=OFF
        run asan
        ;;
    threads)
        scripts/install-deps.sh build test
        cmake --preset tsan -DKEL_BUILD_TOOL=OFF -DKEL_BUILD_EXAMPLES=OFF -DKEL_BUILD_TESTS=ON
        cmake --build --preset tsan
        ctest --preset tsan
        ;;
    linux32)
        scripts/install-deps.sh build tool test linux32 package
        # The packages of both processors are installed side by side.
        cmake --preset release -DKEL_BUILD_TOOL=ON
        cmake --build --preset release --target kel kel_tool
        build linux32 -DKEL_NATIVE_BUILD="$PWD/build/release"
        run linux32
        ;;
    windows)
        status=0
        scripts/install-deps.sh build tool test windows || status=$?
        [ $status = 0 ] || [ $status = 10 ] || exit $status
        build windows
        if [ $status = 10 ]; then
            run windows --label-regex without-wine
            echo "Windows tests not run: $(cat build/no-wine)"
            exit 77
        fi
        run windows
        ;;
    *)
        echo "usage: $0 [threads|linux32|windows]" >&2
        exit 2
        ;;
esac
