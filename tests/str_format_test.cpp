// Tokens, fields, justification, hexadecimal text and streams of Str, and Formater.
#include <climits>
#include <sstream>
#include <string>

#include "gtest/gtest.h"
#include "toolkit/str.h"

namespace {

const char kInvalid[] = "ERROR: String parameter is invalid";

// The message a call throws, or "" when it returns.
template <class Call>
std::string Thrown(Call call) {
  try {
    call();
  } catch (const char* message) {
    return message;
  }
  return "";
}

// The text that CopyField, or AppendField behind `start`, makes of x.
template <class T>
std::string Field(T x, long width, const char* format, const char* start = nullptr) {
  Str s(start != nullptr ? start : "");
  if (start != nullptr) {
    s.AppendField(x, width, format);
  } else {
    s.CopyField(x, width, format);
  }
  return s.String();
}

std::string Hex(long value, int digits, bool prefix) {
  Str s;
  s.HexToString(value, digits, prefix);
  return s.String();
}

}  // namespace

TEST(Formater, ReadsLettersAndSkipsTheRest) {
  const Formater all("JRF0P2S");
  EXPECT_EQ(Formater::kRight, all.align);
  EXPECT_EQ('0', all.fill);
  EXPECT_EQ(2, all.precision);
  EXPECT_EQ('+', all.sign);
  EXPECT_EQ(0, all.round);
  const Formater column("xA12 P3R");
  EXPECT_EQ(12, column.align);
  EXPECT_EQ(3, column.precision);
  EXPECT_NE(0, column.round);

  EXPECT_EQ(Formater::kCentre, Formater("A5JC").align);  // the later of A and J wins
  EXPECT_EQ(7, Formater("JRA7").align);
  EXPECT_EQ(0, Formater("JS").sign);  // the letter behind J is consumed, not read as S
  EXPECT_EQ(0, Formater("F").fill);
  EXPECT_EQ(0, Formater("jr s p2").align + Formater("jr s p2").precision);
  const Formater none(nullptr);
  EXPECT_EQ(0, none.align + none.precision + none.sign + none.fill + none.round);
}

TEST(Str, TokensCarryTheirSeparator) {
  Str s;
  s.AppendToken('A');
  s.AppendToken(59L);
  s.AppendLine(12L);
  EXPECT_STREQ("A 59 12\n", s.String());
  s.CopyToken("x", ';');
  s.AppendToken("y", ';');
  EXPECT_STREQ("x;y;", s.String());

  const Str word("ab");
  s.CopyToken(word);
  s.AppendToken(&word, ',');
  s.AppendToken(-17L, ',');
  s.AppendToken(2.5);
  s.AppendToken('z', '|');
  EXPECT_STREQ("ab ab,-17,2.5 z|", s.String());
  s.CopyToken(-0.5, '\t');
  s.CopyToken(s);  // a source inside the string itself
  EXPECT_STREQ("-0.5\t ", s.String());
}

TEST(Str, CopyTokenGrowsByDoubling) {
  Str empty;
  empty.CopyToken('x');
  EXPECT_EQ(4, empty.Size());
  Str three("ab");  // size 3 holds a character and its separator
  three.CopyToken('x', ';');
  EXPECT_EQ(3, three.Size());
  Str text;
  text.CopyToken("abc");
  EXPECT_EQ(8, text.Size());
  Str roomy(1024L);
  roomy.CopyToken(123456L);
  EXPECT_EQ(1025, roomy.Size());
  EXPECT_STREQ("123456 ", roomy.String());
}

