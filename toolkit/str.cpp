// Str core: storage and growth, construction, access, assignment, Copy, Append, number text and
// the three errors.
#include "toolkit/str.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

// Powers of ten up to 10^22 are exact doubles, so a scale built by repeated multiplication is
// exact up to there; past it the value is scaled in extended precision instead.
constexpr int kExactPowers = 22;

// Significant digits produced before rounding; 15 survive.
constexpr int kProducedDigits = 16;
constexpr int kKeptDigits = 15;

// Plain layout is used for decimal exponents in this range, scientific layout outside it.
constexpr int kLowestPlainExponent = -6;
constexpr int kHighestPlainExponent = 15;

// The hundred two-digit texts "00" to "99", so that integers are written two digits at a time.
struct DigitPairs {
  char text[200];
};

constexpr DigitPairs MakeDigitPairs() {
  DigitPairs pairs{};
  for (int k = 0; k < 100; ++k) {
    pairs.text[2 * k] = static_cast<char>('0' + k / 10);
    pairs.text[2 * k + 1] = static_cast<char>('0' + k % 10);
  }
  return pairs;
}

constexpr DigitPairs kDigitPairs = MakeDigitPairs();

// Decimal digits of v, looked at four at a time so that most numbers take one round.
int DigitCount(unsigned long v) {
  for (int count = 1;; count += 4) {
    if (v < 10) return count;
    if (v < 100) return count + 1;
    if (v < 1000) return count + 2;
    if (v < 10000) return count + 3;
    v /= 10000;
  }
}

// Puts the two digits of `pair` (0..99) just before `end` and returns their start.
char* PutPairBefore(char* end, unsigned pair) {
  std::memcpy(end - 2, kDigitPairs.text + 2 * pair, 2);
  return end - 2;
}

// Writes the decimal digits of v so that the last one lands just before `end`: four digits per
// division, then two from the table at a time.
void PutDigitsBefore(unsigned long v, char* end) {
  for (; v >= 10000; v /= 10000) {
    const auto four = static_cast<unsigned>(v % 10000);
    end = PutPairBefore(PutPairBefore(end, four % 100), four / 100);
  }
  auto rest = static_cast<unsigned>(v);
  if (rest >= 100) {
    end = PutPairBefore(end, rest % 100);
    rest /= 100;
  }
  if (rest >= 10)
    PutPairBefore(end, rest);
  else
    end[-1] = static_cast<char>('0' + rest);
}

int PutLiteral(const char* literal, char* text) {
  long n = std::strlen(literal);
  std::memcpy(text, literal, n + 1);
  return static_cast<int>(n);
}

// Brings magnitude into [1, 10) and returns its decimal exponent. Within the exact powers of ten
// the scale is built by repeated multiplication and applied in one division or multiplication, so
// the usual values come out exactly; a rounding slip to just outside the range is corrected.
int Normalise(double magnitude, double* x) {
  int e = 0;
  double scale = 1;
  double y = magnitude;
  while (y >= 10 && e < kExactPowers) {
    ++e;
    scale *= 10;
    y = magnitude / scale;
  }
  if (magnitude < 1) {
    while (y < 1 && e > -kExactPowers) {
      --e;
      scale *= 10;
      y = magnitude * scale;
    }
  }
  if (y >= 10 || y < 1) {
    e = static_cast<int>(std::floor(std::log10(magnitude)));
    y = static_cast<double>(static_cast<long double>(magnitude) * std::pow(10.0L, -e));
  }
  if (y < 1) {
    y *= 10;
    --e;
  } else if (y >= 10) {
    y /= 10;
    ++e;
  }
  *x = y;
  return e;
}

