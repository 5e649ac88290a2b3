#!/usr/bin/env python3
"""Long scale checks for synthcall, kept out of the default test run.

  scale_check.py BINARY [--work DIR] [--bases N] [--only huge|growth|hostile]

huge:   one record of 24 million bases, in SCF and in ABIF form. Its trace is 8 * (12n + 12) bytes,
        past 2 GiB, so a size or offset held in 32 bits shows up as a wrong length or a misplaced
        peak. Peak memory must stay within 3 x the record's size + 16 MiB, which holds only when
        the chromatogram is streamed rather than built whole.
growth: 5,000 and then 20,000 reads of 600 to 900 bases; the time must grow in proportion.
hostile: inputs that a pipeline may hand the program by accident, at full size: 100,000 one-base
        records over 1,000 names (every file must end up holding its name's last record alone, so
        a file reopened for appending instead of truncating shows), a 50 MB line without a header
        (read whole, nothing written), and a 21 MB alignment row, mostly gaps, whose letters make
        100,000 bases. The test suite runs the same cases at a few records and kilobytes.

Prints one line per check and closes with "N passed, N failed"; exits 1 on any failure, and 77
(skipped) without /usr/bin/time, which measures the peak memory.
"""

import argparse
import os
import random
import shutil
import subprocess
import sys
import tempfile

MIB = 1024 * 1024
TIME = "/usr/bin/time"
SKIPPED = 77
CHANNELS = {ord("A"): 0, ord("C"): 1, ord("G"): 2, ord("T"): 3}
PEAK_TOP = 640
POLY_MIDDLE = b" 300000 1 N  -1  -1 -1 "
ACGT_AREA_LENGTH = len(b"60000 0 0 0\n")
OTHER_AREA_LENGTH = len(b"0 0 0 0\n")
BASE_TABLE = bytes(b"ACGT"[i % 4] if i < 252 else ord("N") for i in range(256))


def random_bases(rng, length):
    return rng.randbytes(length).translate(BASE_TABLE)


def write_fasta(path, records):
    with open(path, "wb") as out:
        for name, bases in records:
            out.write(b">" + name + b"\n")
            for start in range(0, len(bases), 60):
                out.write(bases[start : start + 60] + b"\n")


