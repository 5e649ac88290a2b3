// Command lines that end before any file is read, run as a process where there is no project tree,
// so that looking at the directories before rejecting the arguments would abort the run. Accepted
// command lines are run by the end-to-end tests.
#include <filesystem>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "test_util.h"

namespace {

using Args = std::vector<std::string>;

const std::string kUsage =
    "\nsynthcall [filename] [arguments]\n\n"
    "  [filename]  is the file containing sequences in FASTA format.\n"
    "  [arguments] can be one or more of the following:\n"
    "     -q [number]  to set the quality value for the phd file\n"
    "     -r [string]  write a reference phd file; [string] is optional\n"
    "     -abi         write the chromat file in ABI format.\n\n"
    "synthcall -h (or -help)     print this help message\n"
    "synthcall -v (or -version)  print the version\n"
    "\n";
const std::string kVersion = "\nsynthcall Version 3.3  (Build 2006.02.23)\n\n";
const std::string kRange = "\nERROR: quality value must be from 0 to 59.\n\n";

std::string BadQuality(const std::string& token) {
  return "\nERROR: invalid quality value " + token + "\n\n";
}
std::string BadArgument(const std::string& token) {
  return "\nERROR: invalid command line argument " + token + "\n\n";
}

}  // namespace

TEST(CommandLine, EarlyEndsWriteOnlyTheirMessage) {
  struct Case {
    Args args;
    std::string err;
  };
  // Help and version count as the first argument only, and what follows them is ignored; a
  // missing quality is an empty token; the first error ends the scan.
  std::vector<Case> cases = {{{}, "\nERROR: no file name was specified.\n\n"},
                             {{"-h"}, kUsage},
                             {{"-help", "-v"}, kUsage},
                             {{"-h", "extra"}, kUsage},
                             {{"-v"}, kVersion},
                             {{"-version", "-h"}, kVersion},
                             {{"-v", "extra"}, kVersion},
                             {{"seqs.fa", "-abi", "-version"}, BadArgument("-version")},
                             {{"seqs.fa", "-q"}, BadQuality("")},
                             {{"seqs.fa", "-abi", "-q"}, BadQuality("")},
                             {{"seqs.fa", "-q", "60", "-x"}, kRange},
                             {{"seqs.fa", "-x", "-q", "60"}, BadArgument("-x")},
                             {{"seqs.fa", "-q", "20", "-q", "abc"}, BadQuality("abc")},
                             {{"seqs.fa", "-abi", "-r", "X", "Y"}, BadArgument("Y")}};
  // The quality must be a number, and its leading integer from 0 to 59.
  for (const char* value : {"60", "-1", "100"}) cases.push_back({{"seqs.fa", "-q", value}, kRange});
  for (const char* value : {"abc", "12.", "0x10", "-abi"})
    cases.push_back({{"seqs.fa", "-q", value}, BadQuality(value)});
  // Tokens are exact and case-sensitive.
  for (const char* token : {"-h", "-Q", "-ABI", "-R", "-q20", "--abi", "-", "seqs.fa"})
    cases.push_back({{"seqs.fa", token}, BadArgument(token)});
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.args));
    testutil::TempDir empty;
    testutil::RunResult result =
        testutil::Run(testutil::Binary(), c.args, empty.path(), {"PWD=" + empty.path()});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, c.err);
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(std::filesystem::is_empty(empty.path()));
  }
}
