#!/usr/bin/env bash
# Installs what is missing, builds regmill in release mode and converts the bundled
# example SVD file into a memory-map file.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install-deps.sh
cmake -S . -B out/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DREGMILL_TESTS=OFF >/dev/null
ninja -C out/release regmill
mkdir -p out/example
out/release/driver/regmill -irq-table out/example/widget -irq-start 0 -pp \
  examples/widget.svd out/example/widget.xml
echo "memory map written to out/example/widget.xml, vector table to out/example/widget.vec"
