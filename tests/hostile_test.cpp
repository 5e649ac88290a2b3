// Hostile input, end to end: the built program on inputs and project trees that a pipeline may
// hand it by accident. Whatever comes in, a run must end by itself with status 0, announce every
// file it writes, report each file it could not write ("can not write file") and nothing else,
// and write every other file completely.
//
// The trees live on /dev/shm when there is one: some cases open hundreds of thousands of files.
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "chromat_reference.h"
#include "gtest/gtest.h"
#include "test_util.h"

namespace {

using testutil::ReadFile;
using testutil::RunResult;
using testutil::WriteFile;
using Args = std::vector<std::string>;

constexpr char kCannotWrite[] = "\nERROR: can not write file ";
constexpr char kCannotOpen[] = "\nERROR: can not open file ";
constexpr size_t kNameMax = 255;  // longest file name the file system takes

bool UseMemoryFileSystem() {
  if (access("/dev/shm", W_OK) == 0) setenv("TMPDIR", "/dev/shm", 1);
  return true;
}

// A project tree in a temporary directory; runs start in edit_dir/ with PWD naming it.
class Tree {
 public:
  Tree() {
    static const bool memory = UseMemoryFileSystem();  // before the first TempDir is made
    (void)memory;
    temp_.reset(new testutil::TempDir);
    for (const char* dir : {"edit_dir", "chromat_dir", "phd_dir", "poly_dir"})
      testutil::MakeDir(*this / dir);
  }
  std::string Root() const { return temp_->path() + "/"; }
  std::string operator/(const std::string& name) const { return *temp_ / name; }

  RunResult Run(const Args& args) const {
    const std::string where = *this / "edit_dir";
    return testutil::Run(testutil::Binary(), args, where, {"PWD=" + where});
  }
  // Writes `fasta` to edit_dir/in.fa and runs on it with the given options.
  RunResult RunOn(const std::string& fasta, const Args& options = {}) const {
    WriteFile(*this / "edit_dir/in.fa", fasta);
    Args args = {"in.fa"};
    args.insert(args.end(), options.begin(), options.end());
    return Run(args);
  }

