// One line of a phd or poly file kept as text from one base to the next, where only the base in
// front and the position inside change. The position starts at base 0's and advances by one
// base's step (12). Kept as text, a position grows by touching its last digits, where converting
// every number anew costs a division per digit; and a line is stored with a few fixed-size moves
// instead of one append per field. Copyable.
#ifndef SYNTHCALL_APP_POSITION_LINE_H
#define SYNTHCALL_APP_POSITION_LINE_H

#include <cstring>
#include <string>

#include "app/trace.h"
#include "toolkit/str.h"

class PositionLine {
 public:
  // The line "<base><before><position><after>".
  PositionLine(const Str& before, const Str& after);

  // The most bytes Store may touch, whatever the position: room for a line with the longest
  // number, rounded up to whole moves.
  long Capacity() const { return static_cast<long>(text.size()); }

  // Stores the line of `base` at `at`, which has Capacity() bytes of room, and returns the
  // position after the line. The bytes behind it up to Capacity() are scratch.
  unsigned char* Store(unsigned char* at, char base) const {
    // Everything is read before the first store, which may alias anything.
    const char* from = text.data();
    const long n = length;
    const long last = lastDigits;
    const unsigned two = static_cast<unsigned>(lastTwo);
    std::memcpy(at, from, kMove);
    for (long k = kMove; k < n; k += kMove) std::memcpy(at + k, from + k, kMove);
    at[0] = static_cast<unsigned char>(base);
    at[last] = static_cast<unsigned char>('0' + two / 10);
    at[last + 1] = static_cast<unsigned char>('0' + two % 10);
    return at + n;
  }

  // On to the next base's position. The step only reaches the last two digits, which are kept
  // as a number and stored by Store itself: writing them into the line here, just before Store
  // reads the line back, would stall the processor on every line. Only when they pass 99 do the
  // digits before them change in the line.
  void Advance() {
    lastTwo += kStep;
    if (lastTwo >= 100) Carry();
  }

 private:
  static constexpr long kMove = 32;

  static constexpr long kStep = trace::kSamplesPerBase;
  static_assert(trace::BasePosition(1) - trace::BasePosition(0) == kStep, "bases stand evenly");
  static_assert(
      kStep < 100 && trace::BasePosition(0) >= 10,
      "a step changes the last two digits of a number that has two, carrying at most one");
  std::string text;  // the line, then zeros up to Capacity()
  long length;       // of the line
  long digits;       // where the position's digits begin
  // The position is 100 * hundreds + lastTwo. The line holds the digits of `hundreds`; the last
  // two digits go at offset lastDigits.
  long hundreds;
  long lastTwo;
  long lastDigits;
  long widerAt;  // the first position with one digit more

  void Carry();
  void Widen();
  void PutPosition();
};

#endif  // SYNTHCALL_APP_POSITION_LINE_H
