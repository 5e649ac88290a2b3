// Str: storage and growth, numbers, comparison and search, editing, tokens, fields, hex, streams.
#include "toolkit/str.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>

namespace {

constexpr char kRange[] = "ERROR: String position is out of range";
constexpr char kInvalid[] = "ERROR: String parameter is invalid";
constexpr char kAlloc[] = "ERROR: String can not be allocated.";

// A text and its buffer size, as "text/size"; the length must agree with the terminator.
std::string Shown(const Str& s) {
  EXPECT_EQ(static_cast<long>(std::strlen(s.String())), s.Length()) << s.String();
  return s.String() + ("/" + std::to_string(s.Size()));
}

template <class... T>
std::string Join(const T&... values) {
  std::ostringstream out;
  int n = 0;
  ((out << (n++ == 0 ? "" : "|") << values), ...);
  return out.str();
}

// Applies each edit to a new Str(before) and expects what it leaves, as Shown() gives it, or the
// message it throws; a throwing edit must leave the string as it was.
template <class Edit, class... Rest>
void Check(const char* before, Edit edit, const char* after, Rest... rest) {
  Str s(before);
  try {
    edit(s);
    EXPECT_EQ(after, Shown(s)) << before;
  } catch (const char* message) {
    EXPECT_EQ(after, std::string(message)) << before;
    EXPECT_EQ(Shown(Str(before)), Shown(s));
  }
  if constexpr (sizeof...(rest) > 0) Check(before, rest...);
}

// The text that CopyField, or AppendField behind `start`, makes of x.
template <class T>
std::string Field(T x, long width, const char* format, const char* start = nullptr) {
  Str s(start != nullptr ? start : "");
  if (start != nullptr) s.AppendField(x, width, format);
  if (start == nullptr) s.CopyField(x, width, format);
  return s.String();
}

std::string Hex(long value, int digits, bool prefix) {
  Str s;
  s.HexToString(value, digits, prefix);
  return s.String();
}

}  // namespace

TEST(Str, SizeAndAccess) {
  Str big(1024), s("aXc");
  big.Append("ab");
  EXPECT_EQ("/1|/1|/1|x/2|---/4|/1|ab/1025|ab/1025",  // copies keep the capacity
            Join(Shown(Str()), Shown(Str(-5)), Shown(Str(0)), Shown(Str('x')), Shown(Str('-', 3L)),
                 Shown(Str('-', -2L)), Shown(Str(big)), Shown(Str(&big))));
  Check(
      "abc", [](Str& t) { t.SetLength(10); }, "abc/11", [](Str& t) { t.SetLength(3); }, "abc/4",
      [](Str& t) { t.SetLength(10), t.SetSize(); }, "abc/4", [](Str& t) { t.SetSize(3); }, "ab/3",
      [](Str& t) { t.SetSize(1); }, "/1", [](Str& t) { t.SetLength(10), t.Clear(); }, "/11",
      [](Str& t) { t.SetSize(0); }, kInvalid, [](Str& t) { t.Get(3); }, kRange,
      [](Str& t) { t.Get(-1); }, kRange, [](Str& t) { t.Put('x', 3); }, kRange,
      [](Str& t) { t.Put(t.Put('X', 1), 0); }, "XXc/4");  // Put answers what it stored
  EXPECT_THROW(Str huge(LONG_MAX), const char*);
  EXPECT_EQ("c|a|1|0|0|1|0|0|-42|0",
            Join(s.Get(2), static_cast<char>(s), s == "aXc", s == "aX",
                 static_cast<int>(static_cast<char>(Str())), Str(" a").HasContent(),
                 Str(" \t\n").HasContent(), Str().HasContent(), Str(" -42abc").ToInteger(),
                 Str("x1").ToInteger()));
}

