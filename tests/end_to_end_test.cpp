// The built program on real project trees, started as a shell would (PWD names the directory it
// runs in, the umask is 002), on ordinary and hostile inputs, trees and command lines. Standard
// output and error, the status, every file's bytes (TIME masked) and mode are compared, and no
// other file may appear.
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <map>
#include <set>
#include <tuple>

#include "test_util.h"

namespace {

using Args = std::vector<std::string>;
using Files = std::set<std::string>;

struct RunResult {
  std::string out, err;
  int status = -1;  // exit code, or -1 when killed by a signal
  int signal = 0;   // the signal that ended the process, if any
};

std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

// A temporary directory holding edit_dir/ and, below `tree`, the three output directories. Run
// starts the program in `dir` with PWD naming it, the umask 002 and no core dumps, with the test's
// environment but each "NAME=value" of `env` set and each bare "NAME" removed, and notes the
// clock's seconds at the start and the end. A shell starts the program with exec, so that its
// status is the program's own; the streams go into files rather than pipes, so that the program
// never waits for the test.
struct Project : TempDir {
  explicit Project(const std::string& tree = "") {
    MakeDir(*this / "edit_dir");
    if (!tree.empty() && tree.back() == '/') MakeDir(*this / tree);
    for (const char* dir : {"chromat_dir", "phd_dir", "poly_dir"}) MakeDir(*this / (tree + dir));
  }
  RunResult Run(const std::string& dir, const Args& args, const Args& env = {}) {
    const TempDir capture;
    std::string command = "cd " + Quoted(*this / dir) +
                          " && umask 002 && ulimit -c 0; export PWD=" + Quoted(*this / dir);
    for (const std::string& e : env)
      command += (e.find('=') == e.npos ? "; unset " : "; export ") + Quoted(e);
    command += "; exec " + Quoted(SYNTHCALL_BINARY);
    for (const std::string& a : args) command += " " + Quoted(a);
    command += " </dev/null >" + Quoted(capture / "out") + " 2>" + Quoted(capture / "err");
    started = time(nullptr);
    const int status = std::system(command.c_str());
    ended = time(nullptr);
    RunResult result{ReadFile(capture / "out"), ReadFile(capture / "err")};
    if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
    return result;
  }
  Files All() const {  // every entry that is not a directory, by relative path
    Files files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(
             path, std::filesystem::directory_options::skip_permission_denied))
      if (!entry.is_directory()) files.insert(entry.path().lexically_relative(path));
    return files;
  }
  time_t started = 0, ended = 0;
};

struct Record {
  std::string name, clean;
};

std::string Phd(const Record& r, const std::string& chromat, const std::string& quality) {
  std::string dna;
  for (size_t i = 0; i < r.clean.size(); ++i)
    dna += r.clean.substr(i, 1) + " " + quality + " " + std::to_string(12 * i + 12) + "\n";
  return "BEGIN_SEQUENCE " + r.name + "\n\nBEGIN_COMMENT\nCHROMAT_FILE: " + chromat +
         "\nABI_THUMBPRINT: 0\nPHRED_VERSION: synthCall\nCALL_METHOD: synthCall\nQUALITY_LEVELS: "
         "99\nTIME: <time>\nTRACE_ARRAY_MIN_INDEX: 0\nTRACE_ARRAY_MAX_INDEX: " +
         std::to_string(12 * r.clean.size() + 11) +
         "\nCHEM: unknown\nDYE: unknown\nEND_COMMENT\n\nBEGIN_DNA\n" + dna +
         "END_DNA\nEND_SEQUENCE";
}

std::string Poly(const Record& r) {
  const char* areas[] = {"60000 0 0 0", "0 60000 0 0", "0 0 60000 0", "0 0 0 60000", "0 0 0 0"};
  std::string poly = r.name + " 1 1 1 1 1\n";
  for (size_t i = 0; i < r.clean.size(); ++i)
    poly += r.clean.substr(i, 1) + " " + std::to_string(12 * i + 12) + " 300000 1 N  -1  -1 -1 " +
            areas[std::min<size_t>(std::string("ACGT").find(r.clean[i]), 4)] + "\n";
  return poly;
}

