// Str tokens, fields, hexadecimal text and streams, and the Formater that reads field formats.
//
// Numbers are converted into stack buffers of Str::kNumberTextSize bytes, so no heap allocation is
// made per number. Fields are built in place: the field is filled first and the value, its sign
// and the optional point are then written over the fill.
#include <algorithm>
#include <cstring>
#include <istream>
#include <memory>
#include <ostream>

#include "toolkit/str.h"

namespace {

// The digits behind "A" and "P" saturate here instead of overflowing; a column or a precision
// that large is never reached by any real field.
constexpr long kFormatNumberLimit = 1L << 30;

constexpr char kHexDigits[] = "0123456789ABCDEF";
static_assert(sizeof(kHexDigits) == 17, "sixteen digits and the terminator");

// Reads the decimal digits at p, as many as there are; none give 0.
long ReadFormatNumber(const char*& p) {
  long value = 0;
  for (; *p >= '0' && *p <= '9'; ++p) {
    if (value < kFormatNumberLimit) value = value * 10 + (*p - '0');
  }
  return value;
}

int HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Where a value of n characters starts in a frame of the given width: left, right or centred
// (halves rounded up). A column from "A" counts as left here.
long AlignedOffset(long align, long frame, long n) {
  if (align == Formater::kRight) return frame - n;
  if (align == Formater::kCentre) return (frame - n + 1) / 2;
  return 0;
}

// "R" moves the value by half a unit of the last kept decimal, away from zero, before it is
// converted; the precision cut afterwards truncates.
int RoundedText(double x, const Formater& f, char* text) {
  if (f.round && f.precision > 0) {
    double half = 0.5;
    for (long i = 0; i < f.precision && half > 0; ++i) half /= 10;
    x = x < 0 ? x - half : x + half;
  }
  return Str::ConvertFloat(x, text);
}

}  // namespace

Formater::Formater(const char* format) {
  if (format == nullptr) return;
  for (const char* p = format; *p != '\0';) {
    switch (*p++) {
      case 'A':
        align = ReadFormatNumber(p);
        break;
      case 'F':
        fill = *p;
        if (*p != '\0') ++p;
        break;
      case 'J':
        // The letter behind "J" is consumed even when it is neither "R" nor "C".
        if (*p == 'R') align = kRight;
        if (*p == 'C') align = kCentre;
        if (*p != '\0') ++p;
        break;
      case 'P':
        precision = ReadFormatNumber(p);
        break;
      case 'R':
        round = 1;
        break;
      case 'S':
        sign = '+';
        break;
      default:
        break;
    }
  }
}

// CopyToken replaces the text with the value and its separator, a blank unless one is given.
void Str::CopyToken(const Str& x) { CopyTokenText(x.string, x.length, ' '); }
void Str::CopyToken(const Str* x) { CopyTokenText(x->string, x->length, ' '); }
void Str::CopyToken(const char* x) { CopyTokenText(x, std::strlen(x), ' '); }
void Str::CopyToken(char c) { CopyTokenText(&c, 1, ' '); }
void Str::CopyToken(long n) { CopyToken(n, ' '); }
void Str::CopyToken(double x) { CopyToken(x, ' '); }
void Str::CopyToken(const Str& x, char sep) { CopyTokenText(x.string, x.length, sep); }
void Str::CopyToken(const Str* x, char sep) { CopyTokenText(x->string, x->length, sep); }
void Str::CopyToken(const char* x, char sep) { CopyTokenText(x, std::strlen(x), sep); }
void Str::CopyToken(char c, char sep) { CopyTokenText(&c, 1, sep); }
void Str::CopyToken(long n, char sep) {
  const NumberText t(n);
  CopyTokenText(t.text, t.length, sep);
}
void Str::CopyToken(double x, char sep) {
  const NumberText t(x);
  CopyTokenText(t.text, t.length, sep);
}

