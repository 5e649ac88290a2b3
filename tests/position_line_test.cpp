#include "app/position_line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// Every line is the one formatted field by field, through each change of the position's width
// up to seven digits, for lines within one move and longer; Store never touches more than the
// capacity, which stays what it was.
TEST(PositionLine, LinesMatchFieldByField) {
  const std::string longQuality = " " + std::string(40, '0') + "59 ";
  const struct {
    std::string before, after;
  } cases[] = {
      {" 59 ", "\n"},
      {" ", " 300000 1 N  -1  -1 -1 "},
      {longQuality, "\n"},
  };
  for (const auto& c : cases) {
    PositionLine line(c.before.c_str(), c.after.c_str());
    const long capacity = line.Capacity();
    std::vector<unsigned char> block(capacity + 1, 0xEE);  // the last byte stays untouched
    for (long i = 0; i < 100000; ++i, line.Advance()) {
      const char base = "ACGTN"[i % 5];
      const unsigned char* end = line.Store(block.data(), base);
      const std::string expected = base + c.before + std::to_string(12 * (i + 1)) + c.after;
      ASSERT_EQ(std::string(reinterpret_cast<const char*>(block.data()), end - block.data()),
                expected);
      ASSERT_EQ(block.back(), 0xEE) << expected;
    }
    EXPECT_EQ(line.Capacity(), capacity);
  }
}
