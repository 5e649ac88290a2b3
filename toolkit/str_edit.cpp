// Str editing: parts of other texts, ranges and lines, += and +, inserting and overwriting,
// deleting, whole-text changes and copying out.
//
// Every check comes before any change, in this order: the count (a negative count is the
// parameter error), then the position, then the allocation.
#include <cctype>
#include <cstring>

#include "toolkit/str.h"

namespace {

// A run of characters taken from a source text.
struct Part {
  const char* text;
  long n;
};

// n characters of text from pos, pos being at most `last`. A count larger than what remains is
// cut to it; with zeroMeansAll a count of 0 takes everything that remains.
Part Range(const char* text, long length, long pos, long n, long last, bool zeroMeansAll) {
  Str::Counted(n);
  Str::Within(pos, last);
  long remaining = length - pos;
  if ((n == 0 && zeroMeansAll) || n > remaining) n = remaining;
  return Part{text + pos, n};
}

// Range over a C string, whose terminator is measured first so that nothing past it is read; the
// end of the text is a valid position.
Part TextRange(const char* s, long pos, long n, bool zeroMeansAll) {
  const long textLength = static_cast<long>(std::strlen(s));
  return Range(s, textLength, pos, n, textLength, zeroMeansAll);
}

// The first n characters; 0 takes all.
Part Left(const char* text, long length, long n) { return Range(text, length, 0, n, length, true); }

// The last n characters; 0 takes all.
Part Right(const char* text, long length, long n) {
  Part left = Left(text, length, n);
  return Part{text + length - left.n, left.n};
}

// The two texts one after the other, in a new string with room for exactly that: the worker of
// every operator+.
Str Joined(const char* front, long frontLength, const char* back, long backLength) {
  Str joined(frontLength + backLength);
  joined.AppendBytes(front, frontLength);
  joined.AppendBytes(back, backLength);
  return joined;
}

// Copies the part to dest, and its terminator when asked. Returns where the terminator went, or
// dest when there is none.
char* CopyPart(Part part, char* dest, bool terminate) {
  std::memcpy(dest, part.text, part.n);
  if (!terminate) return dest;
  dest[part.n] = '\0';
  return dest + part.n;
}

}  // namespace

// ---- Taking parts ---------------------------------------------------------------------------

// The receiving text is replaced by the Copy rule: the buffer only grows.
void Str::CopyLeft(const Str& x, long n) {
  Part part = Left(x.string, x.length, n);
  CopyText(part.text, part.n);
}
void Str::CopyLeft(const Str* x, long n) { CopyLeft(*x, n); }

void Str::CopyLeft(const char* x, long n) {
  Part part = Left(x, std::strlen(x), n);
  CopyText(part.text, part.n);
}

void Str::CopyRight(const Str& x, long n) {
  Part part = Right(x.string, x.length, n);
  CopyText(part.text, part.n);
}
void Str::CopyRight(const Str* x, long n) { CopyRight(*x, n); }

void Str::CopyRight(const char* x, long n) {
  Part part = Right(x, std::strlen(x), n);
  CopyText(part.text, part.n);
}

// CopyMid counts 0 as zero characters; pos may be the end of the source.
void Str::CopyMid(const Str& x, long pos, long n) {
  Part part = Range(x.string, x.length, pos, n, x.length, false);
  CopyText(part.text, part.n);
}
void Str::CopyMid(const Str* x, long pos, long n) { CopyMid(*x, pos, n); }

void Str::CopyMid(const char* s, long pos, long n) {
  Part part = TextRange(s, pos, n, false);
  CopyText(part.text, part.n);
}

void Str::CopyEnd(const Str& x, long pos) {
  Part part = Range(x.string, x.length, pos, 0, x.length, true);
  CopyText(part.text, part.n);
}
void Str::CopyEnd(const Str* x, long pos) { CopyEnd(*x, pos); }

void Str::CopyEnd(const char* x, long pos) {
  Part part = TextRange(x, pos, 0, true);
  CopyText(part.text, part.n);
}

