#!/usr/bin/env bash
# Installs what is missing, builds everything with AddressSanitizer and
# UndefinedBehaviorSanitizer, runs every test, then builds the libFuzzer targets
# with clang and runs them from their seed corpora within one fixed time budget.
# FUZZ_BUDGET sets the seconds shared by all targets (default 360), split evenly.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install-deps.sh
jobs=$(nproc)

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
cmake -S . -B out/asan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DREGMILL_SANITIZE=ON >/dev/null
ninja -C out/asan -j"$jobs"
ctest --test-dir out/asan -j"$jobs" --output-on-failure

# Running out of memory needs the plain allocator (a sanitizer's doesn't throw): a
# build without sanitizers runs the hostile-input tests again.
cmake -S . -B out/plain -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
ninja -C out/plain -j"$jobs" driver_tests
ctest --test-dir out/plain -R HostileInput --output-on-failure

cmake -S . -B out/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DREGMILL_FUZZ=ON -DREGMILL_TESTS=OFF >/dev/null
ninja -C out/fuzz -j"$jobs" fuzz_targets
targets=("$PWD"/out/fuzz/fuzz/*_fuzz)
seconds=$(( ${FUZZ_BUDGET:-360} / ${#targets[@]} ))
(( seconds > 0 )) || seconds=1
for target in "${targets[@]}"; do
  name=$(basename "$target" _fuzz)
  work=$(mktemp -d)
  cp -r "fuzz/corpus/$name/." "$work/"
  echo "fuzzing $name for ${seconds}s"
  (cd "$work" && "$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 \
      -print_final_stats=0 . >fuzz.log 2>&1) || { tail -n 60 "$work/fuzz.log"; exit 1; }
  rm -rf "$work"
done
echo "fuzzing: no findings"
