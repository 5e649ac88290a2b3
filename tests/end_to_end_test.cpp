// The built program on real project trees, started as a shell would (PWD names the directory it
// runs in, the umask is 002). Standard output and error, the status, every file's bytes (TIME
// masked) and mode are compared, and no other file may appear.
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "chromat_reference.h"
#include "gtest/gtest.h"
#include "test_util.h"

namespace {

using testutil::MakeDir;
using testutil::ReadFile;
using testutil::RunResult;
using Args = std::vector<std::string>;
using Paths = std::vector<std::string>;

// A temporary directory holding edit_dir/ and, below `tree`, the three output directories.
class Project {
 public:
  explicit Project(const std::string& tree = "") {
    MakeDir(temp_ / "edit_dir");
    if (!tree.empty() && tree.back() == '/') MakeDir(temp_ / tree);
    for (const char* dir : {"chromat_dir", "phd_dir", "poly_dir"}) MakeDir(temp_ / (tree + dir));
  }
  std::string operator/(const std::string& name) const { return temp_ / name; }

  // Runs in `dir` below the root with PWD naming it as a shell would, unless `env` overrides it,
  // and notes the clock's seconds at the start and the end.
  RunResult Run(const std::string& dir, const Args& args, Args env = {}) {
    const std::string where = dir.empty() ? temp_.path() : temp_ / dir;
    env.insert(env.begin(), "PWD=" + where);
    started = time(nullptr);
    RunResult result = testutil::Run(testutil::Binary(), args, where, env);
    ended = time(nullptr);
    return result;
  }
  time_t started = 0, ended = 0;

  // Every file below the root that is not a directory, by relative path, sorted.
  Paths Files() const {
    namespace fs = std::filesystem;
    Paths files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(
             temp_.path(), fs::directory_options::skip_permission_denied))
      if (!entry.is_directory()) files.push_back(entry.path().lexically_relative(temp_.path()));
    std::sort(files.begin(), files.end());
    return files;
  }

  // Removes the directory (mode 0) or gives it the permission bits `mode`.
  void Spoil(const std::string& dir, unsigned mode) const {
    if (mode == 0)
      rmdir((temp_ / dir).c_str());
    else
      chmod((temp_ / dir).c_str(), mode);
  }

 private:
  testutil::TempDir temp_;
};

// The phd file with its TIME value masked. The value must be the local time of a second during
// the run, as ctime writes it but without the newline.
std::string ReadPhd(const std::string& path, const Project& project) {
  std::string phd = ReadFile(path);
  size_t start = phd.find("\nTIME: ");
  if (start == std::string::npos) return phd;  // and so differs from what is expected
  start += 7;
  const size_t end = phd.find('\n', start);
  bool during = false;
  for (time_t t = project.started; t <= project.ended; ++t)
    if (phd.compare(start, end - start, ctime(&t), 24) == 0) during = true;
  EXPECT_TRUE(during) << path << ": " << phd.substr(start, end - start);
  return phd.replace(start, end - start, "<time>");
}

struct Record {
  std::string name, clean;
};

std::string Phd(const std::string& name, const std::string& chromat, const std::string& clean,
                const std::string& quality) {
  std::string dna;
  for (size_t i = 0; i < clean.size(); ++i)
    dna += clean.substr(i, 1) + " " + quality + " " + std::to_string(12 * i + 12) + "\n";
  return "BEGIN_SEQUENCE " + name + "\n\nBEGIN_COMMENT\nCHROMAT_FILE: " + chromat +
         "\nABI_THUMBPRINT: 0\nPHRED_VERSION: synthCall\nCALL_METHOD: synthCall\n"
         "QUALITY_LEVELS: 99\nTIME: <time>\nTRACE_ARRAY_MIN_INDEX: 0\nTRACE_ARRAY_MAX_INDEX: " +
         std::to_string(12 * clean.size() + 11) +
         "\nCHEM: unknown\nDYE: unknown\nEND_COMMENT\n\nBEGIN_DNA\n" + dna +
         "END_DNA\nEND_SEQUENCE";
}

std::string Poly(const std::string& name, const std::string& clean) {
  const char* areas[] = {"60000 0 0 0", "0 60000 0 0", "0 0 60000 0", "0 0 0 60000", "0 0 0 0"};
  std::string poly = name + " 1 1 1 1 1\n";
  for (size_t i = 0; i < clean.size(); ++i)
    poly += clean.substr(i, 1) + " " + std::to_string(12 * i + 12) + " 300000 1 N  -1  -1 -1 " +
            areas[std::min<size_t>(std::string("ACGT").find(clean[i]), 4)] + "\n";
  return poly;
}

// How a run writes its files and where it puts them.
struct Layout {
  std::string quality = "59";
  bool abi = false;
  std::string tree = "";        // the project root below the temporary directory
  const char* shown = nullptr;  // the root as progress lines show it; nullptr: absolute
  std::string chromat = "chromat_dir/", phd = "phd_dir/";
  bool reference = false;  // no poly files
};