// How a run writes its files and where it puts them.
struct Layout {
  std::string quality = "59";
  bool abi = false;
  bool reference = false;       // no poly files
  std::string tree = "";        // the project root below the temporary directory
  const char* shown = nullptr;  // the root as progress lines show it; nullptr: absolute
  std::string chromat = "chromat_dir/", phd = "phd_dir/";
};

// Checks a finished run: streams, status, and every record's files, bytes and modes; no file but
// those and `files` may exist. The `refused` files, and those whose names pass the file system's
// 255 bytes, must be reported instead. A later record of the same name replaces the files. The
// phd file's TIME must be the local time of a second during the run, as ctime writes it.
void ExpectRun(const Project& project, const RunResult& result, const Layout& at,
               const std::vector<Record>& records, Files files, const Files& refused = {}) {
  const std::string shown = at.shown ? at.shown : project / at.tree;
  std::string out, err;
  std::map<std::string, std::string> written;
  for (const Record& r : records) {
    const std::string chromat = r.name + (at.abi ? "" : ".scf");
    const std::pair<std::string, std::string> record[] = {
        {at.chromat + chromat, ModelChromat(r.clean, at.abi)},
        {at.phd + r.name + ".phd.1", Phd(r, chromat, at.quality)},
        {"poly_dir/" + r.name + ".poly", Poly(r)}};
    for (int k = 0; k < (at.reference ? 2 : 3); ++k) {
      const std::string& path = record[k].first;
      out += (k == 0 ? "\nWriting chromat file " : "Writing ") + shown + path + "\n";
      if (refused.count(path) || path.size() - path.rfind('/') > 256)
        err += "\nERROR: can not write file " + shown + path + "\n";
      else
        written[at.tree + path] = record[k].second;
    }
  }
  for (const auto& [path, bytes] : written) {
    std::string file = ReadFile(project / path);
    if (path.find(".phd.1") != std::string::npos) {
      const size_t time = file.find("\nTIME: ") + 7, end = file.find('\n', time);
      bool during = false;
      for (time_t t = project.started; !during && t <= project.ended; ++t)
        during = file.compare(time, end - time, ctime(&t), 24) == 0;
      EXPECT_TRUE(during) << path;
      file.replace(time, end - time, "<time>");
    }
    EXPECT_EQ(file, bytes) << path;
    EXPECT_EQ(FileMode(project / path), 0664) << path;
    files.insert(path);
  }
  EXPECT_EQ(result.out, out + "\n");
  EXPECT_EQ(result.err, err);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(project.All(), files);
}

const char kReads[] = ">s1 first read\nacgtn\nACGT\n>s2\nGGNNt\n";
const std::vector<Record> kRecords = {{"s1", "ACGTNACGT"}, {"s2", "GGNNT"}};

}  // namespace

