// Collects the many small slots of a chromatogram in a local block and hands the block to the
// FileWriter in one AppendByte when it is full, instead of one virtual call per slot. Flush must
// be called before the file is closed; the destructor does not write. Not copyable.
#ifndef SYNTHCALL_APP_CHUNK_WRITER_H
#define SYNTHCALL_APP_CHUNK_WRITER_H

#include <cstring>

#include "toolkit/fileio.h"

class ChunkWriter {
 public:
  explicit ChunkWriter(FileWriter& target) : file(target) {}
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

#endif  // SYNTHCALL_APP_CHUNK_WRITER_H