// Checks a finished run: streams, status, and every record's files, bytes and modes; no file but
// those and `files` may exist. A `blocked` file (a directory in the way) must be reported.
void ExpectRun(const Project& project, const RunResult& result, const Layout& at,
               const std::vector<Record>& records, Paths files, const std::string& blocked = "") {
  const std::string shown = at.shown ? at.shown : project / at.tree;
  std::string out;
  for (const Record& r : records) {
    const std::string chromat = r.name + (at.abi ? "" : ".scf");
    std::vector<std::pair<std::string, std::string>> written = {
        {at.chromat + chromat, chromat_reference::File(r.clean, at.abi)},
        {at.phd + r.name + ".phd.1", Phd(r.name, chromat, r.clean, at.quality)}};
    if (!at.reference) written.push_back({"poly_dir/" + r.name + ".poly", Poly(r.name, r.clean)});
    for (size_t k = 0; k < written.size(); ++k) {
      const std::string& path = written[k].first;
      out += (k == 0 ? "\nWriting chromat file " : "Writing ") + shown + path + "\n";
      if (path == blocked) continue;
      const std::string file = project / (at.tree + path);
      EXPECT_EQ(k == 1 ? ReadPhd(file, project) : ReadFile(file), written[k].second) << path;
      EXPECT_EQ(testutil::FileMode(file), 0664u) << path;
      files.push_back(at.tree + path);
    }
  }
  EXPECT_EQ(result.out, out + "\n");
  EXPECT_EQ(result.err,
            blocked.empty() ? "" : "\nERROR: can not write file " + shown + blocked + "\n");
  EXPECT_EQ(result.status, 0);
  std::sort(files.begin(), files.end());
  EXPECT_EQ(project.Files(), files);
}

const char kReads[] = ">s1 first read\nacgtn\nACGT\n>s2\nGGNNt\n";
const std::vector<Record> kRecords = {{"s1", "ACGTNACGT"}, {"s2", "GGNNT"}};

// The root is PWD less a trailing "edit_dir/", matched on the bare ending; without PWD the
// directories are relative to the working directory. chromat_dir/ and phd_dir/ fall back to the
// root unless their owner may read and write them; poly_dir/ need only be readable. A file that
// cannot be written (a directory is in its way) is reported, and the run goes on.
TEST(EndToEnd, OutputDirectories) {
  struct Case {
    const char* runIn;
    const char* tree;
    const char* pwd;    // nullptr: as a shell sets it
    const char* shown;  // nullptr: the absolute root
    std::string spoiled = "";
    unsigned mode = 0;  // 0: the spoiled directory is missing
    std::string blocked = "";
  };
  std::vector<Case> cases = {
      {"edit_dir", "", nullptr, nullptr},
      {"", "", nullptr, nullptr},
      {"EDIT_DIR", "EDIT_DIR/", nullptr, nullptr},
      {"old_edit_dir", "old_", nullptr, nullptr},
      {"", "", "PWD", ""},
      {"edit_dir", "edit_dir/edit_dir/", "PWD=edit_dir", "edit_dir/"},  // too short to shorten
      {"edit_dir", "", nullptr, nullptr, "poly_dir", 0555},
  };
  for (const char* dir : {"chromat_dir", "phd_dir"})
    for (unsigned mode : {0, 0555, 0333})
      cases.push_back({"edit_dir", "", nullptr, nullptr, dir, mode});
  for (const char* blocked : {"phd_dir/s1.phd.1", "chromat_dir/s2.scf", "poly_dir/s1.poly"})
    cases.push_back({"edit_dir", "", nullptr, nullptr, "", 0, blocked});
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.runIn) + " " + c.tree + " " + c.spoiled + " " + c.blocked);
    Project project(c.tree);
    MakeDir(project / c.runIn);
    if (!c.spoiled.empty()) project.Spoil(c.spoiled, c.mode);
    if (!c.blocked.empty()) MakeDir(project / c.blocked);
    const std::string input = *c.runIn == '\0' ? "reads.fa" : c.runIn + std::string("/reads.fa");
    testutil::WriteFile(project / input, kReads);
    Layout at{"59", false, c.tree, c.shown};
    if (c.spoiled == "chromat_dir") at.chromat = "";
    if (c.spoiled == "phd_dir") at.phd = "";
    RunResult result = project.Run(c.runIn, {"reads.fa"}, c.pwd ? Args{c.pwd} : Args{});
    ExpectRun(project, result, at, kRecords, {input}, c.blocked);
  }
}

