// Command lines that end before any file is read, run as a process where there is no project tree,
// so that looking at the directories before rejecting the arguments would abort the run. Accepted
// command lines are run by the end-to-end tests.
#include <filesystem>

#include "test_util.h"

// Help and version count as the first argument only, and what follows them is ignored; a missing
// quality is an empty token; the quality must be a number whose leading integer is from 0 to 59;
// tokens are exact and case-sensitive; the first error ends the scan.
TEST(CommandLine, EarlyEndsWriteOnlyTheirMessage) {
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
  const std::string argument = "\nERROR: invalid command line argument ";
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{}, "\nERROR: no file name was specified.\n\n"},
      {{"-h"}, usage},
      {{"-help", "-v"}, usage},
      {{"-v"}, version},
      {{"-version", "-h"}, version},
      {{"seqs.fa", "-abi", "-version"}, argument + "-version\n\n"},
      {{"seqs.fa", "-abi", "-q"}, quality + "\n\n"},
      {{"seqs.fa", "-q", "60", "-x"}, range},
      {{"seqs.fa", "-q", "-1"}, range},
      {{"seqs.fa", "-x", "-q", "60"}, argument + "-x\n\n"},
      {{"seqs.fa", "-q", "20", "-q", "12."}, quality + "12.\n\n"},
      {{"seqs.fa", "-q", "-abi"}, quality + "-abi\n\n"},
      {{"seqs.fa", "-r", "X", "Y"}, argument + "Y\n\n"},
      {{"seqs.fa", "-ABI"}, argument + "-ABI\n\n"}};
  for (const auto& [args, err] : cases) {
    SCOPED_TRACE(::testing::PrintToString(args));
    TempDir empty;
    const RunResult result = RunProgram(args, empty.path, {"PWD=" + empty.path});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, err);
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(std::filesystem::is_empty(empty.path));
  }
}