TEST(Str, TextFieldAlignsInItsWidth) {
  EXPECT_EQ("   ab", Field("ab", 5, "JR"));
  EXPECT_EQ("  ab ", Field("ab", 5, "JC"));
  EXPECT_EQ("ab   ", Field("ab", 5, nullptr));
  EXPECT_EQ("**ab**", Field("ab", 6, "F*JC"));
  EXPECT_EQ("ab   ", Field("ab", 5, "A3P1RS"));  // number letters leave texts alone
  EXPECT_EQ("abcdef", Field("abcdef", 3, "JR"));
  EXPECT_EQ("x", Field('x', 0, "JR"));
  EXPECT_EQ("   x", Field('x', 4, "JR"));
  EXPECT_EQ("..x.", Field('x', 4, "JCF."));

  Str s("xyz");
  s.CopyField(&s, 5, "JR");  // a source inside the string itself
  EXPECT_STREQ("  xyz", s.String());
}

TEST(Str, NegativeWidthsChangeNothing) {
  Str s(16L);
  s.Copy("keep");
  EXPECT_EQ(kInvalid, Thrown([&] { s.CopyField("ab", -1, nullptr); }));
  EXPECT_EQ(kInvalid, Thrown([&] { s.CopyField('c', -1, "JR"); }));
  EXPECT_EQ(kInvalid, Thrown([&] { s.AppendField(42L, -1, "JR"); }));
  EXPECT_EQ(kInvalid, Thrown([&] { s.AppendField(2.5, -3, "F0"); }));
  EXPECT_EQ(kInvalid, Thrown([&] { s.Justify(-1, true); }));
  EXPECT_STREQ("keep", s.String());
  EXPECT_EQ(17, s.Size());
}

TEST(Str, IntegerFieldPlacesSignAndPoint) {
  EXPECT_EQ("-00042", Field(-42L, 6, "JRF0"));
  EXPECT_EQ("   -42", Field(-42L, 6, "JR"));
  EXPECT_EQ("+7  ", Field(7L, 4, "S"));
  EXPECT_EQ("42.000", Field(42L, 6, "F0"));
  EXPECT_EQ("+42.**", Field(42L, 6, "SF*"));
  EXPECT_EQ("+42", Field(42L, 2, "S"));  // widened for the sign
  EXPECT_EQ("  0 ", Field(0L, 4, "JC"));
  EXPECT_EQ("7    ", Field(7L, 5, "A3P2"));  // column and precision are for doubles
}

TEST(Str, DoubleFieldCutsRoundsAndAligns) {
  EXPECT_EQ("3.14", Field(3.14159, 0, "P2"));
  EXPECT_EQ("2.67", Field(2.675, 0, "P2"));
  EXPECT_EQ("2.68", Field(2.675, 0, "P2R"));
  EXPECT_EQ("-0.3", Field(-0.25, 0, "P1R"));  // half away from zero
  EXPECT_EQ("+2.5", Field(2.5, 0, "SP3"));
  EXPECT_EQ("3.14159", Field(3.14159, 0, "P99999999999999999999999"));
  EXPECT_EQ("2.000", Field(2.0, 5, "F0"));
  EXPECT_EQ("2.5000", Field(2.5, 6, "F0"));
  EXPECT_EQ("-0002.5", Field(-2.5, 7, "JRF0"));

  // An "A" column lines the points up; past the field's end the value ends there instead.
  EXPECT_EQ("   3.5  ", Field(3.5, 8, "A4"));
  EXPECT_EQ(" 123.25 ", Field(123.25, 8, "A4"));
  EXPECT_EQ("12345.5 ", Field(12345.5, 8, "A2"));
  EXPECT_EQ("-1.5  ", Field(-1.5, 6, "A2"));
  EXPECT_EQ(" 1.5", Field(1.5, 4, "A10"));
}