def digits_of_positions(n):
    """Total decimal digits of the positions 12, 24, ..., 12n."""
    total, low = 0, 1
    while low <= 12 * n:
        high = low * 10
        # k with low <= 12k < high, clipped to 1..n
        first = max(1, -(-low // 12))
        last = min(n, (high - 1) // 12)
        total += max(0, last - first + 1) * len(str(low))
        low = high
    return total


class Checks:
    def __init__(self):
        self.passed = 0
        self.failed = 0

    def expect(self, ok, what, detail=""):
        if ok:
            self.passed += 1
        else:
            self.failed += 1
        print("%s %s%s" % ("ok  " if ok else "FAIL", what, (": " + detail) if detail else ""))
        sys.stdout.flush()

    def equal(self, actual, expected, what):
        self.expect(actual == expected, what,
                    "" if actual == expected else "got %r, want %r" % (actual, expected))


class Project:
    """A fresh chromat_dir/ phd_dir/ poly_dir/ edit_dir/ tree and a way to run synthcall in it."""

    def __init__(self, binary, root):
        self.binary = binary
        self.root = root

    def reset(self):
        shutil.rmtree(self.root, ignore_errors=True)
        for name in ("edit_dir", "chromat_dir", "phd_dir", "poly_dir"):
            os.makedirs(os.path.join(self.root, name))

    def path(self, *parts):
        return os.path.join(self.root, *parts)

    def run(self, fasta, options=()):
        """Returns (status, seconds, peak resident bytes, stdout, stderr) of one run, where
        seconds is the CPU time (user + system): unlike wall time it hardly moves when other
        processes share the machine."""
        self.reset()
        edit_dir = self.path("edit_dir")
        env = dict(os.environ, PWD=edit_dir)
        files = [tempfile.TemporaryFile() for _ in range(2)]
        with tempfile.NamedTemporaryFile("r") as report, files[0] as out, files[1] as err:
            # The peak comes from /usr/bin/time: a child's own maximum resident size also counts
            # the image of the process it was forked from, here this whole script.
            argv = [TIME, "-f", "%M", "-o", report.name, self.binary, fasta] + list(options)
            proc = subprocess.Popen(argv, cwd=edit_dir, env=env, stdin=subprocess.DEVNULL,
                                    stdout=out, stderr=err)
            # wait4 also sums the CPU time of the waited-for grandchild, synthcall
            _, status, usage = os.wait4(proc.pid, 0)
            proc.returncode = os.waitstatus_to_exitcode(status)
            out.seek(0)
            err.seek(0)
            peak = int(report.read().split()[-1]) * 1024
            return (proc.returncode, usage.ru_utime + usage.ru_stime, peak, out.read(),
                    err.read())


def read_at(path, offset, length):
    with open(path, "rb") as f:
        f.seek(offset)
        return f.read(length)


def read_tail(path, length):
    with open(path, "rb") as f:
        f.seek(max(0, os.path.getsize(path) - length))
        return f.read()


def check_scf(checks, path, bases, probes):
    n = len(bases)
    samples = 12 * n + 12
    checks.equal(os.path.getsize(path), 128 + 8 * samples, "SCF file length")
    checks.equal(int.from_bytes(read_at(path, 4, 4), "big"), samples, "SCF sample count")
    for i in probes:
        centre = 12 * (i + 1)
        point = read_at(path, 128 + 8 * centre, 8)
        heights = [int.from_bytes(point[c * 2 : c * 2 + 2], "big") for c in range(4)]
        want = [0, 0, 0, 0]
        if bases[i] in CHANNELS:
            want[CHANNELS[bases[i]]] = PEAK_TOP
        checks.equal(heights, want, "SCF sample point %d (base %d, %c)" % (centre, i, bases[i]))


def abif_channel(bases, i):
    """The channel an ABIF peak is drawn in: the base's own, or that of the last A, C, G or T."""
    for j in range(i, -1, -1):
        if bases[j] in CHANNELS:
            return CHANNELS[bases[j]]
    return None


def check_abif(checks, path, bases, probes):
    n = len(bases)
    samples = 12 * n + 12
    size = 2 * samples
    checks.equal(os.path.getsize(path), 296 + 8 * samples, "ABIF file length")
    entry = read_at(path, 268 + 12, 12)  # DATA 12: elements, data size, offset
    checks.equal([int.from_bytes(entry[k : k + 4], "big") for k in (0, 4, 8)],
                 [samples, size, 296 + 3 * size], "ABIF DATA 12 entry")
    for i in probes:
        centre = 12 * (i + 1) - 1
        heights = [int.from_bytes(read_at(path, 296 + c * size + 2 * centre, 2), "big")
                   for c in range(4)]
        want = [0, 0, 0, 0]
        channel = abif_channel(bases, i)
        if channel is not None:
            want[channel] = PEAK_TOP
        checks.equal(heights, want, "ABIF sample point %d (base %d, %c)" % (centre, i, bases[i]))


def check_phd(checks, path, bases, quality=b"59"):
    n = len(bases)
    head = read_at(path, 0, 1024)
    dna_start = head.find(b"BEGIN_DNA\n") + len(b"BEGIN_DNA\n")
    checks.expect(b"TRACE_ARRAY_MAX_INDEX: %d\n" % (12 * n + 11) in head, "phd highest index")
    # each DNA line: base, space, quality, space, position, newline
    lines = n * (len(quality) + 4) + digits_of_positions(n)
    checks.equal(os.path.getsize(path), dna_start + lines + len(b"END_DNA\nEND_SEQUENCE"),
                 "phd file length")
    tail = b"%c %s %d\nEND_DNA\nEND_SEQUENCE" % (bases[-1], quality, 12 * n)
    checks.equal(read_tail(path, len(tail)), tail, "phd last lines")


def check_poly(checks, path, name, bases):
    n = len(bases)
    known = sum(bases.count(b) for b in b"ACGT")
    areas = known * ACGT_AREA_LENGTH + (n - known) * OTHER_AREA_LENGTH
    lines = n * (2 + len(POLY_MIDDLE)) + digits_of_positions(n) + areas
    checks.equal(os.path.getsize(path), len(name) + len(b" 1 1 1 1 1\n") + lines,
                 "poly file length")
    tail = b"%c %d%s" % (bases[-1], 12 * n, POLY_MIDDLE)
    checks.expect(tail in read_tail(path, 64), "poly last line")


def huge_record(checks, project, work, length):
    name = b"clone"
    bases = random_bases(random.Random(24), length)
    fasta = os.path.join(work, "huge.fa")
    write_fasta(fasta, [(name, bases)])
    limit = 3 * os.path.getsize(fasta) + 16 * MIB
    # first and last bases, the first N, and the bases around the point where SCF samples pass
    # 2 GiB
    middle = (2**31 - 128) // 96
    probes = (0, 1, bases.find(b"N"), middle - 1, middle, middle + 1, length - 2, length - 1)
    probes = sorted({i for i in probes if 0 <= i < length})
    for options, chromat, check in (([], "clone.scf", check_scf), (["-abi"], "clone", check_abif)):
        label = "huge record %s" % (" ".join(options) or "SCF")
        print("-- %s: %d bases" % (label, length))
        status, seconds, peak, _, err = project.run(fasta, options)
        checks.equal((status, err), (0, b""), "%s exit status and stderr" % label)
        checks.expect(peak <= limit, "%s peak memory" % label,
                      "%.1f MiB, limit %.1f MiB, %.1f s CPU" % (peak / MIB, limit / MIB, seconds))
        check(checks, project.path("chromat_dir", chromat), bases, probes)
        check_phd(checks, project.path("phd_dir", "clone.phd.1"), bases)
        check_poly(checks, project.path("poly_dir", "clone.poly"), name, bases)
    project.reset()


def timed_reads(checks, project, fasta, count, runs=3):
    """The best of `runs` CPU times for `count` reads, after checking what was written."""
    best = None
    for _ in range(runs):
        status, seconds, _, out, err = project.run(fasta)
        best = seconds if best is None else min(best, seconds)
    checks.equal((status, err), (0, b""), "%d reads exit status and stderr" % count)
    checks.equal(out.count(b"\nWriting chromat file "), count, "%d reads progress lines" % count)
    written = [len(os.listdir(project.path(d))) for d in ("chromat_dir", "phd_dir", "poly_dir")]
    checks.equal(written, [count] * 3, "%d reads files per directory" % count)
    return best


def growth(checks, project, work):
    rng = random.Random(2006)
    reads = [(b"read%05d" % (i + 1), random_bases(rng, rng.randint(600, 900)))
             for i in range(20_000)]
    small = os.path.join(work, "small.fa")
    large = os.path.join(work, "large.fa")
    write_fasta(small, reads[:5_000])
    write_fasta(large, reads)
    print("-- growth: 5,000 and 20,000 reads")
    small_time = timed_reads(checks, project, small, 5_000)
    large_time = timed_reads(checks, project, large, 20_000)
    ratio = large_time / small_time
    checks.expect(3.0 <= ratio <= 5.5, "time grows linearly with the records",
                  "%.2f s / %.2f s CPU = %.2f, band 3.0..5.5" % (large_time, small_time, ratio))
    project.reset()


def hostile(checks, project, work):
    print("-- hostile: 100,000 one-base records, a 50 MB line, a 21 MB alignment row")
    fasta = os.path.join(work, "hostile.fa")
    names = [b"r%d" % (i % 1000) for i in range(100_000)]
    with open(fasta, "wb") as out:
        out.writelines(b">%s\n%c\n" % (name, b"ACGT"[i // 1000 % 4]) for i, name in enumerate(names))
    status, _, _, out, err = project.run(fasta)
    checks.equal((status, err), (0, b""), "100,000 records exit status and stderr")
    checks.equal(out.count(b"\nWriting chromat file "), 100_000, "100,000 records progress lines")
    written = [len(os.listdir(project.path(d))) for d in ("chromat_dir", "phd_dir", "poly_dir")]
    checks.equal(written, [1000] * 3, "100,000 records files per directory")
    last = [open(project.path("poly_dir", "r%d.poly" % k), "rb").read() for k in (0, 999)]
    checks.equal(last, [b"r%d 1 1 1 1 1\nT 12 300000 1 N  -1  -1 -1 0 0 0 60000\n" % k for k in (0, 999)],
                 "100,000 records: each poly file holds its last record alone")
    checks.equal(os.path.getsize(project.path("chromat_dir", "r0.scf")), 128 + 8 * 24,
                 "100,000 records: each chromat file holds its last record alone")
    with open(fasta, "wb") as out:
        out.write(b"A" * (50 << 20) + b"\n")
    status, _, _, out, err = project.run(fasta)
    checks.equal((status, out, err), (0, b"\n", b""), "50 MB line without a header")
    checks.equal([os.listdir(project.path(d)) for d in ("chromat_dir", "phd_dir", "poly_dir")],
                 [[], [], []], "50 MB line: no file written")
    bases = b"ACGTN" * 20_000
    with open(fasta, "wb") as out:
        out.write(b">aligned\n" + b"".join(b"-" * 209 + bytes([b + 32]) for b in bases) + b"\n")
    status, _, _, out, err = project.run(fasta)
    checks.equal((status, err), (0, b""), "alignment row exit status and stderr")
    check_scf(checks, project.path("chromat_dir", "aligned.scf"), bases, (0, 3, 4, 99_999))
    check_phd(checks, project.path("phd_dir", "aligned.phd.1"), bases)
    check_poly(checks, project.path("poly_dir", "aligned.poly"), b"aligned", bases)
    project.reset()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("binary")
    parser.add_argument("--work", help="where to make the scratch directory (default: /dev/shm)")
    parser.add_argument("--bases", type=int, default=24_000_000, help="length of the huge record")
    parser.add_argument("--only", choices=("huge", "growth", "hostile"))
    args = parser.parse_args()
    if not os.access(TIME, os.X_OK):
        print("skipped: %s is missing (Debian package time)" % TIME)
        return SKIPPED

    base = args.work or ("/dev/shm" if os.access("/dev/shm", os.W_OK) else None)
    work = tempfile.mkdtemp(prefix="synthcall-scale.", dir=base)
    project = Project(os.path.abspath(args.binary), os.path.join(work, "project"))
    checks = Checks()
    try:
        if args.only in (None, "huge"):
            huge_record(checks, project, work, max(2, args.bases))
        if args.only in (None, "growth"):
            growth(checks, project, work)
        if args.only in (None, "hostile"):
            hostile(checks, project, work)
    finally:
        shutil.rmtree(work, ignore_errors=True)
    print("%d passed, %d failed" % (checks.passed, checks.failed))
    return 1 if checks.failed else 0


if __name__ == "__main__":
    sys.exit(main())
