#!/usr/bin/env python3
"""interop_iolib.py BINARY: reads synthcall's chromatograms back with io_lib's tools.

io_lib comes from the SCF format's authors, so it settles how an SCF file is read: scf_info must
report 12n + 12 samples, and trace_dump must find every channel of SCF and ABIF files point for
point (for ABIF through the base order FWO_, so a wrong order shows up as swapped channels).
"""

import shutil
import subprocess
import sys

sys.dont_write_bytecode = True  # keep the source tree clean
import project_tree as tree  # noqa: E402


def run_tool(tool, path):
    return subprocess.run([tool, path], capture_output=True, timeout=60,
                          check=True).stdout.decode(errors="replace").splitlines()


def check_record(form, record):
    what, path = f"{form['form']} {record['name']}", record["chromat"]
    if form["form"] == "scf":
        # Lines such as "Number_of_samples    120".
        info = dict(line.split()[-2:] for line in run_tool("scf_info", path) if " " in line)
        tree.expect(f"{what} scf_info samples", info.get("Number_of_samples"),
                    str(len(record["trace"][0])))
    # Each channel is a section "[A_Trace]" of lines such as "640  # 12".
    traces, section = {}, None
    for line in run_tool("trace_dump", path):
        if line.startswith("["):
            section = traces.setdefault(line[1:-1], [])
        elif section is not None and line.strip():
            section.append(line)
    tree.expect_trace(f"{what} trace_dump", [[int(line.split("#")[0]) for line in traces.get(
        f"{base}_Trace", [])] for base in tree.CHANNELS], record)


if __name__ == "__main__":
    tools = all(shutil.which(tool) for tool in ("scf_info", "trace_dump"))
    sys.exit(tree.check_all("io_lib", check_record, None if tools else
                            "io_lib's scf_info and trace_dump (staden-io-lib-utils)"))
