// Hostile input, end to end: the built program on inputs, trees and command lines that a pipeline
// may hand it by accident. Whatever comes in, a run ends by itself with status 0, announces every
// file it writes, reports each one it could not write and nothing else, and writes the rest whole.
#include <unistd.h>

#include <cstdlib>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "chromat_reference.h"
#include "gtest/gtest.h"
#include "test_util.h"

namespace {

using testutil::ReadFile;
using Args = std::vector<std::string>;

// Set before the first tree is made: some cases open hundreds of thousands of files.
[[maybe_unused]] const bool kInMemory =
    access("/dev/shm", W_OK) == 0 && setenv("TMPDIR", "/dev/shm", 1) == 0;

// What a run must print, and the files it must leave non-empty.
struct Expected {
  std::string out, err;
  std::set<std::string> files = {};
};

// A project tree in a temporary directory; runs start in edit_dir/ with PWD naming it.
class Tree {
 public:
  Tree() {
    for (const char* dir : {"edit_dir", "chromat_dir", "phd_dir", "poly_dir"})
      testutil::MakeDir(temp_ / dir);
  }
  std::string operator/(const std::string& name) const { return temp_ / name; }

  // Runs with `args`, edit_dir/in.fa holding `fasta`.
  testutil::RunResult Run(const std::string& fasta, const Args& args = {"in.fa"}) const {
    const std::string where = temp_ / "edit_dir";
    testutil::WriteFile(where + "/in.fa", fasta);
    return testutil::Run(testutil::Binary(), args, where, {"PWD=" + where});
  }

  // A run writing the given records in order. The files named in `refused` (relative to the
  // tree) and those whose names pass the file system's 255 bytes are reported instead.
  Expected Writes(const std::vector<std::string>& names, bool abi = false, bool poly = true,
                  const std::set<std::string>& refused = {}) const {
    Expected expected;
    for (const std::string& name : names) {
      const std::string files[] = {"chromat_dir/" + name + (abi ? "" : ".scf"),
                                   "phd_dir/" + name + ".phd.1", "poly_dir/" + name + ".poly"};
      for (int i = 0; i < (poly ? 3 : 2); ++i) {
        const std::string path = *this / files[i];
        expected.out += (i == 0 ? "\nWriting chromat file " : "Writing ") + path + "\n";
        if (refused.count(files[i]) || files[i].size() - files[i].find('/') - 1 > 255)
          expected.err += "\nERROR: can not write file " + path + "\n";
        else
          expected.files.insert(path);
      }
    }
    expected.out += "\n";
    return expected;
  }

 private:
  testutil::TempDir temp_;
};

// Compared whole, but reported from the first differing byte: some texts run to megabytes.
void ExpectSame(const std::string& actual, const std::string& expected, const char* what) {
  size_t at = 0;
  while (at < actual.size() && at < expected.size() && actual[at] == expected[at]) ++at;
  EXPECT_TRUE(actual == expected) << what << " differs from byte " << at << ": "
                                  << actual.substr(at, 100)
                                  << "\nexpected: " << expected.substr(at, 100);
}

void ExpectRun(const testutil::RunResult& result, const Expected& expected) {
  EXPECT_EQ(result.status, 0);
  ExpectSame(result.out, expected.out, "standard output");
  ExpectSame(result.err, expected.err, "standard error");
  for (const std::string& path : expected.files) EXPECT_FALSE(ReadFile(path).empty()) << path;
}

std::string Scf(const std::string& clean) { return chromat_reference::File(clean, false); }

// The record names of a FASTA text, read as the program reads them: complete lines only, a
// header's first byte other than white space is '>', and the name runs up to white space or NUL.
std::vector<std::string> RecordNames(const std::string& fasta) {
  const char* blank = " \t\v\f\r";  // never the line end: no search runs past its line
  const std::string stop("\n \t\v\f\r\0", 7);
  std::vector<std::string> names;
  for (size_t start = 0, end; (end = fasta.find('\n', start)) != std::string::npos;
       start = end + 1) {
    const size_t mark = fasta.find_first_not_of(blank, start);
    if (fasta[mark] != '>') continue;
    const size_t name = fasta.find_first_not_of(blank, mark + 1);
    names.push_back(fasta.substr(name, fasta.find_first_of(stop, name) - name));
  }
  return names;
}

}  // namespace

