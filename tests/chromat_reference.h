// A deliberately plain model of the two chromatogram files, for tests only: it draws the whole
// four-channel trace into arrays, peak by peak with a moving cursor, and then lays out the file
// bytes field by field. It shares no code or table with the streaming writers in app/, so a
// mistake in their precomputed slots shows up as a byte difference against this model.
#ifndef SYNTHCALL_TESTS_CHROMAT_REFERENCE_H
#define SYNTHCALL_TESTS_CHROMAT_REFERENCE_H

#include <string>
#include <vector>

namespace chromat_reference {

// Channel of a base in the order A, C, G, T; -1 for every other letter.
inline int Channel(char base) {
  switch (base) {
    case 'A':
      return 0;
    case 'C':
      return 1;
    case 'G':
      return 2;
    case 'T':
      return 3;
    default:
      return -1;
  }
}

// Four channels of 12n + 12 heights. SCF peaks start at sample 6 and skip unknown letters; ABIF
// peaks start at sample 5 and draw an unknown letter in the channel of the last known base
// before it (nothing when there is none). Every peak writes 13 heights and the cursor moves 12.
inline std::vector<std::vector<int>> Trace(const std::string& clean, bool abif) {
  static const int kPeak[13] = {32, 128, 320, 464, 576, 624, 640, 624, 576, 464, 320, 128, 32};
  const size_t samples = 12 * clean.size() + 12;
  std::vector<std::vector<int>> channels(4, std::vector<int>(samples, 0));
  size_t cursor = abif ? 5 : 6;
  int current = -1;
  for (char base : clean) {
    int channel = Channel(base);
    if (abif && channel < 0) channel = current;
    if (channel >= 0) {
      for (int k = 0; k < 13; ++k) channels[channel][cursor + k] = kPeak[k];
    }
    current = channel;
    cursor += 12;
  }
  return channels;
}

inline void Put16(std::string& out, unsigned long value) {
  out += static_cast<char>((value >> 8) & 0xFF);
  out += static_cast<char>(value & 0xFF);
}

inline void Put32(std::string& out, unsigned long value) {
  Put16(out, (value >> 16) & 0xFFFF);
  Put16(out, value & 0xFFFF);
}

inline void AbifEntry(std::string& out, const char* name, unsigned long number, unsigned type,
                      unsigned elementSize, unsigned long elements, unsigned long dataSize,
                      const std::string& offsetOrValue) {
  out += std::string(name, 4);
  Put32(out, number);
  Put16(out, type);
  Put16(out, elementSize);
  Put32(out, elements);
  Put32(out, dataSize);
  out += offsetOrValue;
  Put32(out, 0);  // handle
}

}  // namespace chromat_reference

// The whole SCF file of a clean sequence: 128-byte header, then every sample point as four
// big-endian heights A, C, G, T.
inline std::string ReferenceScf(const std::string& clean) {
  using namespace chromat_reference;
  const std::vector<std::vector<int>> channels = Trace(clean, false);
  const unsigned long samples = channels[0].size();
  std::string out = ".scf";
  Put32(out, samples);
  Put32(out, 128);
  for (int field = 0; field < 6; ++field) Put32(out, 0);  // bases, clips, offsets, comments
  out += "2.00";
  Put32(out, 2);
  Put32(out, 0);  // code set
  Put32(out, 0);  // private data size
  Put32(out, 0);  // private data offset
  out += std::string(72, '\0');
  for (unsigned long point = 0; point < samples; ++point) {
    for (int channel = 0; channel < 4; ++channel) Put16(out, channels[channel][point]);
  }
  return out;
}

// The whole ABIF file of a clean sequence: header with its root entry, six directory entries,
// then the A, C, G and T arrays one after the other.
inline std::string ReferenceAbif(const std::string& clean) {
  using namespace chromat_reference;
  const std::vector<std::vector<int>> channels = Trace(clean, true);
  const unsigned long samples = channels[0].size();
  std::string out = "ABIF";
  Put16(out, 0);                // version
  out += std::string(4, '\0');  // root entry: no name
  Put32(out, 0);
  Put16(out, 0);
  Put16(out, 28);
  Put32(out, 6);
  Put32(out, 0);
  Put32(out, 128);
  Put32(out, 0);
  out += std::string(94, '\xFF');
  AbifEntry(out, "FWO_", 1, 2, 1, 4, 4, "ACGT");
  AbifEntry(out, "LANE", 1, 4, 2, 1, 2, std::string("\x00\x50\x00\x00", 4));
  for (unsigned long channel = 0; channel < 4; ++channel) {
    std::string offset;
    Put32(offset, 296 + channel * 2 * samples);
    AbifEntry(out, "DATA", 9 + channel, 4, 2, samples, 2 * samples, offset);
  }
  for (int channel = 0; channel < 4; ++channel) {
    for (unsigned long point = 0; point < samples; ++point) Put16(out, channels[channel][point]);
  }
  return out;
}

#endif  // SYNTHCALL_TESTS_CHROMAT_REFERENCE_H
