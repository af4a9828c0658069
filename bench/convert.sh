#!/bin/sh
# Converts a generated JSON document to binary and back with the tool, and has jq read and write it.
# Prints the processor time of each in seconds and its peak memory in kilobytes, three times, as
# lines "what seconds kilobytes".
#
#   bench/convert.sh FOLDER-OF-PROGRAMS BYTES-OF-DOCUMENT
set -eu

bin=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# measure WHAT COMMAND...: runs the command, its output in a file, and prints the line.
measure() {
    what=$1
    shift
    /usr/bin/time -f "%U %S %M" -o "$folder/used" "$@" >"$folder/output"
    awk -v what="$what" '{ print what, $1 + $2, $3 }' "$folder/used"
}

"$bin/kel_bench_document" "$2" >"$folder/document.json"
for _ in 1 2 3; do
    measure jq jq . "$folder/document.json"
    measure to_binary "$bin/kel" convert "$folder/document.json" "$folder/document.kelb"
    measure to_json "$bin/kel" convert "$folder/document.kelb" "$folder/converted.json"
done
