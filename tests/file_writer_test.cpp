// FileWriter: every append through buffers of every small size, when whole buffers go out,
// trimming, opening modes and failures.
#include <sys/stat.h>

#include <climits>
#include <filesystem>

#include "test_util.h"

using namespace std::string_literals;

// Every buffer size from 1 to 8 makes each append cross a buffer end somewhere, and size 1 leaves
// the buffer full after every binary value. Integers go out most significant byte first, floats
// in the host's order (little-endian on x86-64 and arm64); fields are cut or padded, justified
// values only padded.
TEST(FileWriter, AppendsComeOutWholeAcrossBufferEnds) {
  TempDir dir;
  const long longs[] = {0x01020304, -2};
  const unsigned long unsignedLongs[] = {5};
  const double doubles[] = {1.0, -2.0};
  for (long size : {1L, 2L, 3L, 4L, 5L, 6L, 7L, 8L, FileWriter::kDefaultSize}) {
    FileWriter w(size);
    ASSERT_TRUE(w.Open((dir / "out").c_str()));
    Walk(DO(w << 'q' << 0.5), DO(w.AppendByte("\0e", 2)), DO(w.AppendField("ABCDEFG", 4)),
         DO(w.Append("ab", 12, true)),  // wider than the whole buffer
         DO(w.AppendString("cd")), DO(w.Repeat('-', 3)), DO(w.AppendInteger(short{258})),
         DO(w.AppendInteger(longs, 2)), DO(w.AppendInteger(unsignedLongs, 1)),
         DO(w.AppendFloat(1.0f)), DO(w.AppendFloat(doubles, 2)));
    w.Close();
    EXPECT_FALSE(w.Failed()) << size;
    EXPECT_EQ(ReadFile(dir / "out"),
              "q0.5\0eABCD          abcd\0---\x01\x02\x01\x02\x03\x04\xFF\xFF\xFF\xFE\0\0\0\x05"
              "\0\0\x80\x3F\0\0\0\0\0\0\xF0\x3F\0\0\0\0\0\0\0\xC0"s)
        << "buffer of " << size;
  }
}

// The appends of a phd or poly line, from every offset of buffers around a number's text size,
// never leave a full buffer behind: the file holds exactly the whole buffers that have filled.
// Single bytes may leave it full until the next byte needs room. A number converted in place
// leaves the byte behind it as it was, which RemoveEndBlankLines reads: it trims only pending
// bytes, never looks at the first of them, and scans forward to the buffer's end, so pending
// "\n\n\n" keeps two newlines.
TEST(FileWriter, WholeBuffersGoOutAsTheyFillAndTrimmingKeepsToPendingBytes) {
  TempDir dir;
  const std::string path = dir / "out";
  for (long size : {1L, 2L, 21L, 22L, 32L, 33L}) {
    for (long offset = 0; offset < size; ++offset) {
      FileWriter w(size);
      ASSERT_TRUE(w.Open(path.c_str()));
      Walk(DO(w.Append(std::string(offset, 'x').c_str())), DO(w.AppendToken('A')),
           DO(w.AppendToken(Str("59"))), DO(w.AppendLine(12345678L)), DO(w.Append(LONG_MIN)),
           DO(w.AppendToken(-7L, ',')));
      const std::string expected =
          std::string(offset, 'x') + "A 59 12345678\n-9223372036854775808-7,";
      EXPECT_EQ(ReadFile(path).size(), expected.size() / size * size) << size << " from " << offset;
      w.Close();
      EXPECT_EQ(ReadFile(path), expected) << "buffer of " << size << " from " << offset;
    }
  }
  FileWriter w(4);
  Walk(STEP(w.Open(path.c_str()), true), DO(w.Append("abcdefghij")),
       STEP(ReadFile(path), "abcdefgh"), DO(w.Append('k')), DO(w.Append('l')),
       STEP(ReadFile(path), "abcdefgh"), DO(w.AppendLine()), DO(w << "mn" << 'o'),
       STEP(ReadFile(path), "abcdefghijkl\nmno"), DO(w.Append("\n\n\n")),
       DO(w.RemoveEndBlankLines()), DO(w.Close()), STEP(ReadFile(path), "abcdefghijkl\nmno\n\n"),
       DO(w.SetSize(64)), STEP(w.Open(path.c_str()), true),
       DO(w.Append(("0123456\n" + std::string(56, 'x')).c_str())), DO(w.Append(1234567L)),
       DO(w.RemoveEndBlankLines()), DO(w.Close()),
       STEP(ReadFile(path), "0123456\n" + std::string(56, 'x') + "1234567\n"));
}

