#!/usr/bin/env python3
"""Reads synthcall's chromatograms back with io_lib's command-line tools.

  interop_iolib.py BINARY

io_lib comes from the authors of the SCF format, so it settles how an SCF file is read. scf_info
must report version 2.00, 12n + 12 samples of 2 bytes at offset 128 and no bases; trace_dump must
find the same number of points in SCF and ABIF files, the highest value 640 (0 for an empty
trace), and every channel point for point. For ABIF it finds the channels through the base order
FWO_, so a wrong order shows up as swapped channels. Exits 0 when all agree, 1 on a difference,
77 when the tools are missing (1 in CI).
"""

import os
import shutil
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # keep the source tree clean
import project_tree as tree  # noqa: E402

TOOLS = ("scf_info", "trace_dump")
TRACE_SECTIONS = [f"{base}_Trace" for base in tree.CHANNELS]


def run_tool(tool, path):
    result = subprocess.run([tool, path], capture_output=True, timeout=60)
    output = result.stdout.decode(errors="replace")
    if result.returncode != 0:
        raise RuntimeError(f"{tool} {path}: status {result.returncode}, "
                           f"{result.stderr.decode(errors='replace').strip() or output.strip()}")
    return output


def parse_scf_info(text):
    """Lines such as "Number_of_samples    120" into a dictionary of texts."""
    fields = {}
    for line in text.splitlines():
        key, _, value = line.rpartition(" ")
        if key:
            fields[key.strip()] = value
    return fields


def parse_trace_dump(text):
    """trace_dump's "[Section]" blocks: the Header as {name: number}, each trace as a list,
    Info as {key: value}."""
    sections, current = {}, None
    for line in text.splitlines():
        if line.startswith("[") and line.endswith("]"):
            current = sections.setdefault(line[1:-1], [])
        elif current is not None and line.strip():
            current.append(line)
    header = {}
    for line in sections.get("Header", []):
        value, _, name = line.partition("#")
        header[name.strip()] = int(value)
    traces = [[int(line.split("#")[0]) for line in sections.get(name, [])]
              for name in TRACE_SECTIONS]
    info = dict(line.split("=", 1) for line in sections.get("Info", []) if "=" in line)
    return header, traces, info


def check_scf_info(checks, run, record):
    what = f"scf {record.name} scf_info"
    fields = parse_scf_info(run_tool("scf_info", run.chromat(record)))
    checks.equal(what, {key: fields.get(key) for key in (
        "Version_number", "Number_of_samples", "Samples_offset", "Samples_size",
        "Number_of_bases", "Comments_size")}, {
            "Version_number": "2.00",
            "Number_of_samples": str(record.samples),
            "Samples_offset": "128",
            "Samples_size": "2",
            "Number_of_bases": "0",
            "Comments_size": "0",
        })


def check_trace_dump(checks, run, record):
    what = f"{run.form} {record.name} trace_dump"
    header, traces, info = parse_trace_dump(run_tool("trace_dump", run.chromat(record)))
    top = tree.PEAK_TOP if any(base in tree.CHANNELS for base in record.bases) else 0
    checks.equal(f"{what} header", (header.get("NPoints"), header.get("NBases"),
                                    header.get("maxTraceVal")), (record.samples, 0, top))
    checks.trace(what, traces, record.bases, run.form)
    if run.form == "abi":
        checks.equal(f"{what} lane", info.get("LANE"), "80")


def check_record(checks, run, record):
    try:
        if run.form == "scf":
            check_scf_info(checks, run, record)
        check_trace_dump(checks, run, record)
    except (RuntimeError, ValueError, subprocess.TimeoutExpired) as error:
        checks.fail(f"{run.form} {record.name}", error)


def main(argv):
    if len(argv) != 2:
        print("usage: interop_iolib.py BINARY", file=sys.stderr)
        return 2
    if not all(shutil.which(tool) for tool in TOOLS):
        return tree.missing_reader("io_lib's scf_info and trace_dump (staden-io-lib-utils)")
    checks = tree.Checks("io_lib")
    with tempfile.TemporaryDirectory(prefix="interop_iolib.") as workdir:
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