TEST(HostileInput, ArbitraryBytes) {
  // Random bytes with scattered headers, from a fixed seed; no '/', which makes a name a path.
  std::mt19937 generator(20060223);
  std::string fasta;
  while (fasta.size() < 256 * 1024) {
    const unsigned roll = generator() % 64;
    const char c = roll == 0 ? '\n' : roll == 1 ? '>' : static_cast<char>(generator() % 256);
    fasta += c == '/' ? '_' : c;
    if (roll == 0 && generator() % 3 == 0) fasta += std::string(generator() % 3, ' ') + ">";
  }
  Tree tree;
  const std::vector<std::string> names = RecordNames(fasta);
  ASSERT_GT(names.size(), 50u);
  ExpectRun(tree.Run(fasta), tree.Writes(names));
  ExpectRun(tree.Run(fasta, {"in.fa", "-abi", "-r"}),
            tree.Writes({names[0] + ".REF"}, true, false));
  // A name ends at a NUL; NULs in sequences are dropped like every other non-letter, and a line
  // of NULs is not blank.
  const char raw[] = "  >s\0x y\nAC\0GT\n>t\n\0\0a\n>\0\nC\n";
  ExpectRun(tree.Run(std::string(raw, sizeof raw - 1)), tree.Writes({"s", "t", ""}));
  EXPECT_EQ(ReadFile(tree / "chromat_dir/s.scf"), Scf("ACGT"));
  EXPECT_EQ(ReadFile(tree / "poly_dir/t.poly"),
            "t 1 1 1 1 1\nA 12 300000 1 N  -1  -1 -1 60000 0 0 0\n");
}

TEST(HostileInput, HugeAndBlankLines) {
  Tree tree;
  // 50 MB without a header: read whole, nothing written.
  ExpectRun(tree.Run(std::string(50 << 20, 'A') + "\n"), {"\n", ""});
  // A 21 MB single-line record: an alignment row, mostly gaps, whose letters make 100,000 bases.
  std::string row, clean;
  for (int i = 0; i < 100000; ++i) row += std::string(209, '-') + "acgtn"[i % 5];
  for (int i = 0; i < 20000; ++i) clean += "ACGTN";
  for (bool abi : {false, true}) {
    ExpectRun(tree.Run(">aligned\n" + row + "\n", abi ? Args{"in.fa", "-abi"} : Args{"in.fa"}),
              tree.Writes({"aligned"}, abi));
    ExpectSame(ReadFile(tree / (abi ? "chromat_dir/aligned" : "chromat_dir/aligned.scf")),
               chromat_reference::File(clean, abi), abi ? "ABIF" : "SCF");
    EXPECT_NE(ReadFile(tree / "phd_dir/aligned.phd.1").find("\nN 59 1200000\nEND_DNA\n"),
              std::string::npos);
  }
  // Lines of carriage returns are blank; a megabyte of them without a line end is never read.
  ExpectRun(tree.Run("\r\r\r\n>s1\r\n\r\nAC\r\r\n\r\r\r\r\nGT\r\n" + std::string(1 << 20, '\r')),
            tree.Writes({"s1"}));
  EXPECT_EQ(ReadFile(tree / "chromat_dir/s1.scf"), Scf("ACGT"));
}

TEST(HostileInput, HundredThousandOneBaseRecords) {
  // A thousand names, each taken by a hundred records: every record opens, fills and closes its
  // three files, and each file must end up holding its last record (base T) alone.
  std::string fasta;
  std::vector<std::string> names;
  for (int i = 0; i < 100000; ++i) {
    names.push_back("r" + std::to_string(i % 1000));
    fasta += ">" + names.back() + "\n" + "ACGT"[i / 1000 % 4] + "\n";
  }
  Tree tree;
  ExpectRun(tree.Run(fasta), tree.Writes(names));
  for (int k = 0; k < 1000; ++k) {
    ASSERT_EQ(ReadFile(tree / ("chromat_dir/" + names[k] + ".scf")), Scf("T")) << names[k];
    ASSERT_EQ(ReadFile(tree / ("poly_dir/" + names[k] + ".poly")),
              names[k] + " 1 1 1 1 1\nT 12 300000 1 N  -1  -1 -1 0 0 0 60000\n");
  }
}

