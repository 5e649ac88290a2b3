// Str editing: parts, ranges and lines, += and +, inserting and overwriting, deleting, whole-text
// changes and copying out.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "toolkit/str.h"

namespace {

constexpr char kRange[] = "ERROR: String position is out of range";
constexpr char kInvalid[] = "ERROR: String parameter is invalid";

// The message a call throws, or "" when it returns normally.
std::string Thrown(const std::function<void()>& call) {
  try {
    call();
  } catch (const char* message) {
    return message;
  }
  return "";
}

// Runs an edit on a fresh copy of `initial` and answers the resulting text.
std::string Edited(const std::function<void(Str&)>& edit, const char* initial = "abc") {
  Str s(initial);
  edit(s);
  return s.String();
}

// The text of an array handed over by CopyToChar, which is freed here.
std::string Owned(char* array) {
  std::unique_ptr<char[]> owner(array);
  return owner.get();
}

}  // namespace

TEST(Str, TakingParts) {
  Str x("abcdef");
  Str s(1024);
  s.CopyLeft(x, 0);
  EXPECT_STREQ("abcdef", s.String());
  EXPECT_EQ(1025, s.Size());
  s.CopyLeft("abcdef", 2);
  EXPECT_STREQ("ab", s.String());
  s.CopyLeft(&x, 99);
  EXPECT_STREQ("abcdef", s.String());
  s.CopyRight(x, 2);
  EXPECT_STREQ("ef", s.String());
  s.CopyRight("abcdef", 0);
  EXPECT_STREQ("abcdef", s.String());
  s.CopyMid(x, 1, 0);
  EXPECT_STREQ("", s.String());
  s.CopyMid(x, 4, 5);
  EXPECT_STREQ("ef", s.String());
  s.CopyMid(x, x.Length(), 5);
  EXPECT_STREQ("", s.String());
  s.CopyMid("abcdef", 1, 10);
  EXPECT_STREQ("bcdef", s.String());
  s.CopyEnd(x, 3);
  EXPECT_STREQ("def", s.String());
  s.CopyEnd("abcdef", 6);
  EXPECT_STREQ("", s.String());
  EXPECT_EQ(1025, s.Size());

  // The Copy rule grows to exactly the new length + 1.
  Str small;
  small.CopyEnd(&x, 2);
  EXPECT_EQ(5, small.Size());
  small.CopyMid(small, 1, 2);
  EXPECT_STREQ("de", small.String());
}

TEST(Str, AppendingRangesAndLines) {
  EXPECT_EQ("abcxy", Edited([](Str& s) { s.Append("xyz", 2); }));
  EXPECT_EQ("abcxyz", Edited([](Str& s) { s.Append(Str("xyz"), 0L); }));
  EXPECT_EQ("abcyz", Edited([](Str& s) { s.Append(Str("xyz"), 1, 0); }));
  EXPECT_EQ("abcy", Edited([](Str& s) { s.Append(Str("xyz"), 1, 1); }));
  EXPECT_EQ("abcz", Edited([](Str& s) { s.Append("xyz", 2, 7); }));
  EXPECT_EQ("abc", Edited([](Str& s) { s.Append("xyz", 3, 1); }));
  EXPECT_EQ(kRange, Thrown([] { Str().Append(Str("xyz"), 3, 1); }));
  EXPECT_EQ(kRange, Thrown([] { Str().Append("xyz", 4, 1); }));

  Str line;
  line.AppendLine("A");
  line.AppendLine(59L);
  line.AppendLine(2.5);
  line.AppendLine('c');
  line.AppendLine(Str("d"));
  line.AppendLine();
  EXPECT_STREQ("A\n59\n2.5\nc\nd\n\n", line.String());
  EXPECT_TRUE(line.HasLineEnd());
  EXPECT_FALSE(Str().HasLineEnd());
  EXPECT_FALSE(Str("a\nb").HasLineEnd());

  Str chained;
  Str tail("!");
  chained << "n=" << 3L << ' ' << 0.25 << tail << &tail;
  EXPECT_STREQ("n=3 0.25!!", chained.String());
  EXPECT_EQ(16, chained.Size());
}

