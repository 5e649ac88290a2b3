#include "app/chromat.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "chromat_reference.h"
#include "test_util.h"

namespace {

namespace model = chromat_reference;
using model::Peaks;
using ChromatWriter = void (*)(FileWriter&, const char*, long);

std::string Write(ChromatWriter write, const std::string& clean, long bufferSize = 262144) {
  testutil::TempDir dir;
  FileWriter file(bufferSize);
  EXPECT_TRUE(file.Open((dir / "chromat").c_str()));
  write(file, clean.data(), static_cast<long>(clean.size()));
  file.Close();
  return testutil::ReadFile(dir / "chromat");
}

// "41 42" -> "AB"; blanks are ignored.
std::string Hex(const char* digits) {
  std::string bytes;
  for (const char* p = digits; *p != '\0'; ++p)
    if (*p != ' ') bytes += static_cast<char>(std::stoi(std::string(p++, 2), nullptr, 16));
  return bytes;
}

}  // namespace

// Each trace spelled out by the first sample of each peak per channel A, C, G, T. ABIF peaks
// stand one sample before SCF's. An unknown letter leaves its SCF slot empty; ABIF draws it in the
// channel of the last A, C, G or T before it, and nowhere without one.
TEST(Chromat, GoldenTraces) {
  struct Case {
    const char* clean;
    model::Channels scf, abif;
  };
  const Case cases[] = {
      {"", Peaks(0, {}), Peaks(0, {})},
      {"A", Peaks(1, {{6}}), Peaks(1, {{5}})},
      {"AA", Peaks(2, {{6, 18}}), Peaks(2, {{5, 17}})},
      {"AC", Peaks(2, {{6}, {18}}), Peaks(2, {{5}, {17}})},
      {"ANA", Peaks(3, {{6, 30}}), Peaks(3, {{5, 17, 29}})},
      {"ACGT", Peaks(4, {{6}, {18}, {30}, {42}}), Peaks(4, {{5}, {17}, {29}, {41}})},
      {"GNXT", Peaks(4, {{}, {}, {6}, {42}}), Peaks(4, {{}, {}, {5, 17, 29}, {41}})},
      {"NNA", Peaks(3, {{30}}), Peaks(3, {{29}})},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Write(WriteScf, c.clean), model::ScfFile(c.scf)) << c.clean;
    EXPECT_EQ(Write(WriteAbif, c.clean), model::AbifFile(c.abif)) << c.clean;
  }
}

// The layout of both files, and so of every file compared with the model.
TEST(Chromat, GoldenHeaders) {
  const std::string scf = Write(WriteScf, "ACGT"), abif = Write(WriteAbif, "ACGT");
  EXPECT_EQ(scf.substr(0, 128), Hex("2E736366 0000003C 00000080") + std::string(24, '\0') +
                                    Hex("322E3030 00000002") + std::string(84, '\0'));
  EXPECT_EQ(abif.substr(0, 296),
            Hex("41424946 0000 00000000 00000000 0000 001C 00000006 00000000 00000080 00000000") +
                std::string(94, '\xFF') +
                Hex("46574F5F 00000001 0002 0001 00000004 00000004 41434754 00000000"
                    "4C414E45 00000001 0004 0002 00000001 00000002 00500000 00000000"
                    "44415441 00000009 0004 0002 0000003C 00000078 00000128 00000000"
                    "44415441 0000000A 0004 0002 0000003C 00000078 000001A0 00000000"
                    "44415441 0000000B 0004 0002 0000003C 00000078 00000218 00000000"
                    "44415441 0000000C 0004 0002 0000003C 00000078 00000290 00000000"));
  // The A array from sample 5: one whole peak, most significant byte first.
  EXPECT_EQ(abif.substr(306, 26), Hex("0020 0080 0140 01D0 0240 0270 0280 0270 0240 01D0 0140"
                                      "0080 0020"));
}

// Random sequences of up to 300 bases and one whose sample count needs more than 16 bits, through
// file buffers that cut the output anywhere.
TEST(Chromat, StreamedFilesMatchTheModel) {
  std::mt19937 random(20240611);
  const long bufferSizes[] = {1000, 4099, 262144};
  for (int round = 0; round <= 300; ++round) {
    std::string clean(round < 300 ? random() % 301 : 20011, ' ');
    for (char& base : clean) base = "ACGTNRX"[random() % 7];
    if (round == 300) clean[0] = 'N';  // an ABIF trace without a channel to begin with
    SCOPED_TRACE(clean.substr(0, 60));
    ASSERT_EQ(Write(WriteScf, clean, bufferSizes[round % 3]), model::File(clean, false));
    ASSERT_EQ(Write(WriteAbif, clean, bufferSizes[round % 3]), model::File(clean, true));
  }
}
