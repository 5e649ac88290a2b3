#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <string>

#include "gtest/gtest.h"
#include "test_util.h"
#include "toolkit/fileio.h"

namespace {

using testutil::ReadFile;
using testutil::TempDir;
using namespace std::string_literals;

// Every buffer size from 1 to 8 makes each append cross a buffer end somewhere, and size 1
// leaves the buffer full after every binary value. Integers go out most significant byte first,
// floats in the host's order (little-endian on x86-64 and arm64).
TEST(FileWriter, AppendsComeOutWholeAcrossBufferEnds) {
  TempDir dir;
  const long longs[] = {0x01020304, -2};
  const double doubles[] = {1.0, -2.0};
  for (long size : {1L, 2L, 3L, 4L, 5L, 6L, 7L, 8L, FileWriter::kDefaultSize}) {
    FileWriter w(size);
    ASSERT_TRUE(w.Open((dir / "out").c_str()));
    w.AppendToken('A');
    w.AppendToken(Str("59"), ',');
    w.AppendLine(-1234567890L);
    w.Append('q');  // may leave the buffer full
    w.AppendByte("\0e\0", 3);
    w << "a" << 'c' << 12L << 0.5;
    w.AppendField("ABCDEFG", 4);
    w.AppendField(Str("AB"), 4);
    w.Append('c', 3, false);
    w.Append("ab", 12, true);  // wider than the whole buffer
    w.Append(Str("abc"), 2, true);
    w.AppendString("cd");
    w.Repeat('-', 5);
    w.AppendInteger(static_cast<short>(258));
    w.AppendLine();
    w.AppendInteger(longs, 2);
    w.AppendFloat(1.0f);
    w.AppendFloat(doubles, 2);
    w.Close();
    EXPECT_FALSE(w.Failed());
    EXPECT_EQ(ReadFile(dir / "out"),
              "A 59,-1234567890\nq\0e\0ac120.5ABCDAB  c            ababccd\0-----\x01\x02\n"
              "\x01\x02\x03\x04\xFF\xFF\xFF\xFE"
              "\0\0\x80\x3F\0\0\0\0\0\0\xF0\x3F\0\0\0\0\0\0\0\xC0"s)
        << size;
  }
}

// RemoveEndBlankLines trims only pending bytes and never examines the first of them, so
// pending "\n\n\n" keeps two newlines.
TEST(FileWriter, WritesWholeBuffersAsTheyFillAndTrimsOnlyPendingBytes) {
  TempDir dir;
  const std::string path = dir / "out";
  FileWriter writer(4);
  ASSERT_TRUE(writer.Open(path.c_str()));
  writer.Append("abcd");  // a block that fills the buffer goes out at once
  EXPECT_EQ(ReadFile(path), "abcd");
  writer.Append("efghij");
  EXPECT_EQ(ReadFile(path), "abcdefgh");
  for (char c : "kl"s) writer.Append(c);  // single bytes may leave the buffer full...
  EXPECT_EQ(ReadFile(path), "abcdefgh");
  writer.AppendLine();  // ...until the next byte needs room
  writer.Append("mn");
  writer << 'o';  // a single byte that fills the buffer goes out at once
  EXPECT_EQ(ReadFile(path), "abcdefghijkl\nmno");
  writer.Append("\n\n\n");
  writer.RemoveEndBlankLines();
  writer.Close();
  EXPECT_EQ(ReadFile(path), "abcdefghijkl\nmno\n\n");
}

// A justified value that does not fit goes out with the one full-buffer write that makes room for
// it, also when a byte or a binary value left the buffer full: its rest stays pending.
TEST(FileWriter, JustifiedValueAtAFullBufferWritesOnce) {
  TempDir dir;
  const std::string path = dir / "out";
  const std::function<void(FileWriter&)> values[] = {
      [](FileWriter& w) { w.Append("ab", 4, true); },
      [](FileWriter& w) { w.Append(7L, 4, false); },
      [](FileWriter& w) { w.Append(Str("wxyz"), 0, true); },
  };
  for (const auto& value : values) {
    for (bool binary : {false, true}) {
      FileWriter writer(4);
      ASSERT_TRUE(writer.Open(path.c_str()));
      if (binary) {
        writer.AppendInteger(1L);
      } else {
        writer.Append("abc"), writer.Append('d');
      }
      value(writer);
      EXPECT_EQ(ReadFile(path).size(), 4u) << binary;
    }
  }
}

// Files are created with mode 0664 under the umask, and a writer destroyed without Close closes
// the file but loses its pending bytes. Failed tells of a failed Open or Reopen and of any write
// that fell short.
TEST(FileWriter, OpenTruncatesReopenAppendsAndFailuresShow) {
  TempDir dir;
  const std::string path = dir / "out";
  const mode_t oldMask = umask(002);
  const auto files = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  {
    FileWriter writer;
    ASSERT_TRUE(writer.Open(path.c_str()));
    writer.AppendLine("old");
    writer.Close();
    ASSERT_TRUE(writer.Reopen(path.c_str()));
    writer.Append("new");
    writer.Close();
    ASSERT_TRUE(writer.Reopen(Str(path.c_str())));
    writer.Append("!");
    writer.Close();
    EXPECT_EQ(ReadFile(path), "old\nnew!");
    ASSERT_TRUE(writer.Open(Str(path.c_str())));
    writer.Append("dropped");
  }
  umask(oldMask);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}), files);
  EXPECT_EQ(ReadFile(path), "");
  EXPECT_EQ(testutil::FileMode(path), 0664u);

  FileWriter writer(4);
  EXPECT_FALSE(writer.Open((dir / "no/such/file").c_str()) || writer.Reopen(dir.path().c_str()));
  EXPECT_TRUE(writer.Failed());
  ASSERT_TRUE(writer.Open("/dev/full"));
  writer.Append("abc");
  EXPECT_FALSE(writer.Failed());  // a successful Open clears it, and nothing went out yet
  writer.Append("defgh");         // a full buffer goes out and finds no room
  EXPECT_TRUE(writer.Failed());
  ASSERT_TRUE(writer.Reopen("/dev/full"));
  writer.Append('x');
  EXPECT_FALSE(writer.Failed());
  writer.Close();
  EXPECT_TRUE(writer.Failed());
}

}  // namespace
