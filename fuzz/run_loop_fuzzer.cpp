// The FASTA run loop over arbitrary bytes, in-process, writing into the scratch project tree. The
// first byte chooses the form (bit 0: ABIF, bit 1: a reference set); the rest is the FASTA file.
// Besides the sanitizers' checks, a run must end with status 0 and its final end of line, make
// no more records than there are header marks, announce two or three files per record, and
// report nothing but files it could not write.
#include <fstream>
#include <sstream>

#include "app/run_loop.h"
#include "fuzz_support.h"

static long Count(const std::string& text, const std::string& what) {
  long n = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
  return n;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  // A Writer for each form, its files settled once, serves every input of that form, as one
  // Writer serves every record of a run. Building one per input would cost its 256 KiB buffer,
  // which the sanitizers' allocator maps afresh each time, and settling the directories anew
  // would only repeat the same dozen system calls.
  static std::ostringstream out, err;
  static Writer writers[4] = {{out, err}, {out, err}, {out, err}, {out, err}};
  // Cleared before settling, so that anything settling says is held to the first run's checks.
  out.str("");
  err.str("");
  [[maybe_unused]] static const bool settled = [] {
    ScratchTree();  // the current directory and PWD are its edit_dir/
    for (int form = 0; form < 4; ++form)
      writers[form].SetFiles("59", form & 2 ? ".REF" : "", form & 2, form & 1);
    return true;
  }();
  const std::string fasta = TreeInput(data + 1, size - 1);
  std::ofstream("in.fa", std::ios::binary) << fasta;
  FUZZ_CHECK(WriteRecords(Str("in.fa"), writers[data[0] & 3]) == 0);
  const long records = Count(out.str(), "\nWriting chromat file ");
  FUZZ_CHECK(records <= Count(fasta, ">"));
  FUZZ_CHECK(Count(out.str(), "Writing ") == records * (data[0] & 2 ? 2 : 3));
  FUZZ_CHECK(out.str().back() == '\n');
  FUZZ_CHECK(Count(err.str(), "\n") == 2 * Count(err.str(), "\nERROR: can not write file "));
  return 0;
}
