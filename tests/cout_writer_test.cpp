#include "test_util.h"

using namespace std::string_literals;

// Code written against FileWriter reaches standard output at once. Numbers take the stream's
// format ("%g"), not Str's; justified values are padded, never cut. What still goes into the
// inherited buffer (binary values, strings, runs) is never printed.
TEST(CoutWriter, TextGoesOutAtOnceAndBufferedOutputNever) {
  CoutWriter writer;
  FileWriter& file = writer;
  testing::internal::CaptureStdout();
  Walk(DO(file.AppendToken(Str("A"))), DO(file.AppendToken(-3.0, ',')),
       DO(file.AppendLine(1234567.0)), DO(file << "y" << '!' << -45L << 1e20),
       DO(file.AppendByte("a\0b", 3)), DO(file.Append("abc", 2, false)),
       DO(file.Append('c', 3, false)),
       DO(file.Append(Str("ab"), 40, true)),  // more padding than one run of blanks
       DO(file.AppendInteger(1L)), DO(file.Repeat('-', 3000)));  // more than the buffer holds
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "A -3,1.23457e+06\ny!-451e+20a\0babcc  "s + std::string(38, ' ') + "ab");
  testing::internal::CaptureStdout();
  file.Close();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}
