// Faults the Parser fuzz target found; each test pins the input that exposed one.
#include <gtest/gtest.h>

#include "toolkit/str.h"

namespace {

// The offset of the cursor, measured by what lies in front of it.
long Offset(Parser& p) {
  Str left;
  p.GetLeft(left);
  return left.Length();
}

}  // namespace

// A NUL separator matched the terminator of an empty text, and the last step of SkipBack moved
// the cursor one byte past the end of the buffer.
TEST(ParserRegression, SkipBackWithNulSeparatorStaysInTheText) {
  Str empty;
  Parser p(empty);
  p.SkipBack('\0');
  EXPECT_EQ(p.Get(), '\0');
  EXPECT_EQ(Offset(p), 0);

  Str text("ab");
  Parser q(text);
  q.Next(5);  // on the terminator
  q.SkipBack('\0');
  EXPECT_EQ(Offset(q), 0);
  q.SkipBack('\0');
  EXPECT_EQ(Offset(q), 0);
}
