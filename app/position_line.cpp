#include "app/position_line.h"

#include <cstring>

// The line is laid out once; later only the position's digits change.
PositionLine::PositionLine(const Str& before, const Str& after)
    : hundreds(trace::BasePosition(0) / 100), lastTwo(trace::BasePosition(0) % 100) {
  const long longest = 1 + before.Length() + Str::kNumberTextSize + after.Length();
  text.assign((longest + kMove - 1) / kMove * kMove, '\0');
  text[0] = ' ';  // the base's place
  digits = 1 + before.Length();
  std::memcpy(&text[1], before.String(), before.Length());
  PutPosition();
  std::memcpy(&text[lastDigits + 2], after.String(), after.Length());
  length = lastDigits + 2 + after.Length();
}

// The last two digits passed 99: one more for the digits before them. As long as the number
// keeps its width, the carry stops at a digit below 9.
void PositionLine::Carry() {
  lastTwo -= 100;
  ++hundreds;
  if (100 * hundreds + lastTwo >= widerAt) {
    Widen();
    return;
  }
  long digit = lastDigits - 1;
  for (; text[digit] == '9'; --digit) text[digit] = '0';
  ++text[digit];
}

// The position gained a digit: what follows it moves one place on.
void PositionLine::Widen() {
  const long tail = lastDigits + 2;
  std::memmove(&text[tail + 1], &text[tail], length - tail);
  ++length;
  PutPosition();
}

// Writes the whole position at `digits`, and notes where its last two digits stand and when it
// gains one more.
void PositionLine::PutPosition() {
  const long position = 100 * hundreds + lastTwo;
  const Str::NumberText number(position);
  std::memcpy(&text[digits], number.text, number.length);
  lastDigits = digits + number.length - 2;
  widerAt = 10;
  while (widerAt <= position) widerAt *= 10;
}
