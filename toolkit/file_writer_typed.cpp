// FileWriter's formatted and typed appends: binary numbers, zero-terminated strings, fixed-width
// fields, justified values, runs of one byte, stream-style chaining and the trimming of trailing
// blank lines. All of them go through the buffer mechanics of file_writer.cpp.
#include <cstring>
#include <memory>

#include "toolkit/encoding.h"
#include "toolkit/fileio.h"

static_assert(sizeof(float) == 4 && sizeof(double) == 8, "IEEE 754 single and double expected");

// Integers go out most significant byte first whatever the host, shorts as 2 bytes and longs as
// their low 4 bytes; the chromatogram readers expect exactly that.
void FileWriter::AppendInteger(short v) { IntegerAppend(static_cast<unsigned short>(v), 2); }
void FileWriter::AppendInteger(const short* p, long n) {
  for (long i = 0; i < n; ++i) IntegerAppend(static_cast<unsigned short>(p[i]), 2);
}
void FileWriter::AppendInteger(unsigned short v) { IntegerAppend(v, 2); }
void FileWriter::AppendInteger(const unsigned short* p, long n) {
  for (long i = 0; i < n; ++i) IntegerAppend(p[i], 2);
}
void FileWriter::AppendInteger(long v) { IntegerAppend(static_cast<unsigned long>(v), 4); }
void FileWriter::AppendInteger(const long* p, long n) {
  for (long i = 0; i < n; ++i) IntegerAppend(static_cast<unsigned long>(p[i]), 4);
}
void FileWriter::AppendInteger(unsigned long v) { IntegerAppend(v, 4); }
void FileWriter::AppendInteger(const unsigned long* p, long n) {
  for (long i = 0; i < n; ++i) IntegerAppend(p[i], 4);
}

// Floating-point values go out in the host's own byte order, unlike the integers: the files'
// readers expect this asymmetry.
void FileWriter::AppendFloat(float v) { CopyIn(&v, sizeof v, true); }
void FileWriter::AppendFloat(const float* p, long n) {
  if (n > 0) CopyIn(p, n * static_cast<long>(sizeof *p), true);
}
void FileWriter::AppendFloat(double v) { CopyIn(&v, sizeof v, true); }
void FileWriter::AppendFloat(const double* p, long n) {
  if (n > 0) CopyIn(p, n * static_cast<long>(sizeof *p), true);
}

void FileWriter::IntegerAppend(unsigned long v, int k) {
  unsigned char bytes[4];
  const unsigned char* after = k == 2 ? PutUint16(bytes, v) : PutUint32(bytes, v);
  CopyIn(bytes, after - bytes, true);
}

// The text and its terminating zero byte.
void FileWriter::AppendString(const Str& s) { CopyIn(s.String(), s.Length() + 1, false); }
void FileWriter::AppendString(const char* s) { CopyIn(s ? s : "", TextLength(s) + 1, false); }

// Fields are exactly `width` bytes: the text cut or padded with blanks behind it.
void FileWriter::AppendField(const Str& s, long width) {
  FieldAppend(s.String(), s.Length(), width);
}
void FileWriter::AppendField(const char* s, long width) { FieldAppend(s, TextLength(s), width); }

// Justified values are padded with blanks to `width` (in front when `right`), never cut.
void FileWriter::Append(const Str& s, long width, bool right) {
  JustifiedAppend(s.String(), s.Length(), width, right);
}
void FileWriter::Append(const char* s, long width, bool right) {
  JustifiedAppend(s, TextLength(s), width, right);
}
void FileWriter::Append(char c, long width, bool right) { JustifiedAppend(&c, 1, width, right); }
void FileWriter::Append(long n, long width, bool right) {
  const Str::NumberText t(n);
  JustifiedAppend(t.text, t.length, width, right);
}
void FileWriter::Append(double x, long width, bool right) {
  const Str::NumberText t(x);
  JustifiedAppend(t.text, t.length, width, right);
}

void FileWriter::FieldAppend(const char* text, long n, long width) {
  if (width < 0) width = 0;
  const long kept = n < width ? n : width;
  BlockAppend(text, kept);
  FillAppend(' ', width - kept);
}

namespace {

// The w-byte field at `at`: the n bytes of text behind the blanks when `right`, else in front.
void PlaceJustified(unsigned char* at, const char* text, long n, long w, bool right) {
  std::memset(right ? at : at + n, ' ', w - n);
  if (n > 0) std::memcpy(right ? at + w - n : at, text, n);
}

}  // namespace

// A field that does not fit is built aside and goes out with one full-buffer write; its rest
// stays pending, and may leave the buffer full as a binary value does. A field wider than the
// whole buffer is split over as many writes as it needs.
void FileWriter::JustifiedAppend(const char* text, long n, long width, bool right) {
  if (!buffer) {
    failed = true;
    return;
  }
  const long w = width > n ? width : n;
  const long room = end - cursor;
  if (w < room) {
    PlaceJustified(cursor, text, n, w, right);
    cursor += w;
    return;
  }
  const std::unique_ptr<unsigned char[]> field(new unsigned char[w]);
  PlaceJustified(field.get(), text, n, w, right);
  std::memcpy(cursor, field.get(), room);
  WriteBuffer();
  CopyIn(field.get() + room, w - room, true);
}

// As the Append of the same type. The char form is a single-byte store: the buffer is written
// as soon as it becomes full.
FileWriter& FileWriter::operator<<(const Str& s) {
  FileWriter::Append(s);
  return *this;
}
FileWriter& FileWriter::operator<<(const char* s) {
  FileWriter::Append(s);
  return *this;
}
FileWriter& FileWriter::operator<<(char c) {
  StoreByte(c);
  return *this;
}
FileWriter& FileWriter::operator<<(long n) {
  FileWriter::Append(n);
  return *this;
}
FileWriter& FileWriter::operator<<(double x) {
  FileWriter::Append(x);
  return *this;
}

void FileWriter::Repeat(unsigned char c, long n) { FillAppend(c, n); }

// Keeps the last non-blank byte, the blanks after it and the first newline after those. The
// backward scan never examines the first pending byte and the forward scan runs up to the end of
// the buffer, not of the pending bytes: pending "\n\n\n" keeps two newlines.
void FileWriter::RemoveEndBlankLines() {
  if (cursor <= buffer.get()) return;
  do {
    --cursor;
  } while (cursor > buffer.get() && Str::IsSpace(static_cast<char>(*cursor)));
  do {
    if (++cursor >= end) return;
  } while (*cursor != '\n');
  ++cursor;
}
