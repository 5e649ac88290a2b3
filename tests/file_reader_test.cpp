#include <string>
#include <tuple>
#include <vector>

#include "gtest/gtest.h"
#include "test_util.h"
#include "toolkit/fileio.h"

namespace {

using testutil::TempDir;
using testutil::WriteFile;
using Items = std::vector<std::string>;

// One step of a walk through a file; false when the step finds nothing more.
using Step = bool (*)(FileReader&, Str&);
constexpr Step kLine = [](FileReader& r, Str& s) { return r.GetLine(s); };
constexpr Step kTextLine = [](FileReader& r, Str& s) { return r.GetTextLine(s); };
constexpr Step kToken = [](FileReader& r, Str& s) { return r.GetToken(s); };
constexpr Step kField = [](FileReader& r, Str& s) { return r.GetToken(s, ','); };
constexpr Step kSkipToken = [](FileReader& r, Str& s) { return r.SkipToken(), r.GetToken(s); };
constexpr Step kSkipLines = [](FileReader& r, Str& s) { return r.SkipLine(2), r.GetToken(s); };

// What a reader with blocks of `size` delivers from a file holding `bytes`, step by step, and
// then the count of lines it passed.
Items ReadAll(const std::string& bytes, long size, Step step) {
  TempDir dir;
  WriteFile(dir / "in", bytes);
  FileReader reader(size);
  EXPECT_TRUE(reader.Open((dir / "in").c_str()));
  Items items;
  for (Str s; items.size() < 20 && step(reader, s);) items.emplace_back(s.String(), s.Length());
  items.push_back("lines " + std::to_string(reader.GetLines()));
  return items;
}

TEST(FileReader, ReadsAcrossBlockEnds) {
  const std::string longLine(5000, 'A');
  const std::string text = "  abc def\n\n g,h\nthree\n\nfour, five,six\nseven\n";
  const std::tuple<std::string, Step, Items> cases[] = {
      {"\n\n  \r\nXY\r\n", kTextLine, {"XY\r", "lines 4"}},
      {" >s1\nac\n\t\f\v\n" + longLine + "\nlast", kTextLine, {" >s1", "ac", longLine, "lines 4"}},
      {"ACGT", kTextLine, {"lines 0"}},  // a last line needs its newline
      {"ab\n\r\ncd", kLine, {"ab", "\r", "cd", "lines 2"}},
      {"", kLine, {"lines 0"}},
      {" a\tbc\r\n\n\vd\fe\xA0 ", kToken, {"a", "bc", "d", "e\xA0", "lines 2"}},
      {"a,,b\nc", kField, {"a", "", "b", "c", "lines 1"}},
      {text, kSkipToken, {"def", "three", "five,six", "lines 7"}},
      {text, kSkipLines, {"g,h", "four,", "lines 7"}},
  };
  for (long size : {1L, 2L, 3L, 4L, 7L, FileReader::kDefaultSize})
    for (const auto& [in, step, want] : cases) EXPECT_EQ(ReadAll(in, size, step), want) << size;
  // A file ending with a newline exactly at a block end gives one more, empty, line: the read
  // that finds the end comes one GetLine late.
  EXPECT_EQ(ReadAll("ab\n", 3, kLine), (Items{"ab", "", "lines 1"}));
  EXPECT_EQ(ReadAll("ab\n", 4, kLine), (Items{"ab", "lines 1"}));
}

// A failed Open leaves the reader at the end of the data. SetPosition stores the byte offset of
// the block where GetPosition expects its number, so positions past block 1 come back scaled.
TEST(FileReader, OpenAndPositions) {
  TempDir dir;
  WriteFile(dir / "in", "ab\ncd");
  FileReader reader(2);
  EXPECT_FALSE(reader.Open((dir / "missing").c_str()) || reader.Open(Str(dir.path().c_str())));
  Str first("x"), second, third, fourth("x");
  EXPECT_FALSE(reader.GetLine(first) || reader.GetTextLine(first));
  EXPECT_STREQ(first.String(), "");
  ASSERT_TRUE(reader.Open((dir / "in").c_str()));
  reader.GetToken(first);  // the newline that ends the token stays
  reader >> second >> third >> fourth;
  EXPECT_EQ(Items({first.String(), second.String(), third.String(), fourth.String()}),
            (Items{"ab", "", "cd", ""}));
  char c = 0;
  EXPECT_FALSE(reader.SetPosition(-1));
  ASSERT_TRUE(reader.SetPosition(3) && reader.GetCharacter(c));
  EXPECT_EQ(c + std::to_string(reader.GetPosition()), "c6");
  ASSERT_TRUE(reader.SetPosition(0) && reader.GetCharacter(c));
  EXPECT_EQ(c, 'a');
}

}  // namespace