// ---- Appending ranges and lines -------------------------------------------------------------

// The first n characters of x; 0 takes all.
void Str::Append(const Str& x, long n) {
  Part part = Left(x.string, x.length, n);
  AppendBytes(part.text, part.n);
}
void Str::Append(const Str* x, long n) { Append(*x, n); }

void Str::Append(const char* x, long n) {
  Part part = Left(x, std::strlen(x), n);
  AppendBytes(part.text, part.n);
}

// n characters from pos, 0 taking the rest. The position must name a character of a Str, while
// the end of a C string is accepted.
void Str::Append(const Str& x, long pos, long n) {
  Part part = Range(x.string, x.length, pos, n, x.length - 1, true);
  AppendBytes(part.text, part.n);
}

void Str::Append(const char* s, long pos, long n) {
  Part part = TextRange(s, pos, n, true);
  AppendBytes(part.text, part.n);
}

// A line is the text followed by "\n", grown by the Append rule.
void Str::AppendLine() { AppendBytes("\n", 1); }
void Str::AppendLine(const Str& x) { AppendTokenText(x.string, x.length, '\n'); }
void Str::AppendLine(const Str* x) { AppendTokenText(x->string, x->length, '\n'); }
void Str::AppendLine(const char* x) { AppendTokenText(x, std::strlen(x), '\n'); }
void Str::AppendLine(char c) { AppendTokenText(&c, 1, '\n'); }

void Str::AppendLine(long n) {
  const NumberText t(n);
  AppendTokenText(t.text, t.length, '\n');
}

void Str::AppendLine(double x) {
  const NumberText t(x);
  AppendTokenText(t.text, t.length, '\n');
}

// << is Append that can be chained.
Str& Str::operator<<(const Str& x) {
  Append(x);
  return *this;
}

Str& Str::operator<<(const Str* x) {
  Append(x);
  return *this;
}

Str& Str::operator<<(const char* x) {
  Append(x);
  return *this;
}

Str& Str::operator<<(char c) {
  Append(c);
  return *this;
}

Str& Str::operator<<(long n) {
  Append(n);
  return *this;
}

Str& Str::operator<<(double x) {
  Append(x);
  return *this;
}

// ---- += and + -------------------------------------------------------------------------------

// += appends and then fits the buffer exactly, so every change of length reallocates.
Str& Str::operator+=(const Str& x) {
  AddAssignText(x.string, x.length);
  return *this;
}

Str& Str::operator+=(const char* x) {
  AddAssignText(x, std::strlen(x));
  return *this;
}

Str& Str::operator+=(char c) {
  AddAssignText(&c, 1);
  return *this;
}

Str& Str::operator+=(long n) {
  const NumberText t(n);
  AddAssignText(t.text, t.length);
  return *this;
}

Str& Str::operator+=(double x) {
  const NumberText t(x);
  AddAssignText(t.text, t.length);
  return *this;
}

void Str::AddAssignText(const char* text, long n) {
  if (n > kMaxSize - 1 - length) AlError();
  long newLength = length + n;
  if (size != newLength + 1) {
    char* buffer = NewBuffer(newLength + 1);
    std::memcpy(buffer, string, length);
    std::memcpy(buffer + length, text, n);
    Adopt(buffer, newLength + 1);
  } else {
    std::memmove(string + length, text, n);
  }
  length = newLength;
  string[length] = '\0';
}

// + makes a new string with room for exactly the joined text; neither operand changes.
Str Str::operator+(const Str& x) const { return Joined(string, length, x.string, x.length); }
Str Str::operator+(const Str* x) const { return Joined(string, length, x->string, x->length); }
Str Str::operator+(const char* x) const { return Joined(string, length, x, std::strlen(x)); }
Str Str::operator+(char c) const { return Joined(string, length, &c, 1); }

Str Str::operator+(long n) const {
  const NumberText t(n);
  return Joined(string, length, t.text, t.length);
}

Str Str::operator+(double x) const {
  const NumberText t(x);
  return Joined(string, length, t.text, t.length);
}

