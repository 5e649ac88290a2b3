#!/usr/bin/env python3
"""Measures synthcall against two floors of writing the same bytes.

Both floors write the very chromat_dir/, phd_dir/ and poly_dir/ that synthcall has just written,
into a fresh directory: the same files and the same bytes, by programs that compute nothing.
`cp -r` reads every file and writes it again. The write floor (write_floor.cpp) holds every byte in
memory (mapped) before its clock starts and writes each file with one open, writes of 256 KiB and
one close: the least any program can spend on putting these files on disk. Runs alternate
(synthcall, copy, write floor, synthcall, ...) and each case reports the median of the per-run
ratios, so that a slow moment of a shared machine lands on one run instead of on one side.
Everything happens on tmpfs, so the numbers are CPU and memory bandwidth, not disk.

Times are given twice: wall-clock, and processor time (user + system), which other processes on a
busy machine disturb less.

Run it through bench/run.sh, which builds the Release binaries first.
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

READ_COUNT = 5_000
READ_LENGTHS = (600, 900)
CLONE_LENGTH = 5_000_000
LINE_WIDTH = 60
MIB = 1024 * 1024
PEAK_LIMIT_MIB = 16
READS_TARGET = 1.5  # highest acceptable ratio to the write floor
CLONE_TARGET = 1.8
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


class Run:
    """One measured run: wall-clock and processor seconds, peak resident KiB (0 when unknown)."""

    def __init__(self, wall, processor, peak=0):
        self.wall = wall
        self.processor = processor
        self.peak = peak


def timed(argv, cwd, env=None):
    """Runs argv under /usr/bin/time."""
    with tempfile.NamedTemporaryFile("r", suffix=".time") as report:
        command = [TIME, "-f", "%U %S %M", "-o", report.name] + argv
        start = time.perf_counter()
        done = subprocess.run(command, cwd=cwd, env=env, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE)
        seconds = time.perf_counter() - start
        if done.returncode != 0:
            sys.exit("bench: %s failed (%d): %s" % (argv[0], done.returncode,
                                                    done.stderr.decode(errors="replace")))
        user, system, peak = report.read().split()[-3:]
        return Run(seconds, float(user) + float(system), int(peak))


class Row:
    """One line of a table: synthcall's runs, the runs of the copy (None where there is no copy)
    and of the floor that the target applies to, each taken in the same alternating pairs."""

    def __init__(self, label, mine, copies, floors, target):
        self.label = label
        self.mine = mine
        self.copies = copies
        self.floors = floors
        self.target = target


class Bench:
    def __init__(self, binary, floor_binary, work, pairs):
        self.binary = binary
        self.floor_binary = floor_binary
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
        run = timed(["cp", "-r"] + list(OUTPUT_DIRS) + [self.copy], self.project)
        shutil.rmtree(self.copy)
        return run

    def write_floor(self):
        """The write floor's own figures: only its writing is timed, not its loading."""
        shutil.rmtree(self.copy, ignore_errors=True)
        done = subprocess.run([self.floor_binary, self.project, self.copy] + list(OUTPUT_DIRS),
                              capture_output=True, text=True)
        shutil.rmtree(self.copy)
        if done.returncode != 0:
            sys.exit("bench: write_floor failed (%d): %s" % (done.returncode, done.stderr))
        wall, processor = done.stdout.split()
        return Run(float(wall), float(processor))

    def against_floors(self, label, fasta, options, target):
        """Alternating runs of synthcall, the copy and the write floor; returns synthcall's runs."""
        mine, copies, writes = [], [], []
        for _ in range(self.pairs):
            mine.append(self.synthcall(fasta, options))
            copies.append(self.copy_outputs())
            writes.append(self.write_floor())
        self.rows.append(Row(label, mine, copies, writes, target))
        self.notes.append("%s: %.0f MB written per run" % (label, tree_bytes(self.project) / 1e6))
        return mine

    def memory(self, label, runs):
        """Peak resident memory in MiB against the limit, shown in both time columns."""
        peaks = [Run(run.peak / 1024, run.peak / 1024) for run in runs]
        limit = [Run(PEAK_LIMIT_MIB, PEAK_LIMIT_MIB)] * len(runs)
        self.rows.append(Row(label, peaks, None, limit, 1.0))

    def against_script(self, label, fasta):
        probe = subprocess.run([SYSTEM_PYTHON, "-c", "import Bio.SeqIO"], capture_output=True)
        if probe.returncode != 0:
            self.notes.append("%s: skipped, Biopython is missing (apt-get install "
                              "python3-biopython)" % label)
            return
        script = os.path.join(self.work, "phd_only.py")
        with open(script, "w") as out:
            out.write(PHD_SCRIPT)
        mine, others = [], []
        for _ in range(self.pairs):
            mine.append(self.synthcall(fasta, []))
            edit_dir = fresh_project(self.project)
            others.append(timed([SYSTEM_PYTHON, script, fasta, "../phd_dir"], edit_dir))
        self.rows.append(Row(label, mine, None, others, 1 / 3))


