// Number text, single characters, appends and chromatogram samples where room or a group runs out.
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "app/chromat.h"
#include "chromat_reference.h"
#include "gtest/gtest.h"
#include "test_util.h"
#include "toolkit/fileio.h"

namespace {

using testutil::ReadFile;

// Both sides of every power of ten, so every digit count; the bytes past the terminator stay put.
TEST(Str, IntegerTextAtEveryDigitCount) {
  std::vector<long> values = {0, LONG_MAX, LONG_MIN, LONG_MIN + 1};
  for (long p = 1; p <= LONG_MAX / 10; p *= 10)
    for (long v : {p - 1, p, p + 1, p * 10 - 1}) values.insert(values.end(), {v, -v});
  for (long v : values) {
    char text[Str::kNumberTextSize];
    std::memset(text, '#', sizeof text);
    const int n = Str::ConvertInteger(v, text);
    EXPECT_EQ(std::to_string(v) + '\0' + std::string(Str::kNumberTextSize - n - 1, '#'),
              std::string(text, sizeof text));
  }
}

// One character at a time, the buffer doubles only when the character and terminator do not fit.
TEST(Str, AppendCharGrowsOnlyWhenFull) {
  Str s;
  std::string sizes;
  for (char c : std::string("abcdefghi")) {
    s.Append(c);
    sizes += std::to_string(s.Size()) + " ";
  }
  EXPECT_EQ("2 4 4 8 8 8 8 16 16 ", sizes);
  EXPECT_EQ("abcdefghi", std::string(s.String()));
}

// The appends of a phd or poly line, from every offset of buffers around a number's text size,
// never leave a full buffer behind: the file holds exactly the whole buffers that have filled.
TEST(FileWriter, LineAppendsGoOutInWholeBuffersFromEveryOffset) {
  testutil::TempDir dir;
  const std::string path = dir / "out";
  const std::pair<void (*)(FileWriter&), std::string> steps[] = {
      {[](FileWriter& w) { w.AppendToken('A'); }, "A "},
      {[](FileWriter& w) { w.AppendToken(Str("59")); }, "59 "},
      {[](FileWriter& w) { w.AppendLine(12345678L); }, "12345678\n"},
      {[](FileWriter& w) { w.Append(LONG_MIN); }, "-9223372036854775808"},
      {[](FileWriter& w) { w.Append(" 300000 1 N  -1  -1 -1 "); }, " 300000 1 N  -1  -1 -1 "},
      {[](FileWriter& w) { w.AppendToken(-7L, ','); }, "-7,"},
  };
  for (long size : {1L, 2L, 3L, 21L, 22L, 31L, 32L, 33L, 34L, 40L}) {
    for (long offset = 0; offset < size; ++offset) {
      FileWriter writer(size);
      ASSERT_TRUE(writer.Open(path.c_str()));
      std::string expected(offset, 'x');
      writer.Append(expected.c_str());
      for (int i = 0; i < 3 * 6; ++i) {  // every step three times
        const auto& [append, text] = steps[i % 6];
        append(writer);
        expected += text;
        ASSERT_EQ(expected.size() / size * size, ReadFile(path).size()) << size << " " << offset;
      }
      writer.Close();
      ASSERT_EQ(expected, ReadFile(path)) << size << " " << offset;
    }
  }
}

// The byte past a number's text keeps what an earlier, written buffer left there, terminator or
// not: RemoveEndBlankLines reads the bytes past the pending ones up to the next newline.
TEST(FileWriter, NumberLeavesTheBytesPastItAsTheyWere) {
  testutil::TempDir dir;
  const std::string first = "0123456\n" + std::string(56, 'x');
  FileWriter writer(64);
  ASSERT_TRUE(writer.Open((dir / "out").c_str()));
  writer.Append(first.c_str());  // fills the buffer and goes out whole
  writer.Append(1234567L);
  writer.RemoveEndBlankLines();
  writer.Close();
  EXPECT_EQ(first + "1234567\n", ReadFile(dir / "out"));
}

// Every sequence of up to seven bases over A, C and N: every remainder of the ABIF channels'
// four-base groups, peaks carried across a group, and unknown letters, leading or not.
TEST(Chromat, ShortSequencesMatchTheModel) {
  testutil::TempDir dir;
  const std::string path = dir / "chromat";
  FileWriter file;
  std::vector<std::string> sequences = {""};
  for (size_t i = 0; sequences[i].size() < 7; ++i)
    for (char base : {'A', 'C', 'N'}) sequences.push_back(sequences[i] + base);
  for (const std::string& clean : sequences) {
    for (bool abif : {false, true}) {
      std::remove(path.c_str());  // a fresh file: truncating one makes the file system flush
      ASSERT_TRUE(file.Open(path.c_str()));
      (abif ? WriteAbif : WriteScf)(file, clean.data(), static_cast<long>(clean.size()));
      file.Close();
      ASSERT_EQ(chromat_reference::File(clean, abif), ReadFile(path)) << clean << " " << abif;
    }
  }
}

}  // namespace