Str operator+(const char* x, const Str& s) { return Joined(x, std::strlen(x), s.string, s.length); }
Str operator+(char c, const Str& s) { return Joined(&c, 1, s.string, s.length); }

Str operator+(long n, const Str& s) {
  const Str::NumberText t(n);
  return Joined(t.text, t.length, s.string, s.length);
}

Str operator+(double x, const Str& s) {
  const Str::NumberText t(x);
  return Joined(t.text, t.length, s.string, s.length);
}

// ---- Inserting and overwriting --------------------------------------------------------------

// Insert puts x before the character at pos (the end included); InsertLeft puts it in front.
void Str::Insert(const Str& x, long pos) { InsertText(x.string, x.length, pos); }
void Str::Insert(const Str* x, long pos) { InsertText(x->string, x->length, pos); }
void Str::Insert(const char* x, long pos) { InsertText(x, std::strlen(x), pos); }
void Str::Insert(char c, long pos) { InsertText(&c, 1, pos); }
void Str::InsertLeft(const Str& x) { InsertText(x.string, x.length, 0); }
void Str::InsertLeft(const Str* x) { InsertText(x->string, x->length, 0); }
void Str::InsertLeft(const char* x) { InsertText(x, std::strlen(x), 0); }
void Str::InsertLeft(char c) { InsertText(&c, 1, 0); }

// The tail moves right first, which would shift a source inside this very buffer: such a source
// is copied out before anything changes.
void Str::InsertText(const char* text, long n, long pos) {
  Within(pos, length);
  if (n > kMaxSize - 1 - length) AlError();
  if (n > 0 && Holds(text)) {
    Str copy(n);
    copy.AppendBytes(text, n);
    InsertText(copy.string, n, pos);
    return;
  }
  std::unique_ptr<char[]> old = MakeRoom(length + n);
  std::memmove(string + pos + n, string + pos, length - pos + 1);
  std::memcpy(string + pos, text, n);
  length += n;
}

// Replace overwrites from pos, a character of the text; the text grows when x reaches past its
// end. The counted form takes at most n characters of x.
void Str::Replace(const Str& x, long pos) { ReplaceText(x.string, x.length, pos); }
void Str::Replace(const Str* x, long pos) { ReplaceText(x->string, x->length, pos); }
void Str::Replace(const char* x, long pos) { ReplaceText(x, std::strlen(x), pos); }
void Str::Replace(char c, long pos) { ReplaceText(&c, 1, pos); }

void Str::Replace(const Str& x, long pos, long n) {
  Part part = Range(x.string, x.length, 0, n, x.length, false);
  ReplaceText(part.text, part.n, pos);
}
void Str::Replace(const Str* x, long pos, long n) { Replace(*x, pos, n); }

void Str::Replace(const char* x, long pos, long n) {
  Part part = TextRange(x, 0, n, false);
  ReplaceText(part.text, part.n, pos);
}

void Str::ReplaceText(const char* text, long n, long pos) {
  Within(pos, length - 1);
  if (n > kMaxSize - 1 - pos) AlError();
  long end = pos + n;
  std::unique_ptr<char[]> old = MakeRoom(end > length ? end : length);
  std::memmove(string + pos, text, n);
  if (end > length) {
    length = end;
    string[length] = '\0';
  }
}

// ReplaceEnd cuts the text at pos (the end included) and appends x there.
void Str::ReplaceEnd(const Str& x, long pos) { ReplaceEndText(x.string, x.length, pos); }
void Str::ReplaceEnd(const Str* x, long pos) { ReplaceEndText(x->string, x->length, pos); }
void Str::ReplaceEnd(const char* x, long pos) { ReplaceEndText(x, std::strlen(x), pos); }
void Str::ReplaceEnd(char c, long pos) { ReplaceEndText(&c, 1, pos); }

void Str::ReplaceEnd(long n, long pos) {
  const NumberText t(n);
  ReplaceEndText(t.text, t.length, pos);
}

void Str::ReplaceEnd(double x, long pos) {
  const NumberText t(x);
  ReplaceEndText(t.text, t.length, pos);
}

