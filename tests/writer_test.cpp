#include "app/writer.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "chromat_reference.h"
#include "gtest/gtest.h"
#include "test_util.h"
#include "toolkit/ctime.h"

namespace {

using testutil::Exists;
using testutil::MakeDir;
using testutil::ReadFile;

// A project tree in a temporary directory. While it lives, PWD names its edit_dir/ (or what
// SetPwd chose); the old value comes back afterwards.
class Project {
 public:
  Project() {
    const char* old = getenv("PWD");
    if (old != nullptr) oldPwd_ = old;
    hadPwd_ = old != nullptr;
    for (const char* dir : {"edit_dir", "chromat_dir", "phd_dir", "poly_dir"}) MakeDir(temp_ / dir);
    SetPwd(temp_ / "edit_dir");
  }
  ~Project() {
    if (hadPwd_)
      setenv("PWD", oldPwd_.c_str(), 1);
    else
      unsetenv("PWD");
  }
  void SetPwd(const std::string& value) { setenv("PWD", value.c_str(), 1); }
  std::string Root() const { return temp_.path() + "/"; }
  std::string operator/(const std::string& name) const { return temp_ / name; }

 private:
  testutil::TempDir temp_;
  bool hadPwd_;
  std::string oldPwd_;
};

// Removes the directory (mode 0) or gives it the permission bits `mode`.
void Spoil(const std::string& dir, unsigned mode) {
  if (mode == 0)
    rmdir(dir.c_str());
  else
    chmod(dir.c_str(), mode);
}

struct Options {
  const char* quality = "59";
  const char* suffix = "";
  bool reference = false;
  bool abi = false;
};

// One Writer, set up once, writing the records in order; returns its standard output.
std::string Write(const std::vector<std::pair<std::string, std::string>>& records,
                  const Options& options = Options(), std::string* errors = nullptr) {
  std::ostringstream out, err;
  Writer writer(out, err);
  writer.SetFiles(options.quality, options.suffix, options.reference, options.abi);
  for (const auto& record : records) {
    Str name(record.first.c_str());
    writer.WriteFiles(name, record.second.c_str());
  }
  if (errors != nullptr) *errors = err.str();
  EXPECT_TRUE(errors != nullptr || err.str().empty()) << err.str();
  return out.str();
}

const std::regex kCtimeText(
    "(Sun|Mon|Tue|Wed|Thu|Fri|Sat) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
    "[ 123][0-9] [012][0-9]:[0-5][0-9]:[0-6][0-9] [0-9]{4}");

// The phd file with the value of its TIME line replaced by "<time>" and stored in `time`.
std::string ReadPhd(const std::string& path, std::string* time = nullptr) {
  std::string phd = ReadFile(path);
  size_t start = phd.find("\nTIME: ");
  if (start == std::string::npos) return phd;
  start += 7;
  size_t end = phd.find('\n', start);
  std::string value = phd.substr(start, end - start);
  EXPECT_TRUE(std::regex_match(value, kCtimeText)) << path << ": " << value;
  if (time != nullptr) *time = value;
  return phd.replace(start, end - start, "<time>");
}

std::string Phd(const std::string& name, const std::string& chromat, const std::string& max,
                const std::string& dna) {
  return "BEGIN_SEQUENCE " + name + "\n\nBEGIN_COMMENT\nCHROMAT_FILE: " + chromat +
         "\nABI_THUMBPRINT: 0\nPHRED_VERSION: synthCall\nCALL_METHOD: synthCall\n"
         "QUALITY_LEVELS: 99\nTIME: <time>\nTRACE_ARRAY_MIN_INDEX: 0\nTRACE_ARRAY_MAX_INDEX: " +
         max + "\nCHEM: unknown\nDYE: unknown\nEND_COMMENT\n\nBEGIN_DNA\n" + dna +
         "END_DNA\nEND_SEQUENCE";
}

// The progress lines of one record in SCF form; the directory names follow `prefix`.
std::string Announced(const std::string& prefix, const std::string& name) {
  return "\nWriting chromat file " + prefix + "chromat_dir/" + name + ".scf\nWriting " + prefix +
         "phd_dir/" + name + ".phd.1\nWriting " + prefix + "poly_dir/" + name + ".poly\n";
}

constexpr char kPolyA[] = " 300000 1 N  -1  -1 -1 60000 0 0 0\n";
constexpr char kPolyC[] = " 300000 1 N  -1  -1 -1 0 60000 0 0\n";
constexpr char kPolyG[] = " 300000 1 N  -1  -1 -1 0 0 60000 0\n";
constexpr char kPolyT[] = " 300000 1 N  -1  -1 -1 0 0 0 60000\n";
constexpr char kPolyOther[] = " 300000 1 N  -1  -1 -1 0 0 0 0\n";

TEST(Writer, PhdAndPolyGoldenBytes) {
  struct Case {
    const char* sequence;
    const char* clean;
    const char* maxIndex;
    std::string dna;
    std::string poly;
  };
  const Case cases[] = {
      {"", "", "11", "", ""},
      {"A", "A", "23", "A 59 12\n", std::string("A 12") + kPolyA},
      {"AC", "AC", "35", "A 59 12\nC 59 24\n", std::string("A 12") + kPolyA + "C 24" + kPolyC},
      {"ANA", "ANA", "47", "A 59 12\nN 59 24\nA 59 36\n",
       std::string("A 12") + kPolyA + "N 24" + kPolyOther + "A 36" + kPolyA},
      {"ACGT", "ACGT", "59", "A 59 12\nC 59 24\nG 59 36\nT 59 48\n",
       std::string("A 12") + kPolyA + "C 24" + kPolyC + "G 36" + kPolyG + "T 48" + kPolyT},
      {"acgt", "ACGT", "59", "A 59 12\nC 59 24\nG 59 36\nT 59 48\n",
       std::string("A 12") + kPolyA + "C 24" + kPolyC + "G 36" + kPolyG + "T 48" + kPolyT},
      // Every letter is kept, every other character dropped before positions are counted.
      {"a-c*\r g1x", "ACGX", "59", "A 59 12\nC 59 24\nG 59 36\nX 59 48\n",
       std::string("A 12") + kPolyA + "C 24" + kPolyC + "G 36" + kPolyG + "X 48" + kPolyOther},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.sequence);
    Project project;
    Write({{"s1", c.sequence}});
    EXPECT_EQ(ReadPhd(project / "phd_dir/s1.phd.1"), Phd("s1", "s1.scf", c.maxIndex, c.dna));
    EXPECT_EQ(ReadFile(project / "poly_dir/s1.poly"), "s1 1 1 1 1 1\n" + c.poly);
    EXPECT_EQ(ReadFile(project / "chromat_dir/s1.scf"), ReferenceScf(c.clean));
  }
}