 private:
  std::unique_ptr<testutil::TempDir> temp_;
};

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The record names of a FASTA text, read as the program reads them: complete lines only, a
// header's first byte other than white space is '>', and the name runs up to white space or a
// NUL byte.
std::vector<std::string> RecordNames(const std::string& fasta) {
  std::vector<std::string> names;
  size_t start = 0;
  for (size_t end = fasta.find('\n'); end != std::string::npos; end = fasta.find('\n', start)) {
    size_t p = start;
    while (p < end && IsSpace(fasta[p])) ++p;
    if (p < end && fasta[p] == '>') {
      for (++p; p < end && IsSpace(fasta[p]);) ++p;
      size_t last = p;
      while (last < end && !IsSpace(fasta[last]) && fasta[last] != '\0') ++last;
      names.push_back(fasta.substr(p, last - p));
    }
    start = end + 1;
  }
  return names;
}

// The files of one record, as the progress lines name them, in the order they are written.
std::vector<std::string> RecordFiles(const Tree& tree, const std::string& name, bool abi = false,
                                     bool poly = true) {
  std::vector<std::string> files = {tree.Root() + "chromat_dir/" + name + (abi ? "" : ".scf"),
                                    tree.Root() + "phd_dir/" + name + ".phd.1"};
  if (poly) files.push_back(tree.Root() + "poly_dir/" + name + ".poly");
  return files;
}

std::string LastComponent(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// What a run must print for the given records: the progress lines on standard output, and a
// failure for each file whose name the file system refuses as too long.
struct Expected {
  std::string out;
  std::string err;
};

Expected ExpectedRun(const Tree& tree, const std::vector<std::string>& names, bool abi = false,
                     bool poly = true) {
  Expected expected;
  for (const std::string& name : names) {
    std::vector<std::string> files = RecordFiles(tree, name, abi, poly);
    expected.out += "\nWriting chromat file " + files[0] + "\n";
    for (size_t i = 1; i < files.size(); ++i) expected.out += "Writing " + files[i] + "\n";
    for (const std::string& file : files)
      if (LastComponent(file).size() > kNameMax) expected.err += kCannotWrite + file + "\n";
  }
  expected.out += "\n";
  return expected;
}

// Every announced file exists as a non-empty regular file, unless it was reported.
void ExpectAnnouncedFilesWritten(const RunResult& result) {
  std::set<std::string> reported;
  const std::string prefix = kCannotWrite;
  for (size_t at = result.err.find(prefix); at != std::string::npos;
       at = result.err.find(prefix, at + 1)) {
    size_t start = at + prefix.size();
    reported.insert(result.err.substr(start, result.err.find('\n', start) - start));
  }
  for (size_t start = 0, end; (end = result.out.find('\n', start)) != std::string::npos;
       start = end + 1) {
    std::string line = result.out.substr(start, end - start);
    for (const char* announcement : {"Writing chromat file ", "Writing "}) {
      if (line.rfind(announcement, 0) != 0) continue;
      std::string path = line.substr(std::string(announcement).size());
      struct stat st;
      bool written = stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0;
      EXPECT_TRUE(written || reported.count(path)) << path;
      break;
    }
  }
}

// Long texts are compared without printing them whole.
void ExpectSameText(const std::string& actual, const std::string& expected, const char* what) {
  if (actual.size() < 4096 && expected.size() < 4096) {
    EXPECT_EQ(actual, expected) << what;
    return;
  }
  auto mismatch = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
  EXPECT_TRUE(actual == expected) << what << " differs from byte "
                                  << (mismatch.first - actual.begin()) << " of " << actual.size();
}

// `eachFile` false leaves the files to the caller (who counts them instead).
void ExpectRun(const RunResult& result, const Expected& expected, bool eachFile = true) {
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.signal, 0);
  ExpectSameText(result.out, expected.out, "standard output");
  ExpectSameText(result.err, expected.err, "standard error");
  if (eachFile) ExpectAnnouncedFilesWritten(result);
}

size_t CountFiles(const Tree& tree, const char* dir) {
  size_t count = 0;
  std::string listing = tree / dir;
  if (DIR* d = opendir(listing.c_str())) {
    while (dirent* entry = readdir(d)) count += entry->d_name[0] != '.';
    closedir(d);
  }
  return count;
}

// The chromatogram files the writer must make of a clean sequence.
std::string Scf(const std::string& clean) { return chromat_reference::File(clean, false); }
std::string Abif(const std::string& clean) { return chromat_reference::File(clean, true); }

// The letters of a sequence, upper-cased, as the writer keeps them.
std::string Clean(const std::string& sequence) {
  std::string clean;
  for (char c : sequence)
    if (std::isalpha(static_cast<unsigned char>(c))) clean += static_cast<char>(std::toupper(c));
  return clean;
}

}  // namespace

TEST(HostileInput, RandomBytesWithScatteredHeaders) {
  // Fixed seed, so a failure can be replayed. '/' is left out: it would make names into paths
  // outside the tree.
  std::mt19937 generator(20060223);
  std::string fasta;
  while (fasta.size() < 256 * 1024) {
    unsigned roll = generator() % 64;
    if (roll == 0) {
      fasta += '\n';
      if (generator() % 3 == 0) fasta += std::string(generator() % 3, ' ') + ">";
    } else if (roll == 1) {
      fasta += '>';
    } else {
      char c = static_cast<char>(generator() % 256);
      fasta += c == '/' ? '_' : c;
    }
  }
  Tree tree;
  std::vector<std::string> names = RecordNames(fasta);
  ASSERT_GT(names.size(), 50u);
  ExpectRun(tree.RunOn(fasta), ExpectedRun(tree, names));
  ExpectRun(tree.RunOn(fasta, {"-abi", "-r"}), ExpectedRun(tree, {names[0] + ".REF"}, true, false));
}

TEST(HostileInput, NulBytesInHeadersAndSequences) {
  // A name ends at a NUL; NULs in sequences are dropped like every other non-letter, and a line
  // of NULs is not blank.
  const char raw[] = "  >s\0x y\nAC\0GT\n>t\n\0\0a\n>\0\nC\n";
  const std::string fasta(raw, sizeof raw - 1);
  Tree tree;
  ExpectRun(tree.RunOn(fasta), ExpectedRun(tree, {"s", "t", ""}));
  EXPECT_EQ(ReadFile(tree / "chromat_dir/s.scf"), Scf("ACGT"));
  EXPECT_EQ(ReadFile(tree / "chromat_dir/t.scf"), Scf("A"));
  EXPECT_EQ(ReadFile(tree / "chromat_dir/.scf"), Scf("C"));
  EXPECT_EQ(ReadFile(tree / "poly_dir/t.poly"),
            "t 1 1 1 1 1\nA 12 300000 1 N  -1  -1 -1 60000 0 0 0\n");
}

