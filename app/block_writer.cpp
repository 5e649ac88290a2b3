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

// Stores n bytes in as many parts as the ends of the block cut them into: store(at, done, part)
// stores `part` bytes at `at`, `done` bytes of the n having gone before.
template <typename StorePart>
void BlockWriter::Spread(long n, StorePart store) {
  for (long done = 0; done < n;) {
    const long part = Room(n - done);
    store(cursor, done, part);
    cursor += part;
    done += part;
  }
}

void BlockWriter::PutAcross(const unsigned char* bytes, long n) {
  Spread(n,
         [bytes](unsigned char* at, long done, long part) { std::memcpy(at, bytes + done, part); });
}

void BlockWriter::Fill(unsigned char c, long n) {
  Spread(n, [c](unsigned char* at, long, long part) { std::memset(at, c, part); });
}

void BlockWriter::Flush() {
  unsigned char* const start = block.get();
  if (cursor > start) file.WriteThrough(start, cursor - start);
  cursor = start;
}
