// Str: number to text, IsNumber and ToInteger, and the editing operations with arbitrary
// positions and counts, on sources that may be the edited string itself.
//
// Held to: the number texts fit their buffer and read back as the value; IsNumber follows its
// grammar and ToInteger agrees with atoi wherever atoi's value is defined; after every operation
// the string is terminated at its length within its size; an operation that throws throws one
// of the three messages and leaves the string exactly as it was, text and capacity.
#include <fuzzer/FuzzedDataProvider.h>

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz_check.h"
#include "toolkit/str.h"

namespace {

constexpr char kAllocation[] = "ERROR: String can not be allocated.";
constexpr char kRange[] = "ERROR: String position is out of range";
constexpr char kInvalid[] = "ERROR: String parameter is invalid";

// Largest buffer a Str may hold; larger requests are refused before any allocation.
constexpr long kMaxSize = 0x7FFFFFFF;
// Counts that size a buffer stay below this, so that no execution allocates much.
constexpr long kSmallCount = 1 << 16;

constexpr long kExtremes[] = {LONG_MIN, LONG_MIN + 1, INT_MIN,       -1,      0,
                              1,        INT_MAX,      kMaxSize + 1L, LONG_MAX};

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// ---- Numbers --------------------------------------------------------------------------------

void CheckIntegerText(long value) {
  char text[Str::kNumberTextSize];
  int n = Str::ConvertInteger(value, text);
  char expected[Str::kNumberTextSize];
  std::snprintf(expected, sizeof expected, "%ld", value);
  FUZZ_CHECK(n == static_cast<int>(std::strlen(text)));
  FUZZ_CHECK(std::strcmp(text, expected) == 0);
}

// Negative values that round to a whole number lose their last digit on purpose, so only
// positive values are read back; 15 significant digits allow a relative error of 5e-15.
void CheckFloatText(double value) {
  char text[Str::kNumberTextSize];
  int n = Str::ConvertFloat(value, text);
  FUZZ_CHECK(n >= 1 && n < Str::kNumberTextSize);
  FUZZ_CHECK(n == static_cast<int>(std::strlen(text)));
  if (!std::isfinite(value) || value == 0) return;
  if (value < 0) {
    FUZZ_CHECK(text[0] == '-');
    return;
  }
  double back = std::strtod(text, nullptr);
  if (std::isinf(back)) return;  // the largest doubles round up past the range
  FUZZ_CHECK(std::fabs(back - value) <= 1e-14 * std::fabs(value) || std::fabs(value) < 1e-300);
}

// The number grammar: [+-] (digits [. digits] | . digits) [(e|E) [+-] digits], then the end or
// white space.
bool ReferenceIsNumber(const char* p) {
  if (*p == '+' || *p == '-') ++p;
  const bool leading = IsDigit(*p);
  while (IsDigit(*p)) ++p;
  if (*p == '.') {
    ++p;
    if (!IsDigit(*p)) return false;
    while (IsDigit(*p)) ++p;
  } else if (!leading) {
    return false;
  }
  if (*p == 'e' || *p == 'E') {
    ++p;
    if (*p == '+' || *p == '-') ++p;
    if (!IsDigit(*p)) return false;
    while (IsDigit(*p)) ++p;
  }
  return *p == '\0' || IsSpace(*p);
}

void CheckNumberText(const std::string& text) {
  Str s(text.c_str());
  FUZZ_CHECK(s.IsNumber() == ReferenceIsNumber(text.c_str()));
  errno = 0;
  long value = std::strtol(text.c_str(), nullptr, 10);
  if (errno == 0 && value >= INT_MIN && value <= INT_MAX)
    FUZZ_CHECK(s.ToInteger() == static_cast<int>(value));
  else
    (void)s.ToInteger();  // no overflow check is made, but it must not fault either
}

// ---- Editing --------------------------------------------------------------------------------

// A position or count: near the text's range mostly, now and then an extreme value.
long Pick(FuzzedDataProvider& in, long bound) {
  if (in.ConsumeIntegralInRange(0, 7) == 0) return in.PickValueInArray(kExtremes);
  return in.ConsumeIntegralInRange<long>(-2, bound + 2);
}

// A count that sizes a buffer: small, or beyond what may ever be allocated.
long PickSize(FuzzedDataProvider& in) {
  long n = Pick(in, kSmallCount);
  return n > kSmallCount && n <= kMaxSize ? kSmallCount : n;
}

void TakeParts(FuzzedDataProvider& in, Str& s, const Str& x) {
  const long bound = x.Length();
  switch (in.ConsumeIntegralInRange(0, 6)) {
    case 0:
      return s.CopyLeft(x, Pick(in, bound));
    case 1:
      return s.CopyRight(x, Pick(in, bound));
    case 2:
      return s.CopyRight(x.String(), Pick(in, bound));
    case 3:
      return s.CopyMid(x, Pick(in, bound), Pick(in, bound));
    case 4:
      return s.CopyMid(x.String(), Pick(in, bound), Pick(in, bound));
    case 5:
      return s.CopyEnd(x, Pick(in, bound));
    default:
      return s.Copy(x.String(), in.ConsumeIntegralInRange<long>(-1, bound));
  }
}

void AppendParts(FuzzedDataProvider& in, Str& s, const Str& x) {
  const long bound = x.Length();
  switch (in.ConsumeIntegralInRange(0, 7)) {
    case 0:
      return s.Append(x, Pick(in, bound));
    case 1:
      return s.Append(x.String(), Pick(in, bound));
    case 2:
      return s.Append(x, Pick(in, bound), Pick(in, bound));
    case 3:
      return s.Append(x.String(), Pick(in, bound), Pick(in, bound));
    case 4:
      return s.AppendLine(x);
    case 5:
      s += x;
      return;
    case 6:
      s << in.ConsumeIntegral<long>() << in.ConsumeFloatingPoint<double>();
      return;
    default: {
      Str joined = s + x;
      FUZZ_CHECK(joined.Length() == s.Length() + x.Length());
      return;
    }
  }
}

void InsertAndReplace(FuzzedDataProvider& in, Str& s, const Str& x) {
  const long bound = s.Length();
  const char c = in.ConsumeIntegral<char>();
  switch (in.ConsumeIntegralInRange(0, 8)) {
    case 0:
      return s.Insert(x, Pick(in, bound));
    case 1:
      return s.Insert(x.String(), Pick(in, bound));
    case 2:
      return s.Insert(c, Pick(in, bound));
    case 3:
      return s.InsertLeft(x);
    case 4:
      return s.Replace(x, Pick(in, bound));
    case 5:
      return s.Replace(c, Pick(in, bound));
    case 6:
      return s.Replace(x, Pick(in, bound), Pick(in, x.Length()));
    case 7:
      return s.ReplaceEnd(x, Pick(in, bound));
    default:
      return s.ReplaceEnd(in.ConsumeFloatingPoint<double>(), Pick(in, bound));
  }
}

void DeleteAndReshape(FuzzedDataProvider& in, Str& s) {
  const long bound = s.Length();
  switch (in.ConsumeIntegralInRange(0, 13)) {
    case 0:
      return s.Delete(Pick(in, bound));
    case 1:
      return s.Delete(Pick(in, bound), Pick(in, bound));
    case 2:
      return s.DeleteLeft(Pick(in, bound));
    case 3:
      return s.DeleteRight(Pick(in, bound));
    case 4:
      return s.DeleteEnd(Pick(in, bound));
    case 5:
      return in.ConsumeBool() ? s.UpperCase() : s.LowerCase();
    case 6:
      return s.RemoveLeftSpaces();
    case 7:
      return s.RemoveRightSpaces();
    case 8:
      return s.RemoveEndSpaces();
    case 9:
      return s.Reverse();
    case 10:
      return s.Fill(in.ConsumeIntegral<char>(), PickSize(in));
    case 11:
      return s.SetSize(PickSize(in));
    case 12:
      return s.SetLength(PickSize(in));
    default:
      return s.SetSize();
  }
}

// Copies out into caller memory must stay inside what they were given.
void CopyOut(FuzzedDataProvider& in, Str& s) {
  const long bound = s.Length();
  char* copy = nullptr;
  switch (in.ConsumeIntegralInRange(0, 4)) {
    case 0:
      copy = s.CopyToChar(Pick(in, bound));
      break;
    case 1:
      copy = s.CopyToChar(Pick(in, bound), Pick(in, bound));
      break;
    case 2: {
      std::vector<char> dest(s.Length() + 1);
      s.StringCopy(dest.data(), Pick(in, bound), Pick(in, bound), true);
      break;
    }
    case 3:
      s.Put(in.ConsumeIntegral<char>(), Pick(in, bound));
      break;
    default:
      (void)s.Get(Pick(in, bound));
      break;
  }
  delete[] copy;
}

void Edit(FuzzedDataProvider& in, Str& s, Str& other) {
  // The source is the other string, or the edited string itself.
  const Str& x = in.ConsumeBool() ? other : s;
  switch (in.ConsumeIntegralInRange(0, 4)) {
    case 0:
      return TakeParts(in, s, x);
    case 1:
      return AppendParts(in, s, x);
    case 2:
      return InsertAndReplace(in, s, x);
    case 3:
      return DeleteAndReshape(in, s);
    default:
      return CopyOut(in, s);
  }
}

void CheckShape(const Str& s) {
  FUZZ_CHECK(s.Length() >= 0 && s.Length() < s.Size());
  FUZZ_CHECK(s.String()[s.Length()] == '\0');
}

void EditAndCheck(FuzzedDataProvider& in, Str& s, Str& other) {
  const std::string before(s.String(), s.Length());
  const long size = s.Size();
  try {
    Edit(in, s, other);
  } catch (const char* message) {
    FUZZ_CHECK(std::strcmp(message, kRange) == 0 || std::strcmp(message, kInvalid) == 0 ||
               std::strcmp(message, kAllocation) == 0);
    FUZZ_CHECK(s.Size() == size);
    FUZZ_CHECK(std::string(s.String(), s.Length()) == before);
  }
  CheckShape(s);
}

Str Text(const std::string& bytes) {
  Str s;
  s.Copy(bytes.data(), static_cast<long>(bytes.size()));
  return s;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  CheckIntegerText(in.ConsumeIntegral<long>());
  const uint64_t bits = in.ConsumeIntegral<uint64_t>();
  double value;
  std::memcpy(&value, &bits, sizeof value);
  CheckFloatText(value);
  CheckFloatText(in.ConsumeFloatingPoint<double>());
  CheckNumberText(in.ConsumeRandomLengthString(32));

  Str s = Text(in.ConsumeRandomLengthString(64));
  Str other = Text(in.ConsumeRandomLengthString(64));
  for (int step = 0; step < 64 && in.remaining_bytes() > 0; ++step) {
    EditAndCheck(in, s, other);
    // Appending a string to itself doubles it; a few dozen steps would exhaust the memory.
    if (s.Length() > kSmallCount) s.SetSize(kSmallCount);
  }
  return 0;
}
