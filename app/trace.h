// The synthetic trace behind both chromatogram forms: every base of a clean sequence is one
// identical 13-sample peak in its own channel (A, C, G, T), bases 12 samples apart, so that base
// i stands at sample 12(i + 1) and the trace has 12n + 12 samples.
//
// A peak is one sample wider than a base's step: its last height lands on the first sample of the
// next base, where a later peak replaces the value instead of adding to it (both are 32). The
// writers exploit this: cut the trace into 12-sample slots, one per base, and each slot depends
// only on whether the base's own peak and the previous base's peak lie in a channel. Slots are
// precomputed once and the file is streamed from them, so memory does not grow with the
// sequence. This header holds the model only; the byte layouts belong to the writers.
#ifndef SYNTHCALL_APP_TRACE_H
#define SYNTHCALL_APP_TRACE_H

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

}  // namespace trace

#endif  // SYNTHCALL_APP_TRACE_H