def result(ratio, target):
    if ratio <= target:
        return "met"
    return "missed by %.0f%%" % (100 * (ratio / target - 1))


def ratios(mine, others, clock):
    return [getattr(a, clock) / getattr(b, clock) for a, b in zip(mine, others)]


def median(runs, clock):
    return statistics.median(getattr(run, clock) for run in runs)


def print_table(rows, clock):
    """Medians; the ratios are medians of the per-pair ratios, with their spread (min-max)."""
    line = "%-30s %9s %8s %6s %8s %6s %-12s %8s  %s"
    print(line % ("case", "synthcall", "cp", "ratio", "floor", "ratio", "(min-max)", "target",
                  "result"))
    for row in rows:
        copy, copy_ratio = "", ""
        if row.copies:
            copy = "%.3f" % median(row.copies, clock)
            copy_ratio = "%.2f" % statistics.median(ratios(row.mine, row.copies, clock))
        spread = ratios(row.mine, row.floors, clock)
        ratio = statistics.median(spread)
        print(line % (row.label, "%.3f" % median(row.mine, clock), copy, copy_ratio,
                      "%.3f" % median(row.floors, clock), "%.2f" % ratio,
                      "(%.2f-%.2f)" % (min(spread), max(spread)), "<= %.2f" % row.target,
                      result(ratio, row.target)))


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


def load_average():
    """The 1-, 5- and 15-minute load averages: how busy the machine was around the runs."""
    with open("/proc/loadavg") as info:
        return " ".join(info.read().split()[:3])


def scratch_directory(base):
    if not base:
        base = "/dev/shm" if os.access("/dev/shm", os.W_OK) else tempfile.gettempdir()
    return tempfile.mkdtemp(prefix="synthcall-bench.", dir=base)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--binary", required=True, help="the synthcall to measure")
    parser.add_argument("--floor", required=True, help="the write floor (write_floor.cpp)")
    parser.add_argument("--work", help="where to make the scratch directory (default: /dev/shm)")
    parser.add_argument("--pairs", type=int, default=7, help="alternating pairs per case")
    parser.add_argument("--keep", action="store_true", help="keep the scratch directory")
    parser.add_argument("--abi", action="store_true", help="also measure the -abi cases")
    parser.add_argument("--reads", type=int, default=READ_COUNT, help="number of reads")
    parser.add_argument("--clone-bases", type=int, default=CLONE_LENGTH, help="clone length")
    args = parser.parse_args()
    load_before = load_average()

    work = scratch_directory(args.work)
    bench = Bench(os.path.abspath(args.binary), os.path.abspath(args.floor), work,
                  max(1, args.pairs))
    try:
        reads = os.path.join(work, "reads.fa")
        clone = os.path.join(work, "clone.fa")
        write_reads(reads, args.reads)
        write_clone(clone, args.clone_bases)
        clone_bytes = os.path.getsize(clone)

        bench.against_floors("reads", reads, [], READS_TARGET)
        runs = bench.against_floors("clone", clone, [], CLONE_TARGET)
        bench.memory("clone peak memory (MiB)", runs)
        bench.against_script("reads vs Biopython phd only", reads)
        if args.abi:
            bench.against_floors("reads -abi", reads, ["-abi"], READS_TARGET)
            runs = bench.against_floors("clone -abi", clone, ["-abi"], CLONE_TARGET)
            bench.memory("clone -abi peak memory (MiB)", runs)
    finally:
        if not args.keep:
            shutil.rmtree(work, ignore_errors=True)

    print("wall-clock seconds")
    print_table(bench.rows, "wall")
    print()
    print("processor seconds (user + system)")
    print_table(bench.rows, "processor")
    print()
    print("cp: cp -r of synthcall's output; floor: the write floor, or the limit in the memory "
          "rows, or the script")
    print("inputs: %d reads of %d to %d bases; one clone record of %d bases (%d bytes)" % (
        args.reads, READ_LENGTHS[0], READ_LENGTHS[1], args.clone_bases, clone_bytes))
    print("medians of %d alternating pairs on %s" % (bench.pairs, os.path.dirname(work)))
    for note in bench.notes:
        print(note)
    print(machine())
    print("load average before and after: %s, %s" % (load_before, load_average()))


if __name__ == "__main__":
    main()
