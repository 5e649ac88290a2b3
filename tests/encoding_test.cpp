#include "toolkit/encoding.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Bytes(const unsigned char* from, const unsigned char* to) {
  return std::string(reinterpret_cast<const char*>(from), to - from);
}

// A layout built at compile time, as the chromatogram templates are.
struct Layout {
  unsigned char bytes[12];
};
constexpr Layout MakeLayout() {
  Layout layout{};
  unsigned char* p = PutText(layout.bytes, "AB", 2);
  p = PutFill(p, 0xFF, 2);
  p = PutUint16(p, 0x10203ul);   // only the low 16 bits
  PutUint32(p, 0xFF0A0B0C0Dul);  // only the low 32 bits
  return layout;
}
constexpr Layout kLayout = MakeLayout();

}  // namespace

// Most significant byte first whatever the host; each store returns where the next field goes.
TEST(Encoding, FieldsInLayoutOrder) {
  EXPECT_EQ(Bytes(kLayout.bytes, kLayout.bytes + 10),
            std::string("AB\xFF\xFF\x02\x03\x0A\x0B\x0C\x0D", 10));
  EXPECT_EQ(kLayout.bytes[10], 0);  // nothing stored past the last field
  unsigned char bytes[4];
  EXPECT_EQ(PutUint16(bytes, 0), bytes + 2);
  EXPECT_EQ(PutUint32(bytes, 0), bytes + 4);
  EXPECT_EQ(PutText(bytes, "", 0), bytes);
  EXPECT_EQ(PutFill(bytes, 0, 3), bytes + 3);
}
