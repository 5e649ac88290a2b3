#!/usr/bin/env bash
# Builds a Release synthcall in build-bench/ and measures it on tmpfs (see bench/README.md).
#   bench/run.sh [--pairs N] [--reads N] [--clone-bases N] [--work DIR] [--keep]
# SYNTHCALL=/path/to/synthcall skips the build and measures that binary instead.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

if [ -z "${SYNTHCALL:-}" ]; then
  build=${BENCH_BUILD:-$root/build-bench}
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DSYNTHCALL_TESTS=OFF >/dev/null
  cmake --build "$build" -j"${JOBS:-2}" --target synthcall >/dev/null
  SYNTHCALL=$build/synthcall
fi
for tool in /usr/bin/time cp python3; do
  command -v "$tool" >/dev/null || { echo "bench: $tool is missing" >&2; exit 1; }
done
exec python3 "$root/bench/bench.py" --binary "$SYNTHCALL" "$@"
