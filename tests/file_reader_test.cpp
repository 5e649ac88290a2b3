#include <dirent.h>

#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "test_util.h"
#include "toolkit/fileio.h"

namespace {

using testutil::TempDir;
using testutil::WriteFile;
using Items = std::vector<std::string>;

// Block sizes small enough that tokens and lines cross block ends, and the default.
constexpr long kSizes[] = {1, 2, 3, 4, 7, 1024};

// What `read` delivers from a file holding `bytes`, until it answers false.
Items ReadAll(const std::string& bytes, long size, bool (FileReader::*read)(Str&)) {
  TempDir dir;
  WriteFile(dir / "in", bytes);
  FileReader reader(size);
  EXPECT_TRUE(reader.Open((dir / "in").c_str()));
  Items items;
  for (Str item; (reader.*read)(item);) items.emplace_back(item.String(), item.Length());
  return items;
}

int OpenDescriptors() {
  int n = 0;
  DIR* fds = opendir("/proc/self/fd");
  while (readdir(fds)) ++n;
  closedir(fds);
  return n;
}

TEST(FileReader, OpenRefusesMissingFilesAndDirectories) {
  TempDir dir;
  WriteFile(dir / "in", "a\n");
  FileReader reader;
  EXPECT_FALSE(reader.Open((dir / "missing").c_str()));
  EXPECT_FALSE(reader.Open(Str(dir.path().c_str())));
  Str line("x");
  EXPECT_FALSE(reader.GetLine(line));
  EXPECT_FALSE(reader.GetTextLine(line));
  EXPECT_STREQ(line.String(), "");  // emptied, unlike GetLine's target
  const int before = OpenDescriptors();
  for (int i = 0; i < 3; ++i) ASSERT_TRUE(reader.Open((dir / "in").c_str()));
  EXPECT_EQ(OpenDescriptors(), before + 1);
}

TEST(FileReader, GetTextLineSkipsBlankLinesAndNeedsANewline) {
  const std::string line(5000, 'A');
  for (long size : kSizes) {
    SCOPED_TRACE(size);
    EXPECT_EQ(ReadAll("\n\n  \r\nXY\r\n", size, &FileReader::GetTextLine), Items{"XY\r"});
    EXPECT_EQ(ReadAll("ACGT", size, &FileReader::GetTextLine), Items{});
    EXPECT_EQ(ReadAll("", size, &FileReader::GetLine), Items{});
    EXPECT_EQ(ReadAll("", size, &FileReader::GetToken), Items{});
    EXPECT_EQ(ReadAll(" >s1\nac\n\t\f\v\n" + line + "\nlast", size, &FileReader::GetTextLine),
              (Items{" >s1", "ac", line}));
  }
  const std::string huge(6 << 20, 'G');  // one block copy per run keeps this fast
  EXPECT_EQ(ReadAll(huge + "\n", 1024, &FileReader::GetTextLine).at(0).size(), huge.size());
}

TEST(FileReader, GetLineAtTheEndOfTheFile) {
  std::string block;
  for (int i = 0; i < 16; ++i) block += std::string(63, static_cast<char>('a' + i)) + "\n";
  Items lines = ReadAll(block, 1024, &FileReader::GetLine);
  ASSERT_EQ(lines.size(), 17u);  // the zero-byte read at a block end yields one empty line
  EXPECT_EQ(lines[15], std::string(63, 'p'));
  EXPECT_EQ(lines[16], "");
  EXPECT_EQ(ReadAll("ab\n\r\ncd", 3, &FileReader::GetLine), (Items{"ab", "\r", "cd"}));

  TempDir dir;
  WriteFile(dir / "in", "ab\ncd");
  FileReader reader(2);
  ASSERT_TRUE(reader.Open((dir / "in").c_str()));
  Str first, second, third("x");
  reader >> first >> second >> third;
  EXPECT_EQ(Items({first.String(), second.String(), third.String()}), (Items{"ab", "cd", ""}));
}

TEST(FileReader, TokensFieldsAndSkipsCrossBlocks) {
  TempDir dir;
  WriteFile(dir / "in", "  abc def\n\n g,h\nthree\n\nfour, five,six\nseven\n");
  WriteFile(dir / "fields", "a,,b\nc");
  for (long size : kSizes) {
    SCOPED_TRACE(size);
    FileReader reader(size);
    ASSERT_TRUE(reader.Open((dir / "in").c_str()));
    Str token;
    ASSERT_TRUE(reader.GetToken(token));
    EXPECT_EQ(reader.GetPosition(), 5);  // on the blank that ended "abc"
    reader.SkipToken();                  // "def" and the newline behind it
    char c = 0;
    ASSERT_TRUE(reader.GetCharacter(c));
    EXPECT_EQ(c, 'g');
    EXPECT_EQ(reader.GetLines(), 2);
    reader.SkipLine();
    ASSERT_TRUE(reader.GetToken(token));
    EXPECT_STREQ(token.String(), "three");
    reader.SkipSpaces();
    reader.SkipToken(',', 2);
    ASSERT_TRUE(reader.GetToken(token, ','));
    EXPECT_STREQ(token.String(), "six");
    EXPECT_EQ(reader.GetLines(), 6);
    reader.SkipLine(5);
    EXPECT_EQ(reader.GetLines(), 7);
    EXPECT_FALSE(reader.GetCharacter(c));

    ASSERT_TRUE(reader.Open((dir / "fields").c_str()));
    Items fields;
    while (reader.GetToken(token, ',')) fields.emplace_back(token.String());
    EXPECT_EQ(fields, (Items{"a", "", "b", "c"}));
  }
}

TEST(FileReader, SetPositionStoresTheByteOffset) {
  TempDir dir;
  std::string bytes;
  for (int i = 0; i < 3000; ++i) bytes += static_cast<char>('a' + i % 26);
  WriteFile(dir / "in", bytes);
  FileReader reader;
  ASSERT_TRUE(reader.Open((dir / "in").c_str()));
  EXPECT_FALSE(reader.SetPosition(-1));
  reader.SkipLine();
  char c = 0;
  ASSERT_TRUE(reader.SetPosition(0) && reader.GetCharacter(c));
  EXPECT_EQ(c, 'a');
  ASSERT_TRUE(reader.SetPosition(1500));
  EXPECT_EQ(reader.GetPosition(), 1024 * 1024 + 476);
  ASSERT_TRUE(reader.GetCharacter(c));
  EXPECT_EQ(c, bytes[1500]);
}

}  // namespace
