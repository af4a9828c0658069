#!/bin/sh
# Runs clang-tidy with the checks of .clang-tidy over the library, the tool, the examples and kel.hpp.
# Every finding is an error: it is fixed, or suppressed where it is, with a reason.
#
#   scripts/analyze.sh [FILE...]
#
# FILE is a source file of src, tools or examples, which is analyzed alone. Without one, all are, and the
# sources of most folders as one file.
set -eu
cd "$(dirname "$0")/.."

scripts/install-deps.sh build tool analyze

# clang's own commands, because it does not know all options of gcc. Nothing is built.
folder=build/analyze
joined=ON
[ $# = 0 ] || joined=OFF
cmake --preset clang -B $folder -DKEL_UNITY_BUILD=$joined -DKEL_BUILD_TOOL=ON -DKEL_BUILD_EXAMPLES=ON \
    -DKEL_BUILD_TESTS=OFF >/dev/null
echo '#include <kel/kel.hpp>' >$folder/kel_hpp.cpp
cp tools/kel/.clang-tidy $folder/tools/ # for files there that CMake made

# Prints the files to analyze. Those that CMake made to include the sources of a folder get the sources'
# own text, because clang's path-sensitive analyzer does not enter included files.
files() {
    sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' $folder/compile_commands.json | while read -r file; do
        case $file in
            *_cxx.cxx)
                sed -n 's/^#include "\(.*\)"$/\1/p' "$file" | xargs awk \
                    'FNR == 1 { print "// ANALYZED " FILENAME } { print }' >"$file.joined"
                mv "$file.joined" "$file"
                ;;
            "$PWD"/build/*) continue ;;
        esac
        echo "$file"
    done
    echo $folder/kel_hpp.cpp
}

# analyze-one.sh FILE: prints the findings. The header that no source file stands for has its own options.
cat >$folder/analyze-one.sh <<'END_OF_SCRIPT'
file=$1
case $file in
    */kel_hpp.cpp) set -- "$file" -- -std=c++17 -Iinclude ;;
    *) set -- -p build/analyze "$file" ;;
esac
# The walk through each function is limited to a tenth of what the analyzer does by itself, which
# takes a third of the time.
set -- --extra-arg-before=-Xclang --extra-arg-before=-analyzer-config \
    --extra-arg-before=-Xclang --extra-arg-before=max-nodes=20000 "$@"
status=0
output=$(clang-tidy-14 --quiet "$@" 2>&1) || status=$?
[ $status = 0 ] || printf '%s\n' "$output" | grep -v 'warnings\? generated\|warnings treated as errors' |
    # Places in sources that were joined are shown as places in each.
    awk -v file="$file" '
        BEGIN {
            if (file ~ /_cxx\.cxx$/) {
                while ((getline line < file) > 0) {
                    ++lines
                    if (sub(/^\/\/ ANALYZED /, "", line)) { source = line; begin = lines }
                    sources[lines] = source
                    begins[lines] = begin
                }
            }
        }
        index($0, file ":") == 1 {
            place = substr($0, length(file) + 2)
            line = place + 0
            sub(/^[0-9]+/, "", place)
            if (line in sources) { $0 = sources[line] ":" line - begins[line] place }
        }
        { print }'
exit $status
END_OF_SCRIPT

if [ $# -gt 0 ]; then
    for file in "$@"; do realpath "$file"; done >$folder/files
else
    files >$folder/found
    sort -u $folder/found | xargs ls -S >$folder/files # the largest ones are first
fi
xargs -P "$(nproc)" -n 1 sh $folder/analyze-one.sh <$folder/files || {
    echo "analyze.sh: findings above" >&2
    exit 1
}
echo "analyze.sh: no findings"