TEST(Str, AddAssignFitsExactly) {
  Str s(1024);
  s.Copy("ab");
  s += "c";
  EXPECT_STREQ("abc", s.String());
  EXPECT_EQ(4, s.Size());
  s += 5L;
  s += 'x';
  s += 0.5;
  s += Str("!");
  EXPECT_STREQ("abc5x0.5!", s.String());
  EXPECT_EQ(10, s.Size());
  s += "";
  EXPECT_EQ(10, s.Size());
  s += s;
  EXPECT_STREQ("abc5x0.5!abc5x0.5!", s.String());
}

TEST(Str, PlusMakesANewString) {
  Str a("ab");
  Str b("cd");
  Str joined = a + b;
  EXPECT_STREQ("abcd", joined.String());
  EXPECT_EQ(5, joined.Size());
  EXPECT_STREQ("ab", a.String());
  EXPECT_STREQ("cd", b.String());
  EXPECT_STREQ("ab-", (a + '-').String());
  const Str* pointer = &b;
  EXPECT_STREQ("abcd", (a + pointer).String());
  EXPECT_STREQ("ab12", (a + 12L).String());
  EXPECT_STREQ("ab0.5", (a + 0.5).String());
  EXPECT_STREQ("ab", (a + "").String());
  EXPECT_STREQ("x/ab", ("x/" + a).String());
  EXPECT_STREQ("-ab", ('-' + a).String());
  EXPECT_STREQ("7ab", (7L + a).String());
  EXPECT_STREQ("1.5ab", (1.5 + a).String());
}

TEST(Str, InsertAndReplace) {
  EXPECT_EQ("abc-", Edited([](Str& s) { s.Insert('-', 3); }));
  EXPECT_EQ("a--bc", Edited([](Str& s) { s.Insert("--", 1); }));
  EXPECT_EQ("xyabc", Edited([](Str& s) { s.InsertLeft(Str("xy")); }));
  EXPECT_EQ("-abc", Edited([](Str& s) { s.InsertLeft('-'); }));
  EXPECT_EQ("aabcbc", Edited([](Str& s) { s.Insert(s, 1); }));
  EXPECT_EQ("abcabc", Edited([](Str& s) { s.InsertLeft(&s); }));
  EXPECT_EQ(kRange, Thrown([] { Edited([](Str& s) { s.Insert('-', 4); }); }));
  EXPECT_EQ(kRange, Thrown([] { Edited([](Str& s) { s.Insert("-", -1); }); }));

  EXPECT_EQ("abXYZ", Edited([](Str& s) { s.Replace("XYZ", 2); }));
  EXPECT_EQ("XYc", Edited([](Str& s) { s.Replace(Str("XY"), 0); }));
  EXPECT_EQ("aZc", Edited([](Str& s) { s.Replace('Z', 1); }));
  EXPECT_EQ("aXc", Edited([](Str& s) { s.Replace("XYZ", 1, 1); }));
  EXPECT_EQ("aXYZ", Edited([](Str& s) { s.Replace(Str("XYZ"), 1, 9); }));
  EXPECT_EQ("abc", Edited([](Str& s) { s.Replace("XYZ", 1, 0); }));
  EXPECT_EQ("abab", Edited([](Str& s) { s.Replace(s, 2, 2); }));
  EXPECT_EQ(kRange, Thrown([] { Edited([](Str& s) { s.Replace("X", 3); }); }));
  EXPECT_EQ(kInvalid, Thrown([] { Edited([](Str& s) { s.Replace("X", 1, -1); }); }));

  EXPECT_EQ("aXY", Edited([](Str& s) { s.ReplaceEnd("XY", 1); }));
  EXPECT_EQ("abcXY", Edited([](Str& s) { s.ReplaceEnd(Str("XY"), 3); }));
  EXPECT_EQ("-", Edited([](Str& s) { s.ReplaceEnd('-', 0); }));
  EXPECT_EQ("ab42", Edited([](Str& s) { s.ReplaceEnd(42L, 2); }));
  EXPECT_EQ("a0.5", Edited([](Str& s) { s.ReplaceEnd(0.5, 1); }));
  EXPECT_EQ("abc", Edited([](Str& s) { s.ReplaceEnd(s, 0); }));
  EXPECT_EQ(kRange, Thrown([] { Edited([](Str& s) { s.ReplaceEnd("X", 4); }); }));

  // Growth by the Append rule: a full buffer doubles to twice the new length.
  Str grown("abc");
  grown.Insert("de", 3);
  EXPECT_EQ(10, grown.Size());
  grown.Replace("XYZ", 4);
  EXPECT_STREQ("abcdXYZ", grown.String());
  EXPECT_EQ(10, grown.Size());
}

