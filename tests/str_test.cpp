// Str core (storage, growth, numbers, errors) and the comparison and search family.
#include "toolkit/str.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace {

constexpr char kRange[] = "ERROR: String position is out of range";
constexpr char kInvalid[] = "ERROR: String parameter is invalid";
constexpr char kAlloc[] = "ERROR: String can not be allocated.";

// The message a call throws, or "" when it returns normally.
std::string Thrown(const std::function<void()>& call) {
  try {
    call();
  } catch (const char* message) {
    return message;
  }
  return "";
}

std::string Text(double x) {
  char text[Str::kNumberTextSize];
  int n = Str::ConvertFloat(x, text);
  EXPECT_EQ(std::strlen(text), static_cast<size_t>(n)) << text;
  return text;
}

std::string Text(long x) {
  char text[Str::kNumberTextSize];
  int n = Str::ConvertInteger(x, text);
  EXPECT_EQ(std::strlen(text), static_cast<size_t>(n)) << text;
  return text;
}

// "abc" in a buffer of 11 bytes, so that growth and shrinking both show in Size().
Str Roomy() {
  Str s(10L);
  s.Copy("abc");
  return s;
}

}  // namespace

TEST(Str, ConstructorsSetSizeAndLength) {
  Str empty;
  EXPECT_EQ(1, empty.Size());
  EXPECT_EQ(0, empty.Length());
  EXPECT_STREQ("", empty.String());
  EXPECT_EQ(1, Str(-5).Size());
  EXPECT_EQ(1, Str(0).Size());
  EXPECT_EQ(1025, Str(1024).Size());

  Str big(1024);
  big.Append("ab");
  Str copy(big);
  Str viaPointer(&big);
  EXPECT_STREQ("ab", copy.String());
  EXPECT_EQ(1025, copy.Size());
  EXPECT_EQ(1025, viaPointer.Size());
  EXPECT_NE(big.String(), copy.String());

  Str text("abc");
  EXPECT_EQ(4, text.Size());
  EXPECT_EQ(3, text.Length());
  Str one('x');
  EXPECT_STREQ("x", one.String());
  EXPECT_EQ(2, one.Size());
  Str dashes('-', 3L);
  EXPECT_STREQ("---", dashes.String());
  EXPECT_EQ(4, dashes.Size());
  Str none('-', -2L);
  EXPECT_STREQ("", none.String());
  EXPECT_EQ(1, none.Size());
}

TEST(Str, SizeManagement) {
  Str s("abc");
  s.SetLength(10);
  EXPECT_EQ(11, s.Size());
  EXPECT_STREQ("abc", s.String());
  s.SetLength(5);
  EXPECT_EQ(11, s.Size());
  s.SetSize();
  EXPECT_EQ(4, s.Size());
  s.SetSize(1);
  EXPECT_STREQ("", s.String());
  EXPECT_EQ(0, s.Length());
  EXPECT_EQ(1, s.Size());

  Str t = Roomy();
  t.SetSize(3);
  EXPECT_STREQ("ab", t.String());
  t.Clear();
  EXPECT_EQ(0, t.Length());
  EXPECT_EQ(3, t.Size());
}

TEST(Str, AssignmentFitsCopyGrowsAppendDoubles) {
  Str assigned(1024);
  assigned = "ab";
  EXPECT_EQ(3, assigned.Size());
  Str& alias = assigned;
  assigned = alias;
  EXPECT_STREQ("ab", assigned.String());
  assigned = 'q';
  EXPECT_EQ(2, assigned.Size());

  Str copied(1024);
  copied.Copy("ab");
  EXPECT_EQ(1025, copied.Size());
  Str small;
  small.Copy("abc");
  EXPECT_EQ(4, small.Size());
  small.Copy("x");
  EXPECT_EQ(4, small.Size());

  // Copy(char) reuses any buffer of two bytes or more and grows a one-byte buffer to two.
  Str single;
  single.Copy('z');
  EXPECT_STREQ("z", single.String());
  EXPECT_EQ(2, single.Size());
  copied.Copy('z');
  EXPECT_EQ(1025, copied.Size());

  Str appended;
  appended.Append("abc");
  EXPECT_EQ(6, appended.Size());
  appended.Append('d');
  EXPECT_EQ(6, appended.Size());
  appended.Append("ef");
  EXPECT_STREQ("abcdef", appended.String());
  EXPECT_EQ(12, appended.Size());
  appended.Append(appended);
  EXPECT_STREQ("abcdefabcdef", appended.String());
  EXPECT_EQ(24, appended.Size());

  Str token;
  token.AppendToken("x");
  EXPECT_STREQ("x ", token.String());
  EXPECT_EQ(2, token.Length());
  EXPECT_EQ(4, token.Size());
}

