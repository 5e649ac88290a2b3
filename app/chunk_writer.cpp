#include "app/chunk_writer.h"

#include <cstring>

unsigned char* ChunkWriter::Room(long& n) {
  if (used == kSize) Flush();
  if (n > kSize - used) n = kSize - used;
  unsigned char* at = chunk + used;
  used += n;
  return at;
}

void ChunkWriter::PutAcross(const unsigned char* bytes, long n) {
  while (n > 0) {
    long part = n;
    unsigned char* at = Room(part);
    memcpy(at, bytes, part);
    bytes += part;
    n -= part;
  }
}

void ChunkWriter::Fill(unsigned char c, long n) {
  while (n > 0) {
    long part = n;
    unsigned char* at = Room(part);
    memset(at, c, part);
    n -= part;
  }
}

void ChunkWriter::Flush() {
  if (used > 0) file.AppendByte(chunk, used);
  used = 0;
}
