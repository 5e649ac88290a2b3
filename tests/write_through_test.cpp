#include <string>

#include "gtest/gtest.h"
#include "test_util.h"
#include "toolkit/fileio.h"

namespace {

using testutil::ReadFile;
using testutil::TempDir;

const unsigned char kBlock[] = {'0', '1', '2', '3', '4', '5', '6', '7', '8', '9'};

// The pending bytes and the block reach the file at once and in order, from any buffer size (a
// writer of size 0 has no buffer but can still hand over blocks); later appends start afresh.
TEST(FileWriter, WriteThroughSendsPendingBytesAndBlockAtOnce) {
  TempDir dir;
  const std::string path = dir / "out";
  for (long size : {0L, 1L, 3L, 4L, FileWriter::kDefaultSize}) {
    FileWriter writer(size);
    ASSERT_TRUE(writer.Open(path.c_str()));
    if (size > 0) writer.Append("ab");
    writer.WriteThrough(kBlock, sizeof kBlock);
    const std::string pending = size > 0 ? "ab" : "";
    EXPECT_EQ(ReadFile(path), pending + "0123456789") << size;
    writer.WriteThrough(kBlock, 0);
    if (size > 0) writer.AppendByte('x');
    writer.Close();
    EXPECT_EQ(ReadFile(path), pending + "0123456789" + (size > 0 ? "x" : "")) << size;
    EXPECT_FALSE(writer.Failed()) << size;
  }
}

// Nothing open, or a device that takes nothing: the bytes are lost and Failed tells.
TEST(FileWriter, WriteThroughFailuresShow) {
  FileWriter writer(4);
  writer.Append("ab");
  writer.WriteThrough(kBlock, sizeof kBlock);
  EXPECT_TRUE(writer.Failed());
  ASSERT_TRUE(writer.Open("/dev/full"));
  writer.WriteThrough(kBlock, sizeof kBlock);
  EXPECT_TRUE(writer.Failed());
}

}  // namespace
