// Number text, single characters, short appends and trace slots at the edges where a value's
// length, a buffer's room or a group of bases runs out.
#include <climits>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/chromat.h"
#include "app/writer.h"
#include "chromat_reference.h"
#include "gtest/gtest.h"
#include "test_util.h"
#include "toolkit/fileio.h"
#include "toolkit/str.h"

namespace {

using testutil::ReadFile;
using testutil::TempDir;

// Every digit count from 1 to 20, on both sides of each power of ten, and nothing written past the
// terminator.
TEST(Str, IntegerTextAtEveryDigitCount) {
  std::vector<long> values = {0, LONG_MAX, LONG_MIN, LONG_MIN + 1};
  for (long p = 1; p <= LONG_MAX / 10; p *= 10) {
    for (long v : {p - 1, p, p + 1, p * 10 - 1}) {
      values.push_back(v);
      values.push_back(-v);
    }
  }
  for (long v : values) {
    char text[Str::kNumberTextSize];
    std::memset(text, '#', sizeof text);
    const int n = Str::ConvertInteger(v, text);
    EXPECT_EQ(std::to_string(v), std::string(text, n));
    EXPECT_EQ('\0', text[n]) << v;
    const std::string rest(text + n + 1, Str::kNumberTextSize - n - 1);
    EXPECT_EQ(std::string(rest.size(), '#'), rest) << v;
  }
}

// One character at a time, the buffer doubles exactly when the character and the terminator no
// longer fit.
TEST(Str, AppendCharGrowsOnlyWhenFull) {
  Str s;
  std::string sizes;
  for (char c : std::string("abcdefghi")) {
    s.Append(c);
    sizes += std::to_string(s.Size()) + " ";
  }
  EXPECT_EQ("2 4 4 8 8 8 8 16 16 ", sizes);
  EXPECT_EQ("abcdefghi", std::string(s.String()));
  Str room(3L);
  for (char c : std::string("wxyz")) room.Append(c);
  EXPECT_EQ(8, room.Size());
  EXPECT_EQ("wxyz", std::string(room.String()));
}

// The appends of a phd or poly line, started at every offset of buffers a little larger and
// smaller than a number's text. None of them leaves a full buffer behind: after each append the
// file holds exactly the whole buffers that have filled.
TEST(FileWriter, LineAppendsGoOutInWholeBuffersFromEveryOffset) {
  TempDir dir;
  const std::string path = dir / "out";
  const std::pair<std::function<void(FileWriter&)>, std::string> steps[] = {
      {[](FileWriter& w) { w.AppendToken('A'); }, "A "},
      {[](FileWriter& w) { w.AppendToken(Str("59")); }, "59 "},
      {[](FileWriter& w) { w.AppendLine(12345678L); }, "12345678\n"},
      {[](FileWriter& w) { w.Append(LONG_MIN); }, "-9223372036854775808"},
      {[](FileWriter& w) { w.Append(" 300000 1 N  -1  -1 -1 "); }, " 300000 1 N  -1  -1 -1 "},
      {[](FileWriter& w) { w.AppendLine('c'); }, "c\n"},
      {[](FileWriter& w) { w.AppendToken(-7L, ','); }, "-7,"},
      {[](FileWriter& w) { w.AppendToken(0L); }, "0 "},
  };
  for (long size : {1L, 2L, 3L, 21L, 22L, 31L, 32L, 33L, 34L, 40L}) {
    for (long offset = 0; offset < size; ++offset) {
      FileWriter writer(size);
      ASSERT_TRUE(writer.Open(path.c_str()));
      std::string expected(offset, 'x');
      writer.Append(expected.c_str());
      for (int round = 0; round < 3; ++round) {
        for (const auto& [append, text] : steps) {
          append(writer);
          expected += text;
          const size_t whole = expected.size() / size * size;
          ASSERT_EQ(whole, ReadFile(path).size()) << size << " " << offset << " " << text;
        }
      }
      writer.Close();
      ASSERT_EQ(expected, ReadFile(path)) << size << " " << offset;
    }
  }
}

// A number's text comes with a terminator, but the byte after the pending ones keeps what an
// earlier, already written buffer left there; RemoveEndBlankLines reads up to the next newline
// among those bytes.
TEST(FileWriter, NumberLeavesTheBytesPastItAsTheyWere) {
  TempDir dir;
  const std::string path = dir / "out";
  const std::string first = "0123456\n" + std::string(56, 'x');
  FileWriter writer(64);
  ASSERT_TRUE(writer.Open(path.c_str()));
  writer.Append(first.c_str());  // fills the buffer and goes out whole
  writer.Append(1234567L);
  writer.RemoveEndBlankLines();
  writer.Close();
  EXPECT_EQ(first + "1234567\n", ReadFile(path));
}

// Every sequence of up to seven bases over A, C and N: an ABIF channel is written four bases at a
// time, so this covers every remainder, a peak that ends one group and carries into the next,
// unknown letters drawn in the channel before them and leading ones drawn nowhere.
TEST(Chromat, ShortSequencesMatchTheModel) {
  TempDir dir;
  const std::string path = dir / "chromat";
  FileWriter file(Writer::kBufferSize);
  std::string clean;
  for (int length = 0; length <= 7; ++length) {
    int count = 1;
    for (int k = 0; k < length; ++k) count *= 3;
    for (int code = 0; code < count; ++code) {
      clean.clear();
      for (int k = 0, rest = code; k < length; ++k, rest /= 3) clean += "ACN"[rest % 3];
      for (bool abif : {false, true}) {
        ASSERT_TRUE(file.Open(path.c_str()));
        (abif ? WriteAbif : WriteScf)(file, clean.data(), static_cast<long>(clean.size()));
        file.Close();
        ASSERT_EQ(chromat_reference::File(clean, abif), ReadFile(path)) << clean << " " << abif;
      }
    }
  }
}

}  // namespace
