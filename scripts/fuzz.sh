#!/bin/sh
# Builds and runs fuzz targets with the kept corpus.
#
#   scripts/fuzz.sh TARGET SECONDS    one target: text, binary, round_trip, failures, calls, json, path
#   scripts/fuzz.sh all SECONDS       every target one after the other, and each once more in 32 bits
#   scripts/fuzz.sh minimise TARGET   replaces the kept corpus by a smallest one of the same coverage
#
# New inputs are collected in build/fuzz/found/TARGET, and so is an input that fails. Stops at the
# first target that fails.
set -eu
cd "$(dirname "$0")/.."

targets="text binary round_trip failures calls json path"

usage() {
    echo "usage: $0 {TARGET|all} SECONDS, or $0 minimise TARGET; targets: $targets" >&2
    exit 2
}

# build PRESET PROGRAM
build() {
    cmake --preset "$1" >/dev/null
    cmake --build --preset "$1" --target "$2"
}

# fuzz PRESET TARGET SECONDS
fuzz() {
    found=build/$1/found/$2
    mkdir -p "$found"
    dictionary=fuzz/dictionaries/$2.dict
    [ -e "$dictionary" ] && set -- "$@" "-dict=$dictionary"
    preset=$1 name=$2 seconds=$3
    shift 3
    echo "$preset: $name"
    # One job, short inputs: every property is about small documents too.
    ASAN_OPTIONS=allocator_may_return_null=1:malloc_context_size=4 \
        "build/$preset/bin/kel_fuzz_$name" "$@" -max_total_time="$seconds" -max_len=1024 \
        -timeout=20 -rss_limit_mb=2048 -verbosity=0 -print_final_stats=1 \
        -artifact_prefix="$found/" "$found" "fuzz/corpus/$name"
}

# Inputs with a name stay. Those that the fuzzer found are named by a hash of 40 digits.
minimise() {
    build fuzz "kel_fuzz_$1"
    small=$(mktemp -d)
    found=build/fuzz/found/$1
    mkdir -p "$found"
    ASAN_OPTIONS=allocator_may_return_null=1 "build/fuzz/bin/kel_fuzz_$1" -set_cover_merge=1 \
        -use_counters=0 -max_len=1024 "$small" "fuzz/corpus/$1" "$found"
    find "fuzz/corpus/$1" -regextype posix-extended -regex '.*/[0-9a-f]{40}' -delete
    mv "$small"/* "fuzz/corpus/$1/"
    rmdir "$small"
}

[ $# = 2 ] || usage
scripts/install-deps.sh build fuzz
case $1 in
    minimise) minimise "$2" ;;
    all)
        for preset in fuzz fuzz32; do
            build "$preset" kel_fuzzers
            for name in $targets; do
                fuzz "$preset" "$name" "$2"
            done
        done
        ;;
    *)
        case " $targets " in
            *" $1 "*) ;;
            *) usage ;;
        esac
        build fuzz "kel_fuzz_$1"
        fuzz fuzz "$1" "$2"
        ;;
esac
