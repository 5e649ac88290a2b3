#!/usr/bin/env bash
# Builds a Release synthcall and the write floor in build-bench/ and measures synthcall on tmpfs
# (see bench/README.md).
#   bench/run.sh [--pairs N] [--reads N] [--clone-bases N] [--abi] [--work DIR] [--keep]
# SYNTHCALL=/path/to/synthcall measures that binary instead of the one built here.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

build=${BENCH_BUILD:-$root/build-bench}
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DSYNTHCALL_TESTS=OFF >/dev/null
cmake --build "$build" -j"${JOBS:-2}" --target synthcall write_floor >/dev/null
SYNTHCALL=${SYNTHCALL:-$build/synthcall}
for tool in /usr/bin/time cp python3; do
  command -v "$tool" >/dev/null || { echo "bench: $tool is missing" >&2; exit 1; }
done
exec python3 "$root/bench/bench.py" --binary "$SYNTHCALL" --floor "$build/write_floor" "$@"
