// Str: storage and growth, numbers, comparison and search, editing, tokens, fields, hex, streams.
// Most cases are rows named by their own code: EDIT applies code to a fresh string and expects
// what it leaves ("text/size") or the message it throws; Q expects the value of an expression.
#include <climits>
#include <cmath>
#include <sstream>

#include "test_util.h"

static const char kRange[] = "ERROR: String position is out of range";
static const char kInvalid[] = "ERROR: String parameter is invalid";
static const char kAlloc[] = "ERROR: String can not be allocated.";

namespace {

struct Edit {
  const char* code;
  std::function<void(Str&)> apply;
  std::string want;  // "text/size", or the message thrown
};
// clang-format off
#define EDIT(code, want) Edit{#code, [](Str& s) { code; }, want}
// clang-format on

// Applies each edit to a fresh Str(before); one that throws must leave the string as it was.
template <class... Edits>
void ExpectEdits(const char* before, const Edits&... edits) {
  for (const Edit& e : {edits...}) {
    Str s(before);
    try {
      e.apply(s);
      EXPECT_EQ(Shown(s), e.want) << '"' << before << "\": " << e.code;
    } catch (const char* message) {
      EXPECT_EQ(message, e.want) << '"' << before << "\": " << e.code;
      EXPECT_EQ(Shown(s), Shown(Str(before))) << '"' << before << "\": " << e.code;
    }
  }
}

std::string Float(double x) {
  char text[Str::kNumberTextSize];
  return std::string(text, Str::ConvertFloat(x, text));
}

// The text a field call leaves in "ab".
template <class T>
std::string Field(T x, long width, const char* format, bool append = false) {
  Str s("ab");
  append ? s.AppendField(x, width, format) : s.CopyField(x, width, format);
  return s.String();
}

}  // namespace

// Copies keep the capacity. Assignment fits the buffer, Copy only grows it, Append doubles it,
// += fits it after every change; a character grows it only when it and the terminator do not
// fit. A token is its text and one separator; CopyToken doubles like Append.
TEST(Str, ConstructionAccessAndGrowth) {
  Str big(1024L), text("aXc"), line("old");
  big.Append("ab");
  Walk(Q(Str(-5), "/1"), Q(Str('x'), "x/2"), Q(Str('-', 3L), "---/4"), Q(Str(big), "ab/1025"),
       Q(text.Get(2), 'c'), Q(static_cast<char>(text), 'a'), Q(text == "aXc", true),
       Q(Str(" a").HasContent(), true), Q(Str(" \t\n\v\f\r").HasContent(), false),
       Q(Str(" -42abc").ToInteger(), -42));
  EXPECT_THROW(Str huge(LONG_MAX), const char*);
  std::istringstream lines("first line\nx");  // a line read from a stream replaces the text
  Walk(DO(lines >> line), STEP(line, "first line/16"), DO(lines >> line), STEP(line, "x/16"));
  ExpectEdits("abc", EDIT(s.SetLength(10), "abc/11"), EDIT(s.SetLength(10); s.SetSize(), "abc/4"),
              EDIT(s.SetSize(3), "ab/3"), EDIT(s.SetSize(1), "/1"), EDIT(s.SetSize(0), kInvalid),
              EDIT(s.Get(3), kRange), EDIT(s.Get(-1), kRange),
              EDIT(s.Put(s.Put('X', 1), 0), "XXc/4"));
  ExpectEdits("abcdef", EDIT(s = "ab", "ab/3"), EDIT(s.Copy("ab"), "ab/7"),
              EDIT(s.Copy('z'), "z/7"), EDIT(s.Append("gh"), "abcdefgh/16"),
              EDIT(s += "g", "abcdefg/8"));
  ExpectEdits("", EDIT(s << "n=" << 3L << ' ' << 0.25 << &s, "n=3 0.25n=3 0.25/32"),
              EDIT(s.AppendToken('A'); s.AppendToken(59L); s.AppendLine(12L), "A 59 12\n/10"),
              EDIT(s.CopyToken('x'); s.AppendToken(-2.5, ','), "x -2.5,/14"),
              EDIT(s.AppendToken('B', ','), "B,/4"));
  ExpectEdits("ab", EDIT(s.Append('c'), "abc/6"), EDIT(s.SetLength(9); s.Append('c'), "abc/10"),
              EDIT(s += s, "abab/5"), EDIT(s.Copy("abcdef", -1), kInvalid),
              EDIT(s.Copy("abcdef", 0), "/3"), EDIT(s.AppendBytes("x", LONG_MAX), kAlloc),
              EDIT(s.CopyToken('x', ';'), "x;/3"),
              EDIT(s.SetLength(1024); s.CopyToken(-12L), "-12 /1025"));
}