// The root is PWD less a trailing "edit_dir/", matched on the bare ending; without PWD the
// directories are relative to the working directory. chromat_dir/ and phd_dir/ fall back to the
// root unless their owner may read and write them; poly_dir/ need only be readable.
TEST(EndToEnd, OutputDirectories) {
  // Where it runs, the tree, PWD (nullptr: as a shell sets it), the root as progress lines show
  // it (nullptr: absolute), and a directory spoiled by its mode (0: missing).
  struct Case {
    const char *runIn, *tree, *pwd, *shown;
    std::string spoiled = "";
    unsigned mode = 0;
  };
  // clang-format off
  std::vector<Case> cases = {
      {"edit_dir/", "", nullptr, nullptr}, {"", "", nullptr, nullptr},
      {"EDIT_DIR/", "EDIT_DIR/", nullptr, nullptr}, {"old_edit_dir/", "old_", nullptr, nullptr},
      {"", "", "PWD", ""}, {"edit_dir/", "edit_dir/edit_dir/", "PWD=edit_dir", "edit_dir/"},
      {"edit_dir/", "", nullptr, nullptr, "poly_dir", 0555}};
  // clang-format on
  for (const char* dir : {"chromat_dir", "phd_dir"})
    for (unsigned mode : {0, 0555, 0333})
      cases.push_back({"edit_dir/", "", nullptr, nullptr, dir, mode});
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string("in ") + c.runIn + ", tree " + c.tree + ", spoiled " + c.spoiled);
    Project project(c.tree);
    MakeDir(project / c.runIn);
    if (!c.spoiled.empty() && c.mode == 0) rmdir((project / c.spoiled).c_str());
    if (!c.spoiled.empty()) chmod((project / c.spoiled).c_str(), c.mode);
    WriteFile(project / c.runIn + "reads.fa", kReads);
    Layout at{"59", false, false, c.tree, c.shown};
    if (c.spoiled == "chromat_dir") at.chromat = "";
    if (c.spoiled == "phd_dir") at.phd = "";
    const RunResult result = project.Run(c.runIn, {"reads.fa"}, c.pwd ? Args{c.pwd} : Args{});
    ExpectRun(project, result, at, kRecords, {c.runIn + std::string("reads.fa")});
  }
}

// A file that cannot be written (a directory is in its way, or a link to a full device takes the
// bytes) is reported, and the run goes on; the ABIF file has no extension of its own.
TEST(EndToEnd, FilesThatCannotBeWritten) {
  for (const bool abi : {false, true}) {
    const std::string dir = abi ? "chromat_dir/s1" : "phd_dir/s2.phd.1",
                      full = abi ? "chromat_dir/s2" : "phd_dir/s1.phd.1";
    Project project;
    MakeDir(project / dir);
    MakeDir(project / "poly_dir/s1.poly");
    ASSERT_EQ(symlink("/dev/full", (project / full).c_str()), 0);
    WriteFile(project / "edit_dir/reads.fa", kReads);
    const RunResult result =
        project.Run("edit_dir", abi ? Args{"reads.fa", "-abi"} : Args{"reads.fa"});
    ExpectRun(project, result, Layout{"59", abi}, kRecords, {"edit_dir/reads.fa", full},
              {dir, full, "poly_dir/s1.poly"});
  }
}

