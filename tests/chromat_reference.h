// A deliberately plain model of the two chromatogram files, for tests only: it draws the whole
// four-channel trace into arrays, peak by peak with a moving cursor, and then lays out the file
// bytes field by field. It shares no code or table with the streaming writers in app/, so a
// mistake in their precomputed slots shows up as a byte difference against this model.
#ifndef SYNTHCALL_TESTS_CHROMAT_REFERENCE_H
#define SYNTHCALL_TESTS_CHROMAT_REFERENCE_H

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

namespace chromat_reference {

using Channels = std::vector<std::vector<int>>;  // A, C, G, T: one height per sample point

// The channels of n bases with a peak drawn from each first sample listed per channel. A peak is
// 13 points wide; where two touch, both put 32 on the shared point.
inline Channels Peaks(size_t n, std::initializer_list<std::vector<size_t>> starts) {
  static const int kPeak[13] = {32, 128, 320, 464, 576, 624, 640, 624, 576, 464, 320, 128, 32};
  Channels channels(4, std::vector<int>(12 * n + 12, 0));
  size_t channel = 0;
  for (const std::vector<size_t>& firsts : starts) {
    for (size_t first : firsts) std::copy(kPeak, kPeak + 13, channels[channel].begin() + first);
    ++channel;
  }
  return channels;
}

// SCF peaks start at sample 6 and skip unknown letters; ABIF peaks start at sample 5 and draw an
// unknown letter in the channel of the last known base before it (nothing when there is none).
inline Channels Trace(const std::string& clean, bool abif) {
  std::vector<size_t> starts[4];
  size_t current = std::string::npos;
  for (size_t i = 0; i < clean.size(); ++i) {
    const size_t channel = std::string("ACGT").find(clean[i]);
    if (channel != std::string::npos) current = channel;
    if ((channel != std::string::npos || abif) && current != std::string::npos)
      starts[current].push_back((abif ? 5 : 6) + 12 * i);
  }
  return Peaks(clean.size(), {starts[0], starts[1], starts[2], starts[3]});
}

// `bytes` bytes of `value`, most significant first.
inline std::string Be(unsigned long value, int bytes) {
  std::string out;
  while (bytes-- > 0) out += static_cast<char>((value >> (8 * bytes)) & 0xFF);
  return out;
}

// 128-byte header (zeros stand for bases, clips, comments, code set, private data and spare),
// then every sample point as four big-endian heights A, C, G, T.
inline std::string ScfFile(const Channels& channels) {
  const size_t samples = channels[0].size();
  std::string out = ".scf" + Be(samples, 4) + Be(128, 4) + std::string(24, '\0') + "2.00" +
                    Be(2, 4) + std::string(84, '\0');
  for (size_t point = 0; point < samples; ++point)
    for (const std::vector<int>& channel : channels) out += Be(channel[point], 2);
  return out;
}

// Name, number, type, element size, elements, data size, data offset or the data, zero handle.
inline std::string AbifEntry(const std::string& name, unsigned long number, unsigned long type,
                             unsigned long size, unsigned long elements, unsigned long dataSize,
                             const std::string& value) {
  return name + Be(number, 4) + Be(type, 2) + Be(size, 2) + Be(elements, 4) + Be(dataSize, 4) +
         value + Be(0, 4);
}

// Version 0, a nameless root entry, reserved bytes, six directory entries, the A, C, G, T arrays.
inline std::string AbifFile(const Channels& channels) {
  const unsigned long samples = channels[0].size();
  std::string out = "ABIF" + Be(0, 2) + AbifEntry(Be(0, 4), 0, 0, 28, 6, 0, Be(128, 4)) +
                    std::string(94, '\xFF') + AbifEntry("FWO_", 1, 2, 1, 4, 4, "ACGT") +
                    AbifEntry("LANE", 1, 4, 2, 1, 2, Be(80, 2) + Be(0, 2));
  for (unsigned long k = 0; k < 4; ++k)
    out += AbifEntry("DATA", 9 + k, 4, 2, samples, 2 * samples, Be(296 + k * 2 * samples, 4));
  for (const std::vector<int>& channel : channels)
    for (int height : channel) out += Be(height, 2);
  return out;
}

// The whole file of a clean sequence in either form.
inline std::string File(const std::string& clean, bool abif) {
  return abif ? AbifFile(Trace(clean, true)) : ScfFile(Trace(clean, false));
}

}  // namespace chromat_reference

#endif  // SYNTHCALL_TESTS_CHROMAT_REFERENCE_H