// Writes the significant digits of x (1 <= x < 10) rounded on the 16th, at most 15 and at least
// one, and returns their count. An all-nines carry becomes "1" and raises *e.
int SignificantDigits(double x, char* digits, int* e) {
  int produced[kProducedDigits];
  for (int& digit : produced) {
    digit = static_cast<int>(x);
    if (digit < 0) digit = 0;
    if (digit > 9) digit = 9;
    x = (x - digit) * 10;
  }
  int count = kKeptDigits;
  if (produced[kKeptDigits] < 5) {
    while (count > 1 && produced[count - 1] == 0) --count;
  } else {
    while (count > 0 && produced[count - 1] == 9) --count;
    if (count == 0) {
      produced[0] = 1;
      count = 1;
      ++*e;
    } else {
      ++produced[count - 1];
    }
  }
  for (int i = 0; i < count; ++i) digits[i] = static_cast<char>('0' + produced[i]);
  return count;
}

// "d.ddd" then "e", the exponent's sign, its hundreds digit when not 0, tens and units.
int ScientificLayout(const char* digits, int count, int e, char* out) {
  int n = 0;
  out[n++] = digits[0];
  out[n++] = '.';
  for (int i = 1; i < count; ++i) out[n++] = digits[i];
  out[n++] = 'e';
  out[n++] = e < 0 ? '-' : '+';
  int magnitude = e < 0 ? -e : e;
  if (magnitude >= 100) out[n++] = static_cast<char>('0' + magnitude / 100);
  out[n++] = static_cast<char>('0' + magnitude / 10 % 10);
  out[n++] = static_cast<char>('0' + magnitude % 10);
  out[n] = '\0';
  return n;
}

// Plain decimal layout. `sign` is 0 or 1 characters already written in front of `out`; a whole
// number is cut at the digit count counted from the start of the result, so a negative whole
// number loses its last digit ("-123" becomes "-12"). That quirk is relied on and kept.
int PlainLayout(const char* digits, int count, int e, int sign, char* out) {
  char* text = out + sign;
  int n = 0;
  if (e < 0) {
    text[n++] = '0';
    text[n++] = '.';
    for (int i = -1; i > e; --i) text[n++] = '0';
    for (int i = 0; i < count; ++i) text[n++] = digits[i];
    text[n] = '\0';
    return sign + n;
  }
  for (int i = 0; i < count; ++i) text[n++] = digits[i];
  for (; n <= e; ++n) text[n] = '0';
  if (n > e + 1) {
    std::memmove(text + e + 2, text + e + 1, n - e - 1);
    text[e + 1] = '.';
    ++n;
    text[n] = '\0';
    return sign + n;
  }
  out[n] = '\0';
  return n;
}

}  // namespace

// ---- Errors ---------------------------------------------------------------------------------

void Str::AlError() { throw "ERROR: String can not be allocated."; }
void Str::RaError() { throw "ERROR: String position is out of range"; }
void Str::NvError() { throw "ERROR: String parameter is invalid"; }

// ---- Number to text -------------------------------------------------------------------------

// The magnitude is taken in unsigned arithmetic, so the most negative long comes out right. The
// length is known first, so the digits go straight to their places, units first, two at a time.
int Str::ConvertInteger(long value, char* text) {
  unsigned long magnitude =
      value < 0 ? 0UL - static_cast<unsigned long>(value) : static_cast<unsigned long>(value);
  const int n = (value < 0 ? 1 : 0) + DigitCount(magnitude);
  text[0] = '-';  // the leading digit replaces it when the value is not negative
  text[n] = '\0';
  PutDigitsBefore(magnitude, text + n);
  return n;
}

int Str::ConvertFloat(double value, char* text) {
  if (std::isnan(value)) return PutLiteral("nan", text);
  if (value == 0) return PutLiteral("0", text);
  int sign = 0;
  if (value < 0) {
    text[sign++] = '-';
    value = -value;
  }
  if (std::isinf(value)) return sign + PutLiteral("inf", text + sign);
  double x;
  int e = Normalise(value, &x);
  char digits[kProducedDigits];
  int count = SignificantDigits(x, digits, &e);
  if (e < kLowestPlainExponent || e > kHighestPlainExponent) {
    return sign + ScientificLayout(digits, count, e, text + sign);
  }
  return PlainLayout(digits, count, e, sign, text);
}

