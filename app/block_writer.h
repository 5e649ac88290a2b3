// Collects the bytes of one output file in a block of its own and hands each full block to
// FileWriter::WriteThrough: the chromatogram, phd and poly writers store every byte once, here,
// and the kernel takes it from here, with no second copy through the FileWriter's buffer. The
// block is large enough that a file of hundreds of megabytes costs few system calls, and small
// enough to stay in the processor's cache while it fills.
//
// Flush before anything else is appended to the file and before it is closed; the destructor
// does not write. Owns its block. Not copyable.
#ifndef SYNTHCALL_APP_BLOCK_WRITER_H
#define SYNTHCALL_APP_BLOCK_WRITER_H

#include <cstring>
#include <memory>

#include "toolkit/fileio.h"

class BlockWriter {
 public:
  static constexpr long kSize = 256 * 1024;

  explicit BlockWriter(FileWriter& target);
  BlockWriter(const BlockWriter&) = delete;
  BlockWriter& operator=(const BlockWriter&) = delete;

  // n bytes copied from `bytes`, or n copies of `c`. Most pieces are a base's slot or a short
  // text and fit into the room left; those are copied inline.
  void Put(const void* bytes, long n) {
    if (static_cast<unsigned long>(n) <= static_cast<unsigned long>(end - cursor)) {
      std::memcpy(cursor, bytes, n);
      cursor += n;
    } else {
      PutAcross(static_cast<const unsigned char*>(bytes), n);
    }
  }
  void Fill(unsigned char c, long n);

  // For formatters that store a piece of at most n bytes (n <= kSize) in place: Reserve returns
  // where it goes, handing the block over first when less room is left, and Commit takes the
  // position after what was stored.
  unsigned char* Reserve(long n) {
    if (end - cursor < n) Flush();
    return cursor;
  }
  void Commit(unsigned char* next) { cursor = next; }

  void Flush();

 private:
  FileWriter& file;
  std::unique_ptr<unsigned char[]> block;
  unsigned char* cursor;  // where the next byte goes
  unsigned char* end;     // block + kSize

  long Room(long n);
  void PutAcross(const unsigned char* bytes, long n);  // a piece larger than the room left
};

#endif  // SYNTHCALL_APP_BLOCK_WRITER_H
