// The FASTA run loop over arbitrary bytes, in-process, writing into a scratch project tree. The
// first byte chooses the form (bit 0: ABIF, bit 1: reference set); the rest is the FASTA file.
//
// Besides the sanitizers, every run is held to what the loop promises whatever the input: each
// header line gives one record (only the first with a reference set), each record announces its
// two or three files, the only error is an output file that could not be written, and standard
// output ends with the final end of line.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "app/run_loop.h"
#include "fuzz_check.h"
#include "scratch_tree.h"
#include "toolkit/str.h"

namespace {

constexpr char kInput[] = "in.fa";
constexpr char kChromatAnnouncement[] = "\nWriting chromat file ";
constexpr char kAnnouncement[] = "Writing ";
constexpr char kCannotWrite[] = "\nERROR: can not write file ";

bool IsSpace(unsigned char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Header lines among the complete lines: the first byte that is not white space is '>'. A last
// line without a line end is never read.
long CountHeaders(const std::string& text) {
  long headers = 0;
  size_t start = 0;
  for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', start)) {
    size_t first = start;
    while (first < end && IsSpace(text[first])) ++first;
    if (first < end && text[first] == '>') ++headers;
    start = end + 1;
  }
  return headers;
}

long Count(const std::string& text, const std::string& what) {
  long count = 0;
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
  return count;
}

// Every error must be a write failure of a file inside the tree.
void CheckErrors(const std::string& err, const std::string& root) {
  const std::string prefix = kCannotWrite;
  size_t at = 0;
  while (at < err.size()) {
    FUZZ_CHECK(err.compare(at, prefix.size(), prefix) == 0);
    at += prefix.size();
    FUZZ_CHECK(err.compare(at, root.size(), root) == 0);
    size_t end = err.find('\n', at);
    FUZZ_CHECK(end != std::string::npos);
    at = end + 1;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const fuzz::ScratchTree& tree = fuzz::ScratchTree::Get();
  const bool abi = data[0] & 1;
  const bool reference = data[0] & 2;
  std::string fasta(reinterpret_cast<const char*>(data) + 1, size - 1);
  fuzz::KeepInTree(fasta);
  tree.WriteInput(kInput, fasta);

  std::ostringstream out;
  std::ostringstream err;
  Str path(kInput);
  const RunOptions options{"59", reference ? ".REF" : "", abi};
  FUZZ_CHECK(RunFasta(path, options, out, err) == 0);

  long records = CountHeaders(fasta);
  if (reference && records > 1) records = 1;
  const std::string progress = out.str();
  FUZZ_CHECK(Count(progress, kChromatAnnouncement) == records);
  FUZZ_CHECK(Count(progress, kAnnouncement) == records * (reference ? 2 : 3));
  FUZZ_CHECK(!progress.empty() && progress.back() == '\n');
  const std::string root = tree.EditDir().substr(0, tree.EditDir().size() - 9);
  CheckErrors(err.str(), root);
  tree.Clean();
  return 0;
}
