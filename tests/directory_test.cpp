#include <unistd.h>

#include <cstdlib>
#include <string>
#include <tuple>

#include "gtest/gtest.h"
#include "test_util.h"
#include "toolkit/fileio.h"

namespace {

using testutil::MakeDir;
using testutil::TempDir;

// The directory list, then the file list of `dir`, as its copies give them: "d |a b |".
std::string Lists(Directory& dir) {
  StrList lists[2];
  dir.GetDirList(lists[0]);
  dir.GetFileList(lists[1]);
  std::string text;
  for (StrList& list : lists) {
    for (list.Begin(); Str* name = list.GetNext();) text += std::string(name->String()) + " ";
    text += "|";
  }
  return text;
}

// A directory holding the files "b", "a" and ".x" and a sub-directory "d".
void MakeSample(const TempDir& tmp) {
  for (const char* name : {"b", "a", ".x"}) testutil::WriteFile(tmp / name, name);
  MakeDir(tmp / "d");
}

// Without owner read an ordinary user cannot even open the stream, which is tried first; only
// the superuser gets as far as the permission bits.
TEST(Directory, CheckAcceptsOnlyUsableRealDirectories) {
  TempDir tmp;
  MakeSample(tmp);
  MakeDir(tmp / "readonly", 0555);
  MakeDir(tmp / "writeonly", 0333);
  ASSERT_EQ(symlink((tmp / "d").c_str(), (tmp / "link").c_str()), 0);
  const std::tuple<const char*, bool, bool, int> cases[] = {
      {"a", false, false, 1},       {"link", false, false, 1},
      {"d/", true, true, 0},        {"readonly", true, true, 3},
      {"readonly", true, false, 0}, {"writeonly", true, false, geteuid() == 0 ? 2 : 1},
  };
  Directory dir;
  for (const auto& [name, mustRead, mustWrite, error] : cases) {
    EXPECT_EQ(dir.Check(Str((tmp / name).c_str()), mustRead, mustWrite), error == 0) << name;
    EXPECT_EQ(dir.GetError(), error) << name << mustRead << mustWrite;
  }
}

// Entries go by what they open as: links count as their targets, and dangling or looping links
// are left out. Hidden names include "." and "..".
TEST(Directory, OpenSplitsDirectoriesFromFiles) {
  TempDir tmp;
  MakeSample(tmp);
  for (const std::string name : {"d", "a", "nowhere", "loop"}) {
    ASSERT_EQ(symlink(name.c_str(), (tmp / (name + "_link")).c_str()), 0);
  }
  ASSERT_EQ(symlink("loop_link", (tmp / "loop").c_str()), 0);
  Directory dir;
  ASSERT_TRUE(dir.Open(tmp.path().c_str(), false));
  EXPECT_EQ(Lists(dir), "d d_link |a a_link b |");
  ASSERT_TRUE(dir.Open((tmp.path() + "/").c_str(), true));
  // A failed Open keeps the previous lists; the open of an empty directory replaces them.
  EXPECT_FALSE(dir.Open((tmp / "missing").c_str(), false) || dir.Open((tmp / "a").c_str(), true));
  EXPECT_EQ(Lists(dir), ". .. d d_link |.x a a_link b |");
  ASSERT_TRUE(dir.Open((tmp / "d").c_str(), false));
  EXPECT_EQ(Lists(dir), "||");
}

TEST(Directory, CurrentDirectoryComesFromPwdEndingInSlash) {
  setenv("PWD", "/home/u", 1);
  EXPECT_STREQ(Directory::GetCurrentDirectory().String(), "/home/u/");
  setenv("PWD", "/", 1);
  EXPECT_STREQ(Directory::GetCurrentDirectory().String(), "/");
}

// Each row: a path, then what GetFileName, GetExtension, GetPath and GetParent give for it, and
// what GetParent leaves of the path.
TEST(Directory, PathSplitting) {
  const char* const cases[][2] = {
      {"a/b/c/", "||a/b/c/|a/b/|a/b/c"},
      {"a//", "||a//|a/|a/"},
      {"archive.tar.gz", "archive.tar.gz|gz|||archive.tar.gz"},
      {".profile", ".profile||||.profile"},
      {"dir.d/file", "file||dir.d/|dir.d/|dir.d/file"},
  };
  for (const auto& [text, parts] : cases) {
    Str path(text);
    std::string split = std::string(Directory::GetFileName(path).String()) + "|" +
                        Directory::GetExtension(path).String() + "|" +
                        Directory::GetPath(path).String() + "|";
    split += Directory::GetParent(path).String();  // before the path it changes is read
    EXPECT_EQ(split + "|" + path.String(), parts) << text;
  }
}

}  // namespace
