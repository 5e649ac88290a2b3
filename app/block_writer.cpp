#include "app/block_writer.h"

#include <cstring>

// The block is left uninitialised: only the bytes stored into it are ever handed over.
BlockWriter::BlockWriter(FileWriter& target)
    : file(target), block(new unsigned char[kSize]), cursor(block.get()), end(cursor + kSize) {}

// How much of n bytes fits now, handing the block over first when it is full.
long BlockWriter::Room(long n) {
  if (cursor == end) Flush();
  return n < end - cursor ? n : end - cursor;
}

void BlockWriter::PutAcross(const unsigned char* bytes, long n) {
  while (n > 0) {
    const long part = Room(n);
    std::memcpy(cursor, bytes, part);
    cursor += part;
    bytes += part;
    n -= part;
  }
}

void BlockWriter::Fill(unsigned char c, long n) {
  while (n > 0) {
    const long part = Room(n);
    std::memset(cursor, c, part);
    cursor += part;
    n -= part;
  }
}

void BlockWriter::Flush() {
  unsigned char* const start = block.get();
  if (cursor > start) file.WriteThrough(start, cursor - start);
  cursor = start;
}
