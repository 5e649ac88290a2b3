// FileReader: the file is read in blocks of `size` bytes with plain POSIX reads; every reading
// operation serves bytes out of the block, refills it when it runs dry, and copies what it keeps
// into the target Str one run at a time.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "toolkit/fileio.h"

namespace {

bool IsSpace(unsigned char c) { return Str::IsSpace(static_cast<char>(c)); }

void Take(Str& target, const unsigned char* from, const unsigned char* to) {
  if (to > from) target.AppendBytes(reinterpret_cast<const char*>(from), to - from);
}

}  // namespace

FileReader::FileReader() : FileReader(kDefaultSize) {}

FileReader::FileReader(long bytes) { SetSize(bytes); }

FileReader::~FileReader() { Close(); }

void FileReader::SetSize(long bytes) {
  fileio::ResizeBlock(buffer, size, bytes);
  cursor = end = buffer.get();
  lastBlock = false;
}

bool FileReader::Open(const Str& path) { return Open(path.String()); }

// A failed Open leaves the reader at end of data, so that reads answer false.
bool FileReader::Open(const char* path) {
  Close();
  lines = 0;
  cursor = end = buffer.get();
  lastBlock = true;
  fd = open(path, O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  // open() succeeds on a directory, whose reads then fail: the caller must hear "can not open".
  struct stat status;
  if (fstat(fd, &status) != 0 || S_ISDIR(status.st_mode)) {
    Close();
    return false;
  }
  block = 0;
  ReadBlock();
  return true;
}

bool FileReader::Check(const Str& path) { return Check(path.String()); }

bool FileReader::Check(const char* path) {
  struct stat status;
  return stat(path, &status) == 0;
}

void FileReader::Close() {
  if (fd >= 0) close(fd);
  fd = -1;
}

long FileReader::GetPosition() const { return block * size + (cursor - buffer.get()); }

bool FileReader::SetPosition(long position) {
  if (position < 0 || size <= 0) return false;
  const long wanted = position / size;
  if (wanted != block) {
    const long offset = wanted * size;
    if (lseek(fd, offset, SEEK_SET) < 0) return false;
    ReadBlock();
    block = offset;  // the byte offset, not the block number (see the field)
  }
  // May point past `end` when the position lies beyond the file; the next read then refills.
  cursor = buffer.get() + position % size;
  return true;
}

// Reads until the block is full, the file ends or a read fails; a failed read counts as the end
// of the file. So a short block is always the last one, even on pipes that deliver in pieces.
void FileReader::ReadBlock() {
  count = 0;
  bool atEnd = fd < 0;
  while (!atEnd && count < size) {
    const ssize_t n = read(fd, buffer.get() + count, size - count);
    if (n > 0) {
      count += n;
    } else if (n == 0 || errno != EINTR) {
      atEnd = true;
    }
  }
  cursor = buffer.get();
  end = cursor + count;
  lastBlock = count < size || size == 0;
}

bool FileReader::Refill() {
  while (cursor >= end) {
    if (lastBlock) return false;
    ReadBlock();
    ++block;
  }
  return true;
}

void FileReader::SkipSpaces() {
  while (Refill()) {
    for (; cursor < end; ++cursor) {
      if (!IsSpace(*cursor)) return;
      if (*cursor == '\n') ++lines;
    }
  }
}

bool FileReader::GetCharacter(char& c) {
  SkipSpaces();
  if (!Refill()) return false;
  c = static_cast<char>(*cursor++);
  return true;
}

bool FileReader::GetToken(Str& token) {
  token.Clear();
  SkipSpaces();
  if (!Refill()) return false;
  do {
    const unsigned char* start = cursor;
    while (cursor < end && !IsSpace(*cursor)) ++cursor;
    Take(token, start, cursor);
  } while (cursor >= end && Refill());
  return true;  // the white space byte that ended the token stays
}

bool FileReader::GetToken(Str& field, char separator) {
  if (AtEndOfData()) return false;
  field.Clear();
  const auto stop = static_cast<unsigned char>(separator);
  while (Refill()) {
    const unsigned char* start = cursor;
    while (cursor < end && *cursor != '\n' && *cursor != stop) ++cursor;
    Take(field, start, cursor);
    if (cursor < end) {
      if (*cursor++ == '\n') ++lines;
      return true;
    }
  }
  return true;  // the last field of a file without a final terminator
}

void FileReader::SkipToken(int n) {
  for (int i = 0; i < n; ++i) {
    SkipSpaces();
    if (!Refill()) return;
    do {
      while (cursor < end && !IsSpace(*cursor)) ++cursor;
    } while (cursor >= end && Refill());
    if (cursor >= end) return;
    if (*cursor++ == '\n') ++lines;
  }
}

void FileReader::SkipToken(char separator, int n) {
  for (int i = 0; i < n; ++i) {
    if (!SkipPast(static_cast<unsigned char>(separator))) return;
  }
}

bool FileReader::SkipPast(unsigned char byte) {
  while (Refill()) {
    auto* found = static_cast<unsigned char*>(std::memchr(cursor, byte, end - cursor));
    unsigned char* stop = found ? found + 1 : end;
    lines += std::count(cursor, stop, '\n');
    cursor = stop;
    if (found) return true;
  }
  return false;
}

bool FileReader::CollectLine(Str& line) {
  while (Refill()) {
    auto* newline = static_cast<unsigned char*>(std::memchr(cursor, '\n', end - cursor));
    Take(line, cursor, newline ? newline : end);
    if (newline) {
      cursor = newline + 1;
      ++lines;
      return true;
    }
    cursor = end;
  }
  return false;
}

// Only data already known to be exhausted answers false: when the file's length is a multiple of
// the block size, the zero-byte read that finds its end yields one more, empty, line.
bool FileReader::GetLine(Str& line) {
  if (AtEndOfData()) return false;
  line.Clear();
  CollectLine(line);
  return true;
}

// A last line without a newline is not delivered: the FASTA reader treats it as the end of input.
bool FileReader::GetTextLine(Str& line) {
  do {
    line.Clear();
    if (!CollectLine(line)) return false;
  } while (!line.HasContent());
  return true;
}

FileReader& FileReader::operator>>(Str& line) {
  line.Clear();
  CollectLine(line);
  return *this;
}

void FileReader::SkipLine(int n) {
  for (int i = 0; i < n; ++i) {
    if (!SkipPast('\n')) return;
  }
}
