"""Shared by the interoperability checks: builds a scratch project tree, runs synthcall on a small
FASTA file in it, and knows what an independent reader must find in the files it wrote.

As a module: `run_forms(binary, workdir)` gives one Run per chromatogram form, `expected_trace`
the four channels a reader must return, `Checks` counts and reports results, and `missing_reader`
picks the exit status for a reader that is not installed.

As a program, for checks written in other languages:

  project_tree.py BINARY WORKDIR

builds the trees under WORKDIR, runs the program and writes WORKDIR/manifest.json: for each form
its quality text and, per record, the name, the clean bases, the file paths and the expected
traces. Exits 1 when the program does not run cleanly.
"""

import json
import os
import random
import subprocess
import sys

SKIP = 77

# The 13 heights of one peak; its middle (640) is the base's centre.
PEAK = (32, 128, 320, 464, 576, 624, 640, 624, 576, 464, 320, 128, 32)
PEAK_TOP = 640
CHANNELS = "ACGT"
SPACING = 12

# Where the first point of base i's peak lies: the ABIF trace stands one point earlier than the
# SCF trace and the phd positions, on purpose.
FIRST_PEAK_POINT = {"scf": 6, "abi": 5}


class Record:
    def __init__(self, name, lines, bases):
        self.name = name
        self.lines = lines  # the sequence lines as written to the FASTA file
        self.bases = bases  # the clean sequence the program must make of them

    @property
    def samples(self):
        return SPACING * len(self.bases) + SPACING

    @property
    def positions(self):
        return [SPACING * (i + 1) for i in range(len(self.bases))]


def _long_bases():
    rng = random.Random(1000)
    return "".join(rng.choice(CHANNELS) for _ in range(1000))


_LONG = _long_bases()

# Lower case, an N between real bases, an empty record, touching peaks in one channel ("TT"), and
# a record long enough that its positions and sample counts run past three digits.
RECORDS = [
    Record("mixed", ["acgtn", "ACGT"], "ACGTNACGT"),
    Record("empty", [], ""),
    Record("pair", ["TTg"], "TTG"),
    Record("long", [_LONG[i : i + 60] for i in range(0, len(_LONG), 60)], _LONG),
]

HEADER_DESCRIPTIONS = {"mixed": " lower case and an N", "long": " 1000 bases"}

# The SCF tree uses the default quality; the ABIF tree a chosen one, so that the phd reader
# sees both.
FORMS = (("scf", [], "59"), ("abi", ["-q", "7", "-abi"], "7"))


def fasta_text():
    lines = []
    for record in RECORDS:
        lines.append(">" + record.name + HEADER_DESCRIPTIONS.get(record.name, ""))
        lines.extend(record.lines)
    return "\n".join(lines) + "\n"


def expected_trace(bases, form):
    """The four channels (A, C, G, T) of the synthetic trace of `bases` in `form`."""
    channels = [[0] * (SPACING * len(bases) + SPACING) for _ in CHANNELS]
    current = None
    for i, base in enumerate(bases):
        if base in CHANNELS:
            current = CHANNELS.index(base)
        elif form == "scf":
            continue  # SCF leaves the slot of an unknown letter empty
        # ABIF draws an unknown letter in the channel of the last known base before it.
        if current is None:
            continue
        first = FIRST_PEAK_POINT[form] + SPACING * i
        channels[current][first : first + len(PEAK)] = PEAK
    return channels


def peak_centre(i, form):
    return FIRST_PEAK_POINT[form] + SPACING * i + len(PEAK) // 2


class Run:
    """One run of the program in its own project tree, in one chromatogram form."""

    def __init__(self, form, root, quality):
        self.form = form
        self.root = root
        self.quality = quality
        self.records = RECORDS

    def chromat_name(self, record):
        return record.name + ".scf" if self.form == "scf" else record.name

    def chromat(self, record):
        return os.path.join(self.root, "chromat_dir", self.chromat_name(record))

    def phd(self, record):
        return os.path.join(self.root, "phd_dir", record.name + ".phd.1")


class RunFailure(Exception):
    pass


def _make_tree(root):
    for directory in ("edit_dir", "chromat_dir", "phd_dir", "poly_dir"):
        os.makedirs(os.path.join(root, directory))
    with open(os.path.join(root, "edit_dir", "reads.fa"), "w") as fasta:
        fasta.write(fasta_text())


