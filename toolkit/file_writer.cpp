// FileWriter: opening and closing, the text and raw-byte appends, and the buffer mechanics that
// every append shares. The buffer goes to the file in whole buffers of `size` bytes when it fills;
// only Close writes a partial one.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "toolkit/fileio.h"

using NumberText = Str::NumberText;

long FileWriter::TextLength(const char* s) { return s ? static_cast<long>(std::strlen(s)) : 0; }

FileWriter::FileWriter() : FileWriter(kDefaultSize) {}

FileWriter::FileWriter(long bytes) { SetSize(bytes); }

FileWriter::~FileWriter() {
  if (fd >= 0) close(fd);
}

// The buffer starts zeroed: RemoveEndBlankLines may look at bytes past the pending ones.
void FileWriter::SetSize(long bytes) {
  fileio::ResizeBlock(buffer, size, bytes);
  cursor = buffer.get();
  end = cursor + size;
}

// Open truncates and Reopen appends; both create the file with mode 0664 under the umask. A file
// still open is closed first and its pending bytes are dropped.
bool FileWriter::Open(const Str& path) { return OpenFile(path.String(), O_TRUNC); }
bool FileWriter::Open(const char* path) { return OpenFile(path, O_TRUNC); }
bool FileWriter::Reopen(const Str& path) { return OpenFile(path.String(), O_APPEND); }
bool FileWriter::Reopen(const char* path) { return OpenFile(path, O_APPEND); }

bool FileWriter::OpenFile(const char* path, int flags) {
  if (fd >= 0) close(fd);
  cursor = buffer.get();
  fd = open(path, flags | O_WRONLY | O_CREAT | O_CLOEXEC, 0664);
  failed = fd < 0;
  return !failed;
}

// The cursor stays where it is; Open and Reopen reset it.
void FileWriter::Close() {
  if (cursor != buffer.get()) WriteOut(buffer.get(), cursor - buffer.get());
  if (fd >= 0 && close(fd) != 0 && errno != EINTR) failed = true;
  fd = -1;
}

bool FileWriter::Check(const Str& path) { return Check(path.String()); }

bool FileWriter::Check(const char* path) {
  struct stat status;
  return stat(path, &status) == 0;
}

// Text appends: the value's bytes as they are, then "\n" for lines or the separator (a blank by
// default) for tokens. Numbers take Str's number-to-text rule.
void FileWriter::Append(const Str& s) { BlockAppend(s.String(), s.Length()); }
void FileWriter::Append(const char* s) { BlockAppend(s, TextLength(s)); }
void FileWriter::Append(char c) { PutByte(c); }
void FileWriter::Append(long n) { DecimalAppend(n); }
void FileWriter::Append(double x) {
  NumberText t(x);
  BlockAppend(t.text, t.length);
}
void FileWriter::AppendLine() { StoreByte('\n'); }
void FileWriter::AppendLine(const Str& s) { LineAppend(s.String(), s.Length()); }
void FileWriter::AppendLine(const char* s) { LineAppend(s, TextLength(s)); }
void FileWriter::AppendLine(char c) { StoreBytes(c, '\n'); }
void FileWriter::AppendLine(long n) {
  DecimalAppend(n);
  StoreByte('\n');
}
void FileWriter::AppendLine(double x) {
  NumberText t(x);
  LineAppend(t.text, t.length);
}
void FileWriter::AppendToken(const Str& s) { TokenAppend(s.String(), s.Length(), ' '); }
void FileWriter::AppendToken(const char* s) { TokenAppend(s, TextLength(s), ' '); }
void FileWriter::AppendToken(char c) { FileWriter::AppendToken(c, ' '); }
void FileWriter::AppendToken(long n) { FileWriter::AppendToken(n, ' '); }
void FileWriter::AppendToken(double x) { FileWriter::AppendToken(x, ' '); }
void FileWriter::AppendToken(const Str& s, char separator) {
  TokenAppend(s.String(), s.Length(), separator);
}
void FileWriter::AppendToken(const char* s, char separator) {
  TokenAppend(s, TextLength(s), separator);
}
void FileWriter::AppendToken(char c, char separator) { StoreBytes(c, separator); }
void FileWriter::AppendToken(long n, char separator) {
  DecimalAppend(n);
  StoreByte(separator);
}
void FileWriter::AppendToken(double x, char separator) {
  NumberText t(x);
  TokenAppend(t.text, t.length, separator);
}