TEST(Writer, QualityTextIsWrittenAsTyped) {
  for (const char* quality : {"07", "5.9", "+7"}) {
    Project project;
    Options options;
    options.quality = quality;
    Write({{"q", "AG"}}, options);
    const std::string q = quality;
    EXPECT_EQ(ReadPhd(project / "phd_dir/q.phd.1"),
              Phd("q", "q.scf", "35", "A " + q + " 12\nG " + q + " 24\n"));
  }
}

TEST(Writer, ReferenceSuffixRenamesFilesAndSkipsPoly) {
  struct Case {
    const char* suffix;
    bool abi;
    const char* name;
    const char* chromat;
  };
  for (const Case& c :
       {Case{".REF", true, "s1.REF", "s1.REF"}, Case{".REF", false, "s1.REF", "s1.REF.scf"},
        Case{"_ref", false, "s1_ref", "s1_ref.scf"}}) {
    SCOPED_TRACE(c.chromat);
    Project project;
    std::ostringstream out, err;
    Writer writer(out, err);
    writer.SetFiles("59", c.suffix, true, c.abi);
    Str name("s1");
    writer.WriteFiles(name, "ACN");
    EXPECT_STREQ(name.String(), c.name);  // the caller's name carries the suffix
    const std::string root = project.Root(), full = c.name;
    EXPECT_EQ(out.str(), "\nWriting chromat file " + root + "chromat_dir/" + c.chromat +
                             "\nWriting " + root + "phd_dir/" + full + ".phd.1\n");
    EXPECT_EQ(ReadPhd(project / ("phd_dir/" + full + ".phd.1")),
              Phd(full, c.chromat, "47", "A 59 12\nC 59 24\nN 59 36\n"));
    EXPECT_EQ(ReadFile(project / (std::string("chromat_dir/") + c.chromat)),
              c.abi ? ReferenceAbif("ACN") : ReferenceScf("ACN"));
    EXPECT_FALSE(Exists(project / ("poly_dir/" + full + ".poly")));
    EXPECT_FALSE(Exists(project / "poly_dir/s1.poly"));
  }
}

