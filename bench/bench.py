#!/usr/bin/env python3
"""Measures synthcall against the floor of writing the same bytes.

The floor of a run is `cp -r` of the very chromat_dir/, phd_dir/ and poly_dir/ that synthcall has
just written, into a fresh directory: the same files and the same bytes, produced by a program that
does nothing but move them. Runs alternate (synthcall, copy, synthcall, copy, ...) and each case
reports the median of the per-pair ratios, so that a slow moment of a shared machine lands on one
pair instead of on one side. Everything happens on tmpfs, so the numbers are CPU and memory
bandwidth, not disk.

Run it through bench/run.sh, which builds the Release binary first.
"""

import argparse
import os
import platform
import random
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

READ_COUNT = 20_000
READ_LENGTHS = (600, 900)
CLONE_LENGTH = 5_000_000
LINE_WIDTH = 60
MIB = 1024 * 1024
SYSTEM_PYTHON = "/usr/bin/python3"
TIME = "/usr/bin/time"
PROJECT_DIRS = ("edit_dir", "chromat_dir", "phd_dir", "poly_dir")
OUTPUT_DIRS = PROJECT_DIRS[1:]

# What a user might write instead of synthcall: Biopython's own phd writer, fed the same quality
# and peak positions synthcall puts into its phd files. It writes the phd files only.
PHD_SCRIPT = """\
import os
import sys

from Bio import SeqIO

fasta, phd_dir = sys.argv[1], sys.argv[2]
for record in SeqIO.parse(fasta, "fasta"):
    n = len(record.seq)
    record.letter_annotations["phred_quality"] = [59] * n
    record.letter_annotations["peak_location"] = list(range(12, 12 * n + 1, 12))
    with open(os.path.join(phd_dir, record.id + ".phd.1"), "w") as handle:
        SeqIO.write(record, handle, "phd")
"""

# Bytes 0..251 give the four bases evenly; 252..255 give N, about one base in 64, so that the
# writers' path for letters without a channel is exercised too.
BASE_TABLE = bytes(b"ACGT"[i % 4] if i < 252 else ord("N") for i in range(256))


def random_bases(rng, length):
    return rng.randbytes(length).translate(BASE_TABLE)


def write_record(out, name, bases):
    out.write(b">" + name.encode() + b"\n")
    for start in range(0, len(bases), LINE_WIDTH):
        out.write(bases[start : start + LINE_WIDTH] + b"\n")


def write_reads(path, count=READ_COUNT, seed=20060223):
    rng = random.Random(seed)
    with open(path, "wb") as out:
        for index in range(count):
            length = rng.randint(*READ_LENGTHS)
            write_record(out, "read%05d" % (index + 1), random_bases(rng, length))


def write_clone(path, length=CLONE_LENGTH, seed=5):
    with open(path, "wb") as out:
        write_record(out, "clone", random_bases(random.Random(seed), length))


def fresh_project(root):
    shutil.rmtree(root, ignore_errors=True)
    for name in PROJECT_DIRS:
        os.makedirs(os.path.join(root, name))
    return os.path.join(root, "edit_dir")


def tree_bytes(root):
    return sum(
        os.path.getsize(os.path.join(directory, name))
        for directory, _, names in os.walk(root)
        for name in names
    )


def timed(argv, cwd, env=None):
    """Runs argv under /usr/bin/time; returns (wall seconds, peak resident KiB)."""
    with tempfile.NamedTemporaryFile("r", suffix=".time") as report:
        command = [TIME, "-f", "%M", "-o", report.name] + argv
        start = time.perf_counter()
        done = subprocess.run(command, cwd=cwd, env=env, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE)
        seconds = time.perf_counter() - start
        if done.returncode != 0:
            sys.exit("bench: %s failed (%d): %s" % (argv[0], done.returncode,
                                                    done.stderr.decode(errors="replace")))
        return seconds, int(report.read().split()[-1])


