// FileReader over arbitrary bytes with small block sizes (1 to 64 bytes), so that every line,
// token and field crosses block boundaries.
//
// The line readers are compared with a plain reading of the same bytes: GetTextLine gives every
// complete line that holds a byte other than white space, GetLine every line, a last line without
// a newline included, plus one empty line when a file ending in a newline fills its last block
// exactly. Then a run of mixed operations chosen by the input must keep tokens, fields and
// characters well formed and stay inside the buffer.
#include <fcntl.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz_check.h"
#include "toolkit/fileio.h"
#include "toolkit/str.h"

namespace {

bool IsWhite(unsigned char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// One file for the whole process, rewritten for every input and removed at exit.
class InputFile {
 public:
  InputFile() {
    struct stat status;
    const char* tmp = std::getenv("TMPDIR");
    std::string base = stat("/dev/shm", &status) == 0 ? "/dev/shm" : (tmp ? tmp : "/tmp");
    std::string pattern = base + "/synthcall-reader-XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    fd = mkstemp(name.data());
    FUZZ_CHECK(fd >= 0);
    path = name.data();
  }
  ~InputFile() {
    close(fd);
    unlink(path.c_str());
  }
  void Write(const std::string& bytes) {
    FUZZ_CHECK(ftruncate(fd, 0) == 0);
    FUZZ_CHECK(pwrite(fd, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
  }
  std::string path;

 private:
  int fd;
};

std::string Text(const Str& s) { return std::string(s.String(), s.Length()); }

std::vector<std::string> ExpectedLines(const std::string& bytes, long size, bool textOnly) {
  std::vector<std::string> lines;
  size_t start = 0;
  for (size_t end = bytes.find('\n'); end != std::string::npos; end = bytes.find('\n', start)) {
    std::string line = bytes.substr(start, end - start);
    bool blank = true;
    for (unsigned char c : line) blank = blank && IsWhite(c);
    if (!textOnly || !blank) lines.push_back(line);
    start = end + 1;
  }
  if (!textOnly && start < bytes.size()) lines.push_back(bytes.substr(start));
  if (!textOnly && !bytes.empty() && bytes.back() == '\n' && bytes.size() % size == 0)
    lines.emplace_back();
  return lines;
}

void CompareLines(const std::string& path, const std::string& bytes, long size, bool textOnly) {
  FileReader reader(size);
  FUZZ_CHECK(reader.Open(path.c_str()));
  std::vector<std::string> lines;
  Str line;
  while (textOnly ? reader.GetTextLine(line) : reader.GetLine(line)) lines.push_back(Text(line));
  FUZZ_CHECK(lines == ExpectedLines(bytes, size, textOnly));
  long newlines = 0;
  for (char c : bytes) newlines += c == '\n';
  FUZZ_CHECK(reader.GetLines() == newlines);
  reader.Close();
}

bool HasWhite(const Str& s) {
  for (long i = 0; i < s.Length(); ++i)
    if (IsWhite(s.String()[i])) return true;
  return false;
}

// One operation; `argument` gives a count, a separator or a position.
void Operate(FileReader& reader, unsigned char op, long fileSize) {
  const int argument = op >> 4;
  const char separator = ",; \t\n|:>"[argument % 8];
  Str s;
  char c = 0;
  switch (op & 15) {
    case 0:
      reader.SkipSpaces();
      break;
    case 1:
      FUZZ_CHECK(!reader.GetCharacter(c) || !IsWhite(c));
      break;
    case 2:
      FUZZ_CHECK(!reader.GetToken(s) || (s.Length() > 0 && !HasWhite(s)));
      break;
    case 3:
      if (reader.GetToken(s, separator))
        FUZZ_CHECK(std::memchr(s.String(), '\n', s.Length()) == nullptr &&
                   std::memchr(s.String(), separator, s.Length()) == nullptr);
      break;
    case 4:
      reader.SkipToken(argument - 2);
      break;
    case 5:
      reader.SkipToken(separator, argument - 2);
      break;
    case 6:
      reader.GetLine(s);
      break;
    case 7:
      reader.GetTextLine(s);
      break;
    case 8:
      reader >> s;
      break;
    case 9:
      reader.SkipLine(argument - 2);
      break;
    case 10:
      reader.SetPosition(fileSize * argument / 8 - 1);
      break;
    case 11:
      (void)reader.GetPosition();
      break;
    case 12:
      reader.SetSize(argument + 1);
      break;
    default:
      break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static InputFile file;
  FuzzedDataProvider in(data, size);
  const long blockSize = in.ConsumeIntegralInRange<long>(1, 64);
  const std::string ops = in.ConsumeRandomLengthString(48);
  const std::string bytes = in.ConsumeRemainingBytesAsString();
  file.Write(bytes);

  CompareLines(file.path, bytes, blockSize, true);
  CompareLines(file.path, bytes, blockSize, false);

  FileReader reader(blockSize);
  FUZZ_CHECK(reader.Open(file.path.c_str()));
  for (unsigned char op : ops) Operate(reader, op, static_cast<long>(bytes.size()));
  reader.Close();
  return 0;
}