TEST(HostileInput, HugeLines) {
  {
    // 50 MB without a header: read whole, nothing written.
    Tree tree;
    ExpectRun(tree.RunOn(std::string(50 << 20, 'A') + "\n"), {"\n", ""});
    EXPECT_EQ(CountFiles(tree, "chromat_dir") + CountFiles(tree, "phd_dir"), 0u);
  }
  // A 20 MB single-line record: an alignment row, mostly gaps, whose letters make 100,000 bases.
  std::string row;
  for (int i = 0; i < 100000; ++i) row += std::string(209, '-') + "acgtn"[i % 5];
  ASSERT_GE(row.size(), 20u << 20);
  const std::string clean = Clean(row);
  for (bool abi : {false, true}) {
    SCOPED_TRACE(abi ? "ABIF" : "SCF");
    Tree tree;
    ExpectRun(tree.RunOn(">aligned\n" + row + "\n", abi ? Args{"-abi"} : Args{}),
              ExpectedRun(tree, {"aligned"}, abi));
    const std::string chromat = ReadFile(RecordFiles(tree, "aligned", abi)[0]);
    EXPECT_TRUE(chromat == chromat_reference::File(clean, abi));
    EXPECT_NE(ReadFile(tree / "phd_dir/aligned.phd.1").find("\nN 59 1200000\nEND_DNA\n"),
              std::string::npos);
  }
  {
    // Lines of carriage returns are blank; a megabyte of them without a line end is never read.
    Tree tree;
    const std::string fasta =
        "\r\r\r\n>s1\r\n\r\nAC\r\r\n\r\r\r\r\nGT\r\n" + std::string(1 << 20, '\r');
    ExpectRun(tree.RunOn(fasta), ExpectedRun(tree, {"s1"}));
    EXPECT_EQ(ReadFile(tree / "chromat_dir/s1.scf"), Scf("ACGT"));
  }
}

TEST(HostileInput, HundredThousandOneBaseRecords) {
  // A thousand names, each taken by a hundred records: every record opens, fills and closes its
  // three files, and each file must end up holding its last record (base T) alone. Distinct
  // names would only add file-system time.
  std::string fasta;
  std::vector<std::string> names;
  for (int i = 0; i < 100000; ++i) {
    names.push_back("r" + std::to_string(i % 1000));
    fasta += ">" + names.back() + "\n" + "ACGT"[i / 1000 % 4] + "\n";
  }
  Tree tree;
  ExpectRun(tree.RunOn(fasta), ExpectedRun(tree, names), false);
  for (const char* dir : {"chromat_dir", "phd_dir", "poly_dir"})
    EXPECT_EQ(CountFiles(tree, dir), 1000u) << dir;
  const std::string scf = Scf("T");
  for (int k = 0; k < 1000; ++k) {
    const std::string name = "r" + std::to_string(k);
    ASSERT_EQ(ReadFile(tree / ("chromat_dir/" + name + ".scf")), scf) << name;
    const std::string phd = ReadFile(tree / ("phd_dir/" + name + ".phd.1"));
    ASSERT_EQ(phd.substr(phd.find("BEGIN_DNA")), "BEGIN_DNA\nT 59 12\nEND_DNA\nEND_SEQUENCE");
    ASSERT_EQ(ReadFile(tree / ("poly_dir/" + name + ".poly")),
              name + " 1 1 1 1 1\nT 12 300000 1 N  -1  -1 -1 0 0 0 60000\n");
  }
}

TEST(HostileOutput, NamesTooLongForAFileAreReportedAndTheRunGoesOn) {
  const std::string longName(5000, 'n');
  {
    Tree tree;
    Expected expected = ExpectedRun(tree, {longName, "after"});
    ASSERT_EQ(std::count(expected.err.begin(), expected.err.end(), '\n'), 6);  // three files
    ExpectRun(tree.RunOn(">" + longName + " x\nACGT\n>after\nGT\n"), expected);
    EXPECT_EQ(ReadFile(tree / "chromat_dir/after.scf"), Scf("GT"));
  }
  {
    // A 10,000-character reference suffix makes the same kind of name.
    Tree tree;
    const std::string suffix(10000, 's');
    ExpectRun(tree.RunOn(">s1\nACGT\n>s2\nA\n", {"-r", suffix}),
              ExpectedRun(tree, {"s1" + suffix}, false, false));
  }
}