TEST(Str, GrowthRulesDifferByFamily) {
  // Assignment fits, Copy only grows, Append doubles, += fits after every change.
  Check(
      "abcdef", [](Str& s) { s = "ab"; }, "ab/3", [](Str& s) { s.Copy("ab"); }, "ab/7",
      [](Str& s) { s.SetLength(20), s = *&s; }, "abcdef/7", [](Str& s) { s.Copy('z'); }, "z/7",
      [](Str& s) { s.Append("gh"); }, "abcdefgh/16", [](Str& s) { s += "g"; }, "abcdefg/8");
  Check(
      "", [](Str& s) { s.Copy('z'); }, "z/2", [](Str& s) { s.Append("abc"), s.Append('d'); },
      "abcd/6", [](Str& s) { s.AppendToken("x"); }, "x /4",
      [](Str& s) { s << "n=" << 3L << ' ' << 0.25 << &s; }, "n=3 0.25n=3 0.25/32");
  Check(
      "ab", [](Str& s) { s.SetLength(9), s += "c"; }, "abc/4", [](Str& s) { s += s; }, "abab/5",
      [](Str& s) { s.Copy("abcdef", -1); }, kInvalid, [](Str& s) { s.AppendBytes("x", LONG_MAX); },
      kAlloc);
  Str s;
  s.AppendBytes("a\0b", 3), s.Copy("x\0yz", 4);  // exactly the bytes given, NULs included
  EXPECT_TRUE(s.Length() == 4 && std::memcmp("x\0yz", s.String(), 5) == 0);
}

TEST(Str, NumbersAndText) {
  Str texts;
  const double tiny = 4.9406564584124654e-324, huge = 1.7976931348623157e308;
  for (double x : {0.0,    -0.0, 0.1,    0.00125, 1e-6,         1e-7,
                   1.5e-7, 2.5,  1234.5, 100.0,   1.0 / 3,      2.0 / 3,
                   1e15,   1e16, 1e20,   1e100,   1e-100,       123456789012345678.0,
                   huge,   tiny, -2.5,   -1e20,   std::nan(""), -HUGE_VAL})
    texts << x << ' ';
  EXPECT_EQ(
      "0 0 0.1 0.00125 0.000001 1.e-07 1.5e-07 2.5 1234.5 100 0.333333333333333 0.666666666666667 "
      "1000000000000000 1.e+16 1.e+20 1.e+100 1.e-100 1.23456789012346e+17 1.79769313486232e+308 "
      "4.94065645841247e-324 -2.5 -1.e+20 nan -inf ",
      std::string(texts.String(), texts.Length()));
  Str s;  // a negative whole number loses its last digit, and callers rely on that
  s << 0L << ' ' << -17L << ' ' << LONG_MAX << ' ' << LONG_MIN << ' ' << -3.0 << ' ' << -123.0;
  EXPECT_EQ("0 -17 9223372036854775807 -9223372036854775808 - -12/104", Shown(s));

  // The first five are numbers; what follows white space is not examined.
  std::string answers;
  for (const char* t : {"-1.5e+3", ".5", "7\tx", "12 abc", "1E5", "", "+", "1.", "1e", "1x", "0x10",
                        ".", "-.e1", "1e+", " 1"}) {
    answers += Str(t).IsNumber() ? '1' : '0';
  }
  EXPECT_EQ("111110000000000", answers);
}

TEST(Str, ComparisonAndSearch) {
  Str abc("abc"), dir("phd_dir"), empty;
  EXPECT_THROW(abc.Compare("a", 3), const char*);
  EXPECT_THROW(empty.Compare("", 0), const char*);  // a position test on "" always throws
  EXPECT_EQ("1|1|1|0|0|1|1|0",
            Join(dir.Compare("phd"), dir.Compare(""), dir.Compare('p'), dir.Compare("phd_dir/x"),
                 empty.Compare('x'), abc.Compare("c", 2), abc.Compare('b', 1),
                 abc.Compare(Str("cd"), 2)));
  EXPECT_EQ("1|1|1|0|0|0|0", Join(Str("/x/edit_dir/").CompareRight("edit_dir/"),
                                  abc.CompareRight(""), abc.CompareRight('c'),
                                  Str("dir/").CompareRight("dir/"), abc.CompareRight(Str("abc")),
                                  empty.CompareRight(""), empty.CompareRight('c')));  // longer only
  EXPECT_EQ("1|0|1|0|1|0", Join(abc.Equals(Str("abc")), abc.Equals(Str("ab")), abc < Str("abd"),
                                abc < abc, abc.IsLessThan(&dir), abc.IsGreaterThan(&abc)));
  EXPECT_EQ("1|0|0|1|0|1|1|0",
            Join(dir.Contains("_d"), dir.Contains("dirt"), dir.Contains(""), dir.Contains('_'),
                 dir.Contains('\0'), empty.IsIn("x"), Str("hd").IsIn("phd"), dir.IsIn("phd")));

  const Str s("abcb");
  EXPECT_EQ("1|2|-1|0|4|-1", Join(s.Find("b"), s.Find(Str("cb")), s.Find("abcbx"), s.Find(""),
                                  s.Find('\0'), s.Find('x')));
  EXPECT_EQ("3|0|-1|3|-1|3", Join(s.FindRight("b"), s.FindRight(Str("ab")), s.FindRight("abcbx"),
                                  s.FindRight(""), empty.FindRight(""), s.FindRight('b')));
  // Found positions are stored, not stepped over; -1 means the last character for FindRight.
  long a = 2, b = 4, c = 1, j = -1, d = -1, e = 2, f = 1, g = 4, h = -1, i = -1;
  EXPECT_EQ("1|0|0|0|1|1|0|0|0|0",
            Join(s.Find("b", a), s.Find(Str(""), b), s.Find('a', c), s.Find("b", j),
                 s.FindRight("b", d), s.FindRight(Str("cb"), e), s.FindRight("cb", f),
                 s.FindRight('b', g), s.FindRight("abcbx", h), empty.FindRight('x', i)));
  EXPECT_EQ("3|4|1|-1|3|2|1|4|3|-1", Join(a, b, c, j, d, e, f, g, h, i));
}

