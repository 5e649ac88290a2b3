// The command line over arbitrary argument lists, in-process: the input is split at NUL bytes
// into argv[1], argv[2], ... The scratch tree's edit_dir/ holds "reads.fa" with two records, so
// a run that gets past the option scan has something to read. Whatever the arguments, the status
// is 0 and every message, on either stream, is whole: it begins and ends its own lines.
#include <fstream>
#include <sstream>
#include <vector>

#include "app/command_line.h"
#include "fuzz_support.h"

static bool WholeLines(const std::string& text) {
  return text.empty() || (text.front() == '\n' && text.back() == '\n');
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool written =
      !!(std::ofstream(ScratchTree() + "/edit_dir/reads.fa") << ">s1 a\nacgtn\n>s2\nGGT\n");
  // Every NUL ends an argument, as does the end of a non-empty input: "a\0" is "a" and "".
  std::istringstream split(size > 0 ? TreeInput(data, size) + '\0' : "");
  std::vector<std::string> args = {"synthcall"};
  for (std::string arg; std::getline(split, arg, '\0');) args.push_back(arg);
  std::vector<const char*> argv;
  for (const std::string& arg : args) argv.push_back(arg.c_str());
  std::ostringstream out, err;
  FUZZ_CHECK(written);
  FUZZ_CHECK(RunCommandLine(static_cast<int>(args.size()), argv.data(), out, err) == 0);
  FUZZ_CHECK(WholeLines(out.str()));
  FUZZ_CHECK(WholeLines(err.str()));
  return 0;
}
