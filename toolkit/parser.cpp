// The read cursor over a Str. Every "end" test looks for the NUL at the position, and no
// operation steps outside the string's buffer except GetNext, which trusts its caller.
#include <cstring>

#include "toolkit/str.h"

Parser::Parser() : source(nullptr), position(nullptr) {}

Parser::Parser(Str& s) : source(&s), position(s.String()) {}

void Parser::SetString(Str& s) { SetString(&s); }

void Parser::SetString(Str* s) {
  source = s;
  position = s->String();
}

void Parser::Begin() { position = Start(); }

char Parser::Get() const { return *position; }

char Parser::GetNext() { return *position++; }

bool Parser::GetCharacter(char& c) {
  SkipWhite();
  c = *position;
  if (AtEnd()) return false;
  ++position;
  return true;
}

bool Parser::SkipSpaces() {
  SkipWhite();
  return !AtEnd();
}

void Parser::SkipWhite() {
  while (!AtEnd() && Str::IsSpace(*position)) ++position;
}

void Parser::SkipToChar(char c) {
  while (!AtEnd() && *position != c) ++position;
}

// Next and Previous clamp to the terminator and to the first character, whatever the sign of n.
bool Parser::Next(int n) {
  long target = Offset() + n;
  if (target < 0) target = 0;
  if (target >= source->Length()) {
    position = Start() + source->Length();
    return false;
  }
  position = Start() + target;
  return true;
}

bool Parser::Previous(int n) {
  long target = Offset() - n;
  if (target > source->Length()) target = source->Length();
  if (target < 0) {
    position = Start();
    return false;
  }
  position = Start() + target;
  return true;
}

bool Parser::SetPosition(long i) {
  if (i < 0 || i >= source->Length()) return false;
  position = Start() + i;
  return true;
}

bool Parser::SetPosition(char c) {
  SkipToChar(c);
  return !AtEnd();
}

// The skipping family: SkipToken leaves the position on the white space that ended the last
// token; the separator forms step past the separator they stop on.
bool Parser::SkipToken(int n) {
  for (int i = 0; i < n; ++i) {
    SkipWhite();
    if (AtEnd()) return false;
    while (!AtEnd() && !Str::IsSpace(*position)) ++position;
  }
  return true;
}

bool Parser::SkipToken(char sep, int n) {
  for (int i = 0; i < n; ++i) {
    SkipToChar(sep);
    if (AtEnd()) return false;
    ++position;
  }
  return true;
}

bool Parser::SkipLine(int n) { return SkipToken('\n', n); }

// Undoes a GetToken: back over the separator and any white space, then to the token's start.
void Parser::SkipBack() {
  char* const start = Start();
  if (position > start) --position;
  while (position > start && Str::IsSpace(*position)) --position;
  while (position > start && !Str::IsSpace(*position)) --position;
  if (Str::IsSpace(*position)) ++position;
}

void Parser::SkipBack(char sep) {
  char* const start = Start();
  if (position > start) --position;
  if (position > start && *position == sep) --position;
  while (position > start && *position != sep) --position;
  // A NUL separator matches the terminator of an empty text, which must not be stepped past.
  if (*position == sep && !AtEnd()) ++position;
}

// A piece of length n goes into t's buffer when it fits; otherwise t gets a new buffer of 2 n
// bytes. SetLength(m) makes m + 1 bytes, and Copy then reuses the buffer.
void Parser::Take(Str& t, const char* from, long n) {
  if (t.Size() <= n) t.SetLength(2 * n - 1);
  t.Copy(from, n);
}

// The copying family. Each one clears the target and answers false when nothing is left.
bool Parser::ClearedAtEnd(Str& t) const {
  if (!AtEnd()) return false;
  t.Clear();
  return true;
}

bool Parser::GetToken(Str& t) {
  SkipWhite();
  if (ClearedAtEnd(t)) return false;
  const char* const from = position;
  while (!AtEnd() && !Str::IsSpace(*position)) ++position;
  Take(t, from, position - from);
  if (!AtEnd()) ++position;
  return true;
}

bool Parser::GetToken(Str& t, char sep) {
  if (ClearedAtEnd(t)) return false;
  const char* const from = position;
  SkipToChar(sep);
  Take(t, from, position - from);
  if (!AtEnd()) ++position;
  return true;
}

bool Parser::GetToken(Str& t, long n) {
  if (ClearedAtEnd(t)) return false;
  long count = 0;
  while (count < n && position[count] != '\0') ++count;
  Take(t, position, count);
  position += count;
  return true;
}

bool Parser::GetLine(Str& t) { return GetToken(t, '\n'); }

bool Parser::GetRight(Str& t) {
  if (ClearedAtEnd(t)) return false;
  const long n = static_cast<long>(std::strlen(position));
  Take(t, position, n);
  position += n;
  return true;
}

bool Parser::GetLeft(Str& t) {
  Take(t, Start(), Offset());
  return true;
}

// Breaks after white space where it can, inside a word only when the word is longer than the
// line. A newline ends the line early and stays in the copied piece, also when it stands just
// at the width, so blank lines survive the wrapping. A width below 1 counts as 1, so that every
// call makes progress.
bool Parser::WordWrap(Str& t, long width) {
  if (ClearedAtEnd(t)) return false;
  if (width < 1) width = 1;
  char* const start = position;
  bool newline = false;
  while (!AtEnd()) {
    if (*position == '\n') {
      ++position;
      newline = true;
      break;
    }
    if (position - start == width) break;
    ++position;
  }
  if (!AtEnd() && !newline) {
    if (Str::IsSpace(*position)) {
      while (!AtEnd() && Str::IsSpace(*position)) ++position;
    } else {
      --position;
      while (position > start && !Str::IsSpace(*position)) --position;
      if (position == start) {
        position = start + width;
      } else {
        ++position;
      }
    }
  }
  Take(t, start, position - start);
  return true;
}

// Compare tests at the position only; Contains searches the whole text and moves there.
bool Parser::Compare(const Str& s) const { return CompareText(s.String(), s.Length()); }

bool Parser::Compare(const char* s) const {
  return CompareText(s, static_cast<long>(std::strlen(s)));
}

bool Parser::CompareText(const char* s, long n) const {
  return n > 0 && std::strncmp(position, s, static_cast<size_t>(n)) == 0;
}

bool Parser::Contains(const Str& s) { return ContainsText(s.String(), s.Length()); }

bool Parser::Contains(const char* s) { return ContainsText(s, static_cast<long>(std::strlen(s))); }

bool Parser::Contains(char c) {
  if (c == '\0') return false;
  char* const found = std::strchr(Start(), c);
  if (found == nullptr) return false;
  position = found;
  return true;
}

bool Parser::ContainsText(const char* s, long n) {
  if (n <= 0) return false;
  char* const found = std::strstr(Start(), s);
  if (found == nullptr) return false;
  position = found;
  return true;
}