TEST(Str, TakingAndAppendingParts) {
  // Taking a part reuses a buffer that has room, or makes one that fits; appending doubles.
  Check(
      "abc", [](Str& s) { s.CopyLeft("xyz", 0); }, "xyz/4",
      [](Str& s) { s.CopyRight(Str("wxyz"), 2); }, "yz/4",
      [](Str& s) { s.CopyLeft(Str("wxyz"), 99); }, "wxyz/5",
      [](Str& s) { s.CopyMid(Str("xyz"), 1, 0); }, "/4",
      [](Str& s) { s.CopyMid(Str("xyz"), 3, 5); }, "/4", [](Str& s) { s.CopyMid("xyz", 1, 9); },
      "yz/4", [](Str& s) { s.CopyMid(s, 1, 2); }, "bc/4", [](Str& s) { s.CopyEnd("xyz", 1); },
      "yz/4", [](Str& s) { s.CopyMid("xy", 3, 1); }, kRange, [](Str& s) { s.CopyMid("xy", 9, -1); },
      kInvalid, [](Str& s) { s.Append("xyz", 2); }, "abcxy/10",
      [](Str& s) { s.Append(Str("xyz"), 1, 0); }, "abcyz/10", [](Str& s) { s.Append("xyz", 2, 7); },
      "abcz/8", [](Str& s) { s.Append("xyz", 3, 1); }, "abc/4",
      [](Str& s) { s.Append(Str("xyz"), 3, 1); }, kRange,
      [](Str& s) { s.Append(Str("xy"), 9, -1); }, kInvalid,
      [](Str& s) { s.AppendLine(2.5), s.AppendLine(); }, "abc2.5\n\n/14");
  EXPECT_EQ("1|0|0|abcd/5|x/ab/5|1.5ab/6",
            Join(Str("a\n").HasLineEnd(), Str().HasLineEnd(), Str("a\nb").HasLineEnd(),
                 Shown(Str("ab") + Str("cd")), Shown("x/" + Str("ab")), Shown(1.5 + Str("ab"))));
  const Str x("abcdef");
  auto owned = [](char* array) { return std::string(std::unique_ptr<char[]>(array).get()); };
  EXPECT_EQ("abcdef|ab||cde|ef",
            Join(owned(x.CopyToChar()), owned(x.CopyToChar(2L)), owned(x.CopyToChar(0L)),
                 owned(x.CopyToChar(2L, 3L)), owned(x.CopyToChar(4L, 0L))));
  char dest[8] = "#######";
  EXPECT_EQ(dest + 5, x.StringCopy(x.StringCopy(dest, 3, true), 9, 4L, true));
  EXPECT_EQ(dest, x.StringCopy(dest, 0, 5L, false));  // no terminator, and dest is answered
  EXPECT_STREQ("fbcef", dest);
}