TEST(Str, DeleteStaysInBounds) {
  EXPECT_EQ("ac", Edited([](Str& s) { s.Delete(1); }));
  EXPECT_EQ("c", Edited([](Str& s) { s.Delete(0, 2); }));
  EXPECT_EQ("abc", Edited([](Str& s) { s.Delete(1, 0); }));
  EXPECT_EQ("a", Edited([](Str& s) { s.Delete(1, 2); }));
  EXPECT_EQ("ab", Edited([](Str& s) { s.Delete(2, 3); }));
  EXPECT_EQ("a", Edited([](Str& s) { s.Delete(1, 100); }));
  EXPECT_EQ("c", Edited([](Str& s) { s.DeleteLeft(2); }));
  EXPECT_EQ("", Edited([](Str& s) { s.DeleteLeft(10); }));
  EXPECT_EQ("a", Edited([](Str& s) { s.DeleteRight(2); }));
  EXPECT_EQ("", Edited([](Str& s) { s.DeleteRight(10); }));
  EXPECT_EQ("", Edited([](Str& s) { s.DeleteEnd(0); }));
  EXPECT_EQ("ab", Edited([](Str& s) { s.DeleteEnd(2); }));

  Str big(64);
  big.Copy("abcdef");
  big.Delete(1, 2);
  big.DeleteLeft(1);
  big.DeleteRight(1);
  EXPECT_STREQ("de", big.String());
  EXPECT_EQ(65, big.Size());
}

TEST(Str, WholeTextChanges) {
  Str s("Ab1-z");
  s.UpperCase();
  EXPECT_STREQ("AB1-Z", s.String());
  s.LowerCase();
  EXPECT_STREQ("ab1-z", s.String());

  EXPECT_EQ("a b", Edited([](Str& t) { t.RemoveEndSpaces(); }, " \t a b \n"));
  EXPECT_EQ("abc \n", Edited([](Str& t) { t.RemoveLeftSpaces(); }, "\f\v abc \n"));
  EXPECT_EQ(" a", Edited([](Str& t) { t.RemoveRightSpaces(); }, " a\r\n"));
  EXPECT_EQ("", Edited([](Str& t) { t.RemoveEndSpaces(); }, " \t\n "));
  EXPECT_EQ("xxx", Edited([](Str& t) { t.Fill('x'); }));
  Str filled;
  filled.Fill('-', 5);
  EXPECT_STREQ("-----", filled.String());
  EXPECT_EQ(10, filled.Size());
  filled.Fill('+', 2);
  EXPECT_STREQ("++", filled.String());
  EXPECT_EQ(10, filled.Size());
  EXPECT_EQ(kInvalid, Thrown([&] { filled.Fill('x', -1); }));

  EXPECT_EQ("cba", Edited([](Str& t) { t.Reverse(); }));
  EXPECT_EQ("dcba", Edited([](Str& t) { t.Reverse(); }, "abcd"));
  EXPECT_EQ("", Edited([](Str& t) { t.Reverse(); }, ""));
}