TEST(Str, AppendFieldPlacesOverTheWholeText) {
  EXPECT_EQ("ab   7", Field(7L, 4, "JR", "ab"));
  EXPECT_EQ("ab   2.5", Field(2.5, 6, "JR", "ab"));
  EXPECT_EQ("   42", Field(42L, 5, "JR", ""));
  EXPECT_EQ("xy    ", Field("xy", 4, nullptr, "ab"));  // left: over the old text
  EXPECT_EQ("abx  ", Field('x', 3, "JC", "ab"));       // centred over all five characters
  EXPECT_EQ("-b004", Field(-4L, 3, "JRF0", "ab"));     // a filled field's sign starts the text
  // A value wider than the width: the field takes its length and every byte is set.
  EXPECT_EQ("abwxyz", Field("wxyz", 2, "JR", "ab"));
  EXPECT_EQ("wxyz**", Field("wxyz", 2, "F*", "ab"));

  Str s;
  s.AppendField(42L, 3, "JR");
  EXPECT_EQ(6, s.Size());
  s.AppendField(s, 4, "JR");
  EXPECT_STREQ(" 42  42", s.String());
}

TEST(Str, JustifyPadsWithBlanks) {
  Str s("ab");
  s.Justify(5, true);
  EXPECT_STREQ("   ab", s.String());
  EXPECT_EQ(6, s.Size());
  s = "ab";
  s.Justify(5, false);
  EXPECT_STREQ("ab   ", s.String());
  EXPECT_EQ(6, s.Size());
  s = "ab";
  s.Justify(1, true);
  s.Justify(2, false);
  EXPECT_STREQ("ab", s.String());
  EXPECT_EQ(3, s.Size());

  Str roomy(1024L);
  roomy.Copy("ab");
  roomy.Justify(4, true);
  roomy.Justify(6, false);
  EXPECT_STREQ("  ab  ", roomy.String());
  EXPECT_EQ(1025, roomy.Size());
}

TEST(Str, HexToStringPadsAndPrefixes) {
  EXPECT_EQ("0x00FF", Hex(255, 4, true));
  EXPECT_EQ("0", Hex(0, 0, false));
  EXPECT_EQ("0x0", Hex(0, -3, true));
  EXPECT_EQ("1A2B3C", Hex(0x1A2B3C, 2, false));
  EXPECT_EQ("0x" + std::string(98, '0') + "FF", Hex(255, 100, true));
  // Negative values are divided toward zero, not shown in two's complement.
  EXPECT_EQ("F", Hex(-1, 1, false));
  EXPECT_EQ("FF", Hex(-17, 0, false));
  EXPECT_EQ("0x00F0", Hex(-16, 4, true));
  EXPECT_EQ("0x8000000000000000", Hex(LONG_MIN, 1, true));
  EXPECT_EQ("0x7FFFFFFFFFFFFFFF", Hex(LONG_MAX, 1, true));
}

TEST(Str, ToHexReadsUpToTheFirstOtherCharacter) {
  EXPECT_EQ(31, Str("0x1f").ToHex());
  EXPECT_EQ(0, Str("0X1F").ToHex());
  EXPECT_EQ(255, Str("ff zz").ToHex());
  EXPECT_EQ(2748, Str("AbC").ToHex());
  EXPECT_EQ(0, Str("0x").ToHex());
  EXPECT_EQ(0, Str("g1").ToHex());
  EXPECT_EQ(LONG_MAX, Str("0x7fffffffffffffff").ToHex());
}

TEST(Str, StreamsReadLinesAndWriteText) {
  std::istringstream in("first line\n\nlast");
  Str s("old");
  in >> s;
  EXPECT_STREQ("first line", s.String());
  in >> s;
  EXPECT_STREQ("", s.String());
  in >> s;  // the stream ends inside the line
  EXPECT_STREQ("last", s.String());
  in >> s;
  EXPECT_STREQ("", s.String());

  std::istringstream ten("abcdefghij");
  Str grown;
  ten >> grown;
  EXPECT_STREQ("abcdefghij", grown.String());
  EXPECT_EQ(16, grown.Size());  // 1, 2, 4, 8, 16

  std::ostringstream out;
  out << Str("a b") << '|' << Str("");
  EXPECT_EQ("a b|", out.str());
}
