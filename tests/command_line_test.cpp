// The command line in-process, with PWD naming a directory without poly_dir/, so that a run that
// gets as far as settling the directories throws. Command lines that end before any file is read
// write only their message; a run that reads throws the int 1 before any output, which the
// end-to-end tests see only as an abort. Accepted command lines are run by the end-to-end tests.
#include "app/command_line.h"

#include <sstream>

#include "test_util.h"

// Help and version count as the first argument only, and what follows them is ignored; a missing
// quality is an empty token; the quality must be a number whose leading integer is from 0 to 59;
// tokens are exact and case-sensitive; the first error ends the scan. A command line without an
// error reads, and throws.
TEST(CommandLine, EarlyEndsWriteOnlyTheirMessageAndTheRestReads) {
  const std::string usage =
      "\nsynthcall [filename] [arguments]\n\n"
      "  [filename]  is the file containing sequences in FASTA format.\n"
      "  [arguments] can be one or more of the following:\n"
      "     -q [number]  to set the quality value for the phd file\n"
      "     -r [string]  write a reference phd file; [string] is optional\n"
      "     -abi         write the chromat file in ABI format.\n\n"
      "synthcall -h (or -help)     print this help message\n"
      "synthcall -v (or -version)  print the version\n\n";
  const std::string version = "\nsynthcall Version 3.3  (Build 2006.02.23)\n\n";
  const std::string range = "\nERROR: quality value must be from 0 to 59.\n\n";
  const std::string quality = "\nERROR: invalid quality value ";
  const std::string invalid = "\nERROR: invalid command line argument ";
  // clang-format off
  const std::pair<std::vector<const char*>, std::string> cases[] = {
      {{}, "\nERROR: no file name was specified.\n\n"}, {{"-h"}, usage}, {{"-help", "-v"}, usage},
      {{"-v"}, version}, {{"-version", "-h"}, version}, {{"seqs.fa", "-ABI"}, invalid + "-ABI\n\n"},
      {{"seqs.fa", "-abi", "-version"}, invalid + "-version\n\n"},
      {{"seqs.fa", "-abi", "-q"}, quality + "\n\n"}, {{"seqs.fa", "-q", "60", "-x"}, range},
      {{"seqs.fa", "-q", "-1"}, range}, {{"seqs.fa", "-x", "-q", "60"}, invalid + "-x\n\n"},
      {{"seqs.fa", "-q", "20", "-q", "12."}, quality + "12.\n\n"},
      {{"seqs.fa", "-q", "-abi"}, quality + "-abi\n\n"},
      {{"seqs.fa", "-r", "X", "Y"}, invalid + "Y\n\n"}, {{"seqs.fa", "-abi"}, ""}};
  // clang-format on
  const TempDir empty;
  setenv("PWD", empty.path.c_str(), 1);
  for (const auto& [args, err] : cases) {
    std::vector<const char*> argv = {"synthcall"};
    argv.insert(argv.end(), args.begin(), args.end());
    std::ostringstream out, errors;
    int thrown = 0;
    try {
      EXPECT_EQ(RunCommandLine(static_cast<int>(argv.size()), argv.data(), out, errors), 0);
    } catch (int value) {
      thrown = value;
    }
    const std::string name = ::testing::PrintToString(args);
    EXPECT_EQ(out.str(), "") << name;
    EXPECT_EQ(errors.str(), err) << name;
    EXPECT_EQ(thrown, err.empty() ? 1 : 0) << name;
  }
}
