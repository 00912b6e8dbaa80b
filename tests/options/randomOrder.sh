#!/bin/bash
# Compiles the making of random orders by two compilers, the second time with all optimisation, and
# compares what the programs print: randomOrder.sh SOURCE COMPILER COMPILER -- FLAG...
set -euo pipefail

source=$1
shift
compilers=()
while [[ $1 != -- ]]; do
    compilers+=("$1")
    shift
done
shift

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
room=$source/src/qix
levels=(-O0 -O3)
for i in "${!compilers[@]}"; do
    "${compilers[i]}" -std=c++17 "${levels[i]}" "-I$room" "$source/tests/options/randomOrder.cpp" \
        "$room"/selection/{CTestTree,testIds,testOrder}.cpp "$room"/text/{utf8,decodedText}.cpp \
        "$room"/guards/posix/runNotes.cpp \
        "$@" -o "$folder/program"
    "$folder/program" | diff "$source/tests/options/randomOrder.txt" -
done
