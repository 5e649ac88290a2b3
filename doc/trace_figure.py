#!/usr/bin/python3
"""trace_figure.py BINARY OUTPUT.png: draws the synthetic trace of one short record as the program
writes it, in SCF and in ABIF form, one above the other, with a close-up of the first base.

The traces are read back from the files by independent readers (io_lib's trace_dump for SCF,
Biopython for ABIF, Biopython for the phd positions), so the picture shows what other tools see.
Needs python3-matplotlib, python3-biopython and staden-io-lib-utils.
"""

import os
import subprocess
import sys
import tempfile

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402
from Bio import SeqIO  # noqa: E402

NAME, BASES = "demo", "ACGTNACGGTTACA"
CHANNELS = "ACGT"
# The colours sequence viewers conventionally give the four dyes.
COLOURS = {"A": "#1a9850", "C": "#2166ac", "G": "#222222", "T": "#d73027"}
UNKNOWN = "#8c8c8c"
NOTE_BOX = dict(boxstyle="round,pad=0.3", fc="white", ec="#cccccc")
NOTE_ARROW = dict(arrowstyle="->", color="#777777", lw=0.8)


def run(binary, root, options):
    """Writes the record into a fresh project tree; the program finds the tree through PWD."""
    for directory in ("edit_dir", "chromat_dir", "phd_dir", "poly_dir"):
        os.makedirs(os.path.join(root, directory))
    edit_dir = os.path.join(root, "edit_dir")
    with open(os.path.join(edit_dir, "demo.fa"), "w") as fasta:
        fasta.write(f">{NAME}\n{BASES}\n")
    subprocess.run([os.path.abspath(binary), "demo.fa"] + options, cwd=edit_dir, check=True,
                   env=dict(os.environ, PWD=edit_dir), stdout=subprocess.DEVNULL)


def scf_channels(path):
    """io_lib's trace_dump lists each channel as a section "[A_Trace]" of lines "640  # 12"."""
    dump = subprocess.run(["trace_dump", path], check=True, capture_output=True, text=True)
    channels, section = {}, None
    for line in dump.stdout.splitlines():
        if line.startswith("["):
            section = channels.setdefault(line[1:2], []) if line.endswith("_Trace]") else None
        elif section is not None and line.strip():
            section.append(int(line.split("#")[0]))
    return [channels[base] for base in CHANNELS]


def abif_channels(path):
    raw = SeqIO.read(path, "abi").annotations["abif_raw"]
    return [list(raw[f"DATA{number}"]) for number in range(9, 13)]


def draw_trace(axes, channels, title):
    for base, heights in zip(CHANNELS, channels):
        samples = range(len(heights))
        axes.plot(samples, heights, color=COLOURS[base], lw=1.4, label=base)
        axes.fill_between(samples, heights, color=COLOURS[base], alpha=0.12, lw=0)
    axes.set_title(title, loc="left", fontsize=10.5)
    axes.set_ylim(0, 800)
    axes.set_yticks([0, 320, 640])
    axes.set_ylabel("height")
    for side in ("top", "right"):
        axes.spines[side].set_visible(False)


def mark_bases(axes, bases, positions):
    """Each letter over its phd position, with a guide line; the unknown letter's slot shaded."""
    for base, position in zip(bases, positions):
        colour = COLOURS.get(base, UNKNOWN)
        axes.axvline(position, color=colour, lw=0.7, ls=":", alpha=0.8)
        axes.text(position, 700, base, color=colour, ha="center", va="bottom",
                  fontsize=11, fontweight="bold", family="monospace")
        if base not in CHANNELS:
            axes.axvspan(position - 6, position + 6, color=UNKNOWN, alpha=0.12, lw=0)


def draw_close_up(axes, scf, abif):
    """The first base in both forms: the ABIF peak stands one sample before the phd position."""
    samples = range(0, 25)
    axes.plot(samples, [scf[0][s] for s in samples], "o-", color=COLOURS["A"], ms=3.5, lw=1.4,
              label="SCF")
    axes.plot(samples, [abif[0][s] for s in samples], "s--", color="#7b3294", ms=3.5, lw=1.2,
              label="ABIF")
    axes.axvline(12, color=COLOURS["A"], lw=0.8, ls=":")
    arrow = dict(arrowstyle="->", color="#555555", lw=0.8)
    axes.annotate("ABIF centre:\nsample 11", xy=(11, 640), xytext=(0, 740), fontsize=8.5,
                  va="top", arrowprops=arrow)
    axes.annotate("SCF centre:\nsample 12,\nthe phd\nposition", xy=(12, 640),
                  xytext=(18.5, 740), fontsize=8.5, va="top", arrowprops=arrow)
    axes.set_title("First base (A), close up", loc="left", fontsize=10.5)
    axes.set_xlim(0, 24)
    axes.set_xticks([0, 6, 12, 18, 24])
    axes.set_ylim(0, 800)
    axes.set_yticks([0, 320, 640])
    axes.set_xlabel("sample")
    axes.legend(loc="center right", fontsize=8.5, frameon=False)
    for side in ("top", "right"):
        axes.spines[side].set_visible(False)


def main(binary, output):
    with tempfile.TemporaryDirectory(prefix="trace_figure.") as workdir:
        scf_root, abi_root = os.path.join(workdir, "scf"), os.path.join(workdir, "abi")
        run(binary, scf_root, [])
        run(binary, abi_root, ["-abi"])
        phd = SeqIO.read(os.path.join(scf_root, "phd_dir", NAME + ".phd.1"), "phd")
        positions = phd.letter_annotations["peak_location"]
        scf = scf_channels(os.path.join(scf_root, "chromat_dir", NAME + ".scf"))
        abif = abif_channels(os.path.join(abi_root, "chromat_dir", NAME))

    figure = plt.figure(figsize=(12, 5.6), dpi=150)
    grid = figure.add_gridspec(2, 2, width_ratios=(4, 1.25), hspace=0.45, wspace=0.18)
    top = figure.add_subplot(grid[0, 0])
    bottom = figure.add_subplot(grid[1, 0], sharex=top)
    unknown = positions[str(phd.seq).index("N")]
    for axes, channels, title, note in (
            (top, scf, f"SCF 2.00  chromat_dir/{NAME}.scf  (read by io_lib trace_dump)",
             "N: no peak,\nits slot stays empty"),
            (bottom, abif, f"ABIF  chromat_dir/{NAME}  (read by Biopython)",
             "N: drawn in the channel\nof the previous base (T)")):
        draw_trace(axes, channels, title)
        mark_bases(axes, str(phd.seq), positions)
        axes.annotate(note, xy=(unknown, 120), xytext=(unknown + 9, 380), fontsize=8.5,
                      color="#444444", bbox=NOTE_BOX, arrowprops=NOTE_ARROW)
    top.legend(loc="upper right", bbox_to_anchor=(1.0, 1.32), ncol=4, fontsize=9, frameon=False)
    bottom.set_xlabel("sample  (dotted lines: phd positions 12, 24, ...)")
    bottom.set_xlim(0, len(scf[0]) - 1)
    draw_close_up(figure.add_subplot(grid[:, 1]), scf, abif)
    figure.suptitle(f'Synthetic trace of "{BASES}"', x=0.06, ha="left", fontsize=12.5,
                    fontweight="bold")
    figure.savefig(output, bbox_inches="tight", metadata={"Software": None})


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
