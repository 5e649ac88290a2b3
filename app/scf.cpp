// SCF 2.00 output: a 128-byte header followed by the sample points, each point four big-endian
// 16-bit heights in the order A, C, G, T. The header announces no bases, comments or private
// data; the bases and their positions go to the phd file instead.
#include <cstring>

#include "app/block_writer.h"
#include "app/chromat.h"
#include "app/trace.h"
#include "toolkit/encoding.h"

namespace {

constexpr long kHeaderSize = 128;
constexpr long kBytesPerHeight = 2;
constexpr long kPointSize = trace::kChannels * kBytesPerHeight;
constexpr long kSlotSize = trace::kSamplesPerBase * kPointSize;
static_assert(kSlotSize == 96, "a base's slot is 12 points of 8 bytes");

// Sample points after the last base's slot: its closing height, then nothing until the end.
constexpr long kTailPoints = trace::kSamplesPerBase - trace::kScfFirstPeak;

// The slot of a base (points 6 + 12i .. 17 + 12i) for every pair of (channel of the previous base,
// channel of this base), kNoChannel standing for an unknown letter or for no previous base.
struct SlotTable {
  unsigned char slot[trace::kChannels + 1][trace::kChannels + 1][kSlotSize];
};

constexpr SlotTable MakeSlotTable() {
  SlotTable table{};
  for (int previous = 0; previous <= trace::kChannels; ++previous) {
    for (int own = 0; own <= trace::kChannels; ++own) {
      unsigned char* p = table.slot[previous][own];
      for (long k = 0; k < trace::kSamplesPerBase; ++k) {
        for (int channel = 0; channel < trace::kChannels; ++channel) {
          p = PutUint16(p, trace::SlotHeight(own == channel, previous == channel, k));
        }
      }
    }
  }
  return table;
}

constexpr SlotTable kSlots = MakeSlotTable();

void PutHeader(BlockWriter& out, long samples) {
  unsigned char header[kHeaderSize];
  unsigned char* p = header;
  p = PutText(p, ".scf", 4);                // 0: magic number
  p = PutUint32(p, samples);                // 4: number of sample points
  p = PutUint32(p, kHeaderSize);            // 8: offset of the samples
  p = PutUint32(p, 0);                      // 12: number of bases
  p = PutUint32(p, 0);                      // 16: bases left clip
  p = PutUint32(p, 0);                      // 20: bases right clip
  p = PutUint32(p, 0);                      // 24: offset of the bases
  p = PutUint32(p, 0);                      // 28: size of the comments
  p = PutUint32(p, 0);                      // 32: offset of the comments
  p = PutText(p, "2.00", 4);                // 36: version
  p = PutUint32(p, kBytesPerHeight);        // 40: bytes per sample
  p = PutUint32(p, 0);                      // 44: code set
  p = PutUint32(p, 0);                      // 48: size of the private data
  p = PutUint32(p, 0);                      // 52: offset of the private data
  PutFill(p, 0, header + kHeaderSize - p);  // 56: spare, up to 127
  out.Put(header, kHeaderSize);
}

void PutSamples(BlockWriter& out, const char* bases, long n) {
  out.Fill(0, trace::kScfFirstPeak * kPointSize);
  int previous = trace::kNoChannel;
  out.PutEach(n, kSlotSize, [&](unsigned char* at, long i) {
    const int own = trace::BaseChannel(bases[i]);
    std::memcpy(at, kSlots.slot[previous][own], kSlotSize);
    previous = own;
    return at + kSlotSize;
  });
  // The first point of a peakless slot holds exactly the previous peak's last height.
  out.Put(kSlots.slot[previous][trace::kNoChannel], kPointSize);
  out.Fill(0, (kTailPoints - 1) * kPointSize);
}

}  // namespace

void WriteScf(FileWriter& file, const char* bases, long n) {
  const long samples = trace::SampleCount(n);
  BlockWriter out(file, kHeaderSize + samples * kPointSize);
  PutHeader(out, samples);
  PutSamples(out, bases, n);
  out.Flush();
}
