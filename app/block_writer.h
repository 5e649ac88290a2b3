// Collects the bytes of one output file in a block of its own and hands each full block to
// FileWriter::WriteThrough: the chromatogram, phd and poly writers store every byte once, here,
// and the kernel takes it from here, with no second copy through the FileWriter's buffer. The
// block is large enough that a file of hundreds of megabytes costs few system calls, and small
// enough to stay in the processor's cache while it fills; a small file gets a small block.
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
  static constexpr long kMaxSize = 256 * 1024;
  static constexpr long kMinSize = 4096;

  // A block for `bytes`, the most the caller will put in, within the sizes above.
  BlockWriter(FileWriter& target, long bytes);
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

  // Stores `count` pieces of at most `most` bytes each in place: store(at, k)
  // stores piece k at `at` and returns the position after it. The room is checked once for as
  // many pieces as surely fit, not once per piece, and the block handed over when it runs short.
  template <typename StorePiece>
  void PutEach(long count, long most, StorePiece store) {
    for (long k = 0; k < count;) {
      if (end - cursor < most) MakeRoom(most);
      unsigned char* at = cursor;
      const long fit = (end - at) / most;
      const long last = count - k < fit ? count : k + fit;
      for (; k < last; ++k) at = store(at, k);
      cursor = at;
    }
  }

  void Flush();

 private:
  FileWriter& file;
  std::unique_ptr<unsigned char[]> block;
  unsigned char* cursor;  // where the next byte goes
  unsigned char* end;     // just past the block

  long Room(long n);
  void MakeRoom(long n);
  void PutAcross(const unsigned char* bytes, long n);  // a piece larger than the room left
  template <typename StorePart>
  void Spread(long n, StorePart store);
};

#endif  // SYNTHCALL_APP_BLOCK_WRITER_H
