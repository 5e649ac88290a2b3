#!/usr/bin/python3
"""interop_biopython.py BINARY: reads synthcall's phd and ABIF files back with Biopython.

phd: name, bases, one quality per base, peak locations 12, 24, ..., chromat file, trace index
range. ABIF: the base order FWO_ "ACGT", the lane, and DATA 9 to 12 (A, C, G, T) point for point.
"""

import sys

try:
    from Bio import SeqIO
except ImportError:  # Biopython is a Debian package: run this under /usr/bin/python3
    SeqIO = None

sys.dont_write_bytecode = True  # keep the source tree clean
import project_tree as tree  # noqa: E402


def check_record(form, record):
    what, n = f"{form['form']} {record['name']}", len(record["bases"])
    phd = SeqIO.read(record["phd"], "phd")
    tree.expect(f"{what} phd", [
        phd.id, str(phd.seq), phd.annotations["chromat_file"],
        phd.annotations["trace_array_min_index"], phd.annotations["trace_array_max_index"]
    ], [record["name"], record["bases"], record["chromat_name"], 0, 12 * n + 11])
    tree.expect(f"{what} phd qualities", list(phd.letter_annotations["phred_quality"]),
                [int(form["quality"])] * n)
    tree.expect(f"{what} phd peak locations", list(phd.letter_annotations["peak_location"]),
                [12 * (i + 1) for i in range(n)])
    if form["form"] == "abi":
        raw = SeqIO.read(record["chromat"], "abi").annotations["abif_raw"]
        tree.expect(f"{what} abif base order and lane", [raw.get("FWO_1"), raw.get("LANE1")],
                    [b"ACGT", 80])
        tree.expect_trace(f"{what} abif", [raw.get(f"DATA{k}", ()) for k in range(9, 13)], record)


if __name__ == "__main__":
    sys.exit(tree.check_all("biopython", check_record,
                            None if SeqIO else "Biopython (python3-biopython)"))
