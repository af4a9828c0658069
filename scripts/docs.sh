#!/bin/sh
# Builds the reference, from the comments of the headers, and all pages into build/docs/html. The start
# page is build/docs/html/index.html.
set -eu
cd "$(dirname "$0")/.."

scripts/install-deps.sh docs
python3 -B scripts/docs/build.py . build/docs
echo "$PWD/build/docs/html/index.html"
