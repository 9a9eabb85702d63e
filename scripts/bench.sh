#!/bin/sh
# Measures the installed library beside its peers: scripts/bench.sh [--quick] [--rounds=N]. Sets up, builds and
# runs; the tables go to build/bench/results.md and results.json. Each peer runs in N processes, 3 unless said.
# --quick: in one short one, and none of the runs that take minutes.
set -eu
cd "$(dirname "$0")/.."
rounds=3
options="--benchmark_min_time=0.02 --benchmark_repetitions=3"
while [ $# -gt 0 ]; do
    case "$1" in
        --quick)
            rounds=1
            export ZUL_BENCH_QUICK=1
            options="--benchmark_min_time=0.02"
            ;;
        --rounds=[1-9])
            rounds=${1#--rounds=}
            ;;
        *)
            echo "usage: scripts/bench.sh [--quick] [--rounds=N]" >&2
            exit 2
            ;;
    esac
    shift
done
scripts/setup.sh bench

out=$PWD/build/bench
cmake -S . -B "$out/library" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=g++ \
    -DZUL_STATISTICS=OFF -DZUL_BUILD_TESTS=OFF -DCMAKE_INSTALL_PREFIX="$out/prefix"
cmake --build "$out/library" --target install
cmake -S benchmarks -B "$out/peers" -G Ninja -DCMAKE_CXX_COMPILER=g++ -DCMAKE_PREFIX_PATH="$out/prefix" \
    -DZUL_MILL_PROGRAM="$out/library/apps/zulmrs-mill/zulmrs-mill"
cmake --build "$out/peers"

# The same library once more, counting which stage makes each decision: what it costs is not measured.
cmake -S . -B "$out/counting-library" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=g++ \
    -DZUL_STATISTICS=ON -DZUL_BUILD_TESTS=OFF -DCMAKE_INSTALL_PREFIX="$out/counting-prefix"
cmake --build "$out/counting-library" --target install
cmake -S benchmarks -B "$out/counting" -G Ninja -DCMAKE_CXX_COMPILER=g++ \
    -DCMAKE_PREFIX_PATH="$out/counting-prefix" \
    -DZUL_MILL_PROGRAM="$out/counting-library/apps/zulmrs-mill/zulmrs-mill"
cmake --build "$out/counting" --target bench-zulmrs-predicates bench-zulmrs-cells

rm -rf "$out/runs" "$out/stages"
mkdir "$out/runs" "$out/stages"
# measure PROGRAM OPTIONS FILE: runs it, the figures into FILE.json, what it says into FILE.log.
measure()
{
    # shellcheck disable=SC2086  # the options are meant to be split
    "$1" $2 --benchmark_out_format=json --benchmark_out="$3.json" >"$3.log" 2>&1 || {
        cat "$3.log" >&2
        echo "scripts/bench.sh: $1 failed" >&2
        exit 1
    }
}
for group in predicates cells; do
    echo "stages: $group"
    measure "$out/counting/bin/bench-zulmrs-$group" --benchmark_min_time=0.001 "$out/stages/$group"
done
for round in $(seq "$rounds"); do
    # The runs that take minutes are made once.
    [ "$round" = 1 ] || export ZUL_BENCH_QUICK=1
    for program in "$out"/peers/bin/bench-*; do
        name=$(basename "$program")
        echo "round $round: $name"
        measure "$program" "$options" "$out/runs/$name.$round"
    done
done
status=0
python3 benchmarks/report.py "$out/runs" benchmarks/*/targets.json --stages "$out/stages" --json "$out/results.json" \
    --markdown "$out/results.md" || status=$?
sed -n '/^## Targets/,/^## [^T]/{/^## [^T]/d;p}' "$out/results.md"
echo "the whole tables: $out/results.md"
exit $status