// Integers at both sides of every power of ten, so every digit count; the bytes past the
// terminator stay put. Doubles: at most 15 significant digits, no trailing zeros, plain from 1e-6
// to below 1e16; a negative whole number loses its last digit, and callers rely on that.
TEST(Str, NumberText) {
  std::vector<long> values = {0, LONG_MAX, LONG_MIN, LONG_MIN + 1};
  for (long p = 1; p <= LONG_MAX / 10; p *= 10)
    for (long v : {p - 1, p, p + 1, p * 10 - 1}) values.insert(values.end(), {v, -v});
  for (long v : values) {
    std::string text(Str::kNumberTextSize, '#');
    const int n = Str::ConvertInteger(v, text.data());
    EXPECT_EQ(text, std::to_string(v) + '\0' + std::string(Str::kNumberTextSize - n - 1, '#'));
  }
  Walk(Q(Float(-0.0), "0"), Q(Float(0.1), "0.1"), Q(Float(0.00125), "0.00125"),
       Q(Float(1e-6), "0.000001"), Q(Float(1e-7), "1.e-07"), Q(Float(1.5e-7), "1.5e-07"),
       Q(Float(1234.5), "1234.5"), Q(Float(100.0), "100"), Q(Float(2.0 / 3), "0.666666666666667"),
       Q(Float(1e15), "1000000000000000"), Q(Float(1e16), "1.e+16"), Q(Float(1e100), "1.e+100"),
       Q(Float(1e-100), "1.e-100"), Q(Float(123456789012345678.0), "1.23456789012346e+17"),
       Q(Float(1.9999999999999998), "2"), Q(Float(1.0000000000000044), "1"),
       Q(Float(9.9999999999999982), "10"), Q(Float(-2.5), "-2.5"), Q(Float(-3.0), "-"),
       Q(Float(-123.0), "-12"), Q(Float(std::nan("")), "nan"), Q(Float(-HUGE_VAL), "-inf"));
  // [+-] (digits [. digits] | . digits) [(e|E) [+-] digits], then the end or white space.
  for (const char* yes : {"-1.5e+3", ".5", "7\tx", "12 abc", "1E5"})
    EXPECT_TRUE(Str(yes).IsNumber()) << yes;
  for (const char* no : {"", "+", "1.", "1e", "1x", "0x10", "-.e1", " 1"})
    EXPECT_FALSE(Str(no).IsNumber()) << no;
}

// Compare is a prefix test, CompareRight a suffix test on a strictly longer text. The position
// forms of Find store what they find in pos and leave it alone otherwise; -1 stands for the last
// character in FindRight.
TEST(Str, ComparisonAndSearch) {
  Str abc("abc"), dir("phd_dir"), e, s("abcb"), bNul;
  bNul.Copy("b\0", 2);
  Walk(Q(dir.Compare("phd"), true), Q(dir.Compare(""), true),
       Q(dir.Compare(Str("phd_dir/x")), false), Q(dir.Compare('p'), true),
       Q(abc.Compare("c", 2), true), Q(abc.Compare(Str("cd"), 2), false),
       Q(abc.Compare('b', 1), true), Q(Str("/x/edit_dir/").CompareRight("edit_dir/"), true),
       Q(abc.CompareRight(Str("bc")), true), Q(abc.CompareRight(""), true),
       Q(abc.CompareRight(Str("abc")), false), Q(Str("dir/").CompareRight("dir/"), false),
       Q(abc.CompareRight('c'), true), Q(e.CompareRight('\0'), false),
       Q(abc.Equals(Str("abc")), true), Q(abc.Equals(Str("abd")), false), Q(abc < Str("abd"), true),
       Q(abc < abc, false), Q(abc.IsLessThan(&dir), true), Q(dir.IsGreaterThan(&abc), true),
       Q(abc.IsGreaterThan(&abc), false), Q(dir.Contains("_"), true),
       Q(dir.Contains(Str("_d")), true), Q(dir.Contains(""), false), Q(dir.Contains('_'), true),
       Q(dir.Contains('\0'), false), Q(Str("hd").IsIn("phd"), true), Q(dir.IsIn("phd"), false),
       Q(s.Find("b"), 1L), Q(s.Find(""), 0L), Q(s.Find(Str("cb")), 2L), Q(s.Find("abcbx"), -1L),
       Q(s.Find('\0'), 4L), Q(s.Find('x'), -1L), Q(Str("ab").Find(bNul), -1L),
       Q(s.FindRight("b"), 3L), Q(s.FindRight(Str("ab")), 0L), Q(s.FindRight(Str("b")), 3L),
       Q(s.FindRight("abcbx"), -1L), Q(s.FindRight(""), 3L), Q(e.FindRight(""), -1L),
       Q(s.FindRight('b'), 3L));
  EXPECT_THROW(abc.Compare("a", 3), const char*);
  EXPECT_THROW(e.Compare("", 0), const char*);  // a position test on "" always throws
  long pos = 0;
  Walk(STEP(s.Find("b", pos = 2), true), STEP(pos, 3L), STEP(s.Find(Str(""), pos = 4), false),
       STEP(pos, 4L), STEP(s.Find('a', pos = 1), false), STEP(pos, 1L),
       STEP(s.FindRight("b", pos = -1), true), STEP(pos, 3L),
       STEP(s.FindRight(Str("cb"), pos = 2), true), STEP(pos, 2L),
       STEP(s.FindRight("cb", pos = 1), false), STEP(pos, 1L),
       STEP(s.FindRight('b', pos = 2), true), STEP(pos, 1L),
       STEP(s.FindRight("abcbx", pos = -1), false), STEP(pos, 3L),
       STEP(e.FindRight('x', pos = -1), false), STEP(pos, -1L));
}

