// The command line, run as a process: every message is compared byte for byte, with the exit
// status. Rejected command lines run where there is no project tree at all, so a run that looked
// at the directories before rejecting its arguments would abort instead.
#include <dirent.h>

#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "test_util.h"

namespace {

using testutil::MakeDir;
using testutil::ReadFile;
using testutil::RunResult;
using testutil::TempDir;
using Args = std::vector<std::string>;

const char kUsage[] =
    "\nsynthcall [filename] [arguments]\n\n"
    "  [filename]  is the file containing sequences in FASTA format.\n"
    "  [arguments] can be one or more of the following:\n"
    "     -q [number]  to set the quality value for the phd file\n"
    "     -r [string]  write a reference phd file; [string] is optional\n"
    "     -abi         write the chromat file in ABI format.\n\n"
    "synthcall -h (or -help)     print this help message\n"
    "synthcall -v (or -version)  print the version\n"
    "\n";
const char kVersion[] = "\nsynthcall Version 3.3  (Build 2006.02.23)\n\n";
const char kRange[] = "\nERROR: quality value must be from 0 to 59.\n\n";

std::string BadQuality(const std::string& token) {
  return "\nERROR: invalid quality value " + token + "\n\n";
}

std::string BadArgument(const std::string& token) {
  return "\nERROR: invalid command line argument " + token + "\n\n";
}

// Runs with PWD naming an empty directory and expects only `err`: nothing on standard output,
// status 0, no abort, nothing created.
void ExpectRejected(const Args& args, const std::string& err) {
  SCOPED_TRACE(::testing::PrintToString(args));
  TempDir empty;
  RunResult result = testutil::Run(testutil::Binary(), args, empty.path(), {"PWD=" + empty.path()});
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, err);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.signal, 0);
  DIR* dir = opendir(empty.path().c_str());
  int entries = 0;
  while (readdir(dir) != nullptr) ++entries;
  closedir(dir);
  EXPECT_EQ(entries, 2);  // "." and ".." only
}

// A whole project tree; the input seqs.fa lies in edit_dir/, where the program runs.
class Project {
 public:
  Project() {
    for (const char* dir : {"edit_dir", "chromat_dir", "phd_dir", "poly_dir"}) MakeDir(temp_ / dir);
    testutil::WriteFile(temp_ / "edit_dir/seqs.fa", ">s1 first\nACG\n>s2\nT\n");
  }
  RunResult Run(const Args& args) const {
    return testutil::Run(testutil::Binary(), args, temp_ / "edit_dir",
                         {"PWD=" + (temp_ / "edit_dir")});
  }
  std::string Root() const { return temp_.path() + "/"; }
  std::string Read(const std::string& name) const { return ReadFile(temp_ / name); }

 private:
  TempDir temp_;
};

// Standard output of a run over seqs.fa: both records, or the first one under `name` alone.
std::string Progress(const Project& project, bool abi, const std::string& reference = "") {
  const std::string root = project.Root();
  std::string out;
  for (std::string name : {"s1", "s2"}) {
    if (!reference.empty()) name = reference;
    out += "\nWriting chromat file " + root + "chromat_dir/" + name + (abi ? "" : ".scf") + "\n";
    out += "Writing " + root + "phd_dir/" + name + ".phd.1\n";
    if (!reference.empty()) break;
    out += "Writing " + root + "poly_dir/" + name + ".poly\n";
  }
  return out + "\n";
}

// The DNA lines of s1's phd file.
std::string Dna(const std::string& quality) {
  return "BEGIN_DNA\nA " + quality + " 12\nC " + quality + " 24\nG " + quality + " 36\nEND_DNA";
}

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(CommandLine, NoArgumentAsksForAFileName) {
  ExpectRejected({}, "\nERROR: no file name was specified.\n\n");
}

TEST(CommandLine, HelpAndVersionOnlyAsFirstArgument) {
  for (const Args& args : {Args{"-h"}, Args{"-help"}, Args{"-h", "extra"}, Args{"-help", "-v"}})
    ExpectRejected(args, kUsage);
  for (const Args& args :
       {Args{"-v"}, Args{"-version"}, Args{"-v", "extra"}, Args{"-version", "-h"}})
    ExpectRejected(args, kVersion);
  ExpectRejected({"seqs.fa", "-h"}, BadArgument("-h"));
  ExpectRejected({"seqs.fa", "-help"}, BadArgument("-help"));
  ExpectRejected({"seqs.fa", "-abi", "-v"}, BadArgument("-v"));
  ExpectRejected({"seqs.fa", "-version"}, BadArgument("-version"));
}

