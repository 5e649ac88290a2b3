// CoutWriter: the text operations of FileWriter, handed straight to std::cout. The inherited
// buffer is never written, so the operations not replaced here produce nothing.
#include <cstdio>
#include <iostream>

#include "toolkit/fileio.h"

namespace {

// A number as the standard stream prints it with its default settings: "%ld" for a long, "%g"
// (six significant digits) for a double. This can differ from Str's number-to-text rule.
struct StreamText {
  explicit StreamText(long n) : length(std::snprintf(text, sizeof text, "%ld", n)) {}
  explicit StreamText(double x) : length(std::snprintf(text, sizeof text, "%g", x)) {}
  char text[32];
  int length;
};

}  // namespace

CoutWriter::~CoutWriter() = default;

// Standard output is neither closed nor flushed; nothing waits in the buffer.
void CoutWriter::Close() {}

void CoutWriter::Append(const Str& s) { Put(s.String(), s.Length()); }
void CoutWriter::Append(const char* s) { Put(s, TextLength(s)); }
void CoutWriter::Append(char c) { Put(&c, 1); }
void CoutWriter::Append(long n) {
  StreamText t(n);
  Put(t.text, t.length);
}
void CoutWriter::Append(double x) {
  StreamText t(x);
  Put(t.text, t.length);
}

void CoutWriter::AppendLine() { Put("\n", 1); }
void CoutWriter::AppendLine(const Str& s) { PutFollowed(s.String(), s.Length(), '\n'); }
void CoutWriter::AppendLine(const char* s) { PutFollowed(s, TextLength(s), '\n'); }
void CoutWriter::AppendLine(char c) { PutFollowed(&c, 1, '\n'); }
void CoutWriter::AppendLine(long n) {
  StreamText t(n);
  PutFollowed(t.text, t.length, '\n');
}
void CoutWriter::AppendLine(double x) {
  StreamText t(x);
  PutFollowed(t.text, t.length, '\n');
}

void CoutWriter::AppendToken(const Str& s) { PutFollowed(s.String(), s.Length(), ' '); }
void CoutWriter::AppendToken(const char* s) { PutFollowed(s, TextLength(s), ' '); }
void CoutWriter::AppendToken(char c) { PutFollowed(&c, 1, ' '); }
void CoutWriter::AppendToken(long n) { CoutWriter::AppendToken(n, ' '); }
void CoutWriter::AppendToken(double x) { CoutWriter::AppendToken(x, ' '); }
void CoutWriter::AppendToken(const Str& s, char separator) {
  PutFollowed(s.String(), s.Length(), separator);
}
void CoutWriter::AppendToken(const char* s, char separator) {
  PutFollowed(s, TextLength(s), separator);
}
void CoutWriter::AppendToken(char c, char separator) { PutFollowed(&c, 1, separator); }
void CoutWriter::AppendToken(long n, char separator) {
  StreamText t(n);
  PutFollowed(t.text, t.length, separator);
}
void CoutWriter::AppendToken(double x, char separator) {
  StreamText t(x);
  PutFollowed(t.text, t.length, separator);
}

void CoutWriter::AppendByte(char c) { Put(&c, 1); }
void CoutWriter::AppendByte(const char* p, long n) { Put(p, n); }

void CoutWriter::Append(const Str& s, long width, bool right) {
  PutJustified(s.String(), s.Length(), width, right);
}
void CoutWriter::Append(const char* s, long width, bool right) {
  PutJustified(s, TextLength(s), width, right);
}
void CoutWriter::Append(char c, long width, bool right) { PutJustified(&c, 1, width, right); }
void CoutWriter::Append(long n, long width, bool right) {
  StreamText t(n);
  PutJustified(t.text, t.length, width, right);
}
void CoutWriter::Append(double x, long width, bool right) {
  StreamText t(x);
  PutJustified(t.text, t.length, width, right);
}

CoutWriter& CoutWriter::operator<<(const Str& s) {
  CoutWriter::Append(s);
  return *this;
}
CoutWriter& CoutWriter::operator<<(const char* s) {
  CoutWriter::Append(s);
  return *this;
}
CoutWriter& CoutWriter::operator<<(char c) {
  CoutWriter::Append(c);
  return *this;
}
CoutWriter& CoutWriter::operator<<(long n) {
  CoutWriter::Append(n);
  return *this;
}
CoutWriter& CoutWriter::operator<<(double x) {
  CoutWriter::Append(x);
  return *this;
}

void CoutWriter::Put(const char* text, long n) {
  if (n > 0) std::cout.write(text, n);
}

void CoutWriter::PutFollowed(const char* text, long n, char after) {
  Put(text, n);
  std::cout.put(after);
}

// The text and max(0, width - length) blanks, in front of it when `right`; never cut.
void CoutWriter::PutJustified(const char* text, long n, long width, bool right) {
  static constexpr char kBlanks[] = "                                ";
  constexpr long kRun = sizeof kBlanks - 1;
  long pad = width > n ? width - n : 0;
  if (!right) Put(text, n);
  for (; pad > 0; pad -= kRun) Put(kBlanks, pad < kRun ? pad : kRun);
  if (right) Put(text, n);
}