class Bench:
    def __init__(self, binary, work, pairs):
        self.binary = binary
        self.work = work
        self.pairs = pairs
        self.project = os.path.join(work, "project")
        self.copy = os.path.join(work, "copy")
        self.rows = []
        self.notes = []

    def synthcall(self, fasta, options):
        edit_dir = fresh_project(self.project)
        env = dict(os.environ, PWD=edit_dir)
        return timed([self.binary, fasta] + options, edit_dir, env)

    def copy_outputs(self):
        shutil.rmtree(self.copy, ignore_errors=True)
        os.makedirs(self.copy)
        seconds, _ = timed(["cp", "-r"] + list(OUTPUT_DIRS) + [self.copy], self.project)
        shutil.rmtree(self.copy)
        return seconds

    def against_floor(self, label, fasta, options, target):
        """Alternating pairs of synthcall and the copy of its output; returns the peaks seen."""
        times, floors, ratios, peaks = [], [], [], []
        for _ in range(self.pairs):
            seconds, peak = self.synthcall(fasta, options)
            floor = self.copy_outputs()
            times.append(seconds)
            floors.append(floor)
            ratios.append(seconds / floor)
            peaks.append(peak)
        written = tree_bytes(self.project)
        self.add(label, statistics.median(times), statistics.median(floors),
                 statistics.median(ratios), target)
        self.notes.append("%s: %.0f MB written per run, pair ratios %s" % (
            label, written / 1e6, " ".join("%.2f" % r for r in ratios)))
        return peaks

    def memory(self, label, peaks, record_bytes):
        limit = (3 * record_bytes + 16 * MIB) / MIB
        peak = max(peaks) / 1024
        self.add(label, peak, limit, peak / limit, 1.0)

    def against_script(self, label, fasta):
        probe = subprocess.run([SYSTEM_PYTHON, "-c", "import Bio.SeqIO"], capture_output=True)
        if probe.returncode != 0:
            self.notes.append("%s: skipped, Biopython is missing (apt-get install "
                              "python3-biopython)" % label)
            return
        script = os.path.join(self.work, "phd_only.py")
        with open(script, "w") as out:
            out.write(PHD_SCRIPT)
        times, others, ratios = [], [], []
        for _ in range(self.pairs):
            seconds, _ = self.synthcall(fasta, [])
            edit_dir = fresh_project(self.project)
            other, _ = timed([SYSTEM_PYTHON, script, fasta, "../phd_dir"], edit_dir)
            times.append(seconds)
            others.append(other)
            ratios.append(seconds / other)
        self.add(label, statistics.median(times), statistics.median(others),
                 statistics.median(ratios), 1 / 3)

    def add(self, label, mine, reference, ratio, target):
        self.rows.append((label, mine, reference, ratio, target))


def result(ratio, target):
    if ratio <= target:
        return "met"
    return "missed by %.0f%%" % (100 * (ratio / target - 1))


def print_table(rows):
    header = ("case", "synthcall", "floor", "ratio", "target", "result")
    print("%-36s %10s %10s %7s %8s  %s" % header)
    for label, mine, reference, ratio, target in rows:
        print("%-36s %10.3f %10.3f %7.3f %8s  %s" % (
            label, mine, reference, ratio, "<= %.2f" % target, result(ratio, target)))


def machine():
    model = platform.processor() or "unknown"
    with open("/proc/cpuinfo") as info:
        for line in info:
            if line.startswith("model name"):
                model = line.split(":", 1)[1].strip()
                break
    with open("/proc/meminfo") as info:
        total_kib = int(info.readline().split()[1])
    return "machine: nproc %d, CPU %s, memory %.1f GiB, kernel %s" % (
        os.cpu_count(), model, total_kib / MIB, platform.release())


def scratch_directory(base):
    if not base:
        base = "/dev/shm" if os.access("/dev/shm", os.W_OK) else tempfile.gettempdir()
    return tempfile.mkdtemp(prefix="synthcall-bench.", dir=base)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--binary", required=True, help="the synthcall to measure")
    parser.add_argument("--work", help="where to make the scratch directory (default: /dev/shm)")
    parser.add_argument("--pairs", type=int, default=5, help="alternating pairs per case")
    parser.add_argument("--keep", action="store_true", help="keep the scratch directory")
    parser.add_argument("--reads", type=int, default=READ_COUNT, help="number of reads")
    parser.add_argument("--clone-bases", type=int, default=CLONE_LENGTH, help="clone length")
    args = parser.parse_args()

    work = scratch_directory(args.work)
    bench = Bench(os.path.abspath(args.binary), work, max(1, args.pairs))
    try:
        reads = os.path.join(work, "reads.fa")
        clone = os.path.join(work, "clone.fa")
        write_reads(reads, args.reads)
        write_clone(clone, args.clone_bases)
        clone_bytes = os.path.getsize(clone)

        bench.against_floor("reads (s, vs cp -r)", reads, [], 1.2)
        peaks = bench.against_floor("clone (s, vs cp)", clone, [], 1.5)
        bench.memory("clone peak memory (MiB, vs 3x+16)", peaks, clone_bytes)
        bench.against_script("reads (s, vs Biopython phd only)", reads)
        bench.against_floor("reads -abi (s, vs cp -r)", reads, ["-abi"], 1.2)
        peaks = bench.against_floor("clone -abi (s, vs cp)", clone, ["-abi"], 1.5)
        bench.memory("clone -abi peak memory (MiB)", peaks, clone_bytes)
    finally:
        if not args.keep:
            shutil.rmtree(work, ignore_errors=True)

    print_table(bench.rows)
    print()
    print("inputs: %d reads of %d to %d bases; one clone record of %d bases (%d bytes)" % (
        args.reads, READ_LENGTHS[0], READ_LENGTHS[1], args.clone_bases, clone_bytes))
    print("medians of %d alternating pairs on %s" % (bench.pairs, os.path.dirname(work)))
    for note in bench.notes:
        print(note)
    print(machine())


if __name__ == "__main__":
    main()
