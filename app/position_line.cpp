#include "app/position_line.h"

PositionLine::PositionLine(const Str& before, const Str& after)
    : lead(before.String(), before.Length()),
      tail(after.String(), after.Length()),
      hundreds(trace::BasePosition(0) / 100),
      lastTwo(trace::BasePosition(0) % 100) {
  Build();
}

// The last two digits passed 99: one more for the digits before them. As long as the number
// keeps its width, the carry stops at a digit below 9.
void PositionLine::Carry() {
  lastTwo -= 100;
  ++hundreds;
  if (100 * hundreds + lastTwo >= widerAt) {
    Build();
    return;
  }
  long digit = lastDigits - 1;
  for (; text[digit] == '9'; --digit) text[digit] = '0';
  ++text[digit];
}

// The whole line anew, when the position gains a digit and the tail must move.
void PositionLine::Build() {
  const long position = 100 * hundreds + lastTwo;
  const Str::NumberText digits(position);
  text.assign(1, ' ');  // the base's place
  text += lead;
  text.append(digits.text, digits.length);
  const long digitsEnd = static_cast<long>(text.size());
  text += tail;
  length = static_cast<long>(text.size());
  const long longest = 1 + static_cast<long>(lead.size() + tail.size()) + Str::kNumberTextSize;
  text.resize((longest + kMove - 1) / kMove * kMove, '\0');
  lastDigits = digitsEnd - 2;
  widerAt = 10;
  while (widerAt <= position) widerAt *= 10;
}
