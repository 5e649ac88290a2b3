// The built program on real project trees, started as a shell would start it (PWD names the
// directory it runs in, the umask is 002). Standard output, standard error, the status, every
// file's bytes (only the TIME value of phd files is masked) and every file's mode are compared,
// and no other file may appear.
#include <dirent.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

#include "chromat_reference.h"
#include "gtest/gtest.h"
#include "test_util.h"

namespace {

using testutil::MakeDir;
using testutil::ReadFile;
using testutil::RunResult;
using testutil::WriteFile;
using Args = std::vector<std::string>;
using Paths = std::vector<std::string>;

// A temporary directory holding a project tree whose directory names follow `prefix`.
class Project {
 public:
  explicit Project(const std::string& prefix = "") {
    if (!prefix.empty() && prefix.back() == '/') MakeDir(temp_ / prefix);
    for (const char* dir : {"edit_dir", "chromat_dir", "phd_dir", "poly_dir"})
      MakeDir(temp_ / (prefix + dir));
  }
  std::string Root() const { return temp_.path() + "/"; }
  std::string operator/(const std::string& name) const { return temp_ / name; }

  // Runs in Root() + `dir` with PWD naming that directory, without a trailing '/'.
  RunResult Run(const std::string& dir, const Args& args, Args env = {}) const {
    const std::string where = temp_ / dir;
    env.insert(env.begin(), "PWD=" + where);
    return testutil::Run(testutil::Binary(), args, where, env);
  }

  // Every file below the root that is not a directory, by relative path, sorted.
  Paths Files(const std::string& relative = "") const {
    Paths files;
    DIR* dir = opendir((Root() + relative).c_str());
    while (dirent* entry = dir ? readdir(dir) : nullptr) {
      const std::string name = entry->d_name, path = relative + name;
      struct stat st;
      if (name == "." || name == ".." || lstat((Root() + path).c_str(), &st) != 0) continue;
      Paths inner = S_ISDIR(st.st_mode) ? Files(path + "/") : Paths{path};
      files.insert(files.end(), inner.begin(), inner.end());
    }
    if (dir) closedir(dir);
    std::sort(files.begin(), files.end());
    return files;
  }

 private:
  testutil::TempDir temp_;
};

// Removes the directory (mode 0) or gives it the permission bits `mode`.
void Spoil(const std::string& dir, unsigned mode) {
  if (mode == 0)
    rmdir(dir.c_str());
  else
    chmod(dir.c_str(), mode);
}

const std::regex kCtimeText(
    "(Sun|Mon|Tue|Wed|Thu|Fri|Sat) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
    "[ 123][0-9] [012][0-9]:[0-5][0-9]:[0-6][0-9] [0-9]{4}");

// The phd file with the value of its TIME line, which must look like a ctime text, masked.
std::string ReadPhd(const std::string& path) {
  std::string phd = ReadFile(path);
  size_t start = phd.find("\nTIME: ");
  if (start == std::string::npos) return phd;
  start += 7;
  const size_t end = phd.find('\n', start);
  EXPECT_TRUE(std::regex_match(phd.substr(start, end - start), kCtimeText)) << path;
  return phd.replace(start, end - start, "<time>");
}

// Where the files of one record are expected, and what they hold.
struct Record {
  std::string name;   // as it appears in the files, suffix included
  std::string clean;  // the record's letters, upper-cased
  std::string chromatDir = "chromat_dir/";
  std::string phdDir = "phd_dir/";
  std::string polyDir = "poly_dir/";  // empty: no poly file
  std::string quality = "59";
  bool abi = false;

