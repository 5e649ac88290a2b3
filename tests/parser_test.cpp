// Parser: reading pieces, moving, skipping back and searching. Most cases are walks of one cursor
// over one text, with the answer of each step and, where it matters, the offset it stands at.
#include "test_util.h"

using Read = bool (*)(Parser&, Str&);

// The pieces a reading yields until it fails; the failure must leave an empty target and the
// cursor at the end.
static std::vector<std::string> Pieces(const char* text, const Read& read) {
  Str source(text), t("junk");
  Parser p(source);
  std::vector<std::string> pieces;
  while (read(p, t)) pieces.push_back(t.String());
  EXPECT_STREQ(t.String(), "") << text;
  EXPECT_EQ(p.Get(), '\0') << text;
  return pieces;
}

// Where the cursor stands: the number of characters in front of it.
static long Offset(Parser& p) {
  Str left("junk");
  p.GetLeft(left);
  return left.Length();
}

// clang-format off
#define READ(code) [](Parser& p, Str& t) { return code; }
// clang-format on

// Bytes from 128 up are not blanks; a newline that stands just at the width still ends the line.
TEST(Parser, ReadingPieces) {
  Walk(Q(Pieces("  abc  x\xA0y\x85z \xFF", READ(p.GetToken(t))), "[abc][x\xA0y\x85z][\xFF]"),
       Q(Pieces("a,, b ", READ(p.GetToken(t, ','))), "[a][][ b ]"),
       Q(Pieces("abcdefg", READ(p.GetToken(t, 3L))), "[abc][def][g]"),
       Q(Pieces("x\r\ny\n\nlast", READ(p.GetLine(t))), "[x\r][y][][last]"),
       Q(Pieces("ab cd", READ(p.GetRight(t))), "[ab cd]"),
       Q(Pieces("abc defgh", READ(p.WordWrap(t, 5))), "[abc ][defgh]"),
       Q(Pieces("abc   de", READ(p.WordWrap(t, 3))), "[abc   ][de]"),  // the whole run of blanks
       Q(Pieces("ab\ncd ef\n\ngh", READ(p.WordWrap(t, 5))), "[ab\n][cd ef\n][\n][gh]"),
       Q(Pieces("abcde\n\nf", READ(p.WordWrap(t, 5))), "[abcde\n][\n][f]"),
       Q(Pieces("ab", READ(p.WordWrap(t, 0))), "[a][b]"));  // a width below 1 still moves on
  // No characters are no characters; a target grows to twice a piece that does not fit.
  Str abcd("abcd"), none("x"), small(3L), exact(4L);
  Parser r(abcd);
  Walk(STEP(r.GetToken(none, 0L), true), STEP(none, "/2"), STEP(r.GetRight(small), true),
       STEP(small, "abcd/8"), DO(r.Begin()), STEP(r.GetRight(exact), true), STEP(exact, "abcd/5"));
}

// Stepping clamps to the first character and to the terminator; stepping onto the terminator is
// the end. SkipToken stops on the blank behind a token, the separator forms step past theirs.
TEST(Parser, MovingAndSkipping) {
  Str abc("abc"), fields("a,b,c"), words(" one two  three "), lines("l1\r\nl2\nl3"),
      spaced("  ab ");
  Parser p(abc), f(fields), w(words), l(lines), s(spaced);
  char c = 0;
  Walk(STEP(p.Next(2), true), STEP(Offset(p), 2L), STEP(p.Next(1), false), STEP(Offset(p), 3L),
       STEP(p.Previous(3), true), STEP(p.Previous(1), false), STEP(p.Next(-5), true),
       STEP(Offset(p), 0L), STEP(p.SetPosition(2L), true), STEP(p.SetPosition(3L), false),
       STEP(p.SetPosition(-1L), false), STEP(Offset(p), 2L), STEP(f.SetPosition(','), true),
       STEP(f.SkipToken(',', 1), true), STEP(Offset(f), 2L), STEP(f.SetPosition('x'), false),
       STEP(Offset(f), 5L), STEP(w.SkipToken(), true), STEP(w.SkipToken(2), true),
       STEP(Offset(w), 15L), STEP(w.SkipToken(), false), STEP(Offset(w), 16L),
       STEP(l.SkipLine(2), true), STEP(Offset(l), 7L), STEP(l.SkipLine(), false),
       STEP(Offset(l), 9L), STEP(s.GetCharacter(c), true), STEP(c, 'a'),
       STEP(s.GetCharacter(c), true), STEP(s.GetCharacter(c), false), STEP(c, '\0'),
       STEP(Offset(s), 5L));  // only blanks were left
}

// SkipBack undoes a GetToken: it goes back to the start of the token just read, so that the same
// token is read again. At the first character, and with a NUL separator on an empty text, it stays
// in the text.
TEST(Parser, SkipBack) {
  Str args(" -r -abi "), words("x yz"), fields("ab,cd,ef"), ab("ab"), empty, t;
  Parser a(args), w(words), f(fields), n(ab), e(empty);
  Walk(DO(a.GetToken(t)), DO(a.GetToken(t)), DO(a.SkipBack()), STEP(Offset(a), 4L),
       DO(w.SkipToken(2)), DO(w.SkipBack()), STEP(Offset(w), 2L), DO(w.SkipBack()),
       DO(w.SkipBack()), STEP(Offset(w), 0L), DO(f.GetToken(t, ',')), DO(f.GetToken(t, ',')),
       DO(f.SkipBack(',')), STEP(Offset(f), 3L), DO(f.SkipBack(',')), DO(f.SkipBack(',')),
       STEP(Offset(f), 0L), DO(n.Next(5)), DO(n.SkipBack('\0')), STEP(Offset(n), 0L),
       DO(e.SkipBack('\0')), DO(e.SkipBack(',')), DO(e.SkipBack()), STEP(e.Get(), '\0'));
}

// Compare looks at the position only; Contains searches the whole text from its start and moves
// there.
TEST(Parser, CompareAndContains) {
  Str text(">seq1 desc"), abc("abcabc");
  Parser p(text), q(abc);
  Walk(STEP(p.Compare(">seq"), true), STEP(p.Compare(""), false), STEP(p.Next(1), true),
       STEP(p.Compare(Str("seq1 desc")), true), STEP(p.Compare("seq1 description"), false),
       STEP(q.SetPosition(5L), true), STEP(q.Contains("b"), true), STEP(Offset(q), 1L),
       STEP(q.SetPosition(4L), true), STEP(q.Contains("x"), false), STEP(q.Contains('\0'), false),
       STEP(Offset(q), 4L), STEP(q.Contains('c'), true), STEP(Offset(q), 2L));
}
