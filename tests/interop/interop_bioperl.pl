#!/usr/bin/perl
# Reads synthcall's phd and SCF files back with BioPerl.
#
#   interop_bioperl.pl BINARY
#
# project_tree.py builds the project trees, runs the program and writes a manifest of what each
# file must hold. phd: bases, qualities, peak locations, chromat file name and highest trace
# index. SCF: the header's sample count and version, and every channel point for point. Exits 0
# when all agree, 1 on a difference, 77 when BioPerl is missing (1 in CI).
use strict;
use warnings;
use File::Basename qw(dirname);
use File::Spec;
use File::Temp qw(tempdir);

my ($passed, $failed) = (0, 0);

sub missing_reader {
  my ($what) = @_;
  print "not installed: $what\n";
  exit(($ENV{CI} // '') eq 'true' ? 1 : 77);
}

sub fail {
  my ($what, $detail) = @_;
  $failed++;
  print "FAIL $what: $detail\n";
}

# BioPerl's exceptions span many lines; their MSG line says what went wrong.
sub reader_error {
  my ($what, $error) = @_;
  my ($message) = $error =~ /^MSG: (.*)$/m;
  fail($what, 'BioPerl: ' . ($message // $error));
}

sub equal {
  my ($what, $got, $want) = @_;
  $got  = 'undef' unless defined $got;
  $want = 'undef' unless defined $want;
  if ($got eq $want) { $passed++; return 1; }
  fail($what, "got '$got', want '$want'");
  return 0;
}

# Compares two lists of numbers; reports the length or the first few differing indexes.
sub same_list {
  my ($what, $got, $want) = @_;
  $got //= [];
  if (@$got != @$want) {
    fail($what, 'length ' . scalar(@$got) . ', want ' . scalar(@$want));
    return 0;
  }
  my @diff = grep { $got->[$_] != $want->[$_] } 0 .. $#$want;
  if (!@diff) { $passed++; return 1; }
  my @shown = map { "[$_] $got->[$_] want $want->[$_]" } @diff[0 .. ($#diff < 2 ? $#diff : 2)];
  my $more  = @diff > 3 ? ' and ' . (@diff - 3) . ' more' : '';
  fail($what, join(', ', @shown) . $more);
  return 0;
}

sub check_phd {
  my ($form, $record) = @_;
  my $what = "$form->{form} phd $record->{name}";
  # -verbose -1: an empty record is valid here; BioPerl would warn that it has no letters.
  my $in  = Bio::SeqIO->new(-file => $record->{phd}, -format => 'phd', -verbose => -1);
  my $seq = $in->next_seq;
  return fail($what, 'no sequence read') unless $seq;
  my $n = length $record->{bases};
  equal("$what name", $seq->display_id, $record->{name});
  equal("$what bases", $seq->seq // '', $record->{bases});
  same_list("$what qualities", $seq->qual, [($form->{quality}) x $n]);
  same_list("$what peak locations", $seq->trace, [map { 12 * $_ } 1 .. $n]);
  equal("$what chromat file", $seq->chromat_file, $record->{chromat_name});
  equal("$what highest trace index", $seq->attribute('TRACE_ARRAY_MAX_INDEX'), 12 * $n + 11);
}

# BioPerl's SCF version 2 reader takes the third value of each sample point as T and the fourth
# as G. The points hold A, C, G, T, which io_lib, the format authors' own library, reads back as
# such (interop_iolib.py). So A and C must match exactly, and BioPerl's "t" and "g" must hold our
# G and T channels in that swapped order; we also accept the straight order, should the reader
# ever be corrected.
sub check_scf {
  my ($record) = @_;
  my $what = "scf $record->{name}";
  my $in   = Bio::SeqIO->new(-file => $record->{chromat}, -format => 'scf', -verbose => -1);
  my $seq  = $in->next_seq;
  return fail($what, 'no trace read') unless $seq;
  my $header = $in->get_header;
  my $want   = $record->{trace};
  equal("$what version", $header->{version}, '2.00');
  equal("$what sample size", $header->{sample_size}, 2);
  equal("$what sample count", $header->{samples}, scalar @{ $want->[0] });
  equal("$what trace length", $seq->trace_length, scalar @{ $want->[0] });
  same_list("$what channel A", $seq->trace('a'), $want->[0]);
  same_list("$what channel C", $seq->trace('c'), $want->[1]);
  my ($g, $t) = ($seq->trace('g'), $seq->trace('t'));
  my $straight = eval { join(',', @$g) eq join(',', @{ $want->[2] }) };
  same_list("$what channel G", $straight ? $g : $t, $want->[2]);
  same_list("$what channel T", $straight ? $t : $g, $want->[3]);
}

sub main {
  my ($binary) = @_;
  die "usage: interop_bioperl.pl BINARY\n" unless defined $binary;
  eval { require Bio::SeqIO; require Bio::SeqIO::phd; require Bio::SeqIO::scf; 1 }
    or missing_reader('BioPerl (libbio-perl-perl)');
  eval { require JSON::PP; 1 } or missing_reader('JSON::PP');

  my $workdir = tempdir('interop_bioperl.XXXXXX', TMPDIR => 1, CLEANUP => 1);
  my $helper  = File::Spec->catfile(dirname(File::Spec->rel2abs(__FILE__)), 'project_tree.py');
  my $python  = 'python3';
  my $status  = system($python, $helper, File::Spec->rel2abs($binary), $workdir);
  missing_reader($python) if $status == -1;
  if ($status != 0) {
    fail('run', "project_tree.py ended with status $status");
  } else {
    open(my $fh, '<', "$workdir/manifest.json") or die "manifest: $!\n";
    my $manifest = JSON::PP::decode_json(do { local $/; <$fh> });
    close $fh;
    for my $form (@{ $manifest->{forms} }) {
      for my $record (@{ $form->{records} }) {
        # A reader that rejects our file is a failed check, not a crash of the script.
        my $what = "$form->{form} $record->{name}";
        eval { check_phd($form, $record); 1 } or reader_error("$what phd", $@);
        next unless $form->{form} eq 'scf';
        eval { check_scf($record); 1 } or reader_error($what, $@);
      }
    }
  }
  print "bioperl: $passed passed, $failed failed\n";
  return $failed ? 1 : 0;
}

exit main(@ARGV);
