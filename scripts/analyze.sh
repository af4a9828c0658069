#!/bin/sh
# Runs clang-tidy with the checks of .clang-tidy over the library, the tool, the examples and kel.hpp.
# Every finding is an error: it is fixed, or suppressed where it is, with a reason.
#
#   scripts/analyze.sh [FILE...]
#
# FILE is a source file of src, tools or examples. Without one, all are analyzed.
set -eu
cd "$(dirname "$0")/.."

scripts/install-deps.sh build tool analyze

# clang's own commands, because it does not know all options of gcc. Nothing is built.
folder=build/analyze
cmake --preset clang -B $folder -DKEL_BUILD_TOOL=ON -DKEL_BUILD_EXAMPLES=ON -DKEL_BUILD_TESTS=OFF \
    >/dev/null
echo '#include <kel/kel.hpp>' >$folder/kel_hpp.cpp

# analyze FILE: prints the findings. The header that no source file stands for has its own options.
cat >$folder/analyze-one.sh <<'END'
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
[ $status = 0 ] || printf '%s\n' "$output" | grep -v 'warnings\? generated\|warnings treated as errors'
exit $status
END

if [ $# -gt 0 ]; then
    for file in "$@"; do realpath "$file"; done
else
    # Files of the tool take longest, so they are first.
    sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' $folder/compile_commands.json |
        grep -v "^$PWD/build/" | sort -ru
    echo $folder/kel_hpp.cpp
fi | xargs -P "$(nproc)" -n 1 sh $folder/analyze-one.sh || {
    echo "analyze.sh: findings above" >&2
    exit 1
}
echo "analyze.sh: no findings"
