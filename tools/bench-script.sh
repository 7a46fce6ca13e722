#!/usr/bin/env bash
# Times `loom script` against two other interpreters of the language (duk and mujs,
# from Debian; installed here when missing, never by the build) on the six benchmark
# programs of bench/script/, then on the shared reference programs whose size suits
# an engine without a collector. Every engine must print the same checksum before
# its time counts. Prints CPU seconds (user + system: steadier than wall time on a
# shared machine), the ratio to duk and the peak resident size of each run, then
# the geometric mean of the ratios over the six own programs; fails when a
# checksum differs or when one of the six takes more than 3 times duk's time.
set -euo pipefail
cd "$(dirname "$0")/.."
missing=()
command -v duk >/dev/null || missing+=(duktape)
command -v mujs >/dev/null || missing+=(mujs)
if ((${#missing[@]})); then
  echo "installing: ${missing[*]}"
  apt-get update -qq
  DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
cmake -S . -B out/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DREGMILL_TESTS=OFF >/dev/null
ninja -C out/release loom >/dev/null
loom=out/release/loom/loom
shared=../shared/bench/script
own=(fib mandel closures objects strings arrays)
programs=()
for name in "${own[@]}"; do programs+=("bench/script/$name.js"); done
# The shared objects.js makes 1.5 million objects, more than a context that never
# frees one should hold; its scaled-down form is bench/script/objects.js.
for name in fib mandel closures strings arrays; do
  [[ -f $shared/$name.js ]] && programs+=("$shared/$name.js")
done
worst_allowed=3

# Runs one engine on one program: sets `seconds`, `kilobytes` and `output`.
measure() {
  local report
  report=$(mktemp)
  output=$(/usr/bin/time -f '%U %S %M' -o "$report" "$@")
  local user system
  read -r user system kilobytes <"$report"
  seconds=$(awk -v u="$user" -v s="$system" 'BEGIN { printf "%.2f", u + s }')
  rm -f "$report"
}

status=0
log_sum=0
count=0
printf '%-34s %8s %8s %8s %7s %9s %9s %9s\n' program loom duk mujs ratio loom-KB duk-KB mujs-KB
for program in "${programs[@]}"; do
  measure "$loom" script "$program"; loom_s=$seconds; loom_kb=$kilobytes; loom_out=$output
  measure duk "$program"; duk_s=$seconds; duk_kb=$kilobytes; duk_out=$output
  measure mujs "$program"; mujs_s=$seconds; mujs_kb=$kilobytes; mujs_out=$output
  if [[ $loom_out != "$duk_out" || $loom_out != "$mujs_out" ]]; then
    echo "$program: checksums differ: loom '$loom_out', duk '$duk_out', mujs '$mujs_out'"
    status=1
    continue
  fi
  ratio=$(awk -v a="$loom_s" -v b="$duk_s" 'BEGIN { printf "%.2f", a / (b > 0 ? b : 0.01) }')
  printf '%-34s %8s %8s %8s %7s %9s %9s %9s\n' "$program" "$loom_s" "$duk_s" "$mujs_s" "$ratio" \
    "$loom_kb" "$duk_kb" "$mujs_kb"
  if [[ $program == bench/script/* ]]; then
    log_sum=$(awk -v s="$log_sum" -v r="$ratio" 'BEGIN { print s + log(r) }')
    count=$((count + 1))
    if awk -v r="$ratio" -v w="$worst_allowed" 'BEGIN { exit !(r > w) }'; then
      echo "$program: loom takes $ratio times duk's time, more than $worst_allowed"
      status=1
    fi
  fi
done
if ((count)); then
  awk -v s="$log_sum" -v n="$count" \
    'BEGIN { printf "geometric mean of loom/duk over the %d programs of bench/script: %.2f\n", n, exp(s / n) }'
fi
exit $status