TEST(Str, CopyingOut) {
  Str s("abcdef");
  EXPECT_EQ("abcdef", Owned(s.CopyToChar()));
  EXPECT_EQ("ab", Owned(s.CopyToChar(2L)));
  EXPECT_EQ("", Owned(s.CopyToChar(0L)));
  EXPECT_EQ("abcdef", Owned(s.CopyToChar(99L)));
  EXPECT_EQ("cde", Owned(s.CopyToChar(2L, 3L)));
  EXPECT_EQ("ef", Owned(s.CopyToChar(4L, 0L)));
  EXPECT_EQ("", Owned(Str().CopyToChar()));

  char dest[16];
  std::memset(dest, '#', sizeof dest);
  char* end = s.StringCopy(dest, 3, true);
  EXPECT_EQ(dest + 3, end);
  EXPECT_STREQ("abc", dest);
  end = s.StringCopy(end, 2, 4L, true);
  EXPECT_STREQ("abcef", dest);
  std::memset(dest, '#', sizeof dest);
  EXPECT_EQ(dest, s.StringCopy(dest, 0, false));
  EXPECT_EQ(0, std::memcmp("abcdef#", dest, 7));
  EXPECT_EQ(dest, s.StringCopy(dest, 0, 5L, false));
  EXPECT_EQ(0, std::memcmp("fbcdef#", dest, 7));
}

TEST(Str, EditingErrorsLeaveTheStringUnchanged) {
  // A negative count is reported before a bad position.
  const std::vector<std::pair<const char*, std::function<void(Str&)>>> calls = {
      {kRange, [](Str& s) { s.CopyMid(Str("xy"), 3, 1); }},
      {kRange, [](Str& s) { s.CopyMid("xy", 3, 1); }},
      {kInvalid, [](Str& s) { s.CopyMid("xy", 9, -1); }},
      {kRange, [](Str& s) { s.CopyEnd("xy", -1); }},
      {kInvalid, [](Str& s) { s.CopyLeft("xy", -1); }},
      {kInvalid, [](Str& s) { s.CopyRight(Str("xy"), -1); }},
      {kInvalid, [](Str& s) { s.Append("xy", -1); }},
      {kInvalid, [](Str& s) { s.Append(Str("xy"), 9, -1); }},
      {kRange, [](Str& s) { s.Insert(s, 4); }},
      {kRange, [](Str& s) { s.Replace('x', 3); }},
      {kInvalid, [](Str& s) { s.Replace(Str("x"), 9, -1); }},
      {kRange, [](Str& s) { s.ReplaceEnd(1L, -1); }},
      {kRange, [](Str& s) { s.Delete(3); }},
      {kInvalid, [](Str& s) { s.Delete(9, -1); }},
      {kRange, [](Str& s) { s.Delete(-1, 1); }},
      {kInvalid, [](Str& s) { s.DeleteLeft(-1); }},
      {kInvalid, [](Str& s) { s.DeleteRight(-1); }},
      {kRange, [](Str& s) { s.DeleteEnd(3); }},
      {kInvalid, [](Str& s) { delete[] s.CopyToChar(-1L); }},
      {kInvalid, [](Str& s) { delete[] s.CopyToChar(9L, -1L); }},
      {kRange, [](Str& s) { delete[] s.CopyToChar(3L, 1L); }},
      {kInvalid, [](Str& s) { s.StringCopy(nullptr, -1, true); }},
      {kRange, [](Str& s) { s.StringCopy(nullptr, 1, 3L, true); }},
  };
  for (const auto& call : calls) {
    Str s(10L);
    s.Copy("abc");
    EXPECT_EQ(call.first, Thrown([&] { call.second(s); }));
    EXPECT_STREQ("abc", s.String());
    EXPECT_EQ(3, s.Length());
    EXPECT_EQ(11, s.Size());
  }
}
