// FileReader: lines, tokens and fields read across block ends of every small size, the count of
// lines passed, opening and positions.
#include "test_util.h"

// One step of a walk through a file; false when the step finds nothing more.
using Read = bool (*)(FileReader& r, Str& s);
// clang-format off
#define READ(code) [](FileReader& r, Str& s) { code; }
// clang-format on

// What a reader with blocks of `size` delivers from a file holding `bytes`, step by step, and
// then the count of lines it passed on the way.
static std::vector<std::string> ReadAll(const std::string& bytes, long size, Read read) {
  TempDir dir;
  WriteFile(dir / "in", bytes);
  FileReader reader(size);
  EXPECT_TRUE(reader.Open((dir / "in").c_str()));
  std::vector<std::string> got;
  for (Str s; got.size() < 20 && read(reader, s);) got.emplace_back(s.String(), s.Length());
  got.push_back(std::to_string(reader.GetLines()) + " lines");
  return got;
}

// A last line needs its newline to count as a text line; blank lines are skipped. A token ends at
// white space, which stays; a field at the separator or a newline, which are consumed.
TEST(FileReader, ReadsAcrossBlockEnds) {
  const std::string a5000(5000, 'A'),
      text = "  abc def\n\n g,h\nthree\n\nfour, five,six\nseven eight\n";
  const Read textLine = READ(return r.GetTextLine(s)), line = READ(return r.GetLine(s));
  const std::tuple<std::string, Read, std::string> rows[] = {
      {"\n\n  \r\nXY\r\n", textLine, "[XY\r][4 lines]"},
      {" >s1\nac\n\t\f\v\n" + a5000 + "\nlast", textLine, "[ >s1][ac][" + a5000 + "][4 lines]"},
      {"ACGT", textLine, "[0 lines]"},
      {"ab\n\r\ncd", line, "[ab][\r][cd][2 lines]"},
      {"", line, "[0 lines]"},
      {" a\tbc\r\n\n\vd\fe\xA0 ", READ(return r.GetToken(s)), "[a][bc][d][e\xA0][2 lines]"},
      {"a,,b\nc", READ(return r.GetToken(s, ',')), "[a][][b][c][1 lines]"},
      {text, READ(r.SkipToken(); return r.GetToken(s)), "[def][three][five,six][eight][7 lines]"},
      {text, READ(r.SkipLine(2); return r.GetToken(s)), "[g,h][four,][7 lines]"}};
  for (long size : {1L, 2L, 3L, 4L, 7L, FileReader::kDefaultSize})
    for (const auto& [bytes, read, want] : rows)
      EXPECT_EQ(Shown(ReadAll(bytes, size, read)), want)
          << "blocks of " << size << ": " << bytes.substr(0, 40);
  // A file ending with a newline exactly at a block end gives one more, empty, line: the read
  // that finds the end comes one GetLine late.
  EXPECT_EQ(Shown(ReadAll("ab\n", 3, line)), "[ab][][1 lines]");
  EXPECT_EQ(Shown(ReadAll("ab\n", 4, line)), "[ab][1 lines]");
}

// A failed Open or seek answers false and leaves the reader at the end of the data. SetPosition
// stores the byte offset of the block where GetPosition expects its number, so positions past
// block 1 come back scaled.
TEST(FileReader, OpenAndPositions) {
  TempDir dir;
  WriteFile(dir / "in", "ab\ncd");
  FileReader reader(2);
  Str first("x"), second, third, fourth("x");
  char c = '-';
  Walk(STEP(reader.SetPosition(5), false), STEP(reader.Open((dir / "missing").c_str()), false),
       STEP(reader.Open(Str(dir.path.c_str())), false), STEP(reader.GetLine(first), false),
       STEP(reader.GetTextLine(first), false), STEP(Text(first), ""),
       STEP(reader.Open((dir / "in").c_str()), true), DO(reader.GetToken(first)),
       DO(reader >> second >> third >> fourth), STEP(Text(first), "ab"), STEP(Text(second), ""),
       STEP(Text(third), "cd"), STEP(Text(fourth), ""), STEP(reader.SetPosition(-1), false),
       STEP(reader.SetPosition(3), true), STEP(reader.GetCharacter(c), true), STEP(c, 'c'),
       STEP(reader.GetPosition(), 6L), STEP(reader.SetPosition(0), true),
       STEP(reader.GetCharacter(c), true), STEP(c, 'a'));
}
