#include "app/writer.h"

#include <cstring>
#include <iostream>

#include "app/block_writer.h"
#include "app/chromat.h"
#include "app/position_line.h"
#include "app/trace.h"
#include "toolkit/ctime.h"

namespace {

constexpr char kEditDir[] = "edit_dir/";
constexpr long kEditDirLength = sizeof kEditDir - 1;
constexpr char kChromatDir[] = "chromat_dir/";
constexpr char kPhdDir[] = "phd_dir/";
constexpr char kPolyDir[] = "poly_dir/";

constexpr char kChromatAnnouncement[] = "\nWriting chromat file ";
constexpr char kFileAnnouncement[] = "Writing ";
constexpr char kCannotWrite[] = "\nERROR: can not write file ";

// The phd header around the record's own values, in file order.
constexpr char kPhdBegin[] = "BEGIN_SEQUENCE ";
constexpr char kPhdChromat[] = "\n\nBEGIN_COMMENT\nCHROMAT_FILE: ";
constexpr char kPhdTime[] =
    "\nABI_THUMBPRINT: 0\nPHRED_VERSION: synthCall\nCALL_METHOD: synthCall\n"
    "QUALITY_LEVELS: 99\nTIME: ";
constexpr char kPhdMaxIndex[] = "\nTRACE_ARRAY_MIN_INDEX: 0\nTRACE_ARRAY_MAX_INDEX: ";
constexpr char kPhdDna[] = "\nCHEM: unknown\nDYE: unknown\nEND_COMMENT\n\nBEGIN_DNA\n";
constexpr char kPhdEnd[] = "END_DNA\nEND_SEQUENCE";  // the file ends without a newline

// A poly line reports one clean peak: the called area, no second peak, then the four channel
// areas in the order A, C, G, T.
constexpr char kPolyHeader[] = " 1 1 1 1 1\n";
constexpr char kPolyPeak[] = " 300000 1 N  -1  -1 -1 ";

// An area field is stored with one fixed-size move of its whole row, so the rows have one size.
struct AreaField {
  char text[16];
  long length;
};
constexpr AreaField Area(const char* text) {
  AreaField field{};
  for (; text[field.length] != '\0'; ++field.length) field.text[field.length] = text[field.length];
  return field;
}

// The area field of each channel, in the channel order A, C, G, T, and last the one of the
// letters without a channel of their own.
constexpr AreaField kAreaFields[trace::kChannels + 1] = {
    Area("60000 0 0 0\n"),  // A
    Area("0 60000 0 0\n"),  // C
    Area("0 0 60000 0\n"),  // G
    Area("0 0 0 60000\n"),  // T
    Area("0 0 0 0\n"),      // any other letter
};

unsigned char* PutArea(unsigned char* at, char base) {
  const AreaField& field = kAreaFields[trace::BaseChannel(base)];
  std::memcpy(at, field.text, sizeof field.text);
  return at + field.length;
}

// What the sequence's bytes become: letters upper-cased, as the C locale's toupper does it, and
// 0 for every byte that is not a letter there, which cleaning drops.
struct CleanTable {
  char of[256];
};
constexpr CleanTable MakeCleanTable() {
  CleanTable table{};
  for (int c = 'A'; c <= 'Z'; ++c) table.of[c] = static_cast<char>(c);
  for (int c = 'a'; c <= 'z'; ++c) table.of[c] = static_cast<char>(c - 'a' + 'A');
  return table;
}
constexpr CleanTable kClean = MakeCleanTable();

// The directory when its owner may use it as asked, else the project root itself.
Str UsableOr(const Str& root, const char* name, bool mustWrite, Directory& directory) {
  const Str path = root + name;
  return directory.Check(path, true, mustWrite) ? path : root;
}

}  // namespace

Writer::Writer() : Writer(std::cout, std::cerr) {}

Writer::Writer(std::ostream& progress, std::ostream& errors)
    : file(kBufferSize), out(progress), err(errors) {}

Writer::~Writer() = default;

void Writer::SetFiles(const Str& qualityText, const Str& suffix, bool makeReference, bool abiForm) {
  options.quality.Copy(qualityText);
  options.suffix.Copy(suffix);
  options.abi = abiForm;
  referenceSet = makeReference;
  Directory directory;
  Str root = ProjectRoot();
  chromatDir = UsableOr(root, kChromatDir, true, directory);
  phdDir = UsableOr(root, kPhdDir, true, directory);
  // Only reading is required of poly_dir/, and it is required in every run, reference or not.
  const Str poly = root + kPolyDir;
  if (!directory.Check(poly, true, false)) throw 1;
  polyDir = poly;
}