def run_form(binary, workdir, form, options, quality):
    root = os.path.join(workdir, form)
    _make_tree(root)
    edit_dir = os.path.join(root, "edit_dir")
    # The program finds its project tree through PWD, as a shell sets it.
    env = dict(os.environ, PWD=edit_dir)
    try:
        result = subprocess.run([binary, "reads.fa"] + options, cwd=edit_dir, env=env,
                                capture_output=True, timeout=120)
    except (OSError, subprocess.TimeoutExpired) as error:
        raise RunFailure(f"{binary} did not run: {error}")
    if result.returncode != 0 or result.stderr:
        raise RunFailure(f"{form} run: status {result.returncode}, "
                         f"standard error {result.stderr.decode(errors='replace')!r}")
    run = Run(form, root, quality)
    for record in RECORDS:
        for path in (run.chromat(record), run.phd(record)):
            if not os.path.isfile(path):
                raise RunFailure(f"{form} run: {path} was not written")
    return run


def run_forms(binary, workdir):
    return [run_form(binary, workdir, *form) for form in FORMS]


def missing_reader(what):
    """Exit status for a reader that is not installed: skipped, except in CI, where it fails."""
    print(f"not installed: {what}")
    return 1 if os.environ.get("CI") == "true" else SKIP


def _short(value):
    text = repr(value)
    return text if len(text) <= 80 else text[:77] + "..."


def differences(got, want, points=None, limit=3):
    """A short description of where two sequences differ, or "" when they are equal. `points`
    names the position of each element (the sample point), when it is not the index."""
    if len(got) != len(want):
        return f"length {len(got)}, want {len(want)}"
    points = points or range(len(want))
    found = [f"[{p}] {g!r} want {w!r}" for p, g, w in zip(points, got, want) if g != w]
    if not found:
        return ""
    more = f" and {len(found) - limit} more" if len(found) > limit else ""
    return ", ".join(found[:limit]) + more


class Checks:
    """Counts checks; prints each failure with what differs, and a closing count."""

    def __init__(self, reader):
        self.reader = reader
        self.passed = 0
        self.failed = 0

    def fail(self, what, detail):
        self.failed += 1
        print(f"FAIL {what}: {detail}")

    def equal(self, what, got, want):
        if got == want:
            self.passed += 1
            return True
        self.fail(what, f"got {_short(got)}, want {_short(want)}")
        return False

    def same_sequence(self, what, got, want, points=None):
        detail = differences(list(got), list(want), points)
        if detail:
            self.fail(what, detail)
            return False
        self.passed += 1
        return True

    def trace(self, what, got, bases, form):
        """`got` holds the reader's channels A, C, G, T; checks the sample count, the value of
        every channel at each peak centre, the points that must be empty, then every value."""
        want = expected_trace(bases, form)
        if not self.equal(f"{what} sample count", [len(c) for c in got], [len(c) for c in want]):
            return
        centres = [peak_centre(i, form) for i in range(len(bases))]
        empty = [p for p in range(len(want[0])) if not any(c[p] for c in want)]
        for label, points in (("peak centres", centres), ("empty points", empty)):
            for channel, name in enumerate(CHANNELS):
                self.same_sequence(f"{what} {label} in channel {name}",
                                   [got[channel][p] for p in points],
                                   [want[channel][p] for p in points], points)
        for channel, name in enumerate(CHANNELS):
            self.same_sequence(f"{what} channel {name}", got[channel], want[channel])

    def finish(self):
        print(f"{self.reader}: {self.passed} passed, {self.failed} failed")
        return 1 if self.failed else 0


def write_manifest(runs, path):
    forms = []
    for run in runs:
        records = [{
            "name": record.name,
            "bases": record.bases,
            "chromat": run.chromat(record),
            "chromat_name": run.chromat_name(record),
            "phd": run.phd(record),
            "trace": expected_trace(record.bases, run.form),
        } for record in run.records]
        forms.append({"form": run.form, "quality": run.quality, "records": records})
    with open(path, "w") as manifest:
        json.dump({"forms": forms}, manifest)


def main(argv):
    if len(argv) != 3:
        print("usage: project_tree.py BINARY WORKDIR", file=sys.stderr)
        return 2
    try:
        runs = run_forms(os.path.abspath(argv[1]), argv[2])
    except RunFailure as failure:
        print(f"FAIL {failure}")
        return 1
    write_manifest(runs, os.path.join(argv[2], "manifest.json"))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
