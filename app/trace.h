// The synthetic trace behind both chromatogram forms: every base of a clean sequence is one
// identical 13-sample peak in its own channel (A, C, G, T), bases 12 samples apart, so that base
// i stands at sample 12(i + 1) and the trace has 12n + 12 samples.
//
// A peak is one sample wider than a base's step: its last height lands on the first sample of the
// next base, where a later peak replaces the value instead of adding to it (both are 32). The
// writers exploit this: cut the trace into 12-sample slots, one per base, and each slot depends
// only on whether the base's own peak and the previous base's peak lie in a channel. Slots are
// precomputed once and the file is streamed from them, so memory does not grow with the
// sequence.
#ifndef SYNTHCALL_APP_TRACE_H
#define SYNTHCALL_APP_TRACE_H

#include <cstring>

#include "toolkit/fileio.h"

namespace trace {

constexpr int kChannels = 4;
constexpr int kNoChannel = kChannels;  // letters other than A, C, G, T; also "no previous base"
constexpr long kSamplesPerBase = 12;
constexpr int kPeakWidth = 13;

// Channel k draws the base kChannelBases[k]; ABIF's base-order entry holds the same four letters.
constexpr char kChannelBases[kChannels + 1] = "ACGT";

// The one peak shape every base gets: a symmetric bell sampled at 13 points, 640 at the centre.
// Its edges (32) are the only heights two peaks ever share.
constexpr unsigned short kPeak[kPeakWidth] = {32,  128, 320, 464, 576, 624, 640,
                                              624, 576, 464, 320, 128, 32};
static_assert(kPeak[0] == kPeak[kPeakWidth - 1], "touching peaks must agree on the shared sample");
static_assert(kPeakWidth == kSamplesPerBase + 1, "a peak overlaps the next base by one sample");

// First sample of base 0's peak. The SCF centres fall on the base positions that the phd and
// poly files state; the ABIF centres stand one sample earlier. That shift is deliberate and kept,
// so ABIF output stays the same from one version to the next.
constexpr long kScfFirstPeak = 6;
constexpr long kAbifFirstPeak = 5;

constexpr long SampleCount(long n) { return kSamplesPerBase * n + kSamplesPerBase; }
constexpr long BasePosition(long i) { return kSamplesPerBase * (i + 1); }

// Channel of a base: 0..3 for A, C, G, T, kNoChannel for any other byte.
struct ChannelTable {
  unsigned char of[256];
};
constexpr ChannelTable MakeChannelTable() {
  ChannelTable table{};
  for (int c = 0; c < 256; ++c) table.of[c] = kNoChannel;
  for (int k = 0; k < kChannels; ++k) table.of[static_cast<unsigned char>(kChannelBases[k])] = k;
  return table;
}
inline constexpr ChannelTable kChannelTable = MakeChannelTable();
inline int BaseChannel(char base) { return kChannelTable.of[static_cast<unsigned char>(base)]; }

// Height of sample k (0..11) of a base's slot in one channel: `own` when the base's peak is drawn
// there, `previous` when the previous base's peak was (only its last height reaches this slot).
constexpr unsigned short SlotHeight(bool own, bool previous, long k) {
  if (own) return kPeak[k];
  return (k == 0 && previous) ? kPeak[kPeakWidth - 1] : 0;
}

// Stores into a header block, numbers most significant byte first; each returns the position
// after what it stored. Constant so that format templates can be built at compile time.
constexpr unsigned char* PutUint16(unsigned char* at, unsigned long value) {
  at[0] = static_cast<unsigned char>((value >> 8) & 0xFF);
  at[1] = static_cast<unsigned char>(value & 0xFF);
  return at + 2;
}
constexpr unsigned char* PutUint32(unsigned char* at, unsigned long value) {
  return PutUint16(PutUint16(at, (value >> 16) & 0xFFFF), value & 0xFFFF);
}
constexpr unsigned char* PutText(unsigned char* at, const char* text, long n) {
  for (long k = 0; k < n; ++k) at[k] = static_cast<unsigned char>(text[k]);
  return at + n;
}
constexpr unsigned char* PutFill(unsigned char* at, unsigned char c, long n) {
  for (long k = 0; k < n; ++k) at[k] = c;
  return at + n;
}

// Collects the many small slots of a trace in a local block and hands the block to the
// FileWriter in one AppendByte when it is full, instead of one virtual call per slot. Flush must
// be called before the file is closed; the destructor does not write. Not copyable.
class ChunkWriter {
 public:
  explicit ChunkWriter(FileWriter& file) : file(file) {}
  ChunkWriter(const ChunkWriter&) = delete;
  ChunkWriter& operator=(const ChunkWriter&) = delete;

  // Appends n bytes copied from `bytes`, or n copies of `c`. Most pieces are one base's slot and
  // fit into the chunk as they are; those are copied inline.
  void Put(const unsigned char* bytes, long n) {
    if (static_cast<unsigned long>(n) <= static_cast<unsigned long>(kSize - used)) {
      std::memcpy(chunk + used, bytes, n);
      used += n;
    } else {
      PutAcross(bytes, n);
    }
  }
  void Fill(unsigned char c, long n);
  void Flush();

 private:
  static constexpr long kSize = 4096;
  FileWriter& file;
  long used = 0;
  unsigned char chunk[kSize];

  void PutAcross(const unsigned char* bytes, long n);  // a piece larger than the room left
  unsigned char* Room(long& n);  // where up to n bytes go now; n is cut to what fits
};

}  // namespace trace

#endif  // SYNTHCALL_APP_TRACE_H