TEST(CommandLine, BadQualityIsRejected) {
  ExpectRejected({"seqs.fa", "-q", "60"}, kRange);
  ExpectRejected({"seqs.fa", "-q", "-1"}, kRange);
  ExpectRejected({"seqs.fa", "-q", "100"}, kRange);
  ExpectRejected({"seqs.fa", "-q", "abc"}, BadQuality("abc"));
  ExpectRejected({"seqs.fa", "-q"}, BadQuality(""));
  ExpectRejected({"seqs.fa", "-abi", "-q"}, BadQuality(""));
  ExpectRejected({"seqs.fa", "-q", "12."}, BadQuality("12."));
  ExpectRejected({"seqs.fa", "-q", "0x10"}, BadQuality("0x10"));
  ExpectRejected({"seqs.fa", "-q", "-abi"}, BadQuality("-abi"));
  // The first error ends the scan.
  ExpectRejected({"seqs.fa", "-q", "60", "-x"}, kRange);
  ExpectRejected({"seqs.fa", "-x", "-q", "60"}, BadArgument("-x"));
  ExpectRejected({"seqs.fa", "-q", "20", "-q", "abc"}, BadQuality("abc"));
}

TEST(CommandLine, UnknownArgumentsAreRejected) {
  for (const char* token : {"-x", "-Q", "-ABI", "-R", "-q20", "--abi", "-", "extra", "seqs.fa"})
    ExpectRejected({"seqs.fa", token}, BadArgument(token));
  ExpectRejected({"seqs.fa", "-abi", "-r", "X", "Y"}, BadArgument("Y"));
}

TEST(CommandLine, AcceptedOptions) {
  struct Case {
    Args args;
    std::string reference;  // the name of the one reference record; empty: both records
    bool abi;
    const char* quality;
  };
  std::vector<Case> cases = {
      {{"seqs.fa"}, "", false, "59"},
      {{"seqs.fa", "-q", "20", "-q", "30"}, "", false, "30"},
      // Arguments are joined before they are split into tokens.
      {{"seqs.fa", "-q 20"}, "", false, "20"},
      {{"seqs.fa", "", " -abi\t", "-q\n7"}, "", true, "7"},
      {{"seqs.fa", "-r"}, "s1.REF", false, "59"},
      {{"seqs.fa", "-r", "-abi"}, "s1.REF", true, "59"},
      {{"seqs.fa", "-abi", "-r"}, "s1.REF", true, "59"},
      {{"seqs.fa", "-r", "_ref"}, "s1_ref", false, "59"},
      {{"seqs.fa", "-r", "X", "-r"}, "s1X", false, "59"},
      {{"seqs.fa", "-r", "X", "-r", "Y"}, "s1Y", false, "59"},
      {{"seqs.fa", "-r", "-q", "20"}, "s1.REF", false, "20"},
  };
  // The quality passes the range test by its leading integer and is kept as typed.
  for (const char* quality : {"0", "59", "07", "5.9", "1e3", "+7", ".5", "-0", "59.99"})
    cases.push_back({{"seqs.fa", "-q", quality}, "", false, quality});
  // A joined text far beyond its first 1024 characters of room.
  Args many(400, "-abi");
  many.front() = "seqs.fa";
  many.insert(many.end(), {"-q", "33"});
  cases.push_back({many, "", true, "33"});
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.args).substr(0, 80));
    Project project;
    RunResult result = project.Run(c.args);
    EXPECT_EQ(result.out, Progress(project, c.abi, c.reference));
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
    const std::string name = c.reference.empty() ? "s1" : c.reference;
    const std::string phd = project.Read("phd_dir/" + name + ".phd.1");
    EXPECT_TRUE(Contains(phd, "BEGIN_SEQUENCE " + name + "\n"));
    EXPECT_TRUE(Contains(phd, Dna(c.quality)));
    EXPECT_TRUE(Contains(phd, "\nQUALITY_LEVELS: 99\n"));
  }
}

TEST(CommandLine, OptionLikeFirstArgumentIsTheFileName) {
  for (const Args& args : {Args{"-q"}, Args{"-abi", "-abi"}, Args{"-r"}, Args{"-H"}}) {
    SCOPED_TRACE(args.front());
    Project project;
    RunResult result = project.Run(args);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "\nERROR: can not open file " + args.front() + "\n");
    EXPECT_EQ(result.status, 0);
  }
}

}  // namespace
