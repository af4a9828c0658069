#!/bin/sh
# Plants small mistakes into src and reports which of them no test notices.
#
#   scripts/mutate.sh [--sample N] [--seed S] [FILE...]
#
# N mistakes are chosen (500 by default), in the given files of src or in all of them. The same seed
# chooses the same ones again. scripts/mutation/survivors.txt lists those that cannot be noticed, and
# why. Ends with status 1 if fewer than 95 % of the others are noticed.
set -eu
cd "$(dirname "$0")/.."

scripts/install-deps.sh build test mutate

# Debian's Python has clang's module, which another one found first does not have.
exec /usr/bin/python3 -B scripts/mutation/mutate.py "$@"
