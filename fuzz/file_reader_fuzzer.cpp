// FileReader over arbitrary bytes with blocks of 1 to 64 bytes, so that every line, token and
// field crosses block ends. The lines GetLine gives, each with a newline behind it, must make up
// the file (a last line without one gains it; a file ending in a newline at a block end gives one
// more, empty, line), and the count of lines passed its count of newlines; then a run of mixed
// reads chosen by the input must stay inside the buffer.
#include <fuzzer/FuzzedDataProvider.h>

#include <fstream>

#include "fuzz_support.h"
#include "toolkit/fileio.h"

// One read each, laid out as a table.
// clang-format off
#define READ(code) [](FileReader& r, [[maybe_unused]] Str& s, [[maybe_unused]] int n) { code; }
static void (*const kReads[])(FileReader& r, Str& s, int n) = {
    READ(r.SkipSpaces()), READ(r.GetToken(s)), READ(r.GetToken(s, static_cast<char>(n))), READ(r.SkipToken(n % 4)),
    READ(r.SkipToken(static_cast<char>(n), n % 4)), READ(r.GetTextLine(s)), READ(r.SkipLine(n % 4)),
    READ(r.SetPosition(n - 2))};
// clang-format on

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string path = ScratchTree() + "/edit_dir/in.txt";
  FuzzedDataProvider in(data, size);
  FileReader reader(in.ConsumeIntegralInRange<long>(1, 64));
  const std::string reads = in.ConsumeRandomLengthString(32),
                    bytes = in.ConsumeRemainingBytesAsString();
  std::ofstream(path, std::ios::binary) << bytes;
  FUZZ_CHECK(reader.Open(path.c_str()));
  std::string lines;
  for (Str line; reader.GetLine(line);) lines += std::string(line.String(), line.Length()) + "\n";
  FUZZ_CHECK(lines == bytes || lines == bytes + "\n");
  FUZZ_CHECK(reader.GetLines() == std::count(bytes.begin(), bytes.end(), '\n'));
  FUZZ_CHECK(reader.Open(path.c_str()));
  Str s;
  for (unsigned char read : reads) kReads[read % 8](reader, s, read / 8);
  return 0;
}
