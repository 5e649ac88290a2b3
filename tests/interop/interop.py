#!/usr/bin/python3
# interop.py READER BINARY: an independent reader reads back what synthcall writes.
#
# READER is biopython (phd and ABIF files), iolib (io_lib's scf_info and trace_dump, from the SCF
# format's authors: SCF and ABIF) or bioperl (phd and SCF). The program runs once per chromatogram
# form in a scratch project tree; from every file a reader can read it must get the record's name,
# bases, qualities, peak positions, chromat file and highest trace index (phd), the sample count
# (SCF) and every channel point for point. Exits 0 when all agree, 1 on a difference, 77 when the
# reader is missing (1 with CI=true, where nothing may be skipped). Biopython is a Debian package,
# so this runs under the system interpreter.
import json, os, pathlib, random, re, subprocess, sys, tempfile

PEAK = [32, 128, 320, 464, 576, 624, 640, 624, 576, 464, 320, 128, 32]
LONG = "".join(random.Random(1000).choice("ACGT") for _ in range(1000))
# FASTA text, name, clean bases: lower case and an N, an empty record, touching peaks in one
# channel, and positions and sample counts past three digits.
RECORDS = [(">mixed lower case and an N\nacgtn\nACGT\n", "mixed", "ACGTNACGT"),
           (">empty\n", "empty", ""), (">pair\nTTg\n", "pair", "TTG"), (f">long\n{LONG}\n", "long", LONG)]
FORMS = {"scf": ([], 59), "abi": (["-q", "7", "-abi"], 7)}  # the phd readers see both qualities
# A shell command that succeeds when the reader is installed.
PRESENT = {"biopython": f"'{sys.executable}' -c 'import Bio'", "iolib": "command -v trace_dump && command -v scf_info",
           "bioperl": "perl -MBio::SeqIO -MJSON::PP -e 1"}

# BioPerl prints what it reads as JSON: the phd fields, and for SCF the header and the channels.
PERL = r"""use Bio::SeqIO; use JSON::PP; my ($phd, $chromat) = @ARGV; my %got;
sub numbers { [map { $_ + 0 } @{$_[0] || []}] }
my $s = Bio::SeqIO->new(-file => $phd, -format => 'phd', -verbose => -1)->next_seq;
$got{phd} = [$s->display_id, $s->seq // '', numbers($s->qual), numbers($s->trace), $s->chromat_file,
             $s->attribute('TRACE_ARRAY_MAX_INDEX') + 0];
if ($chromat =~ /\.scf$/) {
  my $in = Bio::SeqIO->new(-file => $chromat, -format => 'scf', -verbose => -1); my $t = $in->next_seq;
  @got{qw(samples trace)} = ($in->get_header->{samples} + 0, [map { numbers($t->trace($_)) } qw(a c g t)]);
}
print encode_json(\%got);"""


# What every reader must find. An unknown letter has no SCF peak, and its ABIF peak is in the
# channel of the last A, C, G or T before it; ABIF peaks stand one point earlier.
def expected(form, name, bases):
    n, scf, current = len(bases), form == "scf", None
    trace = [[0] * (12 * n + 12) for _ in range(4)]
    for i, base in enumerate(bases):
        current = "ACGT".index(base) if base in "ACGT" else None if scf else current
        if current is not None:
            trace[current][12 * i + 5 + scf:12 * i + 18 + scf] = PEAK
    phd = [name, bases, [FORMS[form][1]] * n, [12 * (i + 1) for i in range(n)], name + ".scf" * scf, 12 * n + 11]
    return {"phd": phd, "samples": 12 * n + 12, "trace": trace}


def output(*command):
    return subprocess.run(command, capture_output=True, check=True, text=True).stdout


def biopython(phd, chromat, form):
    from Bio import SeqIO
    record = SeqIO.read(phd, "phd")
    letters, notes = record.letter_annotations, record.annotations
    got = {"phd": [record.id, str(record.seq), letters["phred_quality"], letters["peak_location"],
                   notes["chromat_file"], notes["trace_array_max_index"]]}
    if form == "abi":
        raw = SeqIO.read(chromat, "abi").annotations["abif_raw"]
        got["trace"] = [list(raw.get(f"DATA{k}", ())) for k in range(9, 13)]
    return got


def iolib(phd, chromat, form):
    # trace_dump: "[A_Trace]", then lines such as "640	#   12"; scf_info: "Number_of_samples    72"
    sections = {part.split("]")[0]: part.splitlines()[1:] for part in output("trace_dump", chromat).split("\n[")}
    got = {"trace": [[int(line.split("#")[0]) for line in sections.get(f"{base}_Trace", []) if line.strip()]
                     for base in "ACGT"]}
    if form == "scf":
        got["samples"] = int(re.search(r"^Number_of_samples\s+(\d+)$", output("scf_info", chromat), re.M)[1])
    return got


def bioperl(phd, chromat, form):
    return json.loads(output("perl", "-e", PERL, phd, chromat))


# Where two values first differ, shortly: the first differing element of two lists, nested.
def difference(got, want):
    lists = isinstance(got, list) and isinstance(want, list)
    at = next((i for i, (g, w) in enumerate(zip(got, want)) if g != w), None) if lists else None
    return f"{str(got)[:80]}, want {str(want)[:80]}" if at is None else f"[{at}] " + difference(got[at], want[at])


def main(reader, binary):
    if subprocess.run(PRESENT[reader], shell=True, capture_output=True).returncode:
        print(f"not installed: {reader}")
        return 1 if os.environ.get("CI") == "true" else 77
    failed = 0
    with tempfile.TemporaryDirectory(prefix=f"interop_{reader}.") as work:
        for form, (options, _) in FORMS.items():
            root, edit = f"{work}/{form}", f"{work}/{form}/edit_dir"
            for directory in ("edit_dir", "chromat_dir", "phd_dir", "poly_dir"):
                os.makedirs(f"{root}/{directory}")
            pathlib.Path(f"{edit}/reads.fa").write_text("".join(text for text, _, _ in RECORDS))
            run = subprocess.run([os.path.abspath(binary), "reads.fa"] + options, cwd=edit,
                                 env=dict(os.environ, PWD=edit), capture_output=True, timeout=120)
            assert run.returncode == 0 and not run.stderr, f"{form} run: {run}"
            for _, name, bases in RECORDS:
                want = expected(form, name, bases)
                try:  # a reader that rejects our file fails the check
                    got = globals()[reader](f"{root}/phd_dir/{name}.phd.1",
                                            f"{root}/chromat_dir/{want['phd'][4]}", form)
                except Exception as error:
                    got = {"read": repr(error)}
                for key, value in got.items():
                    # BioPerl's SCF 2 reader takes a point's third height as T and its fourth as G;
                    # io_lib settles that the file holds A, C, G, T, so BioPerl may give G and T swapped.
                    swapped = (reader, key) == ("bioperl", "trace") and value[:2] + value[:1:-1] == want[key]
                    if value != want.get(key) and not swapped:
                        failed += 1
                        print(f"FAIL {reader} {form} {name} {key}: {difference(value, want.get(key))}")
    print(f"{reader}: {failed} failed")
    return 1 if failed else 0


sys.exit(main(*sys.argv[1:]))
