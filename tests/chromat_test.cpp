#include "app/chromat.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "chromat_reference.h"
#include "test_util.h"

namespace {

using ChromatWriter = void (*)(FileWriter&, const char*, long);

std::string Write(ChromatWriter write, const std::string& clean, long bufferSize = 262144) {
  testutil::TempDir dir;
  FileWriter file(bufferSize);
  EXPECT_TRUE(file.Open((dir / "chromat").c_str()));
  write(file, clean.data(), static_cast<long>(clean.size()));
  file.Close();
  return testutil::ReadFile(dir / "chromat");
}

// "41 42 0a" -> "AB\n"; blanks are ignored.
std::string Hex(const std::string& digits) {
  std::string bytes;
  std::string pair;
  for (char c : digits) {
    if (c == ' ') continue;
    pair += c;
    if (pair.size() == 2) {
      bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
      pair.clear();
    }
  }
  return bytes;
}

int Height(const std::string& file, size_t at) {
  return (static_cast<unsigned char>(file.at(at)) << 8) |
         static_cast<unsigned char>(file.at(at + 1));
}

std::vector<int> ScfChannel(const std::string& file, int channel) {
  std::vector<int> heights;
  for (size_t at = 128 + 2 * channel; at < file.size(); at += 8)
    heights.push_back(Height(file, at));
  return heights;
}

std::vector<int> AbifChannel(const std::string& file, int channel) {
  const size_t samples = (file.size() - 296) / 8;
  std::vector<int> heights;
  for (size_t k = 0; k < samples; ++k)
    heights.push_back(Height(file, 296 + 2 * (channel * samples + k)));
  return heights;
}

// Building blocks of the expected channels: a whole peak, a peak whose last height the next
// peak's first replaces, and runs of zeros.
const std::vector<int> kPeak = {32, 128, 320, 464, 576, 624, 640, 624, 576, 464, 320, 128, 32};
const std::vector<int> kCutPeak(kPeak.begin(), kPeak.end() - 1);
std::vector<int> Zeros(size_t n) { return std::vector<int>(n, 0); }
std::vector<int> Cat(std::initializer_list<std::vector<int>> parts) {
  std::vector<int> all;
  for (const std::vector<int>& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

const std::string kScfEmptyHeader =
    Hex("2E736366 0000000C 00000080 00000000 00000000 00000000 00000000 00000000 00000000"
        "322E3030 00000002") +
    std::string(84, '\0');

}  // namespace

TEST(Scf, HeaderAndSizeFollowTheSequenceLength) {
  EXPECT_EQ(kScfEmptyHeader + std::string(96, '\0'), Write(WriteScf, ""));
  const std::string acgt = Write(WriteScf, "ACGT");
  ASSERT_EQ(608u, acgt.size());
  EXPECT_EQ(Hex("0000003C"), acgt.substr(4, 4));
  EXPECT_EQ(kScfEmptyHeader.substr(8), acgt.substr(8, 120));
  const std::string long_ = Write(WriteScf, std::string(5000, 'G'));
  EXPECT_EQ(128u + 8 * 60012, long_.size());
  EXPECT_EQ(Hex("0000EA6C"), long_.substr(4, 4));
}

TEST(Scf, PeaksStartAtSampleSixAndTouchingPeaksShareOneSample) {
  std::string a = Write(WriteScf, "A");
  EXPECT_EQ(Cat({Zeros(6), kPeak, Zeros(5)}), ScfChannel(a, 0));
  for (int channel = 1; channel < 4; ++channel) EXPECT_EQ(Zeros(24), ScfChannel(a, channel));
  EXPECT_EQ(Cat({Zeros(6), kCutPeak, kPeak, Zeros(5)}), ScfChannel(Write(WriteScf, "AA"), 0));
  std::string ac = Write(WriteScf, "AC");
  EXPECT_EQ(Cat({Zeros(6), kPeak, Zeros(17)}), ScfChannel(ac, 0));
  EXPECT_EQ(Cat({Zeros(18), kPeak, Zeros(5)}), ScfChannel(ac, 1));
  // Centres of ACGT at the base positions 12, 24, 36, 48, each in its own channel's two bytes.
  std::string acgt = Write(WriteScf, "ACGT");
  EXPECT_EQ(Hex("0280"), acgt.substr(128 + 8 * 12 + 0, 2));
  EXPECT_EQ(Hex("0280"), acgt.substr(128 + 8 * 24 + 2, 2));
  EXPECT_EQ(Hex("0280"), acgt.substr(128 + 8 * 36 + 4, 2));
  EXPECT_EQ(Hex("0280"), acgt.substr(128 + 8 * 48 + 6, 2));
  EXPECT_EQ(Hex("0000 0000 0020 0020"), acgt.substr(128 + 8 * 42, 8));  // G ends where T begins
  EXPECT_EQ(Hex("0000 0000 0000 0020"), acgt.substr(128 + 8 * 54, 8));
}

TEST(Scf, UnknownLettersLeaveTheirSlotEmpty) {
  std::string ana = Write(WriteScf, "ANA");
  EXPECT_EQ(Cat({Zeros(6), kPeak, Zeros(11), kPeak, Zeros(5)}), ScfChannel(ana, 0));
  for (int channel = 1; channel < 4; ++channel) EXPECT_EQ(Zeros(48), ScfChannel(ana, channel));
  // The letter after an unknown one has no previous peak to close.
  EXPECT_EQ(Cat({Zeros(6), kPeak, Zeros(29)}), ScfChannel(Write(WriteScf, "ANC"), 0));
  std::string nr = Write(WriteScf, "NR");
  EXPECT_EQ(kScfEmptyHeader.substr(8), nr.substr(8, 120));
  EXPECT_EQ(std::string(8 * 36, '\0'), nr.substr(128));
}

TEST(Abif, HeaderAndDirectoryForAcgt) {
  const std::string file = Write(WriteAbif, "ACGT");
  ASSERT_EQ(776u, file.size());
  const std::string expected =
      Hex("41424946 0000 00000000 00000000 0000 001C 00000006 00000000 00000080 00000000") +
      std::string(94, '\xFF') +
      Hex("46574F5F 00000001 0002 0001 00000004 00000004 41434754 00000000"
          "4C414E45 00000001 0004 0002 00000001 00000002 00500000 00000000"
          "44415441 00000009 0004 0002 0000003C 00000078 00000128 00000000"
          "44415441 0000000A 0004 0002 0000003C 00000078 000001A0 00000000"
          "44415441 0000000B 0004 0002 0000003C 00000078 00000218 00000000"
          "44415441 0000000C 0004 0002 0000003C 00000078 00000290 00000000");
  EXPECT_EQ(expected, file.substr(0, 296));
}

TEST(Abif, EmptySequenceHasTwelveZeroSamplesPerChannel) {
  const std::string file = Write(WriteAbif, "");
  ASSERT_EQ(392u, file.size());
  EXPECT_EQ(Hex("0000000C 00000018 00000128"), file.substr(184 + 12, 12));
  EXPECT_EQ(Hex("0000000C 00000018 00000140"), file.substr(212 + 12, 12));
  EXPECT_EQ(Hex("0000000C 00000018 00000158"), file.substr(240 + 12, 12));
  EXPECT_EQ(Hex("0000000C 00000018 00000170"), file.substr(268 + 12, 12));
  EXPECT_EQ(std::string(96, '\0'), file.substr(296));
}

TEST(Abif, PeaksStandOneSampleBeforeTheBasePositions) {
  std::string a = Write(WriteAbif, "A");
  EXPECT_EQ(Cat({Zeros(5), kPeak, Zeros(6)}), AbifChannel(a, 0));
  for (int channel = 1; channel < 4; ++channel) EXPECT_EQ(Zeros(24), AbifChannel(a, channel));
  EXPECT_EQ(Cat({Zeros(5), kCutPeak, kPeak, Zeros(6)}), AbifChannel(Write(WriteAbif, "AA"), 0));
  std::string acgt = Write(WriteAbif, "ACGT");
  EXPECT_EQ(Hex("0280"), acgt.substr(296 + 22, 2));        // A array, sample 11
  EXPECT_EQ(Hex("0280"), acgt.substr(296 + 120 + 46, 2));  // C array, sample 23
  EXPECT_EQ(Cat({Zeros(41), kPeak, Zeros(6)}), AbifChannel(acgt, 3));
}

TEST(Abif, UnknownLettersRepeatThePreviousChannel) {
  std::string an = Write(WriteAbif, "AN");
  EXPECT_EQ(Cat({Zeros(5), kCutPeak, kPeak, Zeros(6)}), AbifChannel(an, 0));
  for (int channel = 1; channel < 4; ++channel) EXPECT_EQ(Zeros(36), AbifChannel(an, channel));
  EXPECT_EQ(Cat({Zeros(5), kCutPeak, kCutPeak, kPeak, Zeros(6)}),
            AbifChannel(Write(WriteAbif, "ANA"), 0));
  std::string gnxt = Write(WriteAbif, "GNXT");
  EXPECT_EQ(Cat({Zeros(5), kCutPeak, kCutPeak, kPeak, Zeros(18)}), AbifChannel(gnxt, 2));
  EXPECT_EQ(Cat({Zeros(41), kPeak, Zeros(6)}), AbifChannel(gnxt, 3));
}

TEST(Abif, LeadingUnknownLettersDrawNothingButKeepTheirSlot) {
  EXPECT_EQ(std::string(8 * 24, '\0'), Write(WriteAbif, "N").substr(296));
  std::string na = Write(WriteAbif, "NA");
  EXPECT_EQ(Cat({Zeros(17), kPeak, Zeros(6)}), AbifChannel(na, 0));
  for (int channel = 1; channel < 4; ++channel) EXPECT_EQ(Zeros(36), AbifChannel(na, channel));
  EXPECT_EQ(Cat({Zeros(29), kPeak, Zeros(6)}), AbifChannel(Write(WriteAbif, "NNA"), 0));
}

TEST(Chromat, StreamedFilesMatchTheReferenceModel) {
  std::vector<std::string> sequences = {"", "A", "AA", "AC", "ANA", "ACGT", "AN", "NA", "NNA"};
  std::mt19937 random(20240611);
  for (int round = 0; round < 300; ++round) {
    std::string clean(random() % 301, ' ');
    for (char& base : clean) base = "ACGTNRX"[random() % 7];
    sequences.push_back(clean);
  }
  for (const std::string& clean : sequences) {
    ASSERT_EQ(ReferenceScf(clean), Write(WriteScf, clean)) << clean;
    ASSERT_EQ(ReferenceAbif(clean), Write(WriteAbif, clean)) << clean;
  }
}

TEST(Chromat, LongSequenceCrossesEveryBufferBoundary) {
  std::mt19937 random(7);
  std::string clean(20011, ' ');
  for (char& base : clean) base = "ACGTNRX"[random() % 7];
  clean[0] = 'N';  // a leading unknown letter as well
  const std::string scf = ReferenceScf(clean);
  const std::string abif = ReferenceAbif(clean);
  for (long bufferSize : {7L, 1000L, 262144L}) {
    EXPECT_EQ(scf, Write(WriteScf, clean, bufferSize)) << bufferSize;
    EXPECT_EQ(abif, Write(WriteAbif, clean, bufferSize)) << bufferSize;
  }
}
