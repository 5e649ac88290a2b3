// File and system services: buffered text input (FileReader), buffered output (FileWriter), the
// console variant of the output (CoutWriter) and directories (Directory).
//
// Readers and writers own a POSIX file descriptor and a block buffer; both are released by the
// destructor. Neither is copyable. A FileWriter destroyed without Close loses its pending bytes.
#ifndef SYNTHCALL_TOOLKIT_FILEIO_H
#define SYNTHCALL_TOOLKIT_FILEIO_H

#include <cstring>
#include <memory>

#include "toolkit/str.h"

namespace fileio {

// The block buffer of FileReader and FileWriter: a new block of `bytes` bytes, or none when
// `bytes` is not positive, replaces the old one and whatever it held; `size` becomes its size.
// The block is left uninitialised: only bytes read into it or appended are ever used, and
// clearing a 256 KiB block would cost every run a quarter megabyte of page faults.
inline void ResizeBlock(std::unique_ptr<unsigned char[]>& buffer, long& size, long bytes) {
  buffer.reset();
  size = bytes > 0 ? bytes : 0;
  if (size > 0) buffer.reset(new unsigned char[size]);
}

}  // namespace fileio

// Buffered input file. The file is read in whole blocks of `size` bytes; characters, tokens,
// fields and lines are served out of the block and copied into the target Str in runs.
class FileReader {
 public:
  static constexpr long kDefaultSize = 1024;

  FileReader();
  explicit FileReader(long bytes);
  FileReader(const FileReader&) = delete;
  FileReader& operator=(const FileReader&) = delete;
  ~FileReader();
  void SetSize(long bytes);  // before Open; discards the buffered block

  bool Open(const Str& path);
  bool Open(const char* path);
  static bool Check(const Str& path);  // an entry of that name exists
  static bool Check(const char* path);
  void Close();

  long GetPosition() const;
  bool SetPosition(long position);
  long GetLines() const { return lines; }  // newlines passed since Open

  // Reading. Each refills the buffer from the file whenever it runs out of bytes.
  void SkipSpaces();
  bool GetCharacter(char& c);
  bool GetToken(Str& token);
  bool GetToken(Str& field, char separator);
  void SkipToken(int n = 1);
  void SkipToken(char separator, int n = 1);
  bool GetLine(Str& line);
  bool GetTextLine(Str& line);  // skips blank lines; a last line without a newline is not given
  FileReader& operator>>(Str& line);
  void SkipLine(int n = 1);

 private:
  int fd = -1;
  std::unique_ptr<unsigned char[]> buffer;  // the block buffer; null when size is 0
  unsigned char* cursor = nullptr;          // next byte to serve
  unsigned char* end = nullptr;             // one past the last valid byte
  long size = kDefaultSize;                 // block size
  // The number of the block in the buffer, except after SetPosition loaded a block other than the
  // first: then it holds that block's byte offset, on purpose. GetPosition then answers offset x
  // size plus the offset in the block, and refills go on adding one to it.
  long block = 0;
  long count = 0;          // valid bytes in the buffer
  long lines = 0;          // newlines passed since Open
  bool lastBlock = false;  // the block came from a short read

  bool Refill();  // true when a byte is ready at cursor; false at end of data
  bool AtEndOfData() const { return cursor >= end && lastBlock; }
  void ReadBlock();                   // fills the buffer from the file at its current offset
  bool CollectLine(Str& line);        // up to the next newline; false when none was found
  bool SkipPast(unsigned char byte);  // past the next `byte`; false at end of data
};

// Buffered output file. Text and raw bytes are collected in the buffer, which is written to the
// file in whole buffers when it fills, and the rest at Close. Every public operation but
// SetSize, Repeat, RemoveEndBlankLines, WriteThrough and Failed is virtual so that CoutWriter can
// replace it.
class FileWriter {
 public:
  static constexpr long kDefaultSize = 1024;

  FileWriter();
  explicit FileWriter(long bytes);
  FileWriter(const FileWriter&) = delete;
  FileWriter& operator=(const FileWriter&) = delete;
  virtual ~FileWriter();
  void SetSize(long bytes);  // before Open; pending bytes are discarded

  // Opening (truncate or append; created with mode 0664 under the umask) and closing.
  virtual bool Open(const Str& path);
  virtual bool Open(const char* path);
  virtual bool Reopen(const Str& path);
  virtual bool Reopen(const char* path);
  virtual void Close();
  virtual bool Check(const Str& path);
  virtual bool Check(const char* path);

