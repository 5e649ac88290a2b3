#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "toolkit/str.h"

namespace {

using Read = std::function<bool(Parser&, Str&)>;

// The pieces a reading yields until it fails, as "[a][b]"; "!" if the failure left anything.
std::string Pieces(const char* text, const Read& read) {
  Str source(text), t("junk");
  Parser p(source);
  std::string out;
  while (read(p, t)) out += std::string("[") + t.String() + "]";
  return out + (t.Length() != 0 || p.Get() != '\0' ? "!" : "");
}

// Where the cursor stands: the number of characters in front of it.
long Offset(Parser& p) {
  Str left("junk");
  p.GetLeft(left);
  return left.Length();
}

}  // namespace

TEST(Parser, ReadingPieces) {
  const Read token = [](Parser& p, Str& t) { return p.GetToken(t); };
  const Read line = [](Parser& p, Str& t) { return p.GetLine(t); };
  auto wrap = [](long width) -> Read {
    return [width](Parser& p, Str& t) { return p.WordWrap(t, width); };
  };
  EXPECT_EQ("[abc][def]", Pieces("  abc  def", token));
  EXPECT_EQ("", Pieces(" \t\r\n\v\f ", token));
  EXPECT_EQ("[x\xA0y\x85z][\xFF]", Pieces("x\xA0y\x85z \xFF", token));  // high bytes: no blanks
  EXPECT_EQ("[a][][ b ]", Pieces("a,, b ", [](Parser& p, Str& t) { return p.GetToken(t, ','); }));
  EXPECT_EQ("[abc][def][g]", Pieces("abcdefg", [](Parser& p, Str& t) { return p.GetToken(t, 3); }));
  EXPECT_EQ("[x\r][y][][last]", Pieces("x\r\ny\n\nlast", line));
  EXPECT_EQ("[only]", Pieces("only\n", line));
  EXPECT_EQ("[abc ][defgh]", Pieces("abc defgh", wrap(5)));
  EXPECT_EQ("[abcde][fgh]", Pieces("abcdefgh", wrap(5)));
  EXPECT_EQ("[abc   ][de]", Pieces("abc   de", wrap(3)));  // the whole run of blanks
  EXPECT_EQ("[ab\n][cd ef\n][\n][gh]", Pieces("ab\ncd ef\n\ngh", wrap(5)));
  EXPECT_EQ("[abcde\n][\n][f]", Pieces("abcde\n\nf", wrap(5)));  // a newline at the width
  EXPECT_EQ("[a][b]", Pieces("ab", wrap(0)));  // a width below one still makes progress

  // A target grows to twice the piece only when the piece does not fit.
  Str abcd("abcd"), small(3L), exact(4L);
  Parser r(abcd);
  r.GetRight(small), r.Begin(), r.GetRight(exact);
  EXPECT_TRUE(small == "abcd" && small.Size() == 8 && exact == "abcd" && exact.Size() == 5);
}

TEST(Parser, MovingAndSkipping) {
  Str abc("abc"), fields("a,b,c"), spaced("  ab "), text(" one two  three "), lines("l1\r\nl2\nl3");
  Parser p(abc), f(fields), s(spaced), n(text), l(lines);
  EXPECT_TRUE(p.Next(2) && !p.Next(1) && Offset(p) == 3);  // onto the terminator is the end
  EXPECT_TRUE(p.Previous(3) && !p.Previous(1) && Offset(p) == 0);
  EXPECT_TRUE(!p.Next(1000) && Offset(p) == 3 && p.Next(-5) && Offset(p) == 0);  // no underrun
  EXPECT_TRUE(p.SetPosition(2L) && !p.SetPosition(3L) && !p.SetPosition(-1L) && Offset(p) == 2);
  EXPECT_TRUE(f.SetPosition(',') && f.SetPosition(',') && Offset(f) == 1);    // the current counts
  EXPECT_TRUE(f.SkipToken(',', 1) && !f.SetPosition('x') && Offset(f) == 5);  // not found: end
  char x = 0, y = 0, z = 'z';
  EXPECT_TRUE(s.GetCharacter(x) && s.GetCharacter(y) && !s.GetCharacter(z));  // blanks only
  EXPECT_TRUE(x == 'a' && y == 'b' && z == '\0' && Offset(s) == 5);
  EXPECT_TRUE(n.SkipToken() && Offset(n) == 4 && n.SkipToken(2) && Offset(n) == 15);  // on blanks
  EXPECT_TRUE(!n.SkipToken() && Offset(n) == 16);
  EXPECT_TRUE(l.SkipLine(2) && Offset(l) == 7 && !l.SkipLine() && Offset(l) == 9);
}

TEST(Parser, SkipBackUndoesAGetToken) {
  Str args(" -r -abi "), tail("x yz"), fields("ab,cd,ef"), empty, t;
  Parser a(args), q(tail), f(fields), e(empty);
  EXPECT_TRUE(a.GetToken(t) && Offset(a) == 4 && a.GetToken(t) && Offset(a) == 9);  // and a blank
  a.SkipBack();
  EXPECT_TRUE(Offset(a) == 4 && a.GetToken(t) && t == "-abi");  // the same token again
  q.SkipToken(2), q.SkipBack();                                 // from the end of the text
  EXPECT_EQ(2, Offset(q));
  q.SkipBack(), q.SkipBack();  // at the first character it stays there
  EXPECT_EQ(0, Offset(q));
  f.GetToken(t, ','), f.GetToken(t, ','), f.SkipBack(',');
  EXPECT_TRUE(Offset(f) == 3 && f.GetToken(t, ',') && t == "cd");
  f.SkipBack(','), f.SkipBack(','), f.SkipBack(','), e.SkipBack(','), e.SkipBack();
  EXPECT_TRUE(Offset(f) == 0 && e.Get() == '\0');
}

TEST(Parser, CompareAndContains) {
  Str text(">seq1 desc"), abc("abcabc");
  Parser p(text), q(abc);
  EXPECT_TRUE(p.Compare(">seq") && !p.Compare("") && p.Next(1) && p.Compare(Str("seq1 desc")));
  EXPECT_FALSE(p.Compare("seq1 description"));                          // longer than what is left
  EXPECT_TRUE(q.SetPosition(5L) && q.Contains("b") && Offset(q) == 1);  // searched from the start
  EXPECT_TRUE(q.SetPosition(4L) && !q.Contains("x") && !q.Contains("") && !q.Contains('\0'));
  EXPECT_TRUE(Offset(q) == 4 && q.Contains('c') && Offset(q) == 2 && q.SetPosition(4L));
  EXPECT_TRUE(q.Contains(Str("ca")) && Offset(q) == 2);
}