// The options as the files show them: a reference set of the first record alone (an option after
// -r is read again as one), the chromat form, and the quality text as typed once its leading
// integer is in range; arguments are joined before they are split into tokens. A line of white
// space is blank, text before the first header begins its sequence, and a last line without a
// newline is lost. Whatever the bytes, a name ends at white space or NUL, a sequence keeps only its
// letters, a record whose name comes again replaces the files, and names too long for a file are
// reported.
TEST(EndToEnd, OptionsAndInputs) {
  std::string bytes, nuls("  >s\0x y\nAC\0GT\n>t\n\0\0a\n>\0\nC\n", 27);
  for (int c = 1; c < 256; ++c)
    if (c != '\n' && c != '/') bytes += static_cast<char>(c);
  const std::string upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  const std::string s300(300, 's');
  const std::string crlf = "\r\r\r\nNN\r\n\r\n  >s1 more\r\nac gt\r\n \r\nnn\r\n>s2\tx\nACGT\r\r";
  const std::string names = "> s3\nA-C*G 1x\n>s4\tmore\n\n\nC\n>\nTT\n>s5";
  Args many(400, "-abi");  // far beyond the 1024 characters the joined text has room for
  many.insert(many.end(), {"-q", "33"});
  const std::string s1 = kRecords[0].clean;
  // The input, the options after its name, how the files come out and the records they hold.
  std::vector<std::tuple<std::string, Args, Layout, std::vector<Record>>> cases = {
      {kReads, {"-r"}, {"59", false, true}, {{"s1.REF", s1}}},
      {kReads, {"-r", "_ref", "-abi"}, {"59", true, true}, {{"s1_ref", s1}}},
      {kReads, {"-abi", "-r", "-q", "07"}, {"07", true, true}, {{"s1.REF", s1}}},
      {kReads, {"-r", "X", "-r", "Y"}, {"59", false, true}, {{"s1Y", s1}}},
      {kReads, {"-r", s300}, {"59", false, true}, {{"s1" + s300, s1}}},
      {kReads, {"-q", "20", "-q", "30"}, {"30"}, kRecords},
      {kReads, {"", " -abi\t", "-q\n7"}, {"7", true}, kRecords},
      {kReads, many, {"33", true}, kRecords},
      {crlf, {}, {}, {{"s1", "NNACGTNN"}, {"s2", ""}}},
      {names, {}, {}, {{"s3", "ACGX"}, {"s4", "C"}, {"", "TT"}}},
      {">big\n" + std::string(3000, 't') + "\n", {}, {}, {{"big", std::string(3000, 'T')}}},
      {">all\n" + bytes + "\n", {}, {}, {{"all", upper + upper}}},
      {nuls, {}, {}, {{"s", "ACGT"}, {"t", "A"}, {"", "C"}}},
      {">r\nA\n>q\nG\n>r\nC\n>r\nT\n", {}, {}, {{"r", "A"}, {"q", "G"}, {"r", "C"}, {"r", "T"}}}};
  for (const std::string& q : Args{"0", "5.9", std::string(300, '0') + "42"})
    cases.push_back({kReads, {"-q", q}, {q}, kRecords});
  for (const auto& [input, options, at, records] : cases) {
    SCOPED_TRACE(::testing::PrintToString(options).substr(0, 60) + " on " + input.substr(0, 30));
    Project project;
    WriteFile(project / "edit_dir/in.fa", input);
    Args args = {"in.fa"};
    args.insert(args.end(), options.begin(), options.end());
    ExpectRun(project, project.Run("edit_dir", args), at, records, {"edit_dir/in.fa"});
  }
}

// An input that cannot be opened is reported (the first argument is the file name whatever it
// looks like); a poly_dir/ that is missing or unreadable aborts the run before that, silently.
// Without PWD, edit_dir/ itself is the root, and it holds no poly_dir/. The C++ runtime names the
// uncaught exception.
TEST(EndToEnd, RunsThatWriteNoFile) {
  const std::string kUncaught = "terminate called after throwing an instance of 'int'\n";
  // The arguments, poly_dir's mode (0: missing) and the environment.
  // clang-format off
  const std::tuple<Args, unsigned, Args> cases[] = {
      {{"reads.fa"}, 0, {}}, {{"reads.fa"}, 0333, {}}, {{"missing.fa"}, 0, {}},
      {{"reads.fa", "-r"}, 0, {}}, {{"reads.fa"}, 0777, {"PWD"}}, {{"missing.fa"}, 0777, {}},
      {{"folder"}, 0777, {}}, {{"/"}, 0777, {}}, {{"-q"}, 0777, {}}};
  // clang-format on
  for (const auto& [args, polyMode, env] : cases) {
    SCOPED_TRACE(args[0] + " with poly_dir mode " + std::to_string(polyMode));
    Project project;
    if (polyMode == 0) rmdir((project / "poly_dir").c_str());
    chmod((project / "poly_dir").c_str(), polyMode);
    MakeDir(project / "edit_dir/folder");
    WriteFile(project / "edit_dir/reads.fa", kReads);
    const RunResult result = project.Run("edit_dir", args, env);
    const bool aborted = polyMode != 0777 || !env.empty();
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, aborted ? kUncaught : "\nERROR: can not open file " + args[0] + "\n");
    EXPECT_EQ(result.signal, aborted ? SIGABRT : 0);
    EXPECT_EQ(result.status, aborted ? -1 : 0);
    EXPECT_EQ(project.All(), Files{"edit_dir/reads.fa"});
  }
}