  // Text appends. Numbers use Str's number-to-text rule.
  virtual void Append(const Str& s);
  virtual void Append(const char* s);
  virtual void Append(char c);
  virtual void Append(long n);
  virtual void Append(double x);
  virtual void AppendLine();
  virtual void AppendLine(const Str& s);
  virtual void AppendLine(const char* s);
  virtual void AppendLine(char c);
  virtual void AppendLine(long n);
  virtual void AppendLine(double x);
  virtual void AppendToken(const Str& s);
  virtual void AppendToken(const char* s);
  virtual void AppendToken(char c);
  virtual void AppendToken(long n);
  virtual void AppendToken(double x);
  virtual void AppendToken(const Str& s, char separator);
  virtual void AppendToken(const char* s, char separator);
  virtual void AppendToken(char c, char separator);
  virtual void AppendToken(long n, char separator);
  virtual void AppendToken(double x, char separator);

  // Raw bytes, as they are.
  virtual void AppendByte(char c);
  virtual void AppendByte(const char* p, long n);
  virtual void AppendByte(unsigned char c);
  virtual void AppendByte(const unsigned char* p, long n);

  // Binary numbers: integers most significant byte first (short 2 bytes, long 4 bytes), floats
  // in the host's byte order.
  virtual void AppendInteger(short v);
  virtual void AppendInteger(const short* p, long n);
  virtual void AppendInteger(unsigned short v);
  virtual void AppendInteger(const unsigned short* p, long n);
  virtual void AppendInteger(long v);
  virtual void AppendInteger(const long* p, long n);
  virtual void AppendInteger(unsigned long v);
  virtual void AppendInteger(const unsigned long* p, long n);
  virtual void AppendFloat(float v);
  virtual void AppendFloat(const float* p, long n);
  virtual void AppendFloat(double v);
  virtual void AppendFloat(const double* p, long n);

  // Zero-terminated strings, fixed-width fields (cut or padded) and justified values (padded).
  virtual void AppendString(const Str& s);
  virtual void AppendString(const char* s);
  virtual void AppendField(const Str& s, long width);
  virtual void AppendField(const char* s, long width);
  virtual void Append(const Str& s, long width, bool right);
  virtual void Append(const char* s, long width, bool right);
  virtual void Append(char c, long width, bool right);
  virtual void Append(long n, long width, bool right);
  virtual void Append(double x, long width, bool right);

  virtual FileWriter& operator<<(const Str& s);
  virtual FileWriter& operator<<(const char* s);
  virtual FileWriter& operator<<(char c);
  virtual FileWriter& operator<<(long n);
  virtual FileWriter& operator<<(double x);

  void Repeat(unsigned char c, long n);
  void RemoveEndBlankLines();  // works on the pending bytes only

  // For writers of large files that format their bytes in a block of their own: the pending
  // bytes and the block go to the file at once, in one gathered write, and the buffer is empty
  // afterwards. The block is never copied into the buffer, so each byte is stored once in user
  // space. Unlike the appends this writes however little the buffer holds; the file receives
  // the same bytes as from AppendByte.
  void WriteThrough(const unsigned char* p, long n);

  // True when the last Open or Reopen failed or a write since then did not complete.
  bool Failed() const { return failed; }

 protected:
  int fd = -1;
  std::unique_ptr<unsigned char[]> buffer;  // the output buffer; null when size is 0
  unsigned char* cursor = nullptr;          // where the next byte goes
  unsigned char* end = nullptr;             // buffer + size
  long size = kDefaultSize;
  bool failed = false;

  static long TextLength(const char* s);  // strlen, 0 for a null pointer

 private:
  bool OpenFile(const char* path, int flags);
  void WriteOut(const unsigned char* p, long n);  // all n bytes, or `failed` is set
  void WriteBuffer();                             // exactly size bytes
  // The one copy loop. Text and blocks never leave the buffer full; binary values and the rest of
  // a justified value (keepFull) may, and the next append writes it out first.
  void CopyIn(const void* data, long n, bool keepFull);
  void FillAppend(unsigned char c, long n);
  void LineAppend(const char* text, long n);
  void TokenAppend(const char* text, long n, char separator);
  void DecimalAppend(long n);  // the text of n, as Str::ConvertInteger gives it

