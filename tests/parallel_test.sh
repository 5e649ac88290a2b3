#!/bin/sh
# parallel_test.sh BINARY: runs the README's one-machine GNU parallel recipe over a few thousand
# records and checks that the project tree holds exactly the files of a single-process run, byte
# for byte apart from the phd TIME lines. Exits 77 (skipped; a failure in CI) without parallel.
binary=$1 records=3000
command -v parallel >/dev/null || { echo "parallel not found"; [ "$CI" = true ] && exit 1; exit 77; }
# Thousands of small files: tmpfs keeps the test from waiting on a busy disk.
fail() { echo "FAIL: $*"; exit 1; }
scratch=$(mktemp -d -p /dev/shm 2>/dev/null || mktemp -d) && trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || fail "no scratch directory"
for dir in edit chromat phd poly; do mkdir -p "one/${dir}_dir" "many/${dir}_dir"; done

# Each record has two lines of 0 to 20 letters with lower case and unknown letters among them;
# a text line before the first header, blank lines, a '>' inside a description and headers behind
# blanks, which the program reads as headers but parallel never splits at.
awk -v n=$records 'BEGIN { srand(14); print "notes before the first record"
  for (i = 0; i < n; i++) {
    printf "%s>r%d %s\n", i % 7 ? "" : "  ", i, i % 5 ? "read" : "a>b"
    for (line = 0; line < 2; line++) {
      for (k = int(rand() * 21); k > 0; k--) printf "%s", substr("ACGTacgtNRYx", int(rand() * 12) + 1, 1)
      print ""
    }
    if (i % 11 == 0) print ""
  } }' >reads.fa

(cd one/edit_dir && "$binary" ../../reads.fa >/dev/null) || fail "single run"
# The recipe as the README gives it, run in edit_dir/; -j2 --block -2 makes four parts on any host.
(cd many/edit_dir && parallel --will-cite --pipe-part -j2 --block -2 --recstart '>' \
  --cat -a ../../reads.fa --joblog ../../jobs "$binary" {} >/dev/null) || fail "parallel: status $?"

jobs=$(($(wc -l <jobs) - 1))
[ "$jobs" -ge 2 ] || fail "parallel ran $jobs job(s), want several"
written=$(cd one && ls chromat_dir phd_dir poly_dir | grep -c '^r')
[ "$written" -eq $((3 * records)) ] || fail "single run wrote $written files, want $((3 * records))"
diff -r -I '^TIME: ' one many >diff || { head -20 diff; fail "trees differ"; }
echo "parallel: $jobs jobs wrote the $written files of one run"
