#!/bin/bash -eu
# Builds every fuzz target into $OUT, with its seeds and its dictionary. The environment has the
# compilers (CC, CXX), their flags (CFLAGS, CXXFLAGS), the engine (LIB_FUZZING_ENGINE) and the folders
# (SRC, WORK, OUT).
cd "${KEL_SOURCE:-$SRC/kel}"

# Each block must come from malloc, so that sanitizers see it.
cmake -S . -B "$WORK/kel" -G Ninja -DCMAKE_BUILD_TYPE=None \
    -DKEL_BUILD_FUZZERS=ON -DKEL_FUZZING_ENGINE="$LIB_FUZZING_ENGINE" -DKEL_SLAB_STORE=OFF \
    -DKEL_BUILD_TESTS=OFF -DKEL_BUILD_TOOL=OFF -DKEL_BUILD_EXAMPLES=OFF \
    -DCMAKE_COMPILE_WARNING_AS_ERROR=OFF
cmake --build "$WORK/kel" --target kel_fuzzers

for program in "$WORK"/kel/bin/kel_fuzz_*; do
    name=$(basename "$program")
    target=${name#kel_fuzz_}
    cp "$program" "$OUT/"
    zip -q -j "$OUT/${name}_seed_corpus.zip" fuzz/corpus/"$target"/*
    if [ -e "fuzz/dictionaries/$target.dict" ]; then
        cp "fuzz/dictionaries/$target.dict" "$OUT/$name.dict"
    fi
done
