// Parser over arbitrary texts: a run of cursor operations with arbitrary counts, widths,
// separators and positions, chosen by the input.
//
// Held to: the cursor never leaves the text (the sanitizers see any step outside the buffer, and
// GetLeft measures the offset); tokens are non-empty runs without white space; lines hold no
// newline; a search that succeeds leaves the cursor on what it found; SkipBack after GetToken
// reads the same token again.
#include <fuzzer/FuzzedDataProvider.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <string>

#include "fuzz_check.h"
#include "toolkit/str.h"

namespace {

bool IsWhite(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool HasWhiteOrNul(const Str& t) {
  for (long i = 0; i < t.Length(); ++i)
    if (IsWhite(t.String()[i]) || t.String()[i] == '\0') return true;
  return false;
}

constexpr int kCounts[] = {INT_MIN, -1, 0, 1, 2, 3, INT_MAX};

int PickCount(FuzzedDataProvider& in) {
  if (in.ConsumeBool()) return in.PickValueInArray(kCounts);
  return in.ConsumeIntegralInRange(-3, 40);
}

// The offset of the cursor, which must lie between the first character and the terminator.
long Offset(Parser& cursor, const Str& text) {
  Str left;
  FUZZ_CHECK(cursor.GetLeft(left));
  FUZZ_CHECK(left.Length() <= text.Length());
  return left.Length();
}

void ReadPieces(FuzzedDataProvider& in, Parser& cursor, const Str& text, bool plain) {
  Str t;
  switch (in.ConsumeIntegralInRange(0, 5)) {
    case 0: {
      // SkipBack returns to the start of the whole token, so the token is read again only when
      // the cursor stood between tokens; embedded NULs would hide the text's real start.
      const long offset = Offset(cursor, text);
      const bool between = plain && (offset == 0 || IsWhite(text.String()[offset - 1]));
      if (!cursor.GetToken(t)) {
        FUZZ_CHECK(t.Length() == 0);
        return;
      }
      FUZZ_CHECK(t.Length() > 0 && !HasWhiteOrNul(t));
      if (!between || !in.ConsumeBool()) return;
      Str again;
      cursor.SkipBack();
      FUZZ_CHECK(cursor.GetToken(again) && std::strcmp(again.String(), t.String()) == 0);
      return;
    }
    case 1:
      if (!cursor.GetToken(t, in.ConsumeIntegral<char>())) FUZZ_CHECK(t.Length() == 0);
      return;
    case 2: {
      const long n = in.ConsumeIntegralInRange<long>(-2, 20);
      if (cursor.GetToken(t, n)) FUZZ_CHECK(t.Length() <= (n > 0 ? n : 0));
      return;
    }
    case 3:
      if (cursor.GetLine(t)) FUZZ_CHECK(std::memchr(t.String(), '\n', t.Length()) == nullptr);
      return;
    case 4:
      cursor.GetRight(t);
      FUZZ_CHECK(cursor.Get() == '\0');
      return;
    default:
      if (cursor.WordWrap(t, in.ConsumeIntegralInRange<long>(-2, 30))) FUZZ_CHECK(t.Length() > 0);
      return;
  }
}

void Move(FuzzedDataProvider& in, Parser& cursor, const Str& text) {
  switch (in.ConsumeIntegralInRange(0, 10)) {
    case 0:
      cursor.Next(PickCount(in));
      return;
    case 1:
      cursor.Previous(PickCount(in));
      return;
    case 2:
      cursor.SetPosition(in.ConsumeIntegralInRange<long>(-2, text.Length() + 2));
      return;
    case 3: {
      const char c = in.ConsumeIntegral<char>();
      if (cursor.SetPosition(c)) FUZZ_CHECK(cursor.Get() == c);
      return;
    }
    case 4:
      cursor.SkipToken(PickCount(in));
      return;
    case 5:
      cursor.SkipToken(in.ConsumeIntegral<char>(), PickCount(in));
      return;
    case 6:
      cursor.SkipLine(PickCount(in));
      return;
    case 7:
      cursor.SkipBack();
      return;
    case 8:
      cursor.SkipBack(in.ConsumeIntegral<char>());
      return;
    case 9: {
      char c = 'x';
      if (cursor.GetCharacter(c)) FUZZ_CHECK(c != '\0' && !IsWhite(c));
      return;
    }
    default:
      if (cursor.Get() != '\0') cursor.GetNext();  // GetNext trusts its caller to test first
      return;
  }
}

void Search(FuzzedDataProvider& in, Parser& cursor) {
  const std::string wanted = in.ConsumeRandomLengthString(8);
  switch (in.ConsumeIntegralInRange(0, 3)) {
    case 0:
      (void)cursor.Compare(wanted.c_str());
      return;
    case 1:
      if (cursor.Contains(wanted.c_str())) FUZZ_CHECK(cursor.Compare(wanted.c_str()));
      return;
    case 2: {
      const char c = wanted.empty() ? '\0' : wanted[0];
      if (cursor.Contains(c)) FUZZ_CHECK(cursor.Get() == c);
      return;
    }
    default:
      cursor.Begin();
      return;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const std::string bytes = in.ConsumeRandomLengthString(256);
  Str text;
  text.Copy(bytes.data(), static_cast<long>(bytes.size()));
  const bool plain = bytes.find('\0') == std::string::npos;
  Parser cursor(text);
  for (int step = 0; step < 128 && in.remaining_bytes() > 0; ++step) {
    switch (in.ConsumeIntegralInRange(0, 2)) {
      case 0:
        ReadPieces(in, cursor, text, plain);
        break;
      case 1:
        Move(in, cursor, text);
        break;
      default:
        Search(in, cursor);
        break;
    }
    (void)Offset(cursor, text);
  }
  return 0;
}