// The current directory, shortened by a trailing "edit_dir/". Only the bare ending counts, so
// ".../old_edit_dir/" gives ".../old_"; a current directory of exactly "edit_dir/" is kept.
Str Writer::ProjectRoot() {
  Str root = Directory::GetCurrentDirectory();
  if (root.CompareRight(kEditDir)) root.DeleteRight(kEditDirLength);
  return root;
}

void Writer::WriteFiles(Str& name, const Str& sequence) {
  CTime now;
  if (referenceSet) name.Append(options.suffix);
  Str chromatName(name);
  Str copy;
  const Str& bases = CleanSequence(sequence, copy);
  WriteChromat(bases, chromatName);
  WritePhd(name, chromatName, now.GetCTime(), bases);
  if (!referenceSet) WritePoly(name, bases);
}

// Upper case, letters only: every letter is kept, not only A, C, G and T. A sequence that is
// clean already, as most are, is used as it is; otherwise `copy` is cleaned in place and cut to
// the letters kept.
const Str& Writer::CleanSequence(const Str& sequence, Str& copy) {
  const char* const text = sequence.String();
  const long n = sequence.Length();
  long i = 0;
  while (i < n && text[i] >= 'A' && text[i] <= 'Z') ++i;
  if (i == n) return sequence;
  copy.Copy(sequence);
  char* const bases = copy.String();
  long kept = i;
  for (; i < n; ++i) {
    const char c = kClean.of[static_cast<unsigned char>(bases[i])];
    bases[kept] = c;
    kept += c != '\0';
  }
  copy.DeleteRight(n - kept);
  return copy;
}

// An SCF file is named with ".scf", an ABIF file has no extension; the phd file names it without
// the directory.
void Writer::WriteChromat(const Str& bases, Str& chromatName) {
  if (!options.abi) chromatName.Append(".scf");
  const Str path = chromatDir + chromatName;
  OpenFile(kChromatAnnouncement, path);
  if (options.abi)
    WriteAbif(file, bases.String(), bases.Length());
  else
    WriteScf(file, bases.String(), bases.Length());
  CloseFile(path);
}

void Writer::WritePhd(const Str& name, const Str& chromatName, const Str& time, const Str& bases) {
  const Str path = phdDir + name + ".phd.1";
  OpenFile(kFileAnnouncement, path);
  file.Append(kPhdBegin);
  file.Append(name);
  file.Append(kPhdChromat);
  file.Append(chromatName);
  file.Append(kPhdTime);
  file.Append(time);
  file.Append(kPhdMaxIndex);
  file.Append(trace::SampleCount(bases.Length()) - 1);  // the last sample's index
  file.Append(kPhdDna);
  // The DNA lines: base, quality and position, each followed by one blank or the newline.
  PositionLine line(" " + options.quality + " ", "\n");
  BlockWriter lines(file, bases.Length() * line.Capacity() + sizeof kPhdEnd);
  const char* base = bases.String();
  lines.PutEach(bases.Length(), line.Capacity(), [&](unsigned char* at, long i) {
    at = line.Store(at, base[i]);
    line.Advance();
    return at;
  });
  lines.Put(kPhdEnd, sizeof kPhdEnd - 1);
  lines.Flush();
  CloseFile(path);
}

void Writer::WritePoly(const Str& name, const Str& bases) {
  const Str path = polyDir + name + ".poly";
  OpenFile(kFileAnnouncement, path);
  file.Append(name);
  file.Append(kPolyHeader);
  PositionLine line(" ", kPolyPeak);
  const long most = line.Capacity() + sizeof AreaField::text;
  BlockWriter lines(file, bases.Length() * most);
  const char* base = bases.String();
  lines.PutEach(bases.Length(), most, [&](unsigned char* at, long i) {
    at = PutArea(line.Store(at, base[i]), base[i]);
    line.Advance();
    return at;
  });
  lines.Flush();
  CloseFile(path);
}

// Every file is announced before it is opened.
void Writer::OpenFile(const char* announcement, const Str& path) {
  out << announcement << path << std::endl;
  file.Open(path);
}

// A file that could not be created or fully written is reported, and the run goes on.
void Writer::CloseFile(const Str& path) {
  file.Close();
  if (file.Failed()) err << kCannotWrite << path << std::endl;
}
