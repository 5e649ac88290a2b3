#include "app/trace.h"

#include <gtest/gtest.h>

#include <string>

#include "test_util.h"

namespace {

std::string Bytes(const unsigned char* begin, const unsigned char* end) {
  return std::string(reinterpret_cast<const char*>(begin), end - begin);
}

}  // namespace

TEST(Trace, ChannelOfEachLetter) {
  EXPECT_EQ(0, trace::BaseChannel('A'));
  EXPECT_EQ(1, trace::BaseChannel('C'));
  EXPECT_EQ(2, trace::BaseChannel('G'));
  EXPECT_EQ(3, trace::BaseChannel('T'));
  // Only the four upper-case letters have a channel; bytes above 0x7F must not index backwards.
  for (char c : std::string("NRXYUacgt\0\xC1\xFF", 12)) {
    EXPECT_EQ(trace::kNoChannel, trace::BaseChannel(c)) << static_cast<int>(c);
  }
}

TEST(Trace, PeakIsStoredMostSignificantByteFirst) {
  unsigned char block[2 * trace::kPeakWidth];
  unsigned char* p = block;
  for (unsigned short height : trace::kPeak) p = trace::PutUint16(p, height);
  EXPECT_EQ(std::string("\x00\x20\x00\x80\x01\x40\x01\xD0\x02\x40\x02\x70\x02\x80"
                        "\x02\x70\x02\x40\x01\xD0\x01\x40\x00\x80\x00\x20",
                        26),
            Bytes(block, p));
}

TEST(Trace, PutHelpersStoreInOrderAndReturnTheEnd) {
  unsigned char block[16];
  unsigned char* p = block;
  p = trace::PutUint32(p, 60012);
  p = trace::PutUint32(p, 0x1FFFFFF80ul);  // only the low 32 bits fit the field
  p = trace::PutUint16(p, 0xEA6C);
  p = trace::PutText(p, "2.00", 4);
  p = trace::PutFill(p, 0xFF, 2);
  ASSERT_EQ(block + 16, p);
  EXPECT_EQ(std::string("\x00\x00\xEA\x6C\xFF\xFF\xFF\x80\xEA\x6C"
                        "2.00\xFF\xFF",
                        16),
            Bytes(block, p));
}

TEST(ChunkWriter, PassesPiecesAndFillsThroughInOrder) {
  testutil::TempDir dir;
  std::string expected;
  for (long bufferSize : {7L, 4096L, 262144L}) {
    SCOPED_TRACE(bufferSize);
    FileWriter file(bufferSize);
    ASSERT_TRUE(file.Open((dir / "chunk").c_str()));
    {
      trace::ChunkWriter out(file);
      expected.clear();
      unsigned char piece[97];
      // Pieces of 97 bytes and runs of zeros straddle the chunk's edge at every offset.
      for (int round = 0; round < 120; ++round) {
        for (int k = 0; k < 97; ++k) piece[k] = static_cast<unsigned char>(round + k);
        out.Put(piece, 97);
        expected.append(reinterpret_cast<char*>(piece), 97);
        out.Fill(0, round);
        expected.append(round, '\0');
      }
      std::string big(10000, 'x');  // larger than the chunk itself
      out.Put(reinterpret_cast<const unsigned char*>(big.data()), big.size());
      expected += big;
      out.Flush();
      out.Flush();  // nothing pending: writes nothing
    }
    file.Close();
    EXPECT_EQ(expected, testutil::ReadFile(dir / "chunk"));
  }
}
