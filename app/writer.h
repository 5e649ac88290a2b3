// Writer turns one FASTA record into the files of an assembly project tree: a chromatogram in
// chromat_dir/ (SCF, or ABIF with -abi), a phd file in phd_dir/ and, unless a reference set is
// made, a poly file in poly_dir/. The tree is found once from the current directory ("PWD"): when
// it ends in "edit_dir/" the project root is its parent. No directory is ever created.
//
// The Writer owns its one FileWriter (a 262144-byte buffer, opened, filled and closed for each
// file in turn) and copies of the option texts. It reports each file on the progress stream
// before writing it, and a file that could not be written completely on the error stream. Not
// copyable.
#ifndef SYNTHCALL_APP_WRITER_H
#define SYNTHCALL_APP_WRITER_H

#include <iosfwd>

#include "toolkit/fileio.h"
#include "toolkit/str.h"

// The options the command line settles.
struct RunOptions {
  Str quality;       // the -q text exactly as typed
  Str suffix;        // the reference suffix; empty unless -r was given
  bool abi = false;  // ABIF chromatograms instead of SCF
  // -r always leaves a suffix, so having one is what asks for a reference set: the first record
  // only, its name carrying the suffix, and no poly file.
  bool Reference() const { return suffix.HasContent(); }
};

class Writer {
 public:
  static constexpr long kBufferSize = 262144;

  // Progress lines go to `out`, write failures to `err`; by default standard output and error.
  Writer();
  Writer(std::ostream& progress, std::ostream& errors);
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  ~Writer();

  // Takes over the options and settles the three directories; called once, before WriteFiles.
  // `reference` asks for a reference set (the suffix joins the name, no poly file).
  // chromat_dir/ and phd_dir/ fall back to the project root when the owner may not read and
  // write them; a poly_dir/ the owner may not read throws the int 1.
  void SetFiles(const Str& qualityText, const Str& suffix, bool makeReference, bool abiForm);

  // Writes the files of one record. In reference mode the suffix is appended to `name` itself.
  void WriteFiles(Str& name, const Str& sequence);

  bool ReferenceSet() const { return referenceSet; }
  std::ostream& Progress() const { return out; }
  std::ostream& Errors() const { return err; }

 private:
  FileWriter file;
  Str chromatDir;  // each ends in '/', or is the project root when the directory is unusable
  Str phdDir;
  Str polyDir;
  RunOptions options;  // the quality text, the suffix and the chromatogram form
  bool referenceSet = false;
  std::ostream& out;
  std::ostream& err;

  static const Str& CleanSequence(const Str& sequence, Str& copy);
  static Str ProjectRoot();
  void WriteChromat(const Str& bases, Str& chromatName);
  void WritePhd(const Str& name, const Str& chromatName, const Str& time, const Str& bases);
  void WritePoly(const Str& name, const Str& bases);
  void OpenFile(const char* announcement, const Str& path);
  void CloseFile(const Str& path);
};

#endif  // SYNTHCALL_APP_WRITER_H