void Str::ReplaceEndText(const char* text, long n, long pos) {
  Within(pos, length);
  if (n > kMaxSize - 1 - pos) AlError();
  std::unique_ptr<char[]> old = MakeRoom(pos + n);
  std::memmove(string + pos, text, n);
  length = pos + n;
  string[length] = '\0';
}

// ---- Deleting -------------------------------------------------------------------------------

// Deleting never reallocates.
void Str::Delete(long pos) { Delete(pos, 1); }

// A range reaching past the end ends the text at pos.
void Str::Delete(long pos, long n) {
  Counted(n);
  Within(pos, length - 1);
  if (n >= length - pos) {
    length = pos;
  } else {
    std::memmove(string + pos, string + pos + n, length - pos - n);
    length -= n;
  }
  string[length] = '\0';
}

void Str::DeleteLeft(long n) {
  long cut = Counted(n) < length ? n : length;
  std::memmove(string, string + cut, length - cut + 1);
  length -= cut;
}

void Str::DeleteRight(long n) {
  Counted(n);
  length -= n < length ? n : length;
  string[length] = '\0';
}

void Str::DeleteEnd(long pos) {
  length = Within(pos, length - 1);
  string[length] = '\0';
}

// ---- Whole-text changes ---------------------------------------------------------------------

void Str::UpperCase() {
  for (long i = 0; i < length; ++i) {
    string[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(string[i])));
  }
}

void Str::LowerCase() {
  for (long i = 0; i < length; ++i) {
    string[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(string[i])));
  }
}

void Str::RemoveLeftSpaces() {
  long blanks = 0;
  while (blanks < length && IsSpace(string[blanks])) ++blanks;
  std::memmove(string, string + blanks, length - blanks + 1);
  length -= blanks;
}

void Str::RemoveRightSpaces() {
  while (length > 0 && IsSpace(string[length - 1])) --length;
  string[length] = '\0';
}

void Str::RemoveEndSpaces() {
  RemoveLeftSpaces();
  RemoveRightSpaces();
}

void Str::Fill(char c) { std::memset(string, c, length); }

// A buffer too small for n characters is replaced by one of 2 x n bytes; the old text is dropped.
void Str::Fill(char c, long n) {
  Counted(n);
  if (n > kMaxSize - 1) AlError();
  if (size <= n) Reallocate(n > kMaxSize / 2 ? kMaxSize : 2 * n, false);
  std::memset(string, c, n);
  length = n;
  string[length] = '\0';
}

void Str::Reverse() {
  for (long i = 0, j = length - 1; i < j; ++i, --j) {
    char c = string[i];
    string[i] = string[j];
    string[j] = c;
  }
}

bool Str::HasLineEnd() const { return length > 0 && string[length - 1] == '\n'; }

// ---- Copying out ----------------------------------------------------------------------------

// New arrays belong to the caller, who frees them with delete[]. The counted form takes 0 as zero
// characters, the positioned form as the rest from pos, a character of the text.
char* Str::CopyToChar() const { return CopyToChar(length); }

char* Str::CopyToChar(long n) const {
  const Part part = Range(string, length, 0, n, length, false);
  return NewArray(part.text, part.n);
}

char* Str::CopyToChar(long pos, long n) const {
  const Part part = Range(string, length, pos, n, length - 1, true);
  return NewArray(part.text, part.n);
}

char* Str::NewArray(const char* text, long n) {
  char* const copy = NewBuffer(n + 1);
  CopyPart(Part{text, n}, copy, true);
  return copy;
}

// dest must have room for the copy and, when asked, its terminator. With a terminator the result
// points at it, ready for the next piece; otherwise it is dest.
char* Str::StringCopy(char* dest, long n, bool terminate) const {
  return CopyPart(Left(string, length, n), dest, terminate);
}

char* Str::StringCopy(char* dest, long n, long pos, bool terminate) const {
  return CopyPart(Range(string, length, pos, n, length - 1, true), dest, terminate);
}