// ---- Buffer helpers -------------------------------------------------------------------------

char* Str::NewBuffer(long bytes) {
  if (bytes < 1 || bytes > kMaxSize) AlError();
  char* buffer = new (std::nothrow) char[bytes];
  if (buffer == nullptr) AlError();
  return buffer;
}

void Str::Adopt(char* buffer, long bytes) {
  delete[] string;
  string = buffer;
  size = bytes;
}

std::unique_ptr<char[]> Str::MakeRoom(long newLength) {
  if (newLength > kMaxSize - 1) AlError();
  if (size > newLength) return nullptr;
  long bytes = newLength > kMaxSize / 2 ? kMaxSize : 2 * newLength;
  char* buffer = NewBuffer(bytes);
  std::memcpy(buffer, string, length + 1);
  std::unique_ptr<char[]> old(string);
  string = buffer;
  size = bytes;
  return old;
}

void Str::Reallocate(long newSize, bool keepText) {
  char* buffer = NewBuffer(newSize);
  long kept = 0;
  if (keepText) {
    kept = length < newSize - 1 ? length : newSize - 1;
    std::memcpy(buffer, string, kept);
  }
  buffer[kept] = '\0';
  Adopt(buffer, newSize);
  length = kept;
}

// Assignment fits the buffer to the text exactly; Copy only grows it.
void Str::AssignText(const char* text, long n) { SetText(text, n, size != n + 1); }
void Str::CopyText(const char* text, long n) { SetText(text, n, size <= n); }

// The source may lie inside this string's own buffer: it is read before the old buffer is freed,
// and moved with memmove when the buffer stays.
void Str::SetText(const char* text, long n, bool newBuffer) {
  if (n > kMaxSize - 1) AlError();
  if (newBuffer) {
    char* buffer = NewBuffer(n + 1);
    std::memcpy(buffer, text, n);
    Adopt(buffer, n + 1);
  } else {
    std::memmove(string, text, n);
  }
  string[n] = '\0';
  length = n;
}

// ---- Construction ---------------------------------------------------------------------------

Str::Str() : string(NewBuffer(1)), length(0), size(1) { string[0] = '\0'; }

Str::Str(int n) : Str(static_cast<long>(n)) {}

Str::Str(long n) : string(nullptr), length(0), size(n < 0 || n >= kMaxSize ? 1 : n + 1) {
  if (n >= kMaxSize) AlError();
  string = NewBuffer(size);
  string[0] = '\0';
}

Str::Str(const Str& s) : string(NewBuffer(s.size)), length(s.length), size(s.size) {
  std::memcpy(string, s.string, length + 1);
}

Str::Str(const Str* s) : Str(*s) {}

Str::Str(const char* s) : string(nullptr), length(std::strlen(s)), size(length + 1) {
  string = NewBuffer(size);
  std::memcpy(string, s, size);
}

Str::Str(char c) : string(NewBuffer(2)), length(1), size(2) {
  string[0] = c;
  string[1] = '\0';
}

// A negative count makes an empty string, as Str(long) does.
Str::Str(char c, long n) : Str(n) {
  if (n < 0) return;
  std::memset(string, c, n);
  string[n] = '\0';
  length = n;
}

Str::~Str() { delete[] string; }

// ---- Size management ------------------------------------------------------------------------

void Str::Clear() {
  length = 0;
  string[0] = '\0';
}

void Str::SetSize() {
  if (length + 1 < size) Reallocate(length + 1, true);
}

void Str::SetSize(long n) {
  if (n < 1) NvError();
  if (n != size) Reallocate(n, true);
}

void Str::SetLength(long n) {
  if (size > n) return;
  if (n > kMaxSize - 1) AlError();
  Reallocate(n + 1, true);
}

// ---- Access ---------------------------------------------------------------------------------

char Str::Get(long i) const {
  Within(i, length - 1);
  return string[i];
}

char Str::Put(char c, long i) {
  Within(i, length - 1);
  string[i] = c;
  return c;
}