  std::string Chromat() const { return name + (abi ? "" : ".scf"); }
  Paths Files() const {
    Paths files = {chromatDir + Chromat(), phdDir + name + ".phd.1"};
    if (!polyDir.empty()) files.push_back(polyDir + name + ".poly");
    return files;
  }
  std::string Phd() const {
    std::string phd = "BEGIN_SEQUENCE " + name + "\n\nBEGIN_COMMENT\nCHROMAT_FILE: " + Chromat() +
                      "\nABI_THUMBPRINT: 0\nPHRED_VERSION: synthCall\nCALL_METHOD: synthCall\n"
                      "QUALITY_LEVELS: 99\nTIME: <time>\nTRACE_ARRAY_MIN_INDEX: 0\n"
                      "TRACE_ARRAY_MAX_INDEX: " +
                      std::to_string(12 * clean.size() + 11) +
                      "\nCHEM: unknown\nDYE: unknown\nEND_COMMENT\n\nBEGIN_DNA\n";
    for (size_t i = 0; i < clean.size(); ++i)
      phd += clean.substr(i, 1) + " " + quality + " " + std::to_string(12 * i + 12) + "\n";
    return phd + "END_DNA\nEND_SEQUENCE";
  }
  std::string Poly() const {
    const char* areas[] = {"60000 0 0 0", "0 60000 0 0", "0 0 60000 0", "0 0 0 60000", "0 0 0 0"};
    std::string poly = name + " 1 1 1 1 1\n";
    for (size_t i = 0; i < clean.size(); ++i)
      poly += clean.substr(i, 1) + " " + std::to_string(12 * i + 12) + " 300000 1 N  -1  -1 -1 " +
              areas[std::min<size_t>(std::string("ACGT").find(clean[i]), 4)] + "\n";
    return poly;
  }
};

// The progress lines of the records and the final empty line; paths begin with `prefix`.
std::string Progress(const std::string& prefix, const std::vector<Record>& records) {
  std::string out;
  for (const Record& r : records) {
    Paths files = r.Files();
    out += "\nWriting chromat file " + prefix + files[0] + "\n";
    for (size_t i = 1; i < files.size(); ++i) out += "Writing " + prefix + files[i] + "\n";
  }
  return out + "\n";
}

// Checks a successful run: streams, status, every record's bytes and modes, and that no file
// but those and `before` exists.
void ExpectRun(const Project& project, const RunResult& result, const std::string& prefix,
               const std::vector<Record>& records, Paths before) {
  EXPECT_EQ(result.out, Progress(prefix, records));
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.signal, 0);
  for (const Record& r : records) {
    SCOPED_TRACE(r.name);
    const Paths files = r.Files();
    EXPECT_EQ(ReadFile(project / files[0]), r.abi ? ReferenceAbif(r.clean) : ReferenceScf(r.clean));
    EXPECT_EQ(ReadPhd(project / files[1]), r.Phd());
    if (files.size() > 2) {
      EXPECT_EQ(ReadFile(project / files[2]), r.Poly());
    }
    for (const std::string& file : files) EXPECT_EQ(testutil::FileMode(project / file), 0664u);
    before.insert(before.end(), files.begin(), files.end());
  }
  std::sort(before.begin(), before.end());
  before.erase(std::unique(before.begin(), before.end()), before.end());
  EXPECT_EQ(project.Files(), before);
}

const char kReads[] = ">s1 first read\nacgtn\nACGT\n>s2\nGGNNt\n";

// The records of kReads in the tree whose directory names follow `prefix`.
std::vector<Record> Reads(const std::string& prefix = "", const std::string& quality = "59",
                          bool abi = false) {
  std::vector<Record> records = {{"s1", "ACGTNACGT"}, {"s2", "GGNNT"}};
  for (Record& r : records) {
    r.chromatDir = prefix + r.chromatDir;
    r.phdDir = prefix + r.phdDir;
    r.polyDir = prefix + r.polyDir;
    r.quality = quality;
    r.abi = abi;
  }
  return records;
}

TEST(EndToEnd, RunsInEditDirOrProjectRoot) {
  Project project;
  WriteFile(project / "reads.fa", kReads);
  RunResult result = project.Run("edit_dir", {"../reads.fa", "-q", "07"});
  ExpectRun(project, result, project.Root(), Reads("", "07"), {"reads.fa"});
  Project root;
  WriteFile(root / "reads.fa", kReads);
  result = root.Run("", {"reads.fa", "-abi", "-q", "5.9"});
  ExpectRun(root, result, root.Root(), Reads("", "5.9", true), {"reads.fa"});
}