TEST(Str, EditingInPlace) {
  Check(
      "abc", [](Str& s) { s.Insert('-', 3); }, "abc-/8",
      [](Str& s) { s.SetLength(9), s.Insert(s.String() + 1, 0); }, "bcabc/10",
      [](Str& s) { s.Insert('-', 4); }, kRange, [](Str& s) { s.Replace("XYZ", 2); }, "abXYZ/10",
      [](Str& s) { s.Replace('Z', 1); }, "aZc/4", [](Str& s) { s.Replace("XYZ", 1, 1); }, "aXc/4",
      [](Str& s) { s.Replace(Str("XYZ"), 1, 9); }, "aXYZ/8", [](Str& s) { s.Replace(s, 2, 2); },
      "abab/8", [](Str& s) { s.Replace("X", 3); }, kRange,
      [](Str& s) { s.Replace(Str("x"), 9, -1); }, kInvalid, [](Str& s) { s.ReplaceEnd("XY", 1); },
      "aXY/4", [](Str& s) { s.ReplaceEnd(42L, 3); }, "abc42/10",
      [](Str& s) { s.ReplaceEnd('X', 4); }, kRange, [](Str& s) { s.Delete(1); }, "ac/4",
      [](Str& s) { s.Delete(0, 2); }, "c/4", [](Str& s) { s.Delete(2, 3); }, "ab/4",
      [](Str& s) { s.DeleteLeft(2); }, "c/4", [](Str& s) { s.DeleteLeft(9); }, "/4",
      [](Str& s) { s.DeleteRight(2); }, "a/4", [](Str& s) { s.DeleteRight(9); }, "/4",
      [](Str& s) { s.DeleteEnd(0); }, "/4", [](Str& s) { s.Delete(3); }, kRange,
      [](Str& s) { s.Delete(-1, 1); }, kRange, [](Str& s) { s.Delete(9, -1); }, kInvalid,
      [](Str& s) { s.DeleteRight(-1); }, kInvalid, [](Str& s) { s.DeleteEnd(3); }, kRange,
      [](Str& s) { delete[] s.CopyToChar(-1L); }, kInvalid,
      [](Str& s) { delete[] s.CopyToChar(3L, 1L); }, kRange,
      [](Str& s) { s.StringCopy(nullptr, 1, 3L, true); }, kRange);
  Check(
      " \t A-z \n", [](Str& s) { s.RemoveEndSpaces(); }, "A-z/9",
      [](Str& s) { s.RemoveLeftSpaces(); }, "A-z \n/9", [](Str& s) { s.RemoveRightSpaces(); },
      " \t A-z/9", [](Str& s) { s.UpperCase(); }, " \t A-Z \n/9", [](Str& s) { s.LowerCase(); },
      " \t a-z \n/9", [](Str& s) { s.Reverse(); }, "\n z-A \t /9");
  Check(
      "\f\v\r ", [](Str& s) { s.RemoveRightSpaces(); }, "/5", [](Str& s) { s.Fill('x'); }, "xxxx/5",
      [](Str& s) { s.Fill('+', 2); }, "++/5", [](Str& s) { s.Fill('-', 5); }, "-----/10",
      [](Str& s) { s.Fill('x', -1); }, kInvalid);
}

TEST(Str, TokensCarryTheirSeparator) {
  // CopyToken doubles like Append; for one character that is 4 bytes when the size is below 3.
  Check(
      "", [](Str& s) { s.AppendToken('A'), s.AppendToken(59L), s.AppendLine(12L); }, "A 59 12\n/10",
      [](Str& s) { s.CopyToken("x", ';'), s.AppendToken("y", ';'); }, "x;y;/8",
      [](Str& s) { s.CopyToken('x'), s.AppendToken(-2.5, ','); }, "x -2.5,/14");
  Check(
      "ab", [](Str& s) { s.CopyToken('x', ';'); }, "x;/3", [](Str& s) { s.CopyToken(s); }, "ab /6",
      [](Str& s) { s.SetLength(1024), s.CopyToken(-12L); }, "-12 /1025");
}

