#include "app/block_writer.h"

#include <cstring>

namespace {

long BlockSize(long bytes) {
  return bytes < BlockWriter::kMinSize   ? BlockWriter::kMinSize
         : bytes > BlockWriter::kMaxSize ? BlockWriter::kMaxSize
                                         : bytes;
}

}  // namespace

// The block is left uninitialised: only the bytes stored into it are ever handed over.
BlockWriter::BlockWriter(FileWriter& target, long bytes)
    : file(target),
      block(new unsigned char[BlockSize(bytes)]),
      cursor(block.get()),
      end(cursor + BlockSize(bytes)) {}

// How much of n bytes fits now, handing the block over first when it is full.
long BlockWriter::Room(long n) {
  if (cursor == end) Flush();
  return n < end - cursor ? n : end - cursor;
}

// Room for n bytes: the block is handed over, and made larger should even an empty one be too
// small (a piece longer than the file was announced to be).
void BlockWriter::MakeRoom(long n) {
  Flush();
  if (end - cursor >= n) return;
  block.reset(new unsigned char[n]);
  cursor = block.get();
  end = cursor + n;
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