TEST(EndToEnd, ProjectRootComesFromPwd) {
  // EDIT_DIR/ is a root of its own; old_edit_dir/ ends in "edit_dir/" and stands for "old_".
  for (const char* prefix : {"EDIT_DIR/", "old_"}) {
    SCOPED_TRACE(prefix);
    Project project(prefix);
    WriteFile(project / "reads.fa", kReads);
    const std::string dir = prefix[0] == 'E' ? "EDIT_DIR" : "old_edit_dir";
    RunResult result = project.Run(dir, {"../reads.fa"});
    ExpectRun(project, result, project.Root(), Reads(prefix), {"reads.fa"});
  }
  // Without PWD the directories are relative to the working directory.
  Project project;
  WriteFile(project / "reads.fa", kReads);
  ExpectRun(project, project.Run("", {"reads.fa"}, {"PWD"}), "", Reads(), {"reads.fa"});
  // PWD, not the working directory, names the tree; the input is found from the latter.
  Project here, there;
  WriteFile(here / "edit_dir/reads.fa", kReads);
  RunResult result = here.Run("edit_dir", {"reads.fa"}, {"PWD=" + (there / "edit_dir")});
  ExpectRun(there, result, there.Root(), Reads(), {});
  EXPECT_EQ(here.Files(), Paths{"edit_dir/reads.fa"});
}

// Only the owner's bits count (the tests may run as root, who may write anyway).
TEST(EndToEnd, UsableDirectories) {
  struct Case {
    const char* dir;
    unsigned mode;  // 0: missing
  };
  for (const Case& c : {Case{"chromat_dir", 0}, Case{"chromat_dir", 0555}, Case{"phd_dir", 0},
                        Case{"phd_dir", 0555}, Case{"poly_dir", 0555}}) {
    SCOPED_TRACE(std::string(c.dir) + " " + std::to_string(c.mode));
    Project project;
    Spoil(project / c.dir, c.mode);
    WriteFile(project / "edit_dir/reads.fa", kReads);
    RunResult result = project.Run("edit_dir", {"reads.fa"});
    std::vector<Record> records = Reads();
    for (Record& r : records) {
      if (std::string(c.dir) + "/" == r.chromatDir) r.chromatDir = "";
      if (std::string(c.dir) + "/" == r.phdDir) r.phdDir = "";
    }
    ExpectRun(project, result, project.Root(), records, {"edit_dir/reads.fa"});
  }
}

TEST(EndToEnd, UnusablePolyDirAbortsBeforeAnything) {
  struct rlimit noCore = {0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  struct Case {
    unsigned mode;  // 0: missing
    Args args;
  };
  for (const Case& c : {Case{0, {"reads.fa"}}, Case{0333, {"reads.fa"}}, Case{0, {"missing.fa"}},
                        Case{0, {"reads.fa", "-r", "-abi"}}}) {
    SCOPED_TRACE(std::to_string(c.mode) + " " + c.args.back());
    Project project;
    Spoil(project / "poly_dir", c.mode);
    WriteFile(project / "edit_dir/reads.fa", kReads);
    RunResult result = project.Run("edit_dir", c.args);
    EXPECT_EQ(result.signal, SIGABRT);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.find("ERROR"), std::string::npos) << result.err;
    EXPECT_EQ(project.Files(), Paths{"edit_dir/reads.fa"});
  }
  // Without PWD, edit_dir/ itself is the root, and it holds no poly_dir/.
  Project project;
  WriteFile(project / "edit_dir/reads.fa", kReads);
  EXPECT_EQ(project.Run("edit_dir", {"reads.fa"}, {"PWD"}).signal, SIGABRT);
  EXPECT_EQ(project.Files(), Paths{"edit_dir/reads.fa"});
}

