#!/bin/sh
# Builds and runs every test.
#
#   scripts/test.sh            on this machine: once optimized by g++ and once sanitized by clang
#   scripts/test.sh threads    on this machine: the tests of threads, with the thread sanitizer
#   scripts/test.sh linux32    for 32-bit Linux
#   scripts/test.sh windows    KEL.dll for 32-bit Windows, run under Wine
#   scripts/test.sh windows64  the same for 64-bit Windows
#   scripts/test.sh windows-msvc  KEL.dll for 32-bit Windows in Microsoft's ABI
#
# Stops at the first preset that fails, so the last summary of CTest is always the one that counts.
# Ends with status 77 if everything for Windows was built but cannot be run, because Wine is missing and
# this is not root on Debian. In that case everything that needs no Wine has been checked. KEL_WINE
# chooses where Wine is installed, see scripts/install-wine.sh. KEL_TEST_DATA names a folder of JSON
# documents to test with.
set -eu
cd "$(dirname "$0")/.."

# The tool's tests convert the documents of this folder: those of iso-codes, or others.
data=${KEL_TEST_DATA:-/usr/share/iso-codes/json}

# The locale with a decimal comma has been installed; tests that need it must not be skipped.
export KEL_REQUIRE_LOCALE=1

# build PRESET [OPTION...]: builds with every feature required, so that no test is silently missing.
# The optimized build compiles every file of the library and of the tool alone. All others are faster.
build() {
    preset=$1
    shift
    unity=ON
    [ "$preset" != release ] || unity=TESTS
    cmake --preset "$preset" -DKEL_UNITY_BUILD=$unity -DKEL_BUILD_TOOL=ON -DKEL_BUILD_EXAMPLES=ON -DKEL_BUILD_TESTS=ON \
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
        scripts/install-deps.sh build tool test demo bench package docs browser
        build release -DKEL_BUILD_BENCH=ON
        run release
        # clang, because every part has to build with it too. It also takes a quarter of the time of g++.
        build clang-asan -DKEL_BUILD_BENCH=OFF
        run clang-asan
        ;;
    threads)
        scripts/install-deps.sh build test
        cmake --preset tsan -DKEL_UNITY_BUILD=ON -DKEL_BUILD_TOOL=OFF -DKEL_BUILD_EXAMPLES=OFF -DKEL_BUILD_TESTS=ON
        cmake --build --preset tsan
        # The thread sanitizer needs the addresses that it reserves, which may be taken where the system
        # chooses addresses at random from a large range (vm.mmap_rnd_bits above 28). So the tests run
        # at fixed addresses, unless the system forbids that.
        fixed="setarch $(uname -m) -R"
        $fixed true 2>/dev/null || fixed=
        $fixed ctest --preset tsan
        ;;
    linux32)
        scripts/install-deps.sh build tool test demo linux32 package
        # The packages of both processors are installed side by side.
        cmake --preset release -DKEL_BUILD_TOOL=ON
        cmake --build --preset release --target kel kel_tool
        build linux32 -DKEL_NATIVE_BUILD="$PWD/build/release"
        run linux32
        ;;
    windows | windows64)
        status=0
        scripts/install-deps.sh build tool test demo "$1" || status=$?
        [ $status = 0 ] || [ $status = 10 ] || exit $status
        build "$1"
        if [ $status = 10 ]; then
            run "$1" --label-regex without-wine
            echo "Windows tests not run: $(cat build/no-wine)"
            exit 77
        fi
        run "$1"
        ;;
    windows-msvc)
        status=0
        scripts/install-deps.sh build tool test demo windows windows-msvc || status=$?
        if [ $status = 10 ]; then
            echo "Windows tests not built, because their run-time is Wine's: $(cat build/no-wine)"
            exit 77
        fi
        [ $status = 0 ] || exit $status
        scripts/msvc-runtime.sh
        build windows-msvc --fresh # its flags count only when a build folder is new
        run windows-msvc
        ;;
    *)
        echo "usage: $0 [threads|linux32|windows|windows64|windows-msvc]" >&2
        exit 2
        ;;
esac
