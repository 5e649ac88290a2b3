#!/bin/sh
# parallel_test.sh BINARY: runs the README's one-machine GNU parallel recipe over a few thousand
# records and checks that the project tree holds exactly the files of a single-process run, byte
# for byte apart from the phd TIME lines. Exits 77 (skipped; a failure in CI) without parallel.
binary=$1
if ! command -v parallel >/dev/null; then
  echo "parallel not found"; [ "$CI" = true ] && exit 1; exit 77
fi
# Thousands of small files: tmpfs keeps the test from waiting on a busy disk.
scratch=$(mktemp -d -p /dev/shm 2>/dev/null || mktemp -d) && trap 'rm -rf "$scratch"' EXIT
fail() { echo "FAIL: $*"; exit 1; }
for tree in one many; do
  mkdir -p "$scratch/$tree/edit_dir" "$scratch/$tree/chromat_dir" "$scratch/$tree/phd_dir" \
    "$scratch/$tree/poly_dir"
done

# 3000 records, each two lines of 0 to 20 letters with lower case and unknown letters among them;
# a text line before the first header, blank lines, a '>' inside a description and headers behind
# blanks, which the program reads as headers but parallel never splits at.
records=3000
awk -v n=$records 'BEGIN { srand(14); print "notes before the first record"
  for (i = 0; i < n; i++) {
    printf "%s>r%d %s\n", i % 7 ? "" : "  ", i, i % 5 ? "read" : "a>b"
    for (line = 0; line < 2; line++) {
      s = ""
      for (k = int(rand() * 21); k > 0; k--) s = s substr("ACGTacgtNRYx", int(rand() * 12) + 1, 1)
      print s
    }
    if (i % 11 == 0) print ""
  } }' >"$scratch/reads.fa"

(cd "$scratch/one/edit_dir" && "$binary" ../../reads.fa >/dev/null) || fail "single run"
# The recipe as the README gives it, run in edit_dir/; -j2 --block -2 makes four parts on any host.
(cd "$scratch/many/edit_dir" && parallel --will-cite --pipe-part -j2 --block -2 --recstart '>' \
  --cat -a ../../reads.fa --joblog ../../jobs "$binary" {} >/dev/null) || fail "parallel: status $?"

jobs=$(($(wc -l <"$scratch/jobs") - 1))
[ "$jobs" -ge 2 ] || fail "parallel ran $jobs job(s), want several"
written=$(cd "$scratch/one" && ls chromat_dir phd_dir poly_dir | grep -c '^r')
[ "$written" -eq $((3 * records)) ] || fail "single run wrote $written files, want $((3 * records))"
diff -r -I '^TIME: ' "$scratch/one" "$scratch/many" >"$scratch/diff" || {
  head -20 "$scratch/diff"; fail "trees differ"; }
echo "parallel: $jobs jobs wrote the $written files of one run"