TEST(Str, FieldsAndJustification) {
  // Only upper-case format letters count; "J" consumes the letter behind it and the later of "A"
  // and "J" wins.
  EXPECT_EQ("   ab|  ab |ab   |**ab**|ab   |abcdef|x|..x.",
            Join(Field("ab", 5, "JR"), Field("ab", 5, "JC"), Field("ab", 5, nullptr),
                 Field("ab", 6, "F*JC"), Field("ab", 5, "A3P1RS"), Field("abcdef", 3, "JR"),
                 Field('x', 0, "JR"), Field('x', 4, "JCF.")));
  EXPECT_EQ(
      "-00042|   -42|+7  |42.000|+42|  0 |7    |7   |  7 |7   |7  ",
      Join(Field(-42L, 6, "JRF0"), Field(-42L, 6, "JR"), Field(7L, 4, "S"), Field(42L, 6, "F0"),
           Field(42L, 2, "S"), Field(0L, 4, "JC"), Field(7L, 5, "A3P2"), Field(7L, 4, "JS"),
           Field(7L, 4, "A5JC"), Field(7L, 4, "jr s"), Field(7L, 3, "xF")));
  // "P" cuts, "R" first moves half a unit away from zero; "F" gives fixed decimals.
  EXPECT_EQ("3.14|2.67|2.68|-0.3|+2.5|3.14159|2.000|2.5000|-0002.5",
            Join(Field(3.14159, 0, "P2"), Field(2.675, 0, "P2"), Field(2.675, 0, "P2R"),
                 Field(-0.25, 0, "P1R"), Field(2.5, 0, "SP3"),
                 Field(3.14159, 0, "P99999999999999999999999"), Field(2.0, 5, "F0"),
                 Field(2.5, 6, "F0"), Field(-2.5, 7, "JRF0")));
  // An "A" column lines the points up; past the field's end the value ends there instead.
  EXPECT_EQ("   3.5  | 123.25 |12345.5 |-1.5  | 1.5",
            Join(Field(3.5, 8, "A4"), Field(123.25, 8, "A4"), Field(12345.5, 8, "A2"),
                 Field(-1.5, 6, "A2"), Field(1.5, 4, "A10")));
  // AppendField places the value as if the whole text were the field.
  EXPECT_EQ("ab   7|ab   2.5|xy    |abx  |-b004|abwxyz|wxyz**",
            Join(Field(7L, 4, "JR", "ab"), Field(2.5, 6, "JR", "ab"), Field("xy", 4, nullptr, "ab"),
                 Field('x', 3, "JC", "ab"), Field(-4L, 3, "JRF0", "ab"),
                 Field("wxyz", 2, "JR", "ab"), Field("wxyz", 2, "F*", "ab")));
  Check(
      "ab", [](Str& s) { s.CopyField(&s, 5, "JR"); }, "   ab/6",
      [](Str& s) { s.Clear(), s.AppendField(42L, 3, "JR"), s.AppendField(s, 4, "JR"); },
      " 42  42/14", [](Str& s) { s.Justify(5, true); }, "   ab/6",
      [](Str& s) { s.Justify(5, false); }, "ab   /6",
      [](Str& s) { s.Justify(1, true), s.Justify(2, false); }, "ab/3",
      [](Str& s) { s.SetLength(1024), s.Justify(4, true), s.Justify(6, false); }, "  ab  /1025",
      [](Str& s) { s.CopyField("ab", -1, nullptr); }, kInvalid,
      [](Str& s) { s.AppendField(2.5, -3, "F0"); }, kInvalid, [](Str& s) { s.Justify(-1, true); },
      kInvalid);
}

TEST(Str, HexadecimalTextAndStreams) {
  // Negative values are divided toward zero, not shown in two's complement.
  EXPECT_EQ("0x00FF|0|0x0|1A2B3C|F|FF|0x00F0|0x8000000000000000|0x7FFFFFFFFFFFFFFF",
            Join(Hex(255, 4, true), Hex(0, 0, false), Hex(0, -3, true), Hex(0x1A2B3C, 2, false),
                 Hex(-1, 1, false), Hex(-17, 0, false), Hex(-16, 4, true), Hex(LONG_MIN, 1, true),
                 Hex(LONG_MAX, 1, true)));
  EXPECT_EQ("0x" + std::string(98, '0') + "FF", Hex(255, 100, true));
  EXPECT_EQ("31|0|255|2748|0|0|9223372036854775807",
            Join(Str("0x1f").ToHex(), Str("0X1F").ToHex(), Str("ff zz").ToHex(), Str("AbC").ToHex(),
                 Str("0x").ToHex(), Str("g1").ToHex(), Str("0x7fffffffffffffff").ToHex()));

  std::istringstream in("first line\n\nlast"), ten("abcdefghij");
  std::ostringstream out;
  Str a("old"), b("old"), c, d("old"), grown;
  in >> a >> b >> c >> d;  // the stream ends inside the third line
  ten >> grown;            // the buffer doubles: 1, 2, 4, 8, 16
  out << Str("a b") << Str("") << '|';
  EXPECT_EQ("first line||last||abcdefghij/16|a b|", Join(a, b, c, d, Shown(grown), out.str()));
}
