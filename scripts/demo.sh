#!/bin/sh
# Shows the purpose of KEL on real documents: the tables of country subdivisions and of languages
# from the Debian package iso-codes. Each is converted from JSON to KEL text, to KEL binary, back to
# text and back to JSON, and is compared on the way. Then a small host program watches and changes a
# value.
set -eu
cd "$(dirname "$0")/.."

scripts/install-deps.sh build tool demo
cmake --preset release -DKEL_BUILD_TOOL=ON -DKEL_BUILD_EXAMPLES=ON
cmake --build --preset release --target kel_tool kel_example_watch

bin=$PWD/build/release/bin
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

seconds() {
    date +%s.%N
}

# convert FROM TO: converts a file and prints the size of the result and the time taken.
convert() {
    before=$(seconds)
    "$bin/kel" convert "$1" "$2"
    after=$(seconds)
    echo "$before $after $(wc -c <"$2")" |
        LC_ALL=C awk -v to="$2" '{ printf "  %-24s %9d bytes  %6.3f s\n", to, $3, $2 - $1 }'
}

same_json() {
    python3 -c '
import json, sys
first, second = (json.load(open(name, encoding="utf-8")) for name in sys.argv[1:])
sys.exit(0 if first == second else f"{sys.argv[1]} and {sys.argv[2]} differ")
' "$1" "$2"
}

for name in iso_3166-2 iso_639-3; do
    echo
    cp "/usr/share/iso-codes/json/$name.json" "$name.json"
    echo "$name.json, $(wc -c <"$name.json") bytes, through text, binary, text and back:"
    convert $name.json $name.kel
    convert $name.kel $name.kelb
    convert $name.kelb $name.again.kel
    convert $name.again.kel $name.again.json
    cmp $name.kel $name.again.kel
    echo "  both texts are the same, byte for byte"
    same_json $name.json $name.again.json
    echo "  both JSON files are equal"
done

echo
echo "iso_639-3.kel begins:"
head -n 14 iso_639-3.kel

echo
echo "A host program loads it, observes the name of the first language and changes it:"
"$bin/examples/watch" iso_639-3.kel changed.kel "Ghotuo (watched)" '["639-3"][0].name'
echo "Differences between the two files:"
diff iso_639-3.kel changed.kel || [ $? = 1 ]
"$bin/kel" check changed.kel
echo "kel check reports no errors in changed.kel."