TEST(Writer, AbifChromatIsNamedWithoutExtension) {
  Project project;
  Options abi;
  abi.abi = true;
  const std::string root = project.Root();
  EXPECT_EQ(Write({{"c", "T"}}, abi), "\nWriting chromat file " + root + "chromat_dir/c\nWriting " +
                                          root + "phd_dir/c.phd.1\nWriting " + root +
                                          "poly_dir/c.poly\n");
  EXPECT_EQ(ReadFile(project / "chromat_dir/c"), ReferenceAbif("T"));
  EXPECT_EQ(ReadPhd(project / "phd_dir/c.phd.1"), Phd("c", "c", "23", "T 59 12\n"));
}

TEST(Writer, TimeLineHoldsTheClockOfTheRecord) {
  Project project;
  std::string before = CTime().GetCTime().String();
  EXPECT_EQ(Write({{"a", "A"}, {"b", ""}}),
            Announced(project.Root(), "a") + Announced(project.Root(), "b"));
  std::string after = CTime().GetCTime().String(), time;
  ReadPhd(project / "phd_dir/a.phd.1", &time);
  EXPECT_TRUE(time == before || time == after) << before << " / " << time << " / " << after;
}

// Only the owner's permission bits decide, whoever runs the test.
TEST(Writer, UnusableDirectories) {
  struct Case {
    const char* dir;
    unsigned mode;  // 0: missing
  };
  for (const Case& c :
       {Case{"chromat_dir", 0}, Case{"chromat_dir", 0555}, Case{"chromat_dir", 0333},
        Case{"phd_dir", 0}, Case{"phd_dir", 0555}, Case{"phd_dir", 0333}}) {
    SCOPED_TRACE(std::string(c.dir) + " " + std::to_string(c.mode));
    Project project;
    Spoil(project / c.dir, c.mode);
    const bool chromat = std::string(c.dir) == "chromat_dir";
    const std::string root = project.Root();
    const std::string scf = root + (chromat ? "" : "chromat_dir/") + "s.scf";
    const std::string phd = root + (chromat ? "phd_dir/" : "") + "s.phd.1";
    EXPECT_EQ(Write({{"s", "G"}}), "\nWriting chromat file " + scf + "\nWriting " + phd +
                                       "\nWriting " + root + "poly_dir/s.poly\n");
    EXPECT_EQ(ReadFile(scf), ReferenceScf("G"));
    EXPECT_EQ(ReadPhd(phd), Phd("s", "s.scf", "23", "G 59 12\n"));  // the bare file name
  }
  // poly_dir/ must be readable, in reference mode too, and need not be writable.
  for (unsigned mode : {0u, 0333u}) {
    for (bool reference : {false, true}) {
      Project project;
      Spoil(project / "poly_dir", mode);
      Writer writer;
      int thrown = 0;
      try {
        writer.SetFiles("59", reference ? ".REF" : "", reference, false);
      } catch (int value) {
        thrown = value;
      }
      EXPECT_EQ(thrown, 1) << mode << reference;
    }
  }
  Project project;
  chmod((project / "poly_dir").c_str(), 0555);
  Write({{"r", "C"}});
  EXPECT_EQ(ReadFile(project / "poly_dir/r.poly"), std::string("r 1 1 1 1 1\nC 12") + kPolyC);
}

