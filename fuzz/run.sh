#!/usr/bin/env bash
# Builds the libFuzzer targets with clang++ in build-fuzz/ and, for each target, first replays its
# seeds in fuzz/corpus/<target>/ (every committed input once), then fuzzes from them for SECONDS
# seconds. JOBS targets (2) run at a time. What a run finds is added to build-fuzz/corpus/<target>/;
# a crashing input is kept in build-fuzz/artifacts/<target>/ and the script ends with status 1
# after all targets have run.
#
#   fuzz/run.sh SECONDS [TARGET...]      e.g. fuzz/run.sh 10, or fuzz/run.sh 600 run_loop
#
# FUZZ_BUILD names another build directory, FUZZ_CXX another clang++.
set -euo pipefail

seconds=${1:?usage: fuzz/run.sh SECONDS [TARGET...]}
shift
root=$(cd "$(dirname "$0")/.." && pwd)
build=${FUZZ_BUILD:-$root/build-fuzz}
jobs=${JOBS:-2}

CXX=${FUZZ_CXX:-clang++} cmake -S "$root/fuzz" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"$jobs" >/dev/null

targets=("$@")
if [ ${#targets[@]} = 0 ]; then
  for program in "$build"/*_fuzzer; do
    name=$(basename "$program")
    targets+=("${name%_fuzzer}")
  done
fi

export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
# A 16 MiB quarantine still holds the freed blocks of many executions (a use after free is
# caught), and keeps each target near 80 MiB instead of 300 MiB, recycling warm memory.
export ASAN_OPTIONS=${ASAN_OPTIONS:-quarantine_size_mb=16}

# Replays, then fuzzes one target; leaves its result line in $build/<target>.result.
fuzz_one() {
  local target=$1 program=$build/${1}_fuzzer
  local work=$build/corpus/$1 artifacts=$build/artifacts/$1 log=$build/$1.log
  local seeds=() count=0 result=ok runs
  if [ -d "$root/fuzz/corpus/$target" ]; then
    seeds=("$root/fuzz/corpus/$target")
    count=$(find "${seeds[@]}" -type f | wc -l)
  fi
  mkdir -p "$work" "$artifacts"
  # -timeout: one input may take at most 10 s; anything longer is reported as a hang.
  local options=(-timeout=10 -artifact_prefix="$artifacts/")
  if ! "$program" "${options[@]}" -runs=0 "${seeds[@]}" >"$log" 2>&1; then
    result="FAILED on a seed"
  elif ! "$program" "${options[@]}" -max_total_time="$seconds" -print_final_stats=1 \
      "$work" "${seeds[@]}" >"$log" 2>&1; then
    result=FAILED
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  printf '%-13s %3d seeds replayed, %9s executions in %s s  %s\n' \
    "$target" "$count" "${runs:-?}" "$seconds" "$result" >"$build/$target.result"
}

running=0
for target in "${targets[@]}"; do
  rm -f "$build/$target.result"
  fuzz_one "$target" &
  running=$((running + 1))
  if [ $running -ge "$jobs" ]; then
    wait -n || true
    running=$((running - 1))
  fi
done
wait

status=0
for target in "${targets[@]}"; do
  cat "$build/$target.result" 2>/dev/null || echo "$target: no result"
  if ! grep -qs ' ok$' "$build/$target.result"; then
    status=1
    grep -E 'ERROR|check failed|SUMMARY|^    #[0-9]' "$build/$target.log" | head -40 || true
    echo "  log: $build/$target.log, inputs: $build/artifacts/$target/"
  fi
done
exit $status