// Taking a part reuses a buffer that has room, or makes one that fits; appending, inserting and
// overwriting double it; deleting never moves it. Counts of 0 take all for CopyLeft, CopyRight
// and the ranges of Append; positions are checked before counts.
TEST(Str, Editing) {
  ExpectEdits(
      "abc", EDIT(s.CopyLeft("xyz", 0), "xyz/4"), EDIT(s.CopyRight(Str("wxyz"), 2), "yz/4"),
      EDIT(s.CopyMid(Str("xyz"), 1, 0), "/4"), EDIT(s.CopyMid(s, 1, 2), "bc/4"),
      EDIT(s.CopyEnd("xyz", 1), "yz/4"), EDIT(s.CopyMid("xy", 3, 1), kRange),
      EDIT(s.CopyMid("xy", 9, -1), kInvalid), EDIT(s.Append("xyz", 2), "abcxy/10"),
      EDIT(s.Append(Str("xyz"), 1, 0), "abcyz/10"), EDIT(s.Append("xyz", 2, 7), "abcz/8"),
      EDIT(s.Append(Str("xyz"), 3, 1), kRange),
      EDIT(s.AppendLine(2.5); s.AppendLine(), "abc2.5\n\n/14"), EDIT(s.Insert('-', 3), "abc-/8"),
      EDIT(s.Insert(Str("XY"), 1), "aXYbc/10"), EDIT(s.InsertLeft('-'), "-abc/8"),
      EDIT(s.SetLength(9); s.Insert(s.String() + 1, 0), "bcabc/10"), EDIT(s.Insert('-', 4), kRange),
      EDIT(s.Replace("XYZ", 2), "abXYZ/10"), EDIT(s.Replace("XYZ", 1, 1), "aXc/4"),
      EDIT(s.Replace(s, 2, 2), "abab/8"), EDIT(s.Replace("X", 3), kRange),
      EDIT(s.ReplaceEnd(42L, 3), "abc42/10"), EDIT(s.ReplaceEnd('X', 4), kRange),
      EDIT(s.Delete(1), "ac/4"), EDIT(s.Delete(0, 2), "c/4"), EDIT(s.Delete(2, 3), "ab/4"),
      EDIT(s.DeleteLeft(2), "c/4"), EDIT(s.DeleteRight(9), "/4"), EDIT(s.DeleteEnd(0), "/4"),
      EDIT(s.Delete(3), kRange), EDIT(s.Delete(9, -1), kInvalid),
      EDIT(delete[] s.CopyToChar(-1L), kInvalid), EDIT(s.StringCopy(nullptr, 1, 3L, true), kRange));
  ExpectEdits(" \t A-z \n", EDIT(s.RemoveEndSpaces(), "A-z/9"),
              EDIT(s.RemoveLeftSpaces(), "A-z \n/9"), EDIT(s.UpperCase(), " \t A-Z \n/9"),
              EDIT(s.LowerCase(), " \t a-z \n/9"), EDIT(s.Reverse(), "\n z-A \t /9"));
  ExpectEdits("\f\v\r ", EDIT(s.RemoveRightSpaces(), "/5"), EDIT(s.Fill('x'), "xxxx/5"),
              EDIT(s.Fill('-', 5), "-----/10"), EDIT(s.Fill('x', -1), kInvalid));
  const Str x("abcdef");
  char dest[8] = "#######";
  Walk(Q(Str("a\n").HasLineEnd(), true), Q(Str("a\nb").HasLineEnd(), false),
       Q(std::unique_ptr<char[]>(x.CopyToChar(2L)).get(), "ab"), Q("x/" + Str("ab"), "x/ab/5"),
       Q(std::unique_ptr<char[]>(x.CopyToChar(4L, 0L)).get(), "ef"));
  EXPECT_EQ(x.StringCopy(dest + 3, 9, 4L, true), dest + 5);  // with a terminator: where it is
  EXPECT_EQ(x.StringCopy(dest, 0, 3L, false), dest);         // without one: dest itself
  EXPECT_STREQ(dest, "defef");
}

