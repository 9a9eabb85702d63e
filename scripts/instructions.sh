#!/bin/sh
# Counts the instructions of ten kernels and three scenarios and compares them with benchmarks/instructions/
# expected.json: scripts/instructions.sh [--update]. Times drift on shared machines, instructions do not.
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh bench
out=$PWD/build/instructions
cmake -S . -B "$out/library" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=g++ \
    -DZUL_STATISTICS=OFF -DZUL_BUILD_TESTS=OFF -DZUL_BUILD_APPS=OFF -DCMAKE_INSTALL_PREFIX="$out/prefix"
cmake --build "$out/library" --target install >"$out/build.log"
cmake -S benchmarks/instructions -B "$out/cases" -G Ninja -DCMAKE_CXX_COMPILER=g++ -DCMAKE_PREFIX_PATH="$out/prefix"
cmake --build "$out/cases"
exec python3 benchmarks/instructions/instructions.py "$out/cases/instruction-cases" \
    benchmarks/instructions/expected.json "$@"