// AppendToken appends the value and its separator, a blank unless one is given.
void Str::AppendToken(const Str& x) { AppendTokenText(x.string, x.length, ' '); }
void Str::AppendToken(const Str* x) { AppendTokenText(x->string, x->length, ' '); }
void Str::AppendToken(const char* x) { AppendTokenText(x, std::strlen(x), ' '); }
void Str::AppendToken(char c) { AppendTokenText(&c, 1, ' '); }
void Str::AppendToken(long n) { AppendToken(n, ' '); }
void Str::AppendToken(double x) { AppendToken(x, ' '); }
void Str::AppendToken(const Str& x, char sep) { AppendTokenText(x.string, x.length, sep); }
void Str::AppendToken(const Str* x, char sep) { AppendTokenText(x->string, x->length, sep); }
void Str::AppendToken(const char* x, char sep) { AppendTokenText(x, std::strlen(x), sep); }
void Str::AppendToken(char c, char sep) { AppendTokenText(&c, 1, sep); }
void Str::AppendToken(long n, char sep) {
  const NumberText t(n);
  AppendTokenText(t.text, t.length, sep);
}
void Str::AppendToken(double x, char sep) {
  const NumberText t(x);
  AppendTokenText(t.text, t.length, sep);
}

// CopyToken grows like Append, to twice the new length, although it replaces the text; for a
// single character that is a 4-byte buffer whenever the size is below 3.
void Str::CopyTokenText(const char* text, long n, char sep) {
  if (n > kMaxSize - 2) AlError();
  const std::unique_ptr<char[]> old = MakeRoom(n + 1);  // a source inside it stays readable
  std::memmove(string, text, n);
  string[n] = sep;
  string[n + 1] = '\0';
  length = n + 1;
}

// CopyField replaces the text with the formatted field.
void Str::CopyField(const Str& x, long width, const char* format) {
  TextField(x.string, x.length, width, format, false);
}
void Str::CopyField(const Str* x, long width, const char* format) {
  TextField(x->string, x->length, width, format, false);
}
void Str::CopyField(const char* x, long width, const char* format) {
  TextField(x, std::strlen(x), width, format, false);
}
void Str::CopyField(char c, long width, const char* format) {
  TextField(&c, 1, width, format, false);
}
void Str::CopyField(long n, long width, const char* format) {
  const NumberText t(n);
  NumberField(t.text, t.length, width, format, false, false);
}
void Str::CopyField(double x, long width, const char* format) {
  char text[kNumberTextSize];
  NumberField(text, RoundedText(x, Formater(format), text), width, format, false, true);
}

// AppendField adds the field behind the text but places the value within the whole text.
void Str::AppendField(const Str& x, long width, const char* format) {
  TextField(x.string, x.length, width, format, true);
}
void Str::AppendField(const Str* x, long width, const char* format) {
  TextField(x->string, x->length, width, format, true);
}
void Str::AppendField(const char* x, long width, const char* format) {
  TextField(x, std::strlen(x), width, format, true);
}
void Str::AppendField(char c, long width, const char* format) {
  TextField(&c, 1, width, format, true);
}
void Str::AppendField(long n, long width, const char* format) {
  const NumberText t(n);
  NumberField(t.text, t.length, width, format, true, false);
}
void Str::AppendField(double x, long width, const char* format) {
  char text[kNumberTextSize];
  NumberField(text, RoundedText(x, Formater(format), text), width, format, true, true);
}

// A character is a text of length 1: the same rule puts it at 0, width - 1 or width / 2.
void Str::TextField(const char* text, long n, long width, const char* format, bool append) {
  Counted(width);
  if (Holds(text)) {
    Str copy;
    copy.Copy(text, n);
    TextField(copy.string, n, width, format, append);
    return;
  }
  const Formater f(format);
  OpenField(std::max(width, n), f.fill, append);
  std::memcpy(string + AlignedOffset(f.align, length, n), text, n);
}