TEST(Writer, TrailingEditDirNamesTheProjectRoot) {
  struct Case {
    const char* pwd;     // below the temporary directory
    const char* prefix;  // what the directory names follow
  };
  for (const Case& c : {Case{"edit_dir", ""}, Case{"edit_dir/", ""}, Case{"", ""},
                        Case{"EDIT_DIR", "EDIT_DIR/"}, Case{"old_edit_dir", "old_"}}) {
    SCOPED_TRACE(c.pwd);
    Project project;
    MakeDir(project / c.pwd);
    const std::string prefix = project.Root() + c.prefix;
    for (const char* dir : {"chromat_dir", "phd_dir", "poly_dir"}) MakeDir(prefix + dir);
    project.SetPwd(project / c.pwd);
    EXPECT_EQ(Write({{"e", ""}}), Announced(prefix, "e"));
    EXPECT_TRUE(Exists(prefix + "poly_dir/e.poly"));
  }
  // Exactly "edit_dir/" is too short to be shortened; it is relative to the working directory.
  Project project;
  for (const char* dir : {"edit_dir/edit_dir", "edit_dir/edit_dir/chromat_dir",
                          "edit_dir/edit_dir/phd_dir", "edit_dir/edit_dir/poly_dir"})
    MakeDir(project / dir);
  std::vector<char> saved(4096);
  ASSERT_NE(getcwd(saved.data(), saved.size()), nullptr);
  ASSERT_EQ(chdir((project / "edit_dir").c_str()), 0);
  project.SetPwd("edit_dir");
  std::string out = Write({{"e", "A"}});
  ASSERT_EQ(chdir(saved.data()), 0);
  EXPECT_EQ(out, Announced("edit_dir/", "e"));
  EXPECT_TRUE(Exists(project / "edit_dir/edit_dir/poly_dir/e.poly"));
}

TEST(Writer, LongRecordCrossesTheFileBuffer) {
  Project project;
  std::string sequence, clean, dna, poly = "long 1 1 1 1 1\n";
  const char* tails[] = {kPolyA, kPolyC, kPolyG, kPolyT, kPolyOther};
  for (int i = 0; i < 40000; ++i) {
    const int kind = (i * 7 + i / 3) % 5;
    const char base = "ACGTN"[kind];
    sequence += i % 61 == 60 ? '\n' : static_cast<char>(i % 2 ? base : std::tolower(base));
    if (i % 61 == 60) continue;
    clean += base;
    const std::string position = std::to_string(12 * clean.size());
    dna += std::string(1, base) + " 59 " + position + "\n";
    poly += std::string(1, base) + " " + position + tails[kind];
  }
  ASSERT_GT(dna.size(), static_cast<size_t>(Writer::kBufferSize));
  Write({{"long", sequence}});
  EXPECT_EQ(ReadPhd(project / "phd_dir/long.phd.1"),
            Phd("long", "long.scf", std::to_string(12 * clean.size() + 11), dna));
  EXPECT_EQ(ReadFile(project / "poly_dir/long.poly"), poly);
  EXPECT_EQ(ReadFile(project / "chromat_dir/long.scf"), ReferenceScf(clean));
}

TEST(Writer, FileThatCannotBeWrittenIsReported) {
  Project project;
  MakeDir(project / "phd_dir/x.phd.1");
  std::string err;
  EXPECT_EQ(Write({{"x", "AT"}, {"y", "A"}}, Options(), &err),
            Announced(project.Root(), "x") + Announced(project.Root(), "y"));
  EXPECT_EQ(err, "\nERROR: can not write file " + project.Root() + "phd_dir/x.phd.1\n");
  EXPECT_EQ(ReadFile(project / "poly_dir/x.poly"),
            std::string("x 1 1 1 1 1\nA 12") + kPolyA + "T 24" + kPolyT);
  EXPECT_EQ(ReadPhd(project / "phd_dir/y.phd.1"), Phd("y", "y.scf", "23", "A 59 12\n"));
}

}  // namespace
