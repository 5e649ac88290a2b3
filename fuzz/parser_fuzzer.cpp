// Parser over arbitrary texts: a run of cursor operations with arbitrary counts, widths and
// separators, chosen by the input. Held to: the cursor never leaves the text (the sanitizers see
// any step outside the buffer, and GetLeft measures the offset); a token holds no white space; a
// line holds no newline; a search that succeeds stands on what it found.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstring>

#include "fuzz_support.h"
#include "toolkit/str.h"

static bool HasWhite(const Str& t) {
  return std::any_of(t.String(), t.String() + t.Length(), Str::IsSpace);
}

// One operation each, laid out as a table.
// clang-format off
#define OP(code) [](Parser& p, [[maybe_unused]] Str& t, [[maybe_unused]] int n, [[maybe_unused]] char c) { code; }
static void (*const kOps[])(Parser& p, Str& t, int n, char c) = {
    OP(FUZZ_CHECK(!p.GetToken(t) || !HasWhite(t))), OP(p.GetToken(t, c)), OP(p.WordWrap(t, n)),
    OP(FUZZ_CHECK(!p.GetToken(t, static_cast<long>(n)) || t.Length() <= (n > 0 ? n : 0))),
    OP(FUZZ_CHECK(!p.GetLine(t) || std::memchr(t.String(), '\n', t.Length()) == nullptr)),
    OP(p.Next(n)), OP(p.Previous(n)), OP(p.SetPosition(static_cast<long>(n))), OP(p.SkipToken(n)),
    OP(FUZZ_CHECK(!p.SetPosition(c) || p.Get() == c)), OP(p.SkipToken(c, n)), OP(p.SkipBack()),
    OP(p.SkipBack(c)), OP(FUZZ_CHECK(!p.Contains(c) || p.Get() == c)), OP(FUZZ_CHECK(!p.Contains(t) || p.Compare(t)))};
// clang-format on

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const std::string bytes = in.ConsumeRandomLengthString(256);
  Str text, t, left;
  text.Copy(bytes.data(), static_cast<long>(bytes.size()));
  Parser p(text);
  while (in.remaining_bytes() > 0) {
    // C++17 picks the operation before it reads the count and the separator.
    in.PickValueInArray(kOps)(p, t, in.ConsumeIntegralInRange(-3, 40), in.ConsumeIntegral<char>());
    FUZZ_CHECK(p.GetLeft(left));
    FUZZ_CHECK(left.Length() <= text.Length());
  }
  return 0;
}