TEST(EndToEnd, ReferenceSetOfTheFirstRecord) {
  struct Case {
    Args args;
    Record record;
  };
  const std::string clean = "ACGTNACGT";
  const Case cases[] = {
      {{"reads.fa", "-r"}, {"s1.REF", clean, "chromat_dir/", "phd_dir/", "", "59", false}},
      {{"reads.fa", "-r", "_ref", "-abi"},
       {"s1_ref", clean, "chromat_dir/", "phd_dir/", "", "59", true}},
      {{"reads.fa", "-abi", "-r", "-q", "07"},
       {"s1.REF", clean, "chromat_dir/", "phd_dir/", "", "07", true}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.record.name);
    Project project;
    WriteFile(project / "edit_dir/reads.fa", kReads);
    RunResult result = project.Run("edit_dir", c.args);
    ExpectRun(project, result, project.Root(), {c.record}, {"edit_dir/reads.fa"});
  }
}

TEST(EndToEnd, InputLinesAndRecords) {
  const std::string oneBlock = ">b\n" + std::string(1020, 'T') + "\n";
  const std::string cutBlock = ">c\nACGT\n" + std::string(1016, 'A');
  ASSERT_EQ(oneBlock.size(), 1024u);
  ASSERT_EQ(cutBlock.size(), 1024u);
  struct Case {
    const char* label;
    std::string input;
    std::vector<Record> records;
  };
  const Case cases[] = {
      {"crlf, blank lines, text before the first header, a last line without newline",
       "NNNN\r\n\r\n  >s1 description here\r\nac gt\r\n\r\n   \r\nnn\r\n>s2\tx\nACGT",
       {{"s1", "NNNNACGTNN"}, {"s2", ""}}},
      {"blank after the '>', tab after the name",
       "> s3\nA\n>s4\tmore\n\n\nC\n",
       {{"s3", "A"}, {"s4", "C"}}},
      {"a last header without newline", ">s1\nA-C*G 1\n>s2", {{"s1", "ACG"}}},
      {"an empty name", ">\nTT\n", {{"", "TT"}}},
      {"no header", "ACGT\nACGT\n", {}},
      {"empty file", "", {}},
      {"a 5000-character line",
       ">long\n" + std::string(5000, 'g') + "\nA\n",
       {{"long", std::string(5000, 'G') + "A"}}},
      {"exactly one read block", oneBlock, {{"b", std::string(1020, 'T')}}},
      {"one block whose last line has no newline", cutBlock, {{"c", "ACGT"}}},
      {"a header across two blocks",
       ">a\n" + std::string(1017, 'C') + "\n>dd\nG\n",
       {{"a", std::string(1017, 'C')}, {"dd", "G"}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    Project project;
    WriteFile(project / "edit_dir/in.fa", c.input);
    RunResult result = project.Run("edit_dir", {"in.fa"});
    ExpectRun(project, result, project.Root(), c.records, {"edit_dir/in.fa"});
  }
}

TEST(EndToEnd, InputThatCannotBeOpened) {
  for (const char* name : {"missing.fa", "folder", "."}) {
    Project project;
    MakeDir(project / "edit_dir/folder");
    RunResult result = project.Run("edit_dir", {name});
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "\nERROR: can not open file " + std::string(name) + "\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(project.Files(), Paths{});
  }
}

TEST(EndToEnd, OutputThatCannotBeWrittenIsReported) {
  for (const char* blocked : {"phd_dir/s1.phd.1", "chromat_dir/s2.scf", "poly_dir/s1.poly"}) {
    SCOPED_TRACE(blocked);
    Project project;
    MakeDir(project / blocked);
    WriteFile(project / "edit_dir/reads.fa", kReads);
    RunResult result = project.Run("edit_dir", {"reads.fa"});
    EXPECT_EQ(result.out, Progress(project.Root(), Reads()));
    EXPECT_EQ(result.err, "\nERROR: can not write file " + project.Root() + blocked + "\n");
    EXPECT_EQ(result.status, 0);
    Paths expected = {"edit_dir/reads.fa"};
    for (const Record& r : Reads())
      for (const std::string& file : r.Files())
        if (file != blocked) expected.push_back(file);
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(project.Files(), expected);
    EXPECT_EQ(ReadFile(project / "chromat_dir/s1.scf"), ReferenceScf("ACGTNACGT"));
  }
}

}  // namespace
