#include "app/trace.h"

#include <gtest/gtest.h>

#include <string>

// Only the four upper-case letters have a channel; bytes above 0x7F must not index backwards.
TEST(Trace, ChannelOfEachLetter) {
  const std::string letters("ACGTNacgt\0\xC1\xFF", 12);
  for (size_t k = 0; k < letters.size(); ++k)
    EXPECT_EQ(trace::BaseChannel(letters[k]), k < 4 ? static_cast<int>(k) : trace::kNoChannel) << k;
}
