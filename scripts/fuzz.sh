#!/bin/sh
# Builds and runs fuzz targets with the kept corpus.
#
#   scripts/fuzz.sh TARGET SECONDS [SEED]   one target: text, binary, round_trip, failures, calls, json,
#                                           path, text_parts, edit, diff
#   scripts/fuzz.sh all SECONDS [SEED]      every target in 64 bits and in 32 bits, two at a time for
#                                           each processor
#   scripts/fuzz.sh minimise TARGET         replaces the kept corpus by a smallest one of the same coverage
#
# A run with a seed begins with the kept corpus alone, and invents nearly the same inputs each time. One without
# a seed goes on from all that was found before.
#
# New inputs are collected in build/fuzz/found/TARGET, and so is an input that fails. With "all", the
# output of each target is in build/PRESET/found/TARGET.log. The whole output of the first target that
# fails is shown, and no other target begins after it.
set -eu
cd "$(dirname "$0")/.."

targets="text binary round_trip failures calls json path text_parts edit diff"

usage() {
    echo "usage: $0 {TARGET|all} SECONDS [SEED], or $0 minimise TARGET; targets: $targets" >&2
    exit 2
}

# build PRESET PROGRAM
build() {
    cmake --preset "$1" -DKEL_UNITY_BUILD=ON >/dev/null
    cmake --build --preset "$1" --target "$2"
}

# fuzz PRESET TARGET SECONDS SEED: 0 is a seed that nobody knows.
fuzz() {
    found=build/$1/found/$2
    [ "$4" = 0 ] || rm -rf "$found"
    mkdir -p "$found"
    dictionary=fuzz/dictionaries/$2.dict
    [ -e "$dictionary" ] && set -- "$@" "-dict=$dictionary"
    preset=$1 name=$2 seconds=$3 seed=$4
    shift 4
    echo "$preset: $name"
    # One job, short inputs: every property is about small documents too.
    ASAN_OPTIONS=allocator_may_return_null=1:malloc_context_size=4 \
        "build/$preset/bin/kel_fuzz_$name" "$@" -seed="$seed" -max_total_time="$seconds" -max_len=1024 \
        -timeout=20 -rss_limit_mb=2048 -verbosity=0 -print_final_stats=1 \
        -artifact_prefix="$found/" "$found" "fuzz/corpus/$name"
}

# apart PRESET TARGET SECONDS SEED FAILURE: the same, with the output in a file. The first target that fails
# makes the folder FAILURE and shows its output. Ends with the status that ends xargs.
apart() {
    log=build/$1/found/$2.log
    mkdir -p "build/$1/found"
    status=0
    fuzz "$1" "$2" "$3" "$4" >"$log" 2>&1 || status=$?
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    if [ $status = 0 ]; then
        echo "$1: $2: ${runs:-no} inputs"
    else
        if mkdir "$5" 2>/dev/null; then
            cat "$log"
        fi
        echo "$1: $2: failed with status $status" >&2
        return 255
    fi
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

# For xargs, which calls this script again: apart PRESET TARGET SECONDS SEED FAILURE
if [ $# = 6 ] && [ "$1" = apart ]; then
    shift
    apart "$@"
    exit
fi

[ $# = 2 ] || [ $# = 3 ] || usage
seed=${3:-0}
if [ "$1" = minimise ]; then
    [ $# = 2 ] || usage
    target=$2 known=$targets
else
    target=$1 known="all $targets"
    for number in "$2" "$seed"; do
        case $number in
            "" | *[!0-9]*) usage ;;
        esac
    done
fi
case " $known " in
    *" $target "*) ;;
    *) usage ;;
esac
scripts/install-deps.sh build fuzz
case $1 in
    minimise) minimise "$2" ;;
    all)
        for preset in fuzz fuzz32; do
            build "$preset" kel_fuzzers
        done
        work=$(mktemp -d)
        trap 'rm -rf "$work"' EXIT
        for preset in fuzz fuzz32; do
            for name in $targets; do
                echo "$preset $name $2 $seed $work/failure"
            done
        done | xargs -L 1 -P $((2 * $(nproc))) scripts/fuzz.sh apart
        ;;
    *)
        build fuzz "kel_fuzz_$1"
        fuzz fuzz "$1" "$2" "$seed"
        ;;
esac
