// The chromatogram writers: golden bytes of both layouts, and every file compared with the plain
// model of test_util.h through file buffers that cut the output anywhere.
#include "app/chromat.h"

#include <cstdio>

#include "test_util.h"

// Each file is a fresh one: truncating an old one would make the file system flush it.
static std::string Write(bool abif, const std::string& clean, long bufferSize = 262144) {
  static const TempDir dir;
  const std::string path = dir / "chromat";
  std::remove(path.c_str());
  FileWriter file(bufferSize);
  EXPECT_TRUE(file.Open(path.c_str()));
  (abif ? WriteAbif : WriteScf)(file, clean.data(), static_cast<long>(clean.size()));
  file.Close();
  return ReadFile(path);
}

// "41 42" -> "AB"; blanks are ignored.
static std::string Hex(const char* digits) {
  std::string bytes;
  for (const char* p = digits; *p != '\0'; ++p)
    if (*p != ' ') bytes += static_cast<char>(std::stoi(std::string(p++, 2), nullptr, 16));
  return bytes;
}

// The layout of both files, and so of every file compared with the model; then the A array of
// ABIF from sample 5, one whole peak, most significant byte first.
TEST(Chromat, GoldenBytes) {
  const std::string scf = Write(false, "ACGT"), abif = Write(true, "ACGT");
  EXPECT_EQ(scf.substr(0, 128), Hex("2E736366 0000003C 00000080") + std::string(24, '\0') +
                                    Hex("322E3030 00000002") + std::string(84, '\0'));
  EXPECT_EQ(scf.substr(128 + 6 * 8, 16), Hex("0020 0000 0000 0000 0080 0000 0000 0000"));
  EXPECT_EQ(abif.substr(0, 296),
            Hex("41424946 0000 00000000 00000000 0000 001C 00000006 00000000 00000080 00000000") +
                std::string(94, '\xFF') +
                Hex("46574F5F 00000001 0002 0001 00000004 00000004 41434754 00000000"
                    "4C414E45 00000001 0004 0002 00000001 00000002 00500000 00000000"
                    "44415441 00000009 0004 0002 0000003C 00000078 00000128 00000000"
                    "44415441 0000000A 0004 0002 0000003C 00000078 000001A0 00000000"
                    "44415441 0000000B 0004 0002 0000003C 00000078 00000218 00000000"
                    "44415441 0000000C 0004 0002 0000003C 00000078 00000290 00000000"));
  EXPECT_EQ(abif.substr(306, 26), Hex("0020 0080 0140 01D0 0240 0270 0280 0270 0240 01D0 0140"
                                      "0080 0020"));
}

// Every sequence of up to seven bases over A, C and N: every remainder of the ABIF channels'
// four-base groups, peaks carried across a group, unknown letters leading or not; then one whose
// sample count needs more than 16 bits. File buffers of three sizes cut the output anywhere.
TEST(Chromat, FilesMatchTheModel) {
  std::vector<std::string> sequences = {""};
  for (size_t i = 0; sequences[i].size() < 7; ++i)
    for (char base : {'A', 'C', 'N'}) sequences.push_back(sequences[i] + base);
  sequences.push_back(std::string(20011, 'T') + "NACGTN");
  const long bufferSizes[] = {1000, 4099, 262144};
  for (size_t k = 0; k < sequences.size(); ++k) {
    for (bool abif : {false, true}) {
      ASSERT_EQ(Write(abif, sequences[k], bufferSizes[k % 3]), ModelChromat(sequences[k], abif))
          << (abif ? "ABIF of " : "SCF of ") << sequences[k].substr(0, 60);
    }
  }
}
