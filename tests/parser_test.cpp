#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "toolkit/str.h"

namespace {

// Every piece one reading operation yields until it fails, as "[a][b]"; "!" marks a failure
// that did not leave the target empty.
std::string Pieces(const char* text, const std::function<bool(Parser&, Str&)>& read) {
  Str source(text);
  Parser p(source);
  Str t("junk");
  std::string out;
  while (read(p, t)) out += std::string("[") + t.String() + "]";
  if (t.Length() != 0 || p.Get() != '\0') out += "!";
  return out;
}

// The text in front of the cursor, which tells where it stands.
std::string Left(Parser& p) {
  Str left;
  p.GetLeft(left);
  return left.String();
}

}  // namespace

TEST(Parser, TokenAndLineReading) {
  auto token = [](Parser& p, Str& t) { return p.GetToken(t); };
  EXPECT_EQ(Pieces("  abc  def", token), "[abc][def]");
  EXPECT_EQ(Pieces(" \t\r\n\v\f ", token), "");
  EXPECT_EQ(Pieces("a\tb\nc\vd\fe\rf g", token), "[a][b][c][d][e][f][g]");
  // Bytes above 127 are never white space, not even 0x85 or 0xA0.
  EXPECT_EQ(Pieces("x\xA0y\x85z \xFF", token), "[x\xA0y\x85z][\xFF]");

  EXPECT_EQ(Pieces("a,,b", [](Parser& p, Str& t) { return p.GetToken(t, ','); }), "[a][][b]");
  EXPECT_EQ(Pieces(" x ;", [](Parser& p, Str& t) { return p.GetToken(t, ';'); }), "[ x ]");
  EXPECT_EQ(Pieces("abcdefg", [](Parser& p, Str& t) { return p.GetToken(t, 3); }), "[abc][def][g]");
  EXPECT_EQ(Pieces("abcdefg", [](Parser& p, Str& t) { return p.GetToken(t, 4L); }), "[abcd][efg]");

  auto line = [](Parser& p, Str& t) { return p.GetLine(t); };
  EXPECT_EQ(Pieces("x\r\ny\n\nlast", line), "[x\r][y][][last]");
  EXPECT_EQ(Pieces("only\n", line), "[only]");

  // Only the one blank that ended a token is consumed.
  Str text("  abc  def");
  Parser p(text);
  Str t;
  p.GetToken(t);
  EXPECT_EQ(Left(p), "  abc ");
}

TEST(Parser, GetRightAndGetLeft) {
  Str text("head tail");
  Parser p(text);
  Str t("x");
  EXPECT_TRUE(p.GetLeft(t));  // nothing in front of the first character, yet no failure
  EXPECT_STREQ(t.String(), "");
  p.SetPosition(5L);
  EXPECT_TRUE(p.GetLeft(t));
  EXPECT_STREQ(t.String(), "head ");
  EXPECT_EQ(p.Get(), 't');
  EXPECT_EQ(Pieces("head tail", [](Parser& q, Str& s) { return q.GetRight(s); }), "[head tail]");
}

TEST(Parser, TargetGrowsToTwiceThePieceOnlyWhenItDoesNotFit) {
  Str text("abcd");
  Parser p(text);
  Str small(3L);  // size 4: no room for four characters and the terminator
  p.GetRight(small);
  EXPECT_EQ(small.Size(), 8);
  EXPECT_STREQ(small.String(), "abcd");

  p.Begin();
  Str exact(4L);  // size 5 exceeds the piece's length: filled in place
  char* const before = exact.String();
  p.GetRight(exact);
  EXPECT_EQ(exact.Size(), 5);
  EXPECT_EQ(exact.String(), before);
}

TEST(Parser, Moving) {
  Str text("abc");
  Parser p(text);
  EXPECT_TRUE(p.Next(2));
  EXPECT_FALSE(p.Next(1));  // stepping exactly onto the terminator is already the end
  EXPECT_EQ(Left(p), "abc");
  EXPECT_TRUE(p.Previous(3));
  EXPECT_FALSE(p.Previous(1));
  EXPECT_EQ(p.Get(), 'a');
  EXPECT_FALSE(p.Next(1000));
  EXPECT_EQ(Left(p), "abc");
  EXPECT_TRUE(p.Next(-5));  // a negative step never leaves the buffer
  EXPECT_EQ(p.Get(), 'a');

  EXPECT_TRUE(p.SetPosition(2L));
  EXPECT_FALSE(p.SetPosition(3L));  // the length itself is out of range
  EXPECT_FALSE(p.SetPosition(-1L));
  EXPECT_EQ(p.Get(), 'c');

  Str fields("a,b,c");
  Parser f(fields);
  EXPECT_TRUE(f.SetPosition(','));
  EXPECT_TRUE(f.SetPosition(','));  // the character at the position counts
  EXPECT_EQ(Left(f), "a");
  EXPECT_FALSE(f.SetPosition('x'));
  EXPECT_EQ(f.Get(), '\0');

  Str spaced("  ab ");
  Parser s(spaced);
  char c = 'x';
  EXPECT_TRUE(s.GetCharacter(c) && c == 'a');
  EXPECT_TRUE(s.GetCharacter(c) && c == 'b');
  EXPECT_FALSE(s.GetCharacter(c));  // only white space was left
  EXPECT_EQ(c, '\0');
  EXPECT_EQ(s.Get(), '\0');
}