// Files are created with mode 0664 under the umask, and a writer destroyed without Close closes
// the file but loses its pending bytes. Failed tells of a failed Open or Reopen and of any write
// that fell short.
TEST(FileWriter, OpenTruncatesReopenAppendsAndFailuresShow) {
  TempDir dir;
  const std::string path = dir / "out";
  const mode_t oldMask = umask(002);
  auto descriptors = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  const long open = descriptors();
  auto writer = std::make_unique<FileWriter>();
  Walk(STEP(writer->Open(path.c_str()), true), DO(writer->AppendLine("old")), DO(writer->Close()),
       STEP(writer->Reopen(Str(path.c_str())), true), DO(writer->Append("new")),
       DO(writer->Close()), STEP(ReadFile(path), "old\nnew"),
       STEP(writer->Open(Str(path.c_str())), true), DO(writer->Append("dropped")),
       DO(writer = std::make_unique<FileWriter>(4)), STEP(ReadFile(path), ""),
       STEP(descriptors(), open), STEP(FileMode(path), 0664),
       STEP(writer->Open((dir / "no/such/file").c_str()), false), STEP(writer->Failed(), true),
       STEP(writer->Reopen(dir.path.c_str()), false), STEP(writer->Open("/dev/full"), true),
       DO(writer->Append("abc")), STEP(writer->Failed(), false),   // nothing went out yet
       DO(writer->Append("defgh")), STEP(writer->Failed(), true),  // a full buffer found no room
       STEP(writer->Reopen("/dev/full"), true), DO(writer->Append('x')),
       STEP(writer->Failed(), false), DO(writer->Close()), STEP(writer->Failed(), true));
  umask(oldMask);
}

// A justified value that does not fit a buffer an Append(char) or a binary value left full goes
// out with one write of the whole buffer; the rest of the field stays pending.
TEST(FileWriter, JustifiedValueAtAFullBufferWritesOnce) {
  TempDir dir;
  const std::string path = dir / "out";
  FileWriter text(4), number(4), str(4);
  Walk(STEP(text.Open(path.c_str()), true), DO(text.Append("abc")), DO(text.Append('d')),
       DO(text.Append("ab", 4, true)), STEP(ReadFile(path), "abcd"),
       STEP(number.Open(path.c_str()), true), DO(number.AppendInteger(1L)),
       DO(number.Append(7L, 4, false)), STEP(ReadFile(path), "\0\0\0\x01"s),
       STEP(str.Open(path.c_str()), true), DO(str.Append("abc")), DO(str.Append('d')),
       DO(str.Append(Str("wxyz"), 0, true)), STEP(ReadFile(path), "abcd"));
}

// The pending bytes and the block reach the file at once and in order, from any buffer size (a
// writer of size 0 has no buffer but can still hand over blocks); later appends start afresh.
// Nothing open, or a device that takes nothing: the bytes are lost and Failed tells. An empty
// array is nothing to lose, even without a buffer.
TEST(FileWriter, WriteThroughSendsPendingBytesAndBlockAtOnce) {
  TempDir dir;
  const std::string path = dir / "out", block = "0123456789";
  static const unsigned char kBlock[] = "0123456789";
  for (long size : {0L, 1L, 3L, 4L, FileWriter::kDefaultSize}) {
    FileWriter writer(size);
    ASSERT_TRUE(writer.Open(path.c_str()));
    const std::string pending = size > 0 ? "ab" : "", after = size > 0 ? "x" : "";
    if (size > 0) writer.Append("ab");
    writer.WriteThrough(kBlock, 10);
    EXPECT_EQ(ReadFile(path), pending + block) << size;
    writer.WriteThrough(kBlock, 0);
    if (size > 0) writer.Append("x");
    writer.Close();
    EXPECT_EQ(ReadFile(path), pending + block + after) << size;
    EXPECT_FALSE(writer.Failed()) << size;
  }
  const float none[] = {0.0f};
  FileWriter unbuffered(0), writer(4);
  Walk(DO(unbuffered.AppendFloat(none, 0)), STEP(unbuffered.Failed(), false),
       DO(writer.Append("ab")), DO(writer.WriteThrough(kBlock, 10)), STEP(writer.Failed(), true),
       STEP(writer.Open("/dev/full"), true), DO(writer.WriteThrough(kBlock, 10)),
       STEP(writer.Failed(), true));
}