TEST(Str, BytesPastNulAreKept) {
  Str s;
  s.AppendBytes("a\0b", 3);
  EXPECT_EQ(3, s.Length());
  EXPECT_EQ(6, s.Size());
  s.AppendBytes("c", 1);
  EXPECT_EQ(0, std::memcmp("a\0bc", s.String(), 5));

  Str copy;
  copy.Copy("x\0yz", 4);
  EXPECT_EQ(4, copy.Length());
  EXPECT_EQ('z', copy.Get(3));
  copy.AppendBytes("", 0);
  EXPECT_EQ(4, copy.Length());
}

TEST(Str, NumberToText) {
  const std::vector<std::pair<double, const char*>> cases = {
      {0.0, "0"},
      {-0.0, "0"},
      {0.1, "0.1"},
      {0.00125, "0.00125"},
      {1e-6, "0.000001"},
      {1e-7, "1.e-07"},
      {1.5e-7, "1.5e-07"},
      {2.5, "2.5"},
      {1234.5, "1234.5"},
      {7.0, "7"},
      {100.0, "100"},
      {1.0 / 3, "0.333333333333333"},
      {2.0 / 3, "0.666666666666667"},
      {1e15, "1000000000000000"},
      {1e16, "1.e+16"},
      {1e20, "1.e+20"},
      {1e100, "1.e+100"},
      {1e-100, "1.e-100"},
      {123456789012345678.0, "1.23456789012346e+17"},
      {DBL_MAX, "1.79769313486232e+308"},
      {std::numeric_limits<double>::denorm_min(), "4.94065645841247e-324"},
      {-2.5, "-2.5"},
      {-1e20, "-1.e+20"},
      {-1.5e-7, "-1.5e-07"},
      // A negative whole number loses its last digit; callers rely on that.
      {-3.0, "-"},
      {-123.0, "-12"},
      {std::nan(""), "nan"},
      {HUGE_VAL, "inf"},
      {-HUGE_VAL, "-inf"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.second, Text(c.first)) << c.first;

  EXPECT_EQ("0", Text(0L));
  EXPECT_EQ("-17", Text(-17L));
  EXPECT_EQ("1234567890", Text(1234567890L));
  EXPECT_EQ("9223372036854775807", Text(LONG_MAX));
  EXPECT_EQ("-9223372036854775808", Text(LONG_MIN));

  Str s;
  s << 12L << ' ' << 0.5;
  s.Append(-7L);
  EXPECT_STREQ("12 0.5-7", s.String());
  s = 1e16;
  EXPECT_STREQ("1.e+16", s.String());
  s.Copy(-40L);
  EXPECT_STREQ("-40", s.String());
}

TEST(Str, IsNumberGrammar) {
  for (const char* yes : {"-1.5e+3", ".5", "7\tx", "12 abc", "+0", "1E5", "3.25e-2\n"}) {
    EXPECT_TRUE(Str(yes).IsNumber()) << yes;
  }
  for (const char* no : {"", "+", "1.", "1e", "1x", "0x10", ".", "-.e1", "1e+", " 1", "1.5.2"}) {
    EXPECT_FALSE(Str(no).IsNumber()) << no;
  }
  EXPECT_EQ(-42, Str(" -42abc").ToInteger());
  EXPECT_EQ(0, Str("x1").ToInteger());
}

TEST(Str, AccessAndContent) {
  Str s("abc");
  EXPECT_EQ('b', s.Get(1));
  EXPECT_EQ('X', s.Put('X', 1));
  EXPECT_STREQ("aXc", s.String());
  EXPECT_EQ(kRange, Thrown([&] { s.Get(3); }));
  EXPECT_EQ(kRange, Thrown([&] { s.Get(-1); }));
  EXPECT_EQ(kRange, Thrown([&] { s.Put('z', 3); }));
  EXPECT_EQ('a', static_cast<char>(s));
  EXPECT_EQ('\0', static_cast<char>(Str()));
  EXPECT_TRUE(s == "aXc");
  EXPECT_FALSE(s == "aX");

  EXPECT_FALSE(Str(" \t\n").HasContent());
  EXPECT_FALSE(Str().HasContent());
  EXPECT_TRUE(Str(" a").HasContent());
}

TEST(Str, ErrorsLeaveTheStringUnchanged) {
  const std::vector<std::pair<const char*, std::function<void(Str&)>>> calls = {
      {kRange, [](Str& s) { s.Put('x', 3); }},
      {kInvalid, [](Str& s) { s.Copy("abcdef", -1); }},
      {kInvalid, [](Str& s) { s.AppendBytes("x", -1); }},
      {kInvalid, [](Str& s) { s.SetSize(0); }},
      {kAlloc, [](Str& s) { s.SetSize(1L << 40); }},
      {kAlloc, [](Str& s) { s.SetLength(LONG_MAX); }},
      {kAlloc, [](Str& s) { s.AppendBytes("x", LONG_MAX); }},
      {kRange, [](Str& s) { s.Compare("a", 3); }},
      {kRange, [](Str& s) { s.Compare('a', -1); }},
  };
  for (const auto& call : calls) {
    Str s = Roomy();
    EXPECT_EQ(call.first, Thrown([&] { call.second(s); }));
    EXPECT_STREQ("abc", s.String());
    EXPECT_EQ(3, s.Length());
    EXPECT_EQ(11, s.Size());
  }
  EXPECT_EQ(kAlloc, Thrown([] { Str huge(LONG_MAX); }));
}

TEST(Str, ComparePrefixAndSuffix) {
  Str dir("phd_dir");
  EXPECT_TRUE(dir.Compare("phd"));
  EXPECT_TRUE(dir.Compare(Str("phd_dir")));
  EXPECT_TRUE(dir.Compare(""));
  EXPECT_FALSE(dir.Compare("phd_dir/x"));
  EXPECT_TRUE(dir.Compare('p'));
  EXPECT_FALSE(Str().Compare('x'));

  Str abc("abc");
  EXPECT_TRUE(abc.Compare("c", 2));
  EXPECT_TRUE(abc.Compare(Str("bc"), 1));
  EXPECT_FALSE(abc.Compare("cd", 2));
  EXPECT_TRUE(abc.Compare('b', 1));
  EXPECT_EQ(kRange, Thrown([&] { abc.Compare("ab", 3); }));
  EXPECT_EQ(kRange, Thrown([] { Str().Compare("", 0); }));

  EXPECT_FALSE(Str("edit_dir/").CompareRight("edit_dir/"));
  EXPECT_TRUE(Str("/home/x/edit_dir/").CompareRight("edit_dir/"));
  EXPECT_TRUE(abc.CompareRight(Str("")));
  EXPECT_FALSE(Str().CompareRight(""));
  EXPECT_FALSE(abc.CompareRight("xbc"));
  EXPECT_TRUE(abc.CompareRight('c'));
  EXPECT_FALSE(Str().CompareRight('c'));
}

TEST(Str, EqualityAndOrder) {
  Str a("abc");
  Str b("abd");
  EXPECT_TRUE(a.Equals(Str("abc")));
  EXPECT_FALSE(a.Equals(Str("ab")));
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(a < a);
  EXPECT_TRUE(Str("ab") < a);
  EXPECT_TRUE(a.IsLessThan(&b));
  EXPECT_TRUE(b.IsGreaterThan(&a));
  EXPECT_FALSE(a.IsGreaterThan(&a));
}

TEST(Str, Containment) {
  Str s("chromat_dir");
  EXPECT_TRUE(s.Contains("mat"));
  EXPECT_TRUE(s.Contains(Str("_dir")));
  EXPECT_FALSE(s.Contains("dirt"));
  EXPECT_FALSE(s.Contains(""));
  EXPECT_TRUE(s.Contains('_'));
  EXPECT_FALSE(s.Contains('\0'));
  EXPECT_TRUE(Str().IsIn("abc"));
  EXPECT_TRUE(Str("mat").IsIn("chromat"));
  EXPECT_FALSE(s.IsIn("chromat"));
}

TEST(Str, SearchFromTheLeft) {
  Str s("abcb");
  EXPECT_EQ(1, s.Find("b"));
  EXPECT_EQ(2, s.Find(Str("cb")));
  EXPECT_EQ(-1, s.Find("bb"));
  EXPECT_EQ(-1, s.Find("abcbx"));
  EXPECT_EQ(0, s.Find(""));
  EXPECT_EQ(3, Str("abc").Find('\0'));
  EXPECT_EQ(2, s.Find('c'));
  EXPECT_EQ(-1, s.Find('x'));

  long pos = 2;
  EXPECT_TRUE(s.Find("b", pos));
  EXPECT_EQ(3, pos);
  pos = 4;
  EXPECT_FALSE(s.Find("b", pos));
  EXPECT_EQ(4, pos);
  pos = -1;
  EXPECT_FALSE(s.Find('a', pos));
  EXPECT_EQ(-1, pos);
  pos = 1;
  EXPECT_FALSE(s.Find(Str("a"), pos));
  EXPECT_EQ(1, pos);

  // A found position is not stepped over: the caller moves on by one.
  std::vector<long> found;
  Str text("abcbab");
  for (pos = 0; text.Find('b', pos); ++pos) found.push_back(pos);
  EXPECT_EQ((std::vector<long>{1, 3, 5}), found);
}

TEST(Str, SearchFromTheRight) {
  Str s("abcb");
  EXPECT_EQ(3, s.FindRight("b"));
  EXPECT_EQ(0, s.FindRight(Str("ab")));
  EXPECT_EQ(-1, s.FindRight("abcbx"));
  EXPECT_EQ(3, s.FindRight(""));
  EXPECT_EQ(-1, Str().FindRight(""));
  EXPECT_EQ(3, s.FindRight('b'));
  EXPECT_EQ(-1, s.FindRight('x'));

  long pos = -1;
  EXPECT_TRUE(s.FindRight("b", pos));
  EXPECT_EQ(3, pos);
  pos = 2;
  EXPECT_TRUE(s.FindRight('b', pos));
  EXPECT_EQ(1, pos);
  // pos bounds where a match starts, not where it ends.
  pos = 2;
  EXPECT_TRUE(s.FindRight(Str("cb"), pos));
  EXPECT_EQ(2, pos);
  pos = 1;
  EXPECT_FALSE(s.FindRight("cb", pos));
  EXPECT_EQ(1, pos);
  pos = 4;
  EXPECT_FALSE(s.FindRight('b', pos));
  EXPECT_EQ(4, pos);
  pos = -1;
  EXPECT_FALSE(s.FindRight("abcbx", pos));
  EXPECT_EQ(3, pos);
  pos = -1;
  EXPECT_FALSE(Str().FindRight('x', pos));
  EXPECT_EQ(-1, pos);

  std::vector<long> found;
  Str text("abcbab");
  for (pos = -1; text.FindRight("b", pos); --pos) {
    found.push_back(pos);
    if (pos == 0) break;
  }
  EXPECT_EQ((std::vector<long>{5, 3, 1}), found);
}