TEST(HostileOutput, FilesThatCannotBeWrittenAreReportedAndTheRunGoesOn) {
  Tree tree;
  const std::string fasta = ">s1\nACGT\n>s2\nGGT\n";
  // Links to a full device (opened, but no byte can be written) and directories where files
  // should be; the ABIF file has no extension of its own.
  for (const char* link : {"phd_dir/s1.phd.1", "chromat_dir/s2.scf"})
    ASSERT_EQ(symlink("/dev/full", (tree / link).c_str()), 0);
  for (const char* dir : {"chromat_dir/s1", "poly_dir/s2.poly"}) testutil::MakeDir(tree / dir);
  ExpectRun(tree.Run(fasta),
            tree.Writes({"s1", "s2"}, false, true,
                        {"phd_dir/s1.phd.1", "chromat_dir/s2.scf", "poly_dir/s2.poly"}));
  EXPECT_EQ(ReadFile(tree / "chromat_dir/s1.scf"), Scf("ACGT"));
  ExpectRun(tree.Run(fasta, {"in.fa", "-abi"}),
            tree.Writes({"s1", "s2"}, true, true,
                        {"chromat_dir/s1", "phd_dir/s1.phd.1", "poly_dir/s2.poly"}));
  EXPECT_EQ(ReadFile(tree / "chromat_dir/s2"), chromat_reference::File("GGT", true));
  // Names too long for a file: a 5,000-character one, and a 10,000-character -r suffix.
  const std::string name(5000, 'n'), suffix(10000, 's');
  ExpectRun(tree.Run(">" + name + " x\nACGT\n>after\nGT\n"), tree.Writes({name, "after"}));
  EXPECT_EQ(ReadFile(tree / "chromat_dir/after.scf"), Scf("GT"));
  ExpectRun(tree.Run(fasta, {"in.fa", "-r", suffix}), tree.Writes({"s1" + suffix}, false, false));
}

TEST(HostileCommandLine, HugeArgumentsAndDirectoryInputs) {
  const std::string fasta = ">s1\nACGT\n";
  Tree tree;
  // 10,000 arguments, all valid options: the last -q wins.
  Args options = {"in.fa"};
  for (int i = 0; i < 3333; ++i)
    options.insert(options.end(), {"-q", std::to_string(i % 60), "-abi"});
  ExpectRun(tree.Run(fasta, options), tree.Writes({"s1"}, true));
  EXPECT_NE(ReadFile(tree / "phd_dir/s1.phd.1").find("\nT 32 48\n"), std::string::npos);
  // The same with one bad argument at the very end: rejected, nothing written.
  options.back() = "-abbi";
  ExpectRun(tree.Run(fasta, options), {"", "\nERROR: invalid command line argument -abbi\n\n"});
  // A quality of 10,000 digits: leading zeros keep it in range, and it is written as typed.
  const std::string quality = std::string(9998, '0') + "42";
  ExpectRun(tree.Run(fasta, {"in.fa", "-q", quality}), tree.Writes({"s1"}));
  EXPECT_NE(ReadFile(tree / "phd_dir/s1.phd.1").find("\nG " + quality + " 36\n"),
            std::string::npos);
  ExpectRun(tree.Run(fasta, {"in.fa", "-q", std::string(10000, '9')}),
            {"", "\nERROR: quality value must be from 0 to 59.\n\n"});
  // An input path that is a directory, reached directly or through a link.
  ASSERT_EQ(symlink((tree / "").c_str(), (tree / "edit_dir/link").c_str()), 0);
  for (const std::string input : {"..", "/", "link", "link/edit_dir"})
    ExpectRun(tree.Run("", {input}), {"", "\nERROR: can not open file " + input + "\n"});
}
