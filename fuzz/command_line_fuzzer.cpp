// The command line over arbitrary argument lists, in-process: the input is split at NUL bytes
// into argv[1], argv[2], ... The scratch tree's edit_dir/ holds "reads.fa" with two records, so
// a run that gets past the option scan has something to read.
//
// Every run must end with status 0 and exactly one of the program's outcomes on the error
// stream; the first argument alone decides between usage, version and a run.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "app/command_line.h"
#include "fuzz_check.h"
#include "scratch_tree.h"

namespace {

constexpr char kReads[] = ">s1 first\nacgtn\n>s2\nGGT\n";
constexpr char kUsageStart[] = "\nsynthcall [filename] [arguments]\n\n";
constexpr char kUsageEnd[] = "synthcall -v (or -version)  print the version\n\n";
constexpr char kVersion[] = "\nsynthcall Version 3.3  (Build 2006.02.23)\n\n";
constexpr char kNoFileName[] = "\nERROR: no file name was specified.\n\n";
constexpr char kQualityRange[] = "\nERROR: quality value must be from 0 to 59.\n\n";
constexpr char kBadQuality[] = "\nERROR: invalid quality value ";
constexpr char kBadArgument[] = "\nERROR: invalid command line argument ";
constexpr char kCannotOpen[] = "\nERROR: can not open file ";
constexpr char kCannotWrite[] = "\nERROR: can not write file ";

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool HasSpace(const std::string& text) {
  for (unsigned char c : text)
    if (c == ' ' || (c >= '\t' && c <= '\r')) return true;
  return false;
}

// A rejected argument list: one message naming the offending token, nothing run.
void CheckRejection(const std::string& err, const std::string& out, const char* message) {
  FUZZ_CHECK(out.empty());
  FUZZ_CHECK(EndsWith(err, "\n\n"));
  std::string token = err.substr(std::string(message).size());
  token.resize(token.size() - 2);
  FUZZ_CHECK(!HasSpace(token));
}

// A run: at most one "can not open" (then nothing else), otherwise write failures only.
void CheckRun(const std::string& err, const std::string& out, const std::string& name) {
  if (StartsWith(err, kCannotOpen)) {
    FUZZ_CHECK(err == kCannotOpen + name + "\n");
    FUZZ_CHECK(out.empty());
    return;
  }
  const std::string prefix = kCannotWrite;
  for (size_t at = 0; at < err.size();) {
    FUZZ_CHECK(err.compare(at, prefix.size(), prefix) == 0);
    at = err.find('\n', at + prefix.size());
    FUZZ_CHECK(at != std::string::npos);
    ++at;
  }
  FUZZ_CHECK(EndsWith(out, "\n"));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const fuzz::ScratchTree& tree = fuzz::ScratchTree::Get();
  static const bool written = (tree.WriteInput("reads.fa", kReads), true);
  (void)written;

  std::vector<std::string> args = {"synthcall"};
  if (size > 0) {
    std::string text(reinterpret_cast<const char*>(data), size);
    fuzz::KeepInTree(text);
    for (size_t start = 0;;) {
      size_t end = text.find('\0', start);
      args.push_back(text.substr(start, end - start));
      if (end == std::string::npos) break;
      start = end + 1;
    }
  }
  std::vector<const char*> argv;
  for (const std::string& arg : args) argv.push_back(arg.c_str());
  argv.push_back(nullptr);

  std::ostringstream out;
  std::ostringstream err;
  FUZZ_CHECK(RunCommandLine(static_cast<int>(args.size()), argv.data(), out, err) == 0);

  const std::string message = err.str();
  const std::string progress = out.str();
  if (args.size() < 2) {
    FUZZ_CHECK(message == kNoFileName && progress.empty());
  } else if (args[1] == "-h" || args[1] == "-help") {
    FUZZ_CHECK(StartsWith(message, kUsageStart) && EndsWith(message, kUsageEnd));
    FUZZ_CHECK(progress.empty());
  } else if (args[1] == "-v" || args[1] == "-version") {
    FUZZ_CHECK(message == kVersion && progress.empty());
  } else if (message == kQualityRange) {
    FUZZ_CHECK(progress.empty());
  } else if (StartsWith(message, kBadQuality)) {
    CheckRejection(message, progress, kBadQuality);
  } else if (StartsWith(message, kBadArgument)) {
    CheckRejection(message, progress, kBadArgument);
    FUZZ_CHECK(message.size() > sizeof kBadArgument - 1 + 2);  // an empty token is never one
  } else {
    CheckRun(message, progress, args[1]);
  }
  tree.Clean();
  return 0;
}
