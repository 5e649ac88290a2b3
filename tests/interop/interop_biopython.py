#!/usr/bin/python3
"""Reads synthcall's phd and ABIF files back with Biopython.

  interop_biopython.py BINARY

phd: the bases, one quality per base, the peak locations 12, 24, ..., the chromat file name and
the highest trace index. ABIF: the base order FWO_ "ACGT", the lane, and the four DATA arrays
(9 to 12 hold A, C, G, T) point for point. Exits 0 when all agree, 1 on a difference, 77 when
Biopython is missing (1 in CI).
"""

import os
import sys
import tempfile

DEBIAN_PYTHON = "/usr/bin/python3"

try:
    from Bio import SeqIO
except ImportError:
    # Biopython comes as a Debian package; an interpreter first on PATH may not see it.
    if os.path.realpath(sys.executable) != os.path.realpath(DEBIAN_PYTHON) and os.access(
            DEBIAN_PYTHON, os.X_OK):
        os.execv(DEBIAN_PYTHON, [DEBIAN_PYTHON] + sys.argv)
    SeqIO = None

sys.dont_write_bytecode = True  # keep the source tree clean
import project_tree as tree  # noqa: E402


def check_phd(checks, run, record):
    what = f"{run.form} phd {record.name}"
    parsed = SeqIO.read(run.phd(record), "phd")
    checks.equal(f"{what} name", parsed.id, record.name)
    checks.same_sequence(f"{what} bases", str(parsed.seq), record.bases)
    checks.same_sequence(f"{what} qualities", parsed.letter_annotations["phred_quality"],
                         [int(run.quality)] * len(record.bases))
    checks.same_sequence(f"{what} peak locations", parsed.letter_annotations["peak_location"],
                         record.positions)
    checks.equal(f"{what} chromat file", parsed.annotations["chromat_file"],
                 run.chromat_name(record))
    checks.equal(f"{what} trace index range", (parsed.annotations["trace_array_min_index"],
                                               parsed.annotations["trace_array_max_index"]),
                 (0, record.samples - 1))


def check_abif(checks, run, record):
    what = f"abif {record.name}"
    raw = SeqIO.read(run.chromat(record), "abi").annotations["abif_raw"]
    checks.equal(f"{what} base order", raw.get("FWO_1"), b"ACGT")
    checks.equal(f"{what} lane", raw.get("LANE1"), 80)
    channels = [list(raw.get(f"DATA{number}", ())) for number in (9, 10, 11, 12)]
    checks.trace(what, channels, record.bases, "abi")


def check_record(checks, run, record):
    try:
        check_phd(checks, run, record)
        if run.form == "abi":
            check_abif(checks, run, record)
    except Exception as error:  # a reader that rejects our file is a failed check, not a crash
        checks.fail(f"{run.form} {record.name}", f"Biopython raised {error!r}")


def main(argv):
    if len(argv) != 2:
        print("usage: interop_biopython.py BINARY", file=sys.stderr)
        return 2
    if SeqIO is None:
        return tree.missing_reader("Biopython (python3-biopython)")
    checks = tree.Checks("biopython")
    with tempfile.TemporaryDirectory(prefix="interop_biopython.") as workdir:
        try:
            runs = tree.run_forms(os.path.abspath(argv[1]), workdir)
        except tree.RunFailure as failure:
            checks.fail("run", failure)
            return checks.finish()
        for run in runs:
            for record in run.records:
                check_record(checks, run, record)
    return checks.finish()


if __name__ == "__main__":
    sys.exit(main(sys.argv))
