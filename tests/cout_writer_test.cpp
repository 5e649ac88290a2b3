#include <string>

#include "gtest/gtest.h"
#include "toolkit/fileio.h"

namespace {

using namespace std::string_literals;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

TEST(CoutWriter, TextGoesOutWithoutClose) {
  CoutWriter writer;
  CaptureStdout();
  writer.AppendToken(Str("A"));
  writer.AppendLine(12L);
  EXPECT_EQ(GetCapturedStdout(), "A 12\n");

  FileWriter& file = writer;  // code written against FileWriter reaches standard output too
  CaptureStdout();
  file << "y" << Str("z") << '!' << 3L << 0.5;
  file.AppendToken('c', ',');
  file.AppendLine('q');
  file.AppendByte("a\0b", 3);
  file.Close();
  EXPECT_EQ(GetCapturedStdout(), "yz!30.5c,q\na\0b"s);
}

TEST(CoutWriter, NumbersTakeTheStreamFormat) {
  CoutWriter writer;
  CaptureStdout();
  writer.AppendToken(1.0 / 3);
  writer.AppendToken(-3.0);  // FileWriter would write "-"
  writer.AppendToken(1e20, ',');
  writer.AppendLine(1234567.0);
  writer.Append(-45L);
  EXPECT_EQ(GetCapturedStdout(), "0.333333 -3 1e+20,1.23457e+06\n-45");
}

TEST(CoutWriter, JustifiedValuesArePaddedNeverCut) {
  CoutWriter writer;
  CaptureStdout();
  writer.Append("abc", 2, true);
  writer.Append(7L, 3, true);
  writer.Append('c', 3, false);
  writer.Append(Str("ab"), 40, true);  // more padding than one run of blanks
  EXPECT_EQ(GetCapturedStdout(), "abc  7c  " + std::string(38, ' ') + "ab");
}

TEST(CoutWriter, BufferedOperationsPrintNothing) {
  CoutWriter writer;
  CaptureStdout();
  writer.AppendInteger(1L);
  writer.AppendFloat(1.0f);
  writer.AppendString("ab");
  writer.AppendByte(static_cast<unsigned char>('u'));
  writer.Repeat('-', 3000);  // more than the buffer holds: still never written
  writer.Close();
  EXPECT_EQ(GetCapturedStdout(), "");
}

}  // namespace
