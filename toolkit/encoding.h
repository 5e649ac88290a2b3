// Stores for binary file layouts: numbers most significant byte first whatever the host's byte
// order, texts without their terminator, and runs of one byte. Each stores at `at`, which must
// have room, and returns the position after what it stored, so that a layout is written one field
// per line. All are constexpr, so that format templates can be built at compile time.
#ifndef SYNTHCALL_TOOLKIT_ENCODING_H
#define SYNTHCALL_TOOLKIT_ENCODING_H

// The low 16 or 32 bits of `value`, most significant byte first.
constexpr unsigned char* PutUint16(unsigned char* at, unsigned long value) {
  at[0] = static_cast<unsigned char>(value >> 8);
  at[1] = static_cast<unsigned char>(value);
  return at + 2;
}
constexpr unsigned char* PutUint32(unsigned char* at, unsigned long value) {
  at[0] = static_cast<unsigned char>(value >> 24);
  at[1] = static_cast<unsigned char>(value >> 16);
  at[2] = static_cast<unsigned char>(value >> 8);
  at[3] = static_cast<unsigned char>(value);
  return at + 4;
}

// The n bytes of `text`, or n copies of `c`.
constexpr unsigned char* PutText(unsigned char* at, const char* text, long n) {
  for (long k = 0; k < n; ++k) at[k] = static_cast<unsigned char>(text[k]);
  return at + n;
}
constexpr unsigned char* PutFill(unsigned char* at, unsigned char c, long n) {
  for (long k = 0; k < n; ++k) at[k] = c;
  return at + n;
}

#endif  // SYNTHCALL_TOOLKIT_ENCODING_H
