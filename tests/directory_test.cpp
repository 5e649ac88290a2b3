#include <dirent.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "test_util.h"
#include "toolkit/fileio.h"

namespace {

using testutil::MakeDir;
using testutil::TempDir;
using testutil::WriteFile;

// Sets or removes an environment variable for one scope and puts the old value back.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const char* value) : name_(name) {
    const char* old = getenv(name);
    hadValue_ = old != nullptr;
    if (hadValue_) old_ = old;
    if (value != nullptr) {
      setenv(name, value, 1);
    } else {
      unsetenv(name);
    }
  }
  ~ScopedVariable() {
    if (hadValue_) {
      setenv(name_, old_.c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }

 private:
  const char* name_;
  std::string old_;
  bool hadValue_;
};

std::vector<std::string> Names(StrList& list) {
  std::vector<std::string> names;
  list.Begin();
  while (Str* s = list.GetNext()) names.push_back(s->String());
  return names;
}

std::vector<std::string> DirNames(Directory& dir) {
  StrList list;
  dir.GetDirList(list);
  return Names(list);
}

std::vector<std::string> FileNames(Directory& dir) {
  StrList list;
  dir.GetFileList(list);
  return Names(list);
}

int OpenDescriptors() {
  int n = 0;
  DIR* fds = opendir("/proc/self/fd");
  while (readdir(fds) != nullptr) ++n;
  closedir(fds);
  return n;
}

// The name among `names` that readdir delivers last in `path`.
std::string LastDelivered(const std::string& path, const std::vector<std::string>& names) {
  std::string last;
  DIR* stream = opendir(path.c_str());
  while (const dirent* entry = readdir(stream)) {
    for (const std::string& name : names) {
      if (name == entry->d_name) last = name;
    }
  }
  closedir(stream);
  return last;
}

// A directory holding "b", "a", ".x" and a sub-directory "d".
void MakeSample(const TempDir& tmp) {
  WriteFile(tmp / "b", "b");
  WriteFile(tmp / "a", "a");
  WriteFile(tmp / ".x", "x");
  MakeDir(tmp / "d");
}

TEST(Directory, CheckAcceptsOnlyRealDirectories) {
  TempDir tmp;
  WriteFile(tmp / "file", "x");
  MakeDir(tmp / "real");
  ASSERT_EQ(symlink((tmp / "real").c_str(), (tmp / "link").c_str()), 0);
  Directory dir;

  EXPECT_FALSE(dir.Check((tmp / "file").c_str(), false, false));
  EXPECT_EQ(dir.GetError(), 1);
  EXPECT_FALSE(dir.Check((tmp / "missing").c_str(), false, false));
  EXPECT_EQ(dir.GetError(), 1);
  // The link opens as a directory stream but is not a directory itself.
  EXPECT_FALSE(dir.Check((tmp / "link").c_str(), false, false));
  EXPECT_EQ(dir.GetError(), 1);
  // A later success resets the code.
  EXPECT_TRUE(dir.Check(Str((tmp / "real/").c_str()), true, true));
  EXPECT_EQ(dir.GetError(), 0);
}

TEST(Directory, CheckLooksAtOwnerPermissions) {
  TempDir tmp;
  MakeDir(tmp / "readonly", 0555);
  MakeDir(tmp / "writeonly", 0333);
  Directory dir;

  EXPECT_FALSE(dir.Check((tmp / "readonly").c_str(), true, true));
  EXPECT_EQ(dir.GetError(), 3);
  EXPECT_TRUE(dir.Check((tmp / "readonly").c_str(), true, false));
  EXPECT_EQ(dir.GetError(), 0);

  // Without owner read an ordinary user cannot even open the stream, which is tested first;
  // only the superuser gets as far as the permission bits.
  bool superuser = geteuid() == 0;
  EXPECT_FALSE(dir.Check((tmp / "writeonly").c_str(), true, false));
  EXPECT_EQ(dir.GetError(), superuser ? 2 : 1);
  EXPECT_EQ(dir.Check((tmp / "writeonly").c_str(), false, true), superuser);
}

TEST(Directory, CheckClosesItsStream) {
  TempDir tmp;
  Directory dir;
  int before = OpenDescriptors();
  for (int i = 0; i < 50; ++i) dir.Check(tmp.path().c_str(), true, true);
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST(Directory, CheckFileNeedsOnlyStat) {
  TempDir tmp;
  WriteFile(tmp / "file", "");
  MakeDir(tmp / "locked", 0);
  EXPECT_TRUE(Directory::CheckFile((tmp / "file").c_str()));
  EXPECT_TRUE(Directory::CheckFile(Str(tmp.path().c_str())));
  EXPECT_TRUE(Directory::CheckFile((tmp / "locked").c_str()));
  EXPECT_FALSE(Directory::CheckFile((tmp / "missing").c_str()));
  EXPECT_FALSE(Directory::CheckFile((tmp / "file/x").c_str()));
}

TEST(Directory, OpenSplitsDirectoriesFromFiles) {
  TempDir tmp;
  MakeSample(tmp);
  Directory dir;
  ASSERT_TRUE(dir.Open(tmp.path().c_str(), false));
  EXPECT_EQ(DirNames(dir), (std::vector<std::string>{"d"}));
  EXPECT_EQ(FileNames(dir), (std::vector<std::string>{"a", "b"}));

  // With hidden names "." and ".." come along as directories; a trailing '/' changes nothing.
  ASSERT_TRUE(dir.Open((tmp.path() + "/").c_str(), true));
  EXPECT_EQ(DirNames(dir), (std::vector<std::string>{".", "..", "d"}));
  EXPECT_EQ(FileNames(dir), (std::vector<std::string>{".x", "a", "b"}));
}

TEST(Directory, OpenFollowsLinksAndLeavesOutFailures) {
  TempDir tmp;
  MakeDir(tmp / "real");
  WriteFile(tmp / "plain", "");
  ASSERT_EQ(symlink("real", (tmp / "to_dir").c_str()), 0);
  ASSERT_EQ(symlink("plain", (tmp / "to_file").c_str()), 0);
  ASSERT_EQ(symlink("nowhere", (tmp / "dangling").c_str()), 0);
  ASSERT_EQ(symlink("loop", (tmp / "loop").c_str()), 0);
  Directory dir;
  ASSERT_TRUE(dir.Open(tmp.path().c_str(), false));
  EXPECT_EQ(DirNames(dir), (std::vector<std::string>{"real", "to_dir"}));
  EXPECT_EQ(FileNames(dir), (std::vector<std::string>{"plain", "to_file"}));
}

TEST(Directory, FailedOpenKeepsPreviousLists) {
  TempDir tmp;
  MakeSample(tmp);
  Directory dir;
  ASSERT_TRUE(dir.Open(tmp.path().c_str(), false));
  EXPECT_FALSE(dir.Open((tmp / "missing").c_str(), false));
  EXPECT_FALSE(dir.Open((tmp / "a").c_str(), false));
  EXPECT_EQ(DirNames(dir), (std::vector<std::string>{"d"}));
  EXPECT_EQ(FileNames(dir), (std::vector<std::string>{"a", "b"}));

  // A successful open of an empty directory replaces them.
  ASSERT_TRUE(dir.Open((tmp / "d").c_str(), false));
  EXPECT_TRUE(DirNames(dir).empty());
  EXPECT_TRUE(FileNames(dir).empty());
}

TEST(Directory, GetNextStartsAtLastCollatedName) {
  TempDir tmp;
  const std::vector<std::string> sorted = {"f1", "f2", "f3", "f4", "f5", "f6"};
  for (const char* name : {"f4", "f1", "f6", "f3", "f5", "f2"}) WriteFile(tmp / name, "");
  MakeDir(tmp / "only");
  Directory dir;
  ASSERT_TRUE(dir.Open(tmp.path().c_str(), false));

  // The walk begins at the name the stream delivered last and skips those sorting before it.
  std::string last = LastDelivered(tmp.path(), sorted);
  std::vector<std::string> expected;
  for (const std::string& name : sorted) {
    if (name >= last) expected.push_back(name);
  }
  std::vector<std::string> walked;
  Str name("stale");
  while (dir.GetNextFile(name)) walked.push_back(name.String());
  EXPECT_EQ(walked, expected);
  EXPECT_STREQ(name.String(), expected.back().c_str());  // untouched by the failing call

  ASSERT_TRUE(dir.GetNextDir(name));
  EXPECT_STREQ(name.String(), "only");
  EXPECT_FALSE(dir.GetNextDir(name));
}

TEST(Directory, ListCopiesLeaveTheWalkAtTheEnd) {
  TempDir tmp;
  MakeSample(tmp);
  Directory dir;
  ASSERT_TRUE(dir.Open(tmp.path().c_str(), false));

  StrList out;
  out.Append("stale");
  dir.GetDirList(out);
  EXPECT_EQ(Names(out), (std::vector<std::string>{"d"}));
  dir.GetFileList(out);
  EXPECT_EQ(Names(out), (std::vector<std::string>{"a", "b"}));

  Str name;
  EXPECT_FALSE(dir.GetNextDir(name));
  EXPECT_FALSE(dir.GetNextFile(name));

  // A fresh object and an empty directory have nothing to give.
  Directory empty;
  EXPECT_FALSE(empty.GetNextDir(name));
  ASSERT_TRUE(empty.Open((tmp / "d").c_str(), false));
  EXPECT_FALSE(empty.GetNextFile(name));
}

TEST(Directory, EnvironmentDirectoriesEndInSlash) {
  {
    ScopedVariable pwd("PWD", "/home/u");
    ScopedVariable home("HOME", "/home/v");
    EXPECT_STREQ(Directory::GetCurrentDirectory().String(), "/home/u/");
    EXPECT_STREQ(Directory::GetHomeDirectory().String(), "/home/v/");
  }
  {
    ScopedVariable pwd("PWD", "/");
    ScopedVariable home("HOME", "/home/v/");
    EXPECT_STREQ(Directory::GetCurrentDirectory().String(), "/");
    EXPECT_STREQ(Directory::GetHomeDirectory().String(), "/home/v/");
  }
  {
    ScopedVariable pwd("PWD", nullptr);
    ScopedVariable home("HOME", nullptr);
    EXPECT_EQ(Directory::GetCurrentDirectory().Length(), 0);
    EXPECT_EQ(Directory::GetHomeDirectory().Length(), 0);
  }
}

TEST(Directory, CurrentDirectoryComesFromPwd) {
  TempDir tmp;
  MakeSample(tmp);
  Directory dir;
  {
    ScopedVariable pwd("PWD", tmp.path().c_str());
    EXPECT_STREQ(Directory::GetCurrentDirectory().String(), (tmp.path() + "/").c_str());
    ASSERT_TRUE(dir.Open(false));
    EXPECT_EQ(FileNames(dir), (std::vector<std::string>{"a", "b"}));
  }
  {
    ScopedVariable pwd("PWD", nullptr);
    EXPECT_FALSE(dir.Open(true));
    EXPECT_EQ(FileNames(dir), (std::vector<std::string>{"a", "b"}));
  }
}

// Each row: a path and what the four splitters give for it; GetParent also rewrites the path.
struct SplitCase {
  const char* path;
  const char* fileName;
  const char* extension;
  const char* directory;
  const char* parent;
  const char* afterParent;
};
constexpr SplitCase kSplitCases[] = {
    {"a/b/c", "c", "", "a/b/", "a/b/", "a/b/c"},
    {"a/b/c/", "", "", "a/b/c/", "a/b/", "a/b/c"},
    {"name", "name", "", "", "", "name"},
    {"/top", "top", "", "/", "/", "/top"},
    {"/", "", "", "/", "", ""},
    {"", "", "", "", "", ""},
    {"a//", "", "", "a//", "a/", "a/"},
    {"archive.tar.gz", "archive.tar.gz", "gz", "", "", "archive.tar.gz"},
    {".profile", ".profile", "", "", "", ".profile"},
    {"dir.d/file", "file", "", "dir.d/", "dir.d/", "dir.d/file"},
    {"dir.d/file.txt", "file.txt", "txt", "dir.d/", "dir.d/", "dir.d/file.txt"},
    {"file.", "file.", "", "", "", "file."},
};

TEST(Directory, PathSplitting) {
  for (const SplitCase& c : kSplitCases) {
    Str path(c.path);
    EXPECT_STREQ(Directory::GetFileName(path).String(), c.fileName) << c.path;
    EXPECT_STREQ(Directory::GetExtension(path).String(), c.extension) << c.path;
    EXPECT_STREQ(Directory::GetPath(path).String(), c.directory) << c.path;
    EXPECT_STREQ(path.String(), c.path) << "only GetParent may change the path";
    EXPECT_STREQ(Directory::GetParent(path).String(), c.parent) << c.path;
    EXPECT_STREQ(path.String(), c.afterParent) << c.path;
  }
}

}  // namespace
