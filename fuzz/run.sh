#!/usr/bin/env bash
# Builds the libFuzzer targets with clang++ in build-fuzz/ and runs each one for SECONDS seconds,
# starting from the seeds in fuzz/corpus/<target>/. What a run finds is added to
# build-fuzz/corpus/<target>/; a crashing input is kept in build-fuzz/artifacts/<target>/ and the
# script ends with status 1 after all targets have run. Each prints its count of executions.
#
#   fuzz/run.sh SECONDS [TARGET...]      e.g. fuzz/run.sh 15, or fuzz/run.sh 600 run_loop
#
# FUZZ_BUILD names another build directory, JOBS the build's parallel jobs (2).
set -euo pipefail

seconds=${1:?usage: fuzz/run.sh SECONDS [TARGET...]}
shift
[ $# -gt 0 ] || set -- run_loop command_line str parser file_reader
root=$(cd "$(dirname "$0")/.." && pwd)
build=${FUZZ_BUILD:-$root/build-fuzz}
CXX=${FUZZ_CXX:-clang++} cmake -S "$root/fuzz" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"${JOBS:-2}" >/dev/null

export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
status=0
for target; do
  log=$build/$target.log
  artifacts=$build/artifacts/$target/
  mkdir -p "$build/corpus/$target" "$artifacts"
  result=ok
  # -timeout: one input may take at most 10 s; anything longer is reported as a hang.
  "$build/${target}_fuzzer" -max_total_time="$seconds" -timeout=10 -print_final_stats=1 \
    -artifact_prefix="$artifacts" "$build/corpus/$target" "$root/fuzz/corpus/$target" >"$log" 2>&1 ||
    result=FAILED
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  printf '%-13s %10s executions in %s s  %s\n' "$target" "${runs:-?}" "$seconds" "$result"
  [ "$result" = ok ] && continue
  status=1
  grep -E 'ERROR|check failed|SUMMARY|^    #[0-9]' "$log" | head -40 || true
  echo "  log: $log, inputs: $artifacts"
done
exit $status