TEST(HostileOutput, WritesThatFailAreReported) {
  const std::string fasta = ">s1\nACGT\n>s2\nGGT\n";
  {
    // Files that are links to a full device: opened, but no byte can be written.
    Tree tree;
    ASSERT_EQ(symlink("/dev/full", (tree / "phd_dir/s1.phd.1").c_str()), 0);
    ASSERT_EQ(symlink("/dev/full", (tree / "chromat_dir/s2.scf").c_str()), 0);
    Expected expected = ExpectedRun(tree, {"s1", "s2"});
    expected.err = kCannotWrite + tree.Root() + "phd_dir/s1.phd.1\n" + kCannotWrite + tree.Root() +
                   "chromat_dir/s2.scf\n";
    ExpectRun(tree.RunOn(fasta), expected);
    EXPECT_EQ(ReadFile(tree / "chromat_dir/s1.scf"), Scf("ACGT"));
    EXPECT_NE(ReadFile(tree / "phd_dir/s2.phd.1").find("\nT 59 36\nEND_DNA"), std::string::npos);
  }
  {
    // Directories where files should be: the ABIF file has no extension of its own.
    Tree tree;
    testutil::MakeDir(tree / "chromat_dir/s1");
    testutil::MakeDir(tree / "poly_dir/s2.poly");
    Expected expected = ExpectedRun(tree, {"s1", "s2"}, true);
    expected.err = kCannotWrite + tree.Root() + "chromat_dir/s1\n" + kCannotWrite + tree.Root() +
                   "poly_dir/s2.poly\n";
    ExpectRun(tree.RunOn(fasta, {"-abi"}), expected);
    EXPECT_EQ(ReadFile(tree / "chromat_dir/s2"), Abif("GGT"));
    EXPECT_EQ(ReadFile(tree / "poly_dir/s1.poly").substr(0, 12), "s1 1 1 1 1 1");
  }
}

TEST(HostileCommandLine, HugeArgumentLists) {
  const std::string fasta = ">s1\nACGT\n";
  {
    // 10,000 arguments, all valid options: the last -q wins.
    Tree tree;
    Args options;
    for (int i = 0; i < 3333; ++i)
      options.insert(options.end(), {"-q", std::to_string(i % 60), "-abi"});
    ASSERT_EQ(options.size() + 1, 10000u);
    ExpectRun(tree.RunOn(fasta, options), ExpectedRun(tree, {"s1"}, true));
    EXPECT_NE(ReadFile(tree / "phd_dir/s1.phd.1").find("\nT 32 48\n"), std::string::npos);
    // The same with one bad argument at the very end: rejected, nothing written.
    options.back() = "-abbi";
    ExpectRun(tree.RunOn(fasta, options), {"", "\nERROR: invalid command line argument -abbi\n\n"});
  }
  {
    // A quality of 10,000 digits: leading zeros keep it in range, and it is written as typed.
    Tree tree;
    const std::string quality = std::string(9998, '0') + "42";
    ExpectRun(tree.RunOn(fasta, {"-q", quality}), ExpectedRun(tree, {"s1"}));
    EXPECT_NE(ReadFile(tree / "phd_dir/s1.phd.1").find("\nG " + quality + " 36\n"),
              std::string::npos);
    ExpectRun(tree.RunOn(fasta, {"-q", std::string(10000, '9')}),
              {"", "\nERROR: quality value must be from 0 to 59.\n\n"});
  }
}

TEST(HostileCommandLine, InputThatIsADirectory) {
  Tree tree;
  ASSERT_EQ(symlink(tree.Root().c_str(), (tree / "edit_dir/link").c_str()), 0);
  for (const char* input : {"..", "/", "link", "link/edit_dir"}) {
    SCOPED_TRACE(input);
    ExpectRun(tree.Run({input}), {"", kCannotOpen + std::string(input) + "\n"});
  }
}
