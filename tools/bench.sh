#!/usr/bin/env bash
# Builds the benchmarks in release mode and runs each; each one times a peer
# (xmllint) on the same input in the same run and prints the ratio.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install-deps.sh
cmake -S . -B out/bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DREGMILL_TESTS=OFF -DREGMILL_BENCH=ON >/dev/null
ninja -C out/bench bench_targets
for bench in out/bench/bench/*_bench; do
  echo "== $(basename "$bench")"
  "$bench" "$@"
done
