// Str comparison and search: prefix and suffix tests, equality and order, containment, and
// searches from the left and from the right. None of them changes the string.
#include <cstring>

#include "toolkit/str.h"

namespace {

// True when the n bytes of x stand in text at pos; false when they would run past the end.
bool MatchAt(const char* text, long length, long pos, const char* x, long n) {
  return n <= length - pos && std::memcmp(text + pos, x, n) == 0;
}

// Index of the first start at or after `from` where x stands in text, or -1. An empty x is found
// at `from` itself.
long SearchRight(const char* text, long length, long from, const char* x, long n) {
  if (n == 0) return from;
  for (long start = from; start <= length - n; ++start) {
    const void* hit = std::memchr(text + start, x[0], length - n + 1 - start);
    if (hit == nullptr) return -1;
    start = static_cast<const char*>(hit) - text;
    if (std::memcmp(text + start, x, n) == 0) return start;
  }
  return -1;
}

// Index of the last start at or before `from` where x stands in text, or -1. A start must leave
// room for the whole of x, so an empty x matches at every character.
long SearchLeft(const char* text, long length, long from, const char* x, long n) {
  long highest = length - (n > 0 ? n : 1);
  for (long start = from < highest ? from : highest; start >= 0; --start) {
    if (std::memcmp(text + start, x, n) == 0) return start;
  }
  return -1;
}

// The position forms of Find: pos must lie in the text, and is only changed on success.
bool FindFrom(const char* text, long length, const char* x, long n, long& pos) {
  if (pos < 0 || pos >= length) return false;
  long found = SearchRight(text, length, pos, x, n);
  if (found < 0) return false;
  pos = found;
  return true;
}

// The position forms of FindRight: -1 stands for the last character and is replaced first.
bool FindRightFrom(const char* text, long length, const char* x, long n, long& pos) {
  if (pos == -1) pos = length - 1;
  if (pos < 0 || pos >= length || n > length) return false;
  long found = SearchLeft(text, length, pos, x, n);
  if (found < 0) return false;
  pos = found;
  return true;
}

}  // namespace

// Compare is a prefix test: the text begins with x. The positional forms test the text from pos
// on, and pos must lie in the text.
bool Str::Compare(const Str& x) const { return MatchAt(string, length, 0, x.string, x.length); }
bool Str::Compare(const Str* x) const { return Compare(*x); }
bool Str::Compare(const char* x) const { return MatchAt(string, length, 0, x, std::strlen(x)); }
bool Str::Compare(char c) const { return length > 0 && string[0] == c; }
bool Str::Compare(const Str& x, long pos) {
  return MatchAt(string, length, Within(pos, length - 1), x.string, x.length);
}
bool Str::Compare(const Str* x, long pos) { return Compare(*x, pos); }

bool Str::Compare(const char* x, long pos) {
  return MatchAt(string, length, Within(pos, length - 1), x, std::strlen(x));
}

bool Str::Compare(char c, long pos) { return string[Within(pos, length - 1)] == c; }

// CompareRight is a suffix test that also asks for a text strictly longer than x.
bool Str::CompareRight(const Str& x) const {
  return length > x.length && MatchAt(string, length, length - x.length, x.string, x.length);
}
bool Str::CompareRight(const Str* x) const { return CompareRight(*x); }

bool Str::CompareRight(const char* x) const {
  long n = std::strlen(x);
  return length > n && MatchAt(string, length, length - n, x, n);
}

bool Str::CompareRight(char c) const { return length > 0 && string[length - 1] == c; }

// Equality of whole texts and byte order of the texts.
bool Str::Equals(const Str& x) const {
  return length == x.length && std::memcmp(string, x.string, length) == 0;
}
bool Str::Equals(const Str* x) const { return Equals(*x); }
bool Str::operator<(const Str& x) const { return std::strcmp(string, x.string) < 0; }
bool Str::IsLessThan(const Str* x) const { return std::strcmp(string, x->string) < 0; }
bool Str::IsGreaterThan(const Str* x) const { return std::strcmp(string, x->string) > 0; }

// Containment: an empty needle (or the character 0) is never contained; an empty text is in every
// string.
bool Str::Contains(const Str& x) const {
  return x.length > 0 && SearchRight(string, length, 0, x.string, x.length) >= 0;
}
bool Str::Contains(const Str* x) const { return Contains(*x); }

bool Str::Contains(const char* x) const {
  long n = std::strlen(x);
  return n > 0 && SearchRight(string, length, 0, x, n) >= 0;
}

bool Str::Contains(char c) const { return c != '\0' && std::memchr(string, c, length) != nullptr; }
bool Str::IsIn(const char* s) const { return std::strstr(s, string) != nullptr; }

// Find answers the first index of x or -1. Searching for the character 0 finds the terminator.
long Str::Find(const Str& x) const { return SearchRight(string, length, 0, x.string, x.length); }
long Str::Find(const char* x) const { return SearchRight(string, length, 0, x, std::strlen(x)); }

long Str::Find(char c) const {
  if (c == '\0') return length;
  return SearchRight(string, length, 0, &c, 1);
}

// The position forms search from pos on and store the index found in pos.
bool Str::Find(const Str& x, long& pos) const {
  return FindFrom(string, length, x.string, x.length, pos);
}
bool Str::Find(const char* x, long& pos) const {
  return FindFrom(string, length, x, std::strlen(x), pos);
}
bool Str::Find(char c, long& pos) const { return FindFrom(string, length, &c, 1, pos); }

// FindRight answers the last index at which x begins, or -1; like Find, the character 0 is found
// at the terminator.
long Str::FindRight(const Str& x) const {
  return SearchLeft(string, length, length - 1, x.string, x.length);
}

long Str::FindRight(const char* x) const {
  return SearchLeft(string, length, length - 1, x, std::strlen(x));
}

long Str::FindRight(char c) const {
  if (c == '\0') return length;
  return SearchLeft(string, length, length - 1, &c, 1);
}

// The position forms scan leftwards from pos (-1 meaning the last character).
bool Str::FindRight(const Str& x, long& pos) const {
  return FindRightFrom(string, length, x.string, x.length, pos);
}
bool Str::FindRight(const char* x, long& pos) const {
  return FindRightFrom(string, length, x, std::strlen(x), pos);
}
bool Str::FindRight(char c, long& pos) const { return FindRightFrom(string, length, &c, 1, pos); }
