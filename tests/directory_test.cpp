// Directory: usability checks, listings, the current directory and path splitting.
#include <unistd.h>

#include "test_util.h"

// A listing as its copy gives it: the sub-directories or the files, in order.
static std::vector<std::string> Listed(Directory& dir, bool dirs) {
  StrList list;
  dirs ? dir.GetDirList(list) : dir.GetFileList(list);
  return Texts(list);
}

// A directory holding the files "b", "a" and ".x" and a sub-directory "d".
static void MakeSample(const TempDir& tmp) {
  for (const char* name : {"b", "a", ".x"}) WriteFile(tmp / name, name);
  MakeDir(tmp / "d");
}

// The codes: 0 usable, 1 not a real directory (a link to one is not), 2 not readable, 3 not
// writable. Without owner read an ordinary user cannot even open the stream, which is tried
// first; only the superuser gets as far as the permission bits.
TEST(Directory, CheckAcceptsOnlyUsableRealDirectories) {
  TempDir tmp;
  MakeSample(tmp);
  MakeDir(tmp / "readonly", 0555);
  MakeDir(tmp / "writeonly", 0333);
  ASSERT_EQ(symlink((tmp / "d").c_str(), (tmp / "link").c_str()), 0);
  const std::tuple<const char*, bool, bool, int> rows[] = {
      {"a", false, false, 1},       {"link", false, false, 1},
      {"d/", true, true, 0},        {"readonly", true, true, 3},
      {"readonly", true, false, 0}, {"writeonly", true, false, geteuid() == 0 ? 2 : 1}};
  Directory dir;
  for (const auto& [name, mustRead, mustWrite, error] : rows) {
    EXPECT_EQ(dir.Check(Str((tmp / name).c_str()), mustRead, mustWrite), error == 0) << name;
    EXPECT_EQ(dir.GetError(), error) << name << " read " << mustRead << " write " << mustWrite;
  }
  // CheckFile only asks whether the path leads anywhere.
  Walk(Q(Directory::CheckFile(Str((tmp / "link").c_str())), true),
       Q(Directory::CheckFile((tmp / "missing").c_str()), false));
}

// Entries go by what they open as: a link counts as its target, and a dangling one is left out.
// Hidden names include "." and "..". A failed Open keeps the previous lists; the Open of an empty
// directory replaces them.
TEST(Directory, OpenSplitsDirectoriesFromFiles) {
  TempDir tmp;
  MakeSample(tmp);
  for (const std::string name : {"d", "a", "nowhere"})
    ASSERT_EQ(symlink(name.c_str(), (tmp / (name + "_link")).c_str()), 0);
  Directory dir;
  Walk(STEP(dir.Open(tmp.path.c_str(), false), true), STEP(Listed(dir, true), "[d][d_link]"),
       STEP(Listed(dir, false), "[a][a_link][b]"), STEP(dir.Open((tmp / "").c_str(), true), true),
       STEP(dir.Open((tmp / "a").c_str(), true), false),
       STEP(Listed(dir, false), "[.x][a][a_link][b]"),
       STEP(dir.Open((tmp / "d").c_str(), false), true), STEP(Listed(dir, true), ""));
}

// A path splits into its file name, extension (not of a hidden name), the directory part and the
// parent, which first takes one trailing '/' off the path itself.
TEST(Directory, PathSplitting) {
  const char* const rows[][6] = {
      // path, file name, extension, path part, parent, what the parent leaves of the path
      {"a/b/c/", "", "", "a/b/c/", "a/b/", "a/b/c"},
      {"archive.tar.gz", "archive.tar.gz", "gz", "", "", "archive.tar.gz"},
      {".profile", ".profile", "", "", "", ".profile"},
      {"dir.d/file", "file", "", "dir.d/", "dir.d/", "dir.d/file"}};
  for (const auto& row : rows) {
    Str path(row[0]);
    EXPECT_EQ(Text(Directory::GetFileName(path)), row[1]) << row[0];
    EXPECT_EQ(Text(Directory::GetExtension(path)), row[2]) << row[0];
    EXPECT_EQ(Text(Directory::GetPath(path)), row[3]) << row[0];
    EXPECT_EQ(Text(Directory::GetParent(path)), row[4]) << row[0];
    EXPECT_EQ(Text(path), row[5]) << row[0];
  }
}
