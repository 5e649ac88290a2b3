#include <dirent.h>
#include <sys/stat.h>

#include <functional>
#include <string>

#include "gtest/gtest.h"
#include "test_util.h"
#include "toolkit/fileio.h"

namespace {

using testutil::ReadFile;
using testutil::TempDir;
using namespace std::string_literals;

// Fills a writer of every buffer size from 1 to 8 bytes (so that every append and every value
// crosses a buffer end somewhere) and of the default size, and checks the closed file's bytes.
void ExpectBytes(const std::function<void(FileWriter&)>& fill, const std::string& expected) {
  TempDir dir;
  for (long size : {1L, 2L, 3L, 4L, 5L, 6L, 7L, 8L, FileWriter::kDefaultSize}) {
    FileWriter writer(size);
    ASSERT_TRUE(writer.Open((dir / "out").c_str()));
    fill(writer);
    writer.Close();
    EXPECT_FALSE(writer.Failed());
    EXPECT_EQ(ReadFile(dir / "out"), expected) << "buffer of " << size << " bytes";
  }
}

int OpenDescriptors() {
  int n = 0;
  DIR* fds = opendir("/proc/self/fd");
  while (readdir(fds)) ++n;
  closedir(fds);
  return n;
}

TEST(FileWriter, OpenTruncatesAndReopenAppends) {
  TempDir dir;
  const mode_t oldMask = umask(002);
  FileWriter writer;
  ASSERT_TRUE(writer.Open((dir / "new").c_str()));
  writer.Close();
  ASSERT_TRUE(writer.Reopen(Str((dir / "appended").c_str())));
  writer.Close();
  umask(oldMask);
  EXPECT_EQ(testutil::FileMode(dir / "new"), 0664u);
  EXPECT_EQ(testutil::FileMode(dir / "appended"), 0664u);

  testutil::WriteFile(dir / "old", "old");
  ASSERT_TRUE(writer.Reopen((dir / "old").c_str()));
  writer.AppendLine("new");
  writer.Close();
  EXPECT_EQ(ReadFile(dir / "old"), "oldnew\n");
  ASSERT_TRUE(writer.Open(Str((dir / "old").c_str())));
  writer.Close();
  EXPECT_EQ(ReadFile(dir / "old"), "");
}

TEST(FileWriter, WritesWholeBuffersAsTheyFill) {
  TempDir dir;
  const std::string path = dir / "out";
  FileWriter writer(4);
  ASSERT_TRUE(writer.Open(path.c_str()));
  writer.Append("abcd");  // a block that fills the buffer goes out at once
  EXPECT_EQ(ReadFile(path), "abcd");
  writer.Append("efghijklmn");
  EXPECT_EQ(ReadFile(path), "abcdefghijkl");
  writer.Close();
  EXPECT_EQ(ReadFile(path), "abcdefghijklmn");

  ASSERT_TRUE(writer.Open(path.c_str()));
  for (char c : "abcd"s) writer.Append(c);  // single bytes may leave the buffer full...
  EXPECT_EQ(ReadFile(path), "");
  writer.AppendLine();  // ...until the next byte needs room
  writer.Append("xy");
  writer << 'z';  // a single byte that fills the buffer goes out at once
  EXPECT_EQ(ReadFile(path), "abcd\nxyz");
  writer.Append("abc");
  ASSERT_TRUE(writer.Open((dir / "other").c_str()));  // pending bytes are dropped
  writer.Close();
  EXPECT_EQ(ReadFile(path), "abcd\nxyz");
}

TEST(FileWriter, TextAppendsAcrossBufferEnds) {
  ExpectBytes(
      [](FileWriter& w) {
        w.AppendToken('A');
        w.AppendToken(Str("59"));
        w.AppendLine(12L);
        w.AppendToken("x", ',');
        w.Append(-45L);
        w.AppendToken(0.00125, ';');
        w.AppendToken(1.5);
        w.AppendLine(Str("str"));
        w.Append('q');  // may leave the buffer full for the next single byte
        w.AppendLine();
        w.AppendByte('b');
        w.AppendToken('c', '-');
        w.AppendByte("\0e\0", 3);
        w.AppendLine(-1234567890L);  // longer than most of the buffers
        w << "a" << Str("b") << 'c' << 12L << 0.5;
      },
      "A 59 12\nx,-450.00125;1.5 str\nq\nbc-\0e\0-1234567890\nabc120.5"s);
}

// The host is little-endian (x86-64, arm64), so floats come out least significant byte first.
TEST(FileWriter, BinaryValuesAcrossBufferEnds) {
  const short shorts[] = {1, -1};
  const long longs[] = {0x01020304, -2};
  const float floats[] = {1.0f, -2.0f};
  ExpectBytes(
      [&](FileWriter& w) {
        w.AppendInteger(static_cast<short>(258));
        w.AppendInteger(1L);
        w.AppendLine();  // after a value that may have filled the buffer
        w.AppendInteger(0xDEADBEEFUL);
        w.AppendInteger(shorts, 2);
        w.AppendInteger(longs, 2);
        w.AppendFloat(1.0);
        w.AppendToken('t');
        w.AppendFloat(floats, 2);
      },
      "\x01\x02\0\0\0\x01\n\xDE\xAD\xBE\xEF\0\x01\xFF\xFF\x01\x02\x03\x04\xFF\xFF\xFF\xFE"
      "\0\0\0\0\0\0\xF0\x3Ft \0\0\x80\x3F\0\0\0\xC0"s);
}

TEST(FileWriter, FieldsStringsAndRunsAcrossBufferEnds) {
  ExpectBytes(
      [](FileWriter& w) {
        w.AppendField("ABCDEFG", 4);
        w.AppendField(Str("AB"), 4);
        w.Append(7L, 3, true);
        w.Append(7L, 3, false);
        w.Append(7L, 0, true);
        w.Append(2.5, 5, false);
        w.Append(Str("abc"), 2, true);
        w.Append("ab", 12, true);  // wider than the whole buffer
        w.AppendString("cd");
        w.AppendString(Str("efghijklm"));
        w.Repeat(0x2D, 5);
      },
      "ABCDAB    77  72.5  abc          abcd\0efghijklm\0-----"s);
}

TEST(FileWriter, RemoveEndBlankLinesTrimsPendingBytes) {
  TempDir dir;
  const std::string path = dir / "out";
  const struct {
    const char* pending;
    const char* kept;
  } cases[] = {{"text\n\n\n", "text\n"}, {"x  \n \n", "x  \n"}, {"\n\n\n", "\n\n"}, {"", ""}};
  for (const auto& c : cases) {
    FileWriter writer;
    ASSERT_TRUE(writer.Open(path.c_str()));
    writer.Append(c.pending);
    writer.RemoveEndBlankLines();
    writer.Close();
    EXPECT_EQ(ReadFile(path), c.kept) << c.pending;
  }
  FileWriter writer(8);
  ASSERT_TRUE(writer.Open(path.c_str()));
  writer.Append("abcd\n\n\n\nij\n\n \n");  // the first eight bytes are already written
  writer.RemoveEndBlankLines();
  writer.Close();
  EXPECT_EQ(ReadFile(path), "abcd\n\n\n\nij\n");
}

TEST(FileWriter, FailedReportsOpenAndWriteErrors) {
  TempDir dir;
  FileWriter writer(4);
  EXPECT_FALSE(writer.Open((dir / "no/such/file").c_str()));
  EXPECT_TRUE(writer.Failed());
  writer.AppendLine("lost");
  writer.Close();
  EXPECT_FALSE(writer.Reopen(dir.path().c_str()));
  ASSERT_TRUE(writer.Open("/dev/full"));
  writer.Append("ab");
  EXPECT_FALSE(writer.Failed());
  writer.Append("cdefgh");  // a full buffer goes out and finds no room
  EXPECT_TRUE(writer.Failed());
  ASSERT_TRUE(writer.Reopen("/dev/full"));
  writer.Append('x');
  writer.Close();
  EXPECT_TRUE(writer.Failed());

  FileWriter neverOpened;
  neverOpened.Append("x");
  neverOpened.Close();
  EXPECT_TRUE(neverOpened.Failed());
}

TEST(FileWriter, ReopeningAndDestructionReleaseTheFile) {
  TempDir dir;
  const int before = OpenDescriptors();
  {
    FileWriter writer;
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(writer.Open((dir / "out").c_str()));
    EXPECT_EQ(OpenDescriptors(), before + 1);
    writer.Append("never written");
  }
  EXPECT_EQ(OpenDescriptors(), before);
  EXPECT_EQ(ReadFile(dir / "out"), "");
}

}  // namespace