TEST(Parser, SkipTokenAndSkipLine) {
  Str text(" one two  three");
  Parser p(text);
  EXPECT_TRUE(p.SkipToken());
  EXPECT_EQ(Left(p), " one");  // on the blank that ended the token
  EXPECT_TRUE(p.SkipToken(2));
  p.Begin();
  EXPECT_FALSE(p.SkipToken(4));
  EXPECT_EQ(p.Get(), '\0');

  Str fields("a;b;c");
  Parser f(fields);
  EXPECT_TRUE(f.SkipToken(';', 2));
  EXPECT_EQ(f.Get(), 'c');
  EXPECT_FALSE(f.SkipToken(';', 1));

  Str lines("l1\r\nl2\nl3");
  Parser l(lines);
  EXPECT_TRUE(l.SkipLine(2));
  EXPECT_EQ(Left(l), "l1\r\nl2\n");
  EXPECT_FALSE(l.SkipLine());
  EXPECT_EQ(l.Get(), '\0');
}

TEST(Parser, SkipBackReturnsToThePieceJustRead) {
  Str args(" -r -abi ");
  Parser p(args);
  Str t;
  p.GetToken(t);
  p.GetToken(t);
  EXPECT_STREQ(t.String(), "-abi");
  p.SkipBack();
  ASSERT_TRUE(p.GetToken(t));
  EXPECT_STREQ(t.String(), "-abi");

  Str tail("x yz");
  Parser q(tail);
  q.SkipToken(2);
  q.SkipBack();  // from the end of the text
  EXPECT_EQ(Left(q), "x ");
  q.SkipBack();
  q.SkipBack();  // already at the first character
  EXPECT_EQ(q.Get(), 'x');

  Str fields("ab,cd,ef");
  Parser f(fields);
  f.GetToken(t, ',');
  f.GetToken(t, ',');
  f.SkipBack(',');
  ASSERT_TRUE(f.GetToken(t, ','));
  EXPECT_STREQ(t.String(), "cd");
  f.SkipBack(',');
  f.SkipBack(',');
  EXPECT_EQ(f.Get(), 'a');

  Str empty;
  Parser e(empty);
  e.SkipBack(',');
  e.SkipBack();
  EXPECT_EQ(e.Get(), '\0');
}

TEST(Parser, WordWrap) {
  auto wrap = [](long width) {
    return [width](Parser& p, Str& t) { return p.WordWrap(t, width); };
  };
  EXPECT_EQ(Pieces("abc defgh", wrap(5)), "[abc ][defgh]");
  EXPECT_EQ(Pieces("abcdefgh", wrap(5)), "[abcde][fgh]");
  // A break that falls on white space gives the whole run to the line.
  EXPECT_EQ(Pieces("abc   de", wrap(3)), "[abc   ][de]");
  EXPECT_EQ(Pieces("ab\ncd ef\n\ngh", wrap(5)), "[ab\n][cd ef\n][\n][gh]");
  // A newline just at the width still ends the line, so the blank line behind it survives.
  EXPECT_EQ(Pieces("abcde\n\nf", wrap(5)), "[abcde\n][\n][f]");
  EXPECT_EQ(Pieces("ab", wrap(0)), "[a][b]");  // a width below one still makes progress
}

TEST(Parser, CompareAndContains) {
  Str text(">seq1 desc");
  Parser p(text);
  EXPECT_TRUE(p.Compare(">seq"));
  EXPECT_FALSE(p.Compare(""));
  p.Next(1);
  EXPECT_TRUE(p.Compare(Str("seq1 desc")));
  EXPECT_FALSE(p.Compare("seq1 description"));  // longer than what is left
  EXPECT_FALSE(p.Compare(Str()));

  Str abc("abcabc");
  Parser q(abc);
  q.SetPosition(5L);
  EXPECT_TRUE(q.Contains("b"));  // behind every "b", still finds the first one
  EXPECT_EQ(Left(q), "a");
  q.SetPosition(4L);
  EXPECT_TRUE(q.Contains(Str("ca")));
  EXPECT_EQ(Left(q), "ab");
  q.SetPosition(4L);
  EXPECT_FALSE(q.Contains("x"));  // a failed search does not move
  EXPECT_FALSE(q.Contains(""));
  EXPECT_FALSE(q.Contains('\0'));
  EXPECT_EQ(q.Get(), 'b');
  EXPECT_TRUE(q.Contains('c'));
  EXPECT_EQ(Left(q), "ab");
}
