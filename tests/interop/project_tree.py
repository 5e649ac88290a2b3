"""Runs synthcall (every check's one argument) in a scratch project tree per chromatogram form and
knows what independent readers must find; `project_tree.py BINARY WORKDIR` writes that to
WORKDIR/manifest.json for checks in other languages. A check exits 0 when all agree, 1 on a
difference or a failed run, 77 when its reader is missing (1 in CI)."""

import json
import os
import random
import subprocess
import sys
import tempfile

PEAK = (32, 128, 320, 464, 576, 624, 640, 624, 576, 464, 320, 128, 32)
CHANNELS = "ACGT"
# The first point of base 0's peak: ABIF stands one point before SCF and the phd positions.
FIRST_PEAK = {"scf": 6, "abi": 5}
# The SCF tree uses the default quality, the ABIF tree a chosen one, so the phd readers see both.
FORMS = {"scf": ([], "59"), "abi": (["-q", "7", "-abi"], "7")}

_LONG = "".join(random.Random(1000).choice(CHANNELS) for _ in range(1000))
# (FASTA lines, name, clean bases): lower case and an N, an empty record, touching peaks in one
# channel, and a record whose positions and sample counts run past three digits.
RECORDS = [
    ([">mixed lower case and an N", "acgtn", "ACGT"], "mixed", "ACGTNACGT"),
    ([">empty"], "empty", ""),
    ([">pair", "TTg"], "pair", "TTG"),
    ([">long 1000 bases"] + [_LONG[i:i + 60] for i in range(0, 1000, 60)], "long", _LONG),
]


def expected_trace(bases, form):
    """The four channels (A, C, G, T) of the synthetic trace of `bases` in `form`."""
    channels = [[0] * (12 * len(bases) + 12) for _ in CHANNELS]
    current = None
    for i, base in enumerate(bases):
        if base in CHANNELS:
            current = CHANNELS.index(base)
        elif form == "scf" or current is None:
            continue  # SCF leaves an unknown letter's slot empty; ABIF repeats the last channel
        first = FIRST_PEAK[form] + 12 * i
        channels[current][first:first + len(PEAK)] = PEAK
    return channels


def run_form(binary, workdir, form):
    """Runs the program in a tree of its own; says per record what its files must hold."""
    options, quality = FORMS[form]
    root = os.path.join(workdir, form)
    for directory in ("edit_dir", "chromat_dir", "phd_dir", "poly_dir"):
        os.makedirs(os.path.join(root, directory))
    edit_dir = os.path.join(root, "edit_dir")
    with open(os.path.join(edit_dir, "reads.fa"), "w") as fasta:
        fasta.writelines(line + "\n" for lines, _, _ in RECORDS for line in lines)
    # The program finds its project tree through PWD, as a shell sets it.
    result = subprocess.run([os.path.abspath(binary), "reads.fa"] + options, cwd=edit_dir,
                            env=dict(os.environ, PWD=edit_dir), capture_output=True, timeout=120)
    if result.returncode != 0 or result.stderr:
        raise RuntimeError(f"{form} run: status {result.returncode}, {result.stderr!r}")
    records = []
    for _, name, bases in RECORDS:
        chromat_name = name + ".scf" if form == "scf" else name
        records.append({"name": name, "bases": bases, "chromat_name": chromat_name,
                        "chromat": os.path.join(root, "chromat_dir", chromat_name),
                        "phd": os.path.join(root, "phd_dir", name + ".phd.1"),
                        "trace": expected_trace(bases, form)})
    return {"form": form, "quality": quality, "records": records}


RESULTS = []  # whether each check passed


def expect(what, got, want):
    """Reports a difference: where two lists first differ, or both values."""
    RESULTS.append(got == want)
    if got != want:
        at = [i for i, (g, w) in enumerate(zip(got, want)) if g != w] if type(want) is list else []
        print(f"FAIL {what}: " + (f"[{at[0]}] is {got[at[0]]!r}, want {want[at[0]]!r}"
                                  if at else f"got {repr(got)[:80]}, want {repr(want)[:80]}"))


def expect_trace(what, channels, record):
    for name, got, want in zip(CHANNELS, channels, record["trace"]):
        expect(f"{what} channel {name}", list(got), want)


def check_all(reader, check_record, missing=None):
    """A reader's main program: check_record(form, record) for every record written. `missing`
    names the reader when it is not installed: skipped, but failed in CI."""
    if missing:
        print(f"not installed: {missing}")
        return 1 if os.environ.get("CI") == "true" else 77
    with tempfile.TemporaryDirectory(prefix=f"interop_{reader}.") as workdir:
        for form in [run_form(sys.argv[1], workdir, form) for form in FORMS]:
            for record in form["records"]:
                try:
                    check_record(form, record)
                except Exception as error:  # a reader that rejects our file fails a check
                    expect(f"{form['form']} {record['name']} read by {reader}", repr(error), None)
    print(f"{reader}: {RESULTS.count(True)} passed, {RESULTS.count(False)} failed")
    return 0 if all(RESULTS) else 1


if __name__ == "__main__":
    binary, workdir = sys.argv[1:]
    with open(os.path.join(workdir, "manifest.json"), "w") as manifest:
        json.dump({"forms": [run_form(binary, workdir, form) for form in FORMS]}, manifest)