// The sign is taken off the digits and written on its own: at position 0 of a filled field, else
// directly in front of the digits. With a fill character a whole number gets a point behind its
// digits, so "F0" gives fixed decimals.
void Str::NumberField(const char* text, long n, long width, const char* format, bool append,
                      bool isDouble) {
  Counted(width);
  const Formater f(format);
  char sign = f.sign;
  if (n > 0 && text[0] == '-') {
    sign = '-';
    ++text;
    --n;
  }
  const char* point = static_cast<const char*>(std::memchr(text, '.', n));
  const long integers = point != nullptr ? point - text : n;
  long fraction = point != nullptr ? n - integers - 1 : 0;
  if (f.precision > 0 && f.precision < fraction) fraction = f.precision;
  const long kept = integers + (fraction > 0 ? fraction + 1 : 0);

  OpenField(std::max(width, kept + (sign != 0 ? 1 : 0)), f.fill, append);
  long offset = AlignedOffset(f.align, length, kept);
  // A column beyond the field would push the digits out of it; they end at the field's end then.
  if (isDouble && f.align > 0) offset = std::min(std::max(f.align - integers, 0L), length - kept);
  if (sign != 0 && offset == 0) offset = 1;
  std::memcpy(string + offset, text, kept);
  if (sign != 0) string[f.fill != 0 ? 0 : offset - 1] = sign;
  if (f.fill != 0 && point == nullptr && offset + kept < length) string[offset + kept] = '.';
}

// The whole field is filled, also where the value will not reach, so no byte is left unset.
void Str::OpenField(long fieldWidth, char fill, bool append) {
  const long start = append ? length : 0;
  if (fieldWidth > kMaxSize - 1 - start) AlError();
  const long newLength = start + fieldWidth;
  if (append) {
    MakeRoom(newLength);
  } else if (size <= newLength) {
    Adopt(NewBuffer(newLength + 1), newLength + 1);
  }
  std::memset(string + start, fill != 0 ? fill : ' ', fieldWidth);
  length = newLength;
  string[length] = '\0';
}

// Right justification always moves the text into a new buffer (at least as large as the old
// one); left justification reuses the buffer when it has room.
void Str::Justify(long width, bool right) {
  Counted(width);
  if (length >= width) return;
  if (width > kMaxSize - 1) AlError();
  const long pad = width - length;
  if (!right) {
    SetLength(width);
    std::memset(string + length, ' ', pad);
  } else {
    const long newSize = std::max(size, width + 1);
    char* moved = NewBuffer(newSize);
    std::memset(moved, ' ', pad);
    std::memcpy(moved + pad, string, length);
    Adopt(moved, newSize);
  }
  length = width;
  string[length] = '\0';
}

// Digits come from the lowest nibble up, dividing toward zero, so a negative value gives its low
// nibble and then the digits of the truncated quotient: -1 is "F", not a two's complement image.
void Str::HexToString(long value, int digits, bool prefix) {
  long count = 1;
  for (long v = value / 16; v != 0; v /= 16) ++count;
  count = std::max(count, static_cast<long>(digits));
  const long newLength = (prefix ? 2 : 0) + count;
  if (newLength > kMaxSize - 1) AlError();
  if (size <= newLength) Adopt(NewBuffer(newLength + 1), newLength + 1);
  char* p = string + newLength;
  *p = '\0';
  for (long v = value, i = 0; i < count; ++i, v /= 16) *--p = kHexDigits[v & 15];
  if (prefix) {
    string[0] = '0';
    string[1] = 'x';
  }
  length = newLength;
}

// Only a lower-case "0x" is skipped; the digits themselves may be of either case.
long Str::ToHex() const {
  const char* p = string;
  if (p[0] == '0' && p[1] == 'x') p += 2;
  unsigned long value = 0;  // unsigned so that long inputs wrap instead of overflowing
  for (int digit; (digit = HexDigitValue(*p)) >= 0; ++p) value = value * 16 + digit;
  return static_cast<long>(value);
}

// The buffer doubles whenever the line fills it; a stream that fails mid-line leaves what was read.
std::istream& operator>>(std::istream& in, Str& s) {
  s.length = 0;
  s.string[0] = '\0';
  char c;
  while (in.get(c) && c != '\n') {
    if (s.length + 1 >= s.size) s.MakeRoom(s.size);
    s.string[s.length++] = c;
    s.string[s.length] = '\0';
  }
  return in;
}

std::ostream& operator<<(std::ostream& out, const Str& s) { return out << s.string; }
