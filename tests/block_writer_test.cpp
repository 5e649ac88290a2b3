#include "app/block_writer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "test_util.h"

namespace {

// What a block of `bytes` holds after `fill`, once flushed and the file closed.
template <typename Fill>
std::string Written(long bytes, Fill fill) {
  testutil::TempDir dir;
  FileWriter file(16);
  EXPECT_TRUE(file.Open((dir / "out").c_str()));
  file.Append("<");  // pending in the file's own buffer, and first in the file
  BlockWriter block(file, bytes);
  fill(block);
  block.Flush();
  file.Close();
  EXPECT_FALSE(file.Failed());
  return testutil::ReadFile(dir / "out");
}

}  // namespace

// Pieces of every kind reach the file whole and in order across the ends of the smallest block:
// copies, fills, and pieces stored in place, also one larger than any block.
TEST(BlockWriter, PiecesReachTheFileInOrderAcrossBlockEnds) {
  const std::string text(BlockWriter::kMinSize + 5, 'x');
  std::string pieces;
  for (long k = 0; k < 3000; ++k) pieces += std::to_string(k) + ",";
  const std::string written = Written(0, [&](BlockWriter& block) {
    block.Put(text.data(), static_cast<long>(text.size()));
    block.Fill('-', BlockWriter::kMinSize);
    block.PutEach(3000, 8, [](unsigned char* at, long k) {
      const std::string piece = std::to_string(k) + ",";
      std::memcpy(at, piece.data(), piece.size());
      return at + piece.size();
    });
    block.PutEach(1, BlockWriter::kMinSize + 1, [](unsigned char* at, long) {
      std::memset(at, '=', BlockWriter::kMinSize + 1);
      return at + BlockWriter::kMinSize + 1;
    });
  });
  EXPECT_EQ(written, "<" + text + std::string(BlockWriter::kMinSize, '-') + pieces +
                         std::string(BlockWriter::kMinSize + 1, '='));
}
