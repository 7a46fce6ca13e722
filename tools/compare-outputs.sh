#!/bin/bash
# Usage: tools/compare-outputs.sh OLD_REGMILL NEW_REGMILL
# Runs two regmill builds over the shared corpus and the examples with several option
# sets and compares every output, stdout, stderr and exit code byte for byte.
set -u
cd "$(dirname "$0")/.."
root=$PWD; corpus=${CORPUS:-$root/../shared/corpus}
[ -d "$corpus" ] || { echo "no corpus at $corpus"; exit 1; }
old=$(realpath "$1"); new=$(realpath "$2"); work=$(mktemp -d); diffs=0; runs=0
run() { # label, binary, args...
  local dir=$work/$1; shift; local bin=$1; shift
  rm -rf "$dir"; mkdir -p "$dir"; (cd "$dir" && "$bin" "$@" >stdout 2>stderr; echo $? >rc)
}
check() {
  runs=$((runs+1))
  for f in out.xml v.vec stdout stderr rc; do
    if [ -e $work/a/$f ] || [ -e $work/b/$f ]; then
      cmp -s $work/a/$f $work/b/$f || { diffs=$((diffs+1)); echo "DIFF $f: $*"; }
    fi
  done
}
for svd in $(find $corpus/svd $corpus/svd-edge -name '*.svd' | sort); do
  for opts in "" "-irq-table v -irq-start 0 -ignore-name RES" "-reg-size-bytes -ignore-description -pp" "-nvic 3 -core 33 -mpu -fpu -remove NVIC;SCB -include c.xml -include-macros M=1"; do
    run a $old $opts $svd out.xml; run b $new $opts $svd out.xml; check $opts $svd
  done
done
for h in $(find $corpus/headers -name '*.h' | sort); do
  run a $old -irqs2 $h -irq-table v -pp $root/examples/widget.svd out.xml; run b $new -irqs2 $h -irq-table v -pp $root/examples/widget.svd out.xml; check $h
done
for ex in "-ddf $root/examples/uart.ddf" "-tcf $root/examples/timer.tcf"; do
  run a $old $ex out.xml; run b $new $ex out.xml; check $ex
done
# RDT instance files are named relative to the working folder.
(cd "$root/examples" && "$old" -rdt gpio.rdt "$work/a.xml" && "$new" -rdt gpio.rdt "$work/b.xml")
runs=$((runs+1)); cmp -s "$work/a.xml" "$work/b.xml" || { diffs=$((diffs+1)); echo "DIFF rdt"; }
rm -rf "$work"
echo "runs $runs, differing files $diffs"
[ "$diffs" -eq 0 ]