// Raw bytes, zero bytes included.
void FileWriter::AppendByte(char c) { PutByte(c); }
void FileWriter::AppendByte(const char* p, long n) { BlockAppend(p, n); }
void FileWriter::AppendByte(unsigned char c) { PutByte(c); }
void FileWriter::AppendByte(const unsigned char* p, long n) { BlockAppend(p, n); }

void FileWriter::LineAppend(const char* text, long n) {
  BlockAppend(text, n);
  StoreByte('\n');
}

void FileWriter::TokenAppend(const char* text, long n, char separator) {
  BlockAppend(text, n);
  StoreByte(separator);
}

// With room to spare, the number is converted right into the buffer instead of being copied
// there. The converter's terminator lands on the byte after the text, which is not pending; it
// is put back as it was, since RemoveEndBlankLines may look at the bytes past the pending ones.
void FileWriter::DecimalAppend(long n) {
  if (end - cursor <= Str::kNumberTextSize) {
    NumberText t(n);
    BlockAppend(t.text, t.length);
    return;
  }
  unsigned char after[Str::kNumberTextSize];
  std::memcpy(after, cursor, sizeof after);
  const int length = Str::ConvertInteger(n, reinterpret_cast<char*>(cursor));
  cursor[length] = after[length];
  cursor += length;
}

void FileWriter::WriteOut(const unsigned char* p, long n) {
  if (fd < 0) {
    failed = true;  // nothing is open: the bytes are dropped
    return;
  }
  while (n > 0) {
    const ssize_t written = write(fd, p, n);
    if (written > 0) {
      p += written;
      n -= written;
    } else if (written < 0 && errno == EINTR) {
      continue;
    } else {
      failed = true;
      return;
    }
  }
}

void FileWriter::WriteBuffer() {
  WriteOut(buffer.get(), size);
  cursor = buffer.get();
}

// Whenever the data reaches the end of the buffer, the buffer is filled up and written whole, so
// data of any length goes through any buffer size.
void FileWriter::CopyIn(const void* data, long n, bool keepFull) {
  if (!buffer || n < 0) {
    failed = failed || !buffer;
    return;
  }
  auto* bytes = static_cast<const unsigned char*>(data);
  long room = end - cursor;
  while (keepFull ? room < n : room <= n) {
    if (room > 0) std::memcpy(cursor, bytes, room);
    WriteBuffer();
    bytes += room;
    n -= room;
    room = size;
  }
  if (n > 0) std::memcpy(cursor, bytes, n);
  cursor += n;
}

void FileWriter::FillAppend(unsigned char c, long n) {
  if (!buffer || n < 0) {
    failed = failed || !buffer;
    return;
  }
  long room = end - cursor;
  while (room <= n) {
    std::memset(cursor, c, room);
    WriteBuffer();
    n -= room;
    room = size;
  }
  std::memset(cursor, c, n);
  cursor += n;
}

// A buffer left full by PutByte or a binary value is written before the store, so that nothing
// lands past its end; the bytes reaching the file are the same.
void FileWriter::StoreByteAtEnd(unsigned char c) {
  if (!buffer) {
    failed = true;
    return;
  }
  if (cursor >= end) WriteBuffer();
  *cursor++ = c;
  if (cursor == end) WriteBuffer();
}

void FileWriter::PutByteAtEnd(unsigned char c) {
  if (!buffer) {
    failed = true;
    return;
  }
  if (cursor >= end) WriteBuffer();
  *cursor++ = c;
}

// Whatever the kernel leaves of a gathered write, of the pending bytes or of the block, goes out
// through WriteOut's loop.
void FileWriter::WriteThrough(const unsigned char* p, long n) {
  if (n < 0) return;
  unsigned char* const start = buffer.get();
  const long pending = cursor - start;
  cursor = start;
  if (fd < 0) {
    failed = true;  // nothing is open: the bytes are dropped
    return;
  }
  iovec parts[] = {{start, static_cast<size_t>(pending)},
                   {const_cast<unsigned char*>(p), static_cast<size_t>(n)}};
  ssize_t written;
  do {
    written = writev(fd, parts, 2);
  } while (written < 0 && errno == EINTR);
  if (written < 0) {
    failed = true;
    return;
  }
  const long fromPending = written < pending ? written : pending;
  WriteOut(start + fromPending, pending - fromPending);
  WriteOut(p + (written - fromPending), n - (written - fromPending));
}
