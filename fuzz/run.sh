#!/usr/bin/env bash
# Builds the libFuzzer targets with clang++ in build-fuzz/ and, for each target, first replays its
# seeds in fuzz/corpus/<target>/ (every committed input once), then fuzzes from them for SECONDS
# seconds. JOBS targets (2) run at a time. What a run finds is added to build-fuzz/corpus/<target>/;
# a crashing input is kept in build-fuzz/artifacts/<target>/ and the script fails after all
# targets have run.
#
#   fuzz/run.sh SECONDS [TARGET...]      e.g. fuzz/run.sh 10, or fuzz/run.sh 600 run_loop
#
# FUZZ_BUILD names another build directory, FUZZ_CXX another clang++.
set -euo pipefail

export seconds=${1:?usage: fuzz/run.sh SECONDS [TARGET...]}
shift
export root=$(cd "$(dirname "$0")/.." && pwd)
export build=${FUZZ_BUILD:-$root/build-fuzz}
CXX=${FUZZ_CXX:-clang++} cmake -S "$root/fuzz" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"${JOBS:-2}" >/dev/null
[ $# -gt 0 ] || set -- $(cd "$build" && ls ./*_fuzzer | sed 's|^\./||; s|_fuzzer$||')

export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
# A 16 MiB quarantine still holds the freed blocks of many executions (a use after free is
# caught), and keeps each target near 80 MiB instead of 300 MiB, recycling warm memory.
export ASAN_OPTIONS=${ASAN_OPTIONS:-quarantine_size_mb=16}

# Replays, then fuzzes target $1 (one input may take at most 10 s; longer is a hang). Prints its
# result line, and on a failure the report and where the inputs are, in one piece.
fuzz_one() {
  local program=$build/${1}_fuzzer seeds=$root/fuzz/corpus/$1 log=$build/$1.log
  local options=(-timeout=10 -artifact_prefix="$build/artifacts/$1/")
  mkdir -p "$build/corpus/$1" "$build/artifacts/$1" && [ -d "$seeds" ] || seeds=$build/corpus/$1
  if "$program" "${options[@]}" -runs=0 "$seeds" >"$log" 2>&1 && "$program" "${options[@]}" \
      -max_total_time="$seconds" -print_final_stats=1 "$build/corpus/$1" "$seeds" >>"$log" 2>&1; then
    echo "$1: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") executions in $seconds s, ok"
  else
    local report=$(grep -E 'ERROR|check failed|SUMMARY|^    #[0-9]' "$log" | head -40)
    printf '%s: FAILED\n%s\n  log: %s, inputs: %s\n' "$1" "$report" "$log" "$build/artifacts/$1/"
    return 1
  fi
}
export -f fuzz_one
printf '%s\n' "$@" | xargs -P "${JOBS:-2}" -I{} bash -c 'fuzz_one {}'
