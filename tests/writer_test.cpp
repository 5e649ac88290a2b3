// The pieces the Writer's files are made of: the block that collects a file's bytes and the
// position lines of phd and poly files. Everything the Writer writes is compared byte for byte by
// the end-to-end tests.
#include "app/block_writer.h"
#include "app/position_line.h"
#include "test_util.h"

// Pieces of every kind reach the file whole and in order across the ends of the smallest block,
// behind what the file's own buffer holds: copies, fills, and pieces stored in place, also one
// larger than any block.
TEST(BlockWriter, PiecesReachTheFileInOrderAcrossBlockEnds) {
  const std::string text(BlockWriter::kMinSize + 5, 'x');
  std::string pieces;
  for (long k = 0; k < 3000; ++k) pieces += std::to_string(k) + ",";
  TempDir dir;
  FileWriter file(16);
  ASSERT_TRUE(file.Open((dir / "out").c_str()));
  file.Append("<");
  BlockWriter block(file, 0);
  block.Put(text.data(), static_cast<long>(text.size()));
  block.Fill('-', BlockWriter::kMinSize);
  block.PutEach(3000, 8, [](unsigned char* at, long k) {
    const std::string piece = std::to_string(k) + ",";
    return std::copy(piece.begin(), piece.end(), at);
  });
  const long large = BlockWriter::kMinSize + 1;
  block.PutEach(1, large, [](unsigned char* at, long) { return std::fill_n(at, large, '='); });
  block.Flush();
  file.Close();
  EXPECT_FALSE(file.Failed());
  EXPECT_EQ(ReadFile(dir / "out"), "<" + text + std::string(BlockWriter::kMinSize, '-') + pieces +
                                       std::string(large, '='));
}

// Every line is the one formatted field by field, through each change of the position's width
// up to seven digits, for lines within one move and longer; Store never touches more than the
// capacity, which stays what it was.
TEST(PositionLine, LinesMatchFieldByField) {
  const std::pair<std::string, std::string> cases[] = {
      {" 59 ", "\n"}, {" ", " 300000 1 N  -1  -1 -1 "}, {" " + std::string(40, '0') + "59 ", "\n"}};
  for (const auto& [before, after] : cases) {
    PositionLine line(before.c_str(), after.c_str());
    const long capacity = line.Capacity();
    std::vector<unsigned char> block(capacity + 1, 0xEE);  // the last byte stays untouched
    for (long i = 0; i < 100000; ++i, line.Advance()) {
      const char base = "ACGTN"[i % 5];
      const unsigned char* end = line.Store(block.data(), base);
      const std::string expected = base + before + std::to_string(12 * (i + 1)) + after;
      ASSERT_EQ(std::string(reinterpret_cast<const char*>(block.data()), end - block.data()),
                expected);
      ASSERT_EQ(block.back(), 0xEE) << expected;
    }
    EXPECT_EQ(line.Capacity(), capacity);
  }
}