// Only upper-case format letters count; "J" consumes the letter behind it, and the later of "A"
// and "J" wins. "P" cuts, "R" first moves half a unit away from zero, "F" gives fixed decimals;
// an "A" column lines up the points of doubles (integers ignore it), and past the field's end
// the value ends there instead. AppendField places the value as if the whole text were the field.
TEST(Str, Fields) {
  Walk(Q(Field("ab", 5, "JR"), "   ab"), Q(Field("ab", 6, "F*JC"), "**ab**"),
       Q(Field("ab", 5, "A3P1RS"), "ab   "), Q(Field("abcdef", 3, "JR"), "abcdef"),
       Q(Field('x', 4, "JCF."), "..x."), Q(Field(-42L, 6, "JRF0"), "-00042"),
       Q(Field(-42L, 6, "JR"), "   -42"), Q(Field(7L, 4, "S"), "+7  "),
       Q(Field(42L, 6, "F0"), "42.000"), Q(Field(7L, 4, "A5JC"), "  7 "),
       Q(Field(7L, 4, "jr s"), "7   "), Q(Field(2.675, 0, "P2"), "2.67"),
       Q(Field(2.675, 0, "P2R"), "2.68"), Q(Field(1.044, 0, "P2R"), "1.04"),
       Q(Field(-0.25, 0, "P1R"), "-0.3"), Q(Field(2.5, 0, "SP3"), "+2.5"),
       Q(Field(-2.5, 7, "JRF0"), "-0002.5"), Q(Field(3.5, 8, "A4"), "   3.5  "),
       Q(Field(12345.5, 8, "A2"), "12345.5 "), Q(Field(1.5, 4, "A10"), " 1.5"),
       Q(Field(7L, 4, "JR", true), "ab   7"), Q(Field("xy", 4, nullptr, true), "xy    "),
       Q(Field('x', 3, "JC", true), "abx  "), Q(Field(-4L, 3, "JRF0", true), "-b004"),
       Q(Field(7L, 4, "A2", true), "7b    "), Q(Field(7.0, 4, "A5", true), "ab  7 "));
  ExpectEdits("ab", EDIT(s.CopyField(&s, 5, "JR"), "   ab/6"),
              EDIT(s.Clear(); s.AppendField(42L, 3, "JR"); s.AppendField(s, 4, "JR"), " 42  42/14"),
              EDIT(s.Justify(5, true), "   ab/6"), EDIT(s.Justify(5, false), "ab   /6"),
              EDIT(s.SetLength(1024); s.Justify(4, true); s.Justify(6, false), "  ab  /1025"),
              EDIT(s.CopyField("ab", -1, nullptr), kInvalid), EDIT(s.Justify(-1, true), kInvalid));
}

// Hexadecimal text in both directions; negative values are divided toward zero, not shown in
// two's complement.
TEST(Str, HexadecimalText) {
  ExpectEdits("", EDIT(s.HexToString(255, 4, true), "0x00FF/7"),
              EDIT(s.HexToString(-17, 0, false), "FF/3"),
              EDIT(s.HexToString(LONG_MIN, 1, true), "0x8000000000000000/19"));
  Walk(Q(Str("0x1f").ToHex(), 31L), Q(Str("0X1F").ToHex(), 0L), Q(Str("ff zz").ToHex(), 255L),
       Q(Str("AbC").ToHex(), 2748L), Q(Str("F0").ToHex(), 240L));
}