bool Str::HasContent() const {
  for (long i = 0; i < length; ++i) {
    if (!IsSpace(string[i])) return true;
  }
  return false;
}

bool Str::operator==(const char* s) const { return std::strcmp(string, s) == 0; }

int Str::ToInteger() const { return std::atoi(string); }

// [+-] (digits [. digits] | . digits) [(e|E) [+-] digits], then the end or white space.
bool Str::IsNumber() const {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(string);
  auto skipDigits = [&p]() {
    const unsigned char* start = p;
    while (std::isdigit(*p)) ++p;
    return p > start;
  };
  if (*p == '+' || *p == '-') ++p;
  bool whole = skipDigits();
  if (*p == '.') {
    ++p;
    if (!skipDigits()) return false;
  } else if (!whole) {
    return false;
  }
  if (*p == 'e' || *p == 'E') {
    ++p;
    if (*p == '+' || *p == '-') ++p;
    if (!skipDigits()) return false;
  }
  return *p == '\0' || IsSpace(static_cast<char>(*p));
}

// ---- Assignment -----------------------------------------------------------------------------

// Assignment makes the buffer fit the new text exactly.
Str& Str::operator=(const Str& s) {
  AssignText(s.string, s.length);
  return *this;
}

Str& Str::operator=(const char* s) {
  AssignText(s, std::strlen(s));
  return *this;
}

Str& Str::operator=(char c) {
  AssignText(&c, 1);
  return *this;
}

Str& Str::operator=(long n) {
  const NumberText t(n);
  AssignText(t.text, t.length);
  return *this;
}

Str& Str::operator=(double x) {
  const NumberText t(x);
  AssignText(t.text, t.length);
  return *this;
}

// Copy reuses the buffer when the text fits; Copy(char) thereby never reallocates a buffer of two
// bytes or more, and a one-byte buffer grows to exactly two.
void Str::Copy(const Str& s) { CopyText(s.string, s.length); }
void Str::Copy(const Str* s) { CopyText(s->string, s->length); }
void Str::Copy(const char* s) { CopyText(s, std::strlen(s)); }
void Str::Copy(char c) { CopyText(&c, 1); }

void Str::Copy(long n) {
  const NumberText t(n);
  CopyText(t.text, t.length);
}

void Str::Copy(double x) {
  const NumberText t(x);
  CopyText(t.text, t.length);
}

void Str::Copy(const char* s, long n) {
  Counted(n);
  CopyText(s, n);
}

// ---- Append ---------------------------------------------------------------------------------

// Append doubles the buffer when the new text does not fit; AppendBytes does the work. A single
// character that fits, the usual case of a text built one character at a time, is stored in place.
void Str::Append(const Str& s) { AppendBytes(s.string, s.length); }
void Str::Append(const Str* s) { AppendBytes(s->string, s->length); }
void Str::Append(const char* s) { AppendBytes(s, std::strlen(s)); }

void Str::Append(char c) {
  if (length + 1 >= size) {
    AppendBytes(&c, 1);
    return;
  }
  string[length++] = c;
  string[length] = '\0';
}

void Str::Append(long n) {
  const NumberText t(n);
  AppendBytes(t.text, t.length);
}

void Str::Append(double x) {
  const NumberText t(x);
  AppendBytes(t.text, t.length);
}

void Str::AppendBytes(const char* bytes, long n) {
  Counted(n);
  if (n > kMaxSize - 1 - length) AlError();
  std::unique_ptr<char[]> old = MakeRoom(length + n);
  std::memmove(string + length, bytes, n);
  length += n;
  string[length] = '\0';
}

// The separator counts in the new length that decides the growth.
void Str::AppendTokenText(const char* text, long n, char sep) {
  Counted(n);
  if (n > kMaxSize - 2 - length) AlError();
  std::unique_ptr<char[]> old = MakeRoom(length + n + 1);
  std::memmove(string + length, text, n);
  length += n;
  string[length++] = sep;
  string[length] = '\0';
}