  // Most appends are a few bytes into a buffer with room to spare; those are copied here, inline.
  // Whatever reaches the end of the buffer, or finds no buffer, goes the long way: CopyIn, or the
  // single-byte stores below, which keep the exact rules of when a buffer is written.
  void BlockAppend(const void* data, long n) {
    if (static_cast<unsigned long>(n) < static_cast<unsigned long>(end - cursor)) {
      std::memcpy(cursor, data, n);
      cursor += n;
    } else {
      CopyIn(data, n, false);
    }
  }
  void StoreByte(unsigned char c) {  // written when the buffer becomes full
    if (end - cursor > 1)
      *cursor++ = c;
    else
      StoreByteAtEnd(c);
  }
  void StoreBytes(unsigned char first, unsigned char second) {  // StoreByte of each
    unsigned char* at = cursor;
    if (end - at > 2) {
      at[0] = first;
      at[1] = second;
      cursor = at + 2;
    } else {
      StoreByte(first);
      StoreByte(second);
    }
  }
  void PutByte(unsigned char c) {  // written when a byte finds the buffer full
    if (cursor < end)
      *cursor++ = c;
    else
      PutByteAtEnd(c);
  }
  void StoreByteAtEnd(unsigned char c);
  void PutByteAtEnd(unsigned char c);

  void IntegerAppend(unsigned long v, int k);  // the low k bytes, most significant first
  void FieldAppend(const char* text, long n, long width);
  void JustifiedAppend(const char* text, long n, long width, bool right);
};

// FileWriter's interface on standard output, unbuffered. Only the text operations are replaced;
// what is not replaced (binary numbers, AppendString, AppendField, unsigned AppendByte, Repeat)
// still goes into the inherited buffer, which a CoutWriter never writes: that output is dropped.
class CoutWriter : public FileWriter {
 public:
  CoutWriter() = default;
  ~CoutWriter() override;
  void Write() {}

  void Close() override;
  void Append(const Str& s) override;
  void Append(const char* s) override;
  void Append(char c) override;
  void Append(long n) override;
  void Append(double x) override;
  void AppendLine() override;
  void AppendLine(const Str& s) override;
  void AppendLine(const char* s) override;
  void AppendLine(char c) override;
  void AppendLine(long n) override;
  void AppendLine(double x) override;
  void AppendToken(const Str& s) override;
  void AppendToken(const char* s) override;
  void AppendToken(char c) override;
  void AppendToken(long n) override;
  void AppendToken(double x) override;
  void AppendToken(const Str& s, char separator) override;
  void AppendToken(const char* s, char separator) override;
  void AppendToken(char c, char separator) override;
  void AppendToken(long n, char separator) override;
  void AppendToken(double x, char separator) override;
  void AppendByte(char c) override;
  void AppendByte(const char* p, long n) override;
  void Append(const Str& s, long width, bool right) override;
  void Append(const char* s, long width, bool right) override;
  void Append(char c, long width, bool right) override;
  void Append(long n, long width, bool right) override;
  void Append(double x, long width, bool right) override;
  CoutWriter& operator<<(const Str& s) override;
  CoutWriter& operator<<(const char* s) override;
  CoutWriter& operator<<(char c) override;
  CoutWriter& operator<<(long n) override;
  CoutWriter& operator<<(double x) override;

  using FileWriter::AppendByte;

 private:
  static void Put(const char* text, long n);
  static void PutFollowed(const char* text, long n, char after);
  static void PutJustified(const char* text, long n, long width, bool right);
};

// Directories: usability checks, listings split into sub-directories and files, the home and
// current directories from the environment, and path splitting. Never creates a directory.
class Directory {
 public:
  Directory();
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;
  ~Directory();

  // Check sets the code read by GetError: 0 usable, 1 not an accessible directory (a symbolic
  // link is not one), 2 owner may not read, 3 owner may not write.
  bool Check(const char* path, bool mustRead, bool mustWrite);
  bool Check(const Str& path, bool mustRead, bool mustWrite);
  int GetError() const { return error; }
  static bool CheckFile(const Str& path);
  static bool CheckFile(const char* path);

  // "HOME" and "PWD" with a trailing '/'; empty when the variable is not set.
  static Str GetHomeDirectory();
  static Str GetCurrentDirectory();

  // Listing into two collated lists; names beginning with '.' only when showHidden.
  bool Open(const char* path, bool showHidden);
  bool Open(bool showHidden);
  void GetDirList(StrList& out);
  void GetFileList(StrList& out);
  bool GetNextDir(Str& out);
  bool GetNextFile(Str& out);

  // Path splitting. GetParent first removes one trailing '/' from its argument.
  static Str GetFileName(Str& path);
  static Str GetExtension(Str& path);
  static Str GetPath(Str& path);
  static Str GetParent(Str& path);

 private:
  StrList dirs;
  StrList files;
  Str unusedPath;  // kept empty: nothing reads or writes it
  int error = 0;
};

#endif  // SYNTHCALL_TOOLKIT_FILEIO_H