// The options as the files show them: a reference set of the first record alone, the chromat
// form, and the quality text as typed once its leading integer is in range.
TEST(EndToEnd, AcceptedOptions) {
  struct Case {
    Args options;
    Layout at;
    const char* reference;  // the name of the one reference record; empty: all records
  };
  std::vector<Case> cases = {
      {{"-r"}, {"59"}, "s1.REF"},
      {{"-r", "_ref", "-abi"}, {"59", true}, "s1_ref"},
      {{"-abi", "-r", "-q", "07"}, {"07", true}, "s1.REF"},  // the option after -r is read again
      {{"-r", "X", "-r"}, {"59"}, "s1X"},
      {{"-r", "X", "-r", "Y"}, {"59"}, "s1Y"},
      {{"-q", "20", "-q", "30"}, {"30"}, ""},
      // Arguments are joined before they are split into tokens.
      {{"-q 20"}, {"20"}, ""},
      {{"", " -abi\t", "-q\n7"}, {"7", true}, ""},
  };
  for (const char* quality : {"0", "59", "07", "5.9", "1e3", "+7", ".5", "-0", "59.99"})
    cases.push_back({{"-q", quality}, {quality}, ""});
  Args many(400, "-abi");  // a joined text far beyond its first 1024 characters of room
  many.insert(many.end(), {"-q", "33"});
  cases.push_back({many, {"33", true}, ""});
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.options).substr(0, 80));
    Project project;
    testutil::WriteFile(project / "edit_dir/reads.fa", kReads);
    Args args = {"reads.fa"};
    args.insert(args.end(), c.options.begin(), c.options.end());
    Layout at = c.at;
    at.reference = *c.reference != '\0';
    const std::vector<Record> records =
        at.reference ? std::vector<Record>{{c.reference, "ACGTNACGT"}} : kRecords;
    ExpectRun(project, project.Run("edit_dir", args), at, records, {"edit_dir/reads.fa"});
  }
}

// Lines are read in blocks of 1024 bytes, and a last line without a newline is lost; the last
// record's files outgrow the output buffer.
TEST(EndToEnd, InputLinesAndRecords) {
  struct Case {
    std::string input;
    std::vector<Record> records;
  };
  const std::string t1020(1020, 'T'), c1017(1017, 'C');
  const Case cases[] = {
      // CRLF, blank lines, text before the first header, a last line without newline.
      {"NNNN\r\n\r\n  >s1 description here\r\nac gt\r\n\r\n   \r\nnn\r\n>s2\tx\nACGT",
       {{"s1", "NNNNACGTNN"}, {"s2", ""}}},
      // Any letter is kept; names after '>' and blanks or before a tab, an empty name, a last
      // header without newline.
      {"> s3\nA-C*G 1x\n>s4\tmore\n\n\nC\n>\nTT\n>s5", {{"s3", "ACGX"}, {"s4", "C"}, {"", "TT"}}},
      {"ACGT\nACGT\n", {}},  // no header
      {"", {}},
      {">l\n" + std::string(5000, 'g') + "\nA\n", {{"l", std::string(5000, 'G') + "A"}}},
      {">b\n" + t1020 + "\n", {{"b", t1020}}},                       // exactly one read block
      {">c\nACGT\n" + std::string(1016, 'A'), {{"c", "ACGT"}}},      // its last line unfinished
      {">a\n" + c1017 + "\n>dd\nG\n", {{"a", c1017}, {"dd", "G"}}},  // a header across blocks
      {">big\n" + std::string(30000, 't') + "\n", {{"big", std::string(30000, 'T')}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.input.substr(0, 20));
    Project project;
    testutil::WriteFile(project / "edit_dir/in.fa", c.input);
    ExpectRun(project, project.Run("edit_dir", {"in.fa"}), Layout(), c.records, {"edit_dir/in.fa"});
  }
}

// An input that cannot be opened is reported (the first argument is the file name whatever it
// looks like); a poly_dir/ that is missing or unreadable aborts the run before that, silently.
// Without PWD, edit_dir/ itself is the root, and it holds no poly_dir/.
TEST(EndToEnd, RunsThatWriteNoFile) {
  struct rlimit noCore = {0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  struct Case {
    Args args;
    unsigned polyMode = 0777;  // 0: missing
    Args env = {};
  };
  std::vector<Case> cases = {{{"reads.fa"}, 0},
                             {{"reads.fa"}, 0333},
                             {{"missing.fa"}, 0},
                             {{"reads.fa", "-r", "-abi"}, 0},
                             {{"reads.fa"}, 0777, {"PWD"}}};
  for (const char* name : {"missing.fa", "folder", ".", "-q", "-abi", "-r", "-H"})
    cases.push_back({{name}});
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args[0] + " " + std::to_string(c.polyMode));
    Project project;
    project.Spoil("poly_dir", c.polyMode);
    MakeDir(project / "edit_dir/folder");
    testutil::WriteFile(project / "edit_dir/reads.fa", kReads);
    RunResult result = project.Run("edit_dir", c.args, c.env);
    EXPECT_EQ(result.out, "");
    if (c.polyMode == 0777 && c.env.empty()) {
      EXPECT_EQ(result.err, "\nERROR: can not open file " + c.args[0] + "\n");
      EXPECT_EQ(result.status, 0);
    } else {
      EXPECT_EQ(result.signal, SIGABRT);
      EXPECT_EQ(result.err.find("ERROR"), std::string::npos) << result.err;
    }
    EXPECT_EQ(project.Files(), Paths{"edit_dir/reads.fa"});
  }
}

}  // namespace
