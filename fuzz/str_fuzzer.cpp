// Str with arbitrary positions, counts and widths, on sources that may be the edited string
// itself, and the text of an arbitrary double. Held to: after every operation the string is
// terminated at its length within its size; one that throws throws a toolkit message and leaves
// the string as it was, text and capacity; positive doubles read back within their 15
// significant digits.
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstring>

#include "fuzz_support.h"
#include "toolkit/str.h"

// One operation each, laid out as a table.
// clang-format off
#define OP(code) []([[maybe_unused]] Str& s, [[maybe_unused]] long a, [[maybe_unused]] long b) { code; }
static void (*const kOps[])(Str& s, long a, long b) = {
    OP(s.CopyMid(s, a, b)), OP(s.Append(s, a, b)), OP(s.Insert(s, a)), OP(s.Replace(s, a, b)),
    OP(s.ReplaceEnd(s, a)), OP(s.Delete(a, b)), OP(s.SetSize(a)), OP(s.AppendField(s, a, "JRF*")),
    OP(s.CopyField(a * 0.001 * b, b, "A5P2RS")), OP(s.Justify(a, b % 2)), OP(delete[] s.CopyToChar(a, b))};
// clang-format on

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const double x = std::fabs(in.ConsumeFloatingPoint<double>());
  const double back = std::strtod(Str::NumberText(x).text, nullptr);
  FUZZ_CHECK(std::fabs(back - x) <= 1e-14 * x || x < 1e-300 || x > 1e308);
  Str s(in.ConsumeRandomLengthString(64).c_str());
  while (in.remaining_bytes() > 0 && s.Length() < (1 << 16)) {
    const auto op = in.PickValueInArray(kOps);
    const long a = in.ConsumeIntegralInRange<long>(-2, 300),
               b = in.ConsumeIntegralInRange<long>(-2, 300);
    const std::string before(s.String(), s.Length());
    const long capacity = s.Size();
    try {
      op(s, a, b);
    } catch (const char* message) {
      FUZZ_CHECK(std::strncmp(message, "ERROR: String ", 14) == 0);
      FUZZ_CHECK(std::string(s.String(), s.Length()) == before);
      FUZZ_CHECK(s.Size() == capacity);
    }
    FUZZ_CHECK(s.Length() < s.Size());
    FUZZ_CHECK(s.String()[s.Length()] == '\0');
  }
  return 0;
}
