// Minimal ABIF output: a 128-byte header whose root entry points at a directory of six entries
// (base order, lane, four trace channels), then the A, C, G and T arrays of signed 16-bit heights.
// Everything before the arrays is a fixed template; only the element counts, sizes and offsets of
// the four DATA entries change with the sequence.
#include <cstring>

#include "app/block_writer.h"
#include "app/chromat.h"
#include "app/trace.h"
#include "toolkit/encoding.h"

namespace {

constexpr long kHeaderSize = 128;
constexpr long kEntrySize = 28;
constexpr long kEntries = 6;
constexpr long kTemplateSize = kHeaderSize + kEntries * kEntrySize;
static_assert(kTemplateSize == 296, "header and directory precede the trace arrays");

constexpr long kBytesPerHeight = 2;
constexpr unsigned kTypeChar = 2;
constexpr unsigned kTypeShort = 4;

// One directory entry. `value` is the data offset, or the data itself, left-justified, when it
// takes four bytes or less.
struct Entry {
  char name[5];
  unsigned long number;
  unsigned type;
  unsigned elementSize;
  unsigned long elements;
  unsigned long dataSize;
  unsigned long value;
};

constexpr unsigned long TextValue(const char* text) {
  return static_cast<unsigned long>(static_cast<unsigned char>(text[0])) << 24 |
         static_cast<unsigned long>(static_cast<unsigned char>(text[1])) << 16 |
         static_cast<unsigned long>(static_cast<unsigned char>(text[2])) << 8 |
         static_cast<unsigned long>(static_cast<unsigned char>(text[3]));
}

// The root entry has no name, type or data size on purpose: readers find the directory through
// its element count and offset alone.
constexpr Entry kRoot = {"", 0, 0, kEntrySize, kEntries, 0, kHeaderSize};

// The directory. The DATA entries' counts, sizes and offsets are filled in per file; DATA 9..12
// hold the channels in the base order of FWO_.
constexpr Entry kDirectory[] = {
    {"FWO_", 1, kTypeChar, 1, 4, 4, TextValue(trace::kChannelBases)},
    {"LANE", 1, kTypeShort, 2, 1, 2, 80ul << 16},  // lane 80, left-justified
    {"DATA", 9, kTypeShort, kBytesPerHeight, 0, 0, 0},
    {"DATA", 10, kTypeShort, kBytesPerHeight, 0, 0, 0},
    {"DATA", 11, kTypeShort, kBytesPerHeight, 0, 0, 0},
    {"DATA", 12, kTypeShort, kBytesPerHeight, 0, 0, 0},
};
static_assert(sizeof kDirectory / sizeof kDirectory[0] == kEntries, "root entry count");
constexpr long kFirstDataEntry = kHeaderSize + 2 * kEntrySize;
constexpr long kEntryElements = 12;  // where the per-file fields of an entry begin

constexpr unsigned char* PutEntry(unsigned char* p, const Entry& entry) {
  p = PutText(p, entry.name, 4);        // 0: tag name
  p = PutUint32(p, entry.number);       // 4: tag number
  p = PutUint16(p, entry.type);         // 8: element type
  p = PutUint16(p, entry.elementSize);  // 10: element size
  p = PutUint32(p, entry.elements);     // 12: number of elements
  p = PutUint32(p, entry.dataSize);     // 16: data size
  p = PutUint32(p, entry.value);        // 20: data offset or data
  return PutUint32(p, 0);               // 24: data handle
}

struct Template {
  unsigned char bytes[kTemplateSize];
};

constexpr Template MakeTemplate() {
  Template t{};
  unsigned char* p = t.bytes;
  p = PutText(p, "ABIF", 4);                                     // 0: signature
  p = PutUint16(p, 0);                                           // 4: version
  p = PutEntry(p, kRoot);                                        // 6: root entry
  p = PutFill(p, 0xFF, t.bytes + kHeaderSize - p);               // 34: reserved, up to 127
  for (const Entry& entry : kDirectory) p = PutEntry(p, entry);  // 128: directory
  return t;
}

constexpr Template kTemplate = MakeTemplate();

// A base's 24-byte slot in one channel array (samples 5 + 12i .. 16 + 12i) depends only on
// whether this base and the one before it are drawn in that channel. A channel is written four
// slots per copy from a table of every group of four, indexed by [the base before the group was
// drawn here][bit k: base k of the group is drawn here]. The first slots of an entry serve for a
// shorter group at the end of the sequence.
constexpr long kSlotSize = trace::kSamplesPerBase * kBytesPerHeight;
constexpr int kGroup = 4;
constexpr long kGroupSize = kGroup * kSlotSize;

struct GroupTable {
  unsigned char slots[2][1 << kGroup][kGroupSize];
};

constexpr GroupTable MakeGroupTable() {
  GroupTable table{};
  for (int previous = 0; previous < 2; ++previous) {
    for (int mask = 0; mask < (1 << kGroup); ++mask) {
      unsigned char* p = table.slots[previous][mask];
      bool before = previous;
      for (int k = 0; k < kGroup; ++k) {
        const bool here = (mask >> k) & 1;
        for (long s = 0; s < trace::kSamplesPerBase; ++s) {
          p = PutUint16(p, trace::SlotHeight(here, before, s));
        }
        before = here;
      }
    }
  }
  return table;
}

constexpr GroupTable kGroups = MakeGroupTable();
constexpr long kTailSamples = trace::kSamplesPerBase - trace::kAbifFirstPeak;

// Which of the `count` bases at `bases` are drawn in `channel`, base k in bit k. An unknown
// letter is drawn in the channel of the last A, C, G or T before it, carried in `drawn`; before
// the first of them there is no such channel and the slot stays empty.
int DrawnMask(const char* bases, long count, int channel, int& drawn) {
  int mask = 0;
  for (long k = 0; k < count; ++k) {
    const int own = trace::BaseChannel(bases[k]);
    if (own != trace::kNoChannel) drawn = own;
    mask |= (drawn == channel) << k;
  }
  return mask;
}

void PutChannel(BlockWriter& out, int channel, const char* bases, long n) {
  out.Fill(0, trace::kAbifFirstPeak * kBytesPerHeight);
  int drawn = trace::kNoChannel;
  int previous = 0;
  const long groups = n / kGroup;
  out.PutEach(groups, kGroupSize, [&](unsigned char* at, long group) {
    const int mask = DrawnMask(bases + group * kGroup, kGroup, channel, drawn);
    std::memcpy(at, kGroups.slots[previous][mask], kGroupSize);
    previous = mask >> (kGroup - 1);
    return at + kGroupSize;
  });
  const long i = groups * kGroup;
  const long rest = n - i;
  const int mask = DrawnMask(bases + i, rest, channel, drawn);
  out.Put(kGroups.slots[previous][mask], rest * kSlotSize);
  if (rest > 0) previous = (mask >> (rest - 1)) & 1;
  // The first sample after the last slot holds the closing height of a peak drawn there.
  out.Put(kGroups.slots[previous][0], kBytesPerHeight);
  out.Fill(0, (kTailSamples - 1) * kBytesPerHeight);
}

}  // namespace

void WriteAbif(FileWriter& file, const char* bases, long n) {
  const unsigned long samples = trace::SampleCount(n);
  const unsigned long arrayBytes = kBytesPerHeight * samples;
  unsigned char head[kTemplateSize];
  memcpy(head, kTemplate.bytes, kTemplateSize);
  unsigned long offset = kTemplateSize;
  for (int channel = 0; channel < trace::kChannels; ++channel) {
    unsigned char* p = head + kFirstDataEntry + channel * kEntrySize + kEntryElements;
    p = PutUint32(p, samples);     // 12: number of elements
    p = PutUint32(p, arrayBytes);  // 16: data size
    PutUint32(p, offset);          // 20: data offset
    offset += arrayBytes;
  }
  BlockWriter out(file,
                  static_cast<long>(offset));  // the file ends where a fifth array would start
  out.Put(head, kTemplateSize);
  for (int channel = 0; channel < trace::kChannels; ++channel) PutChannel(out, channel, bases, n);
  out.Flush();
}
