#include "test_util.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

TempDir::TempDir() {
  const char* base = getenv("TMPDIR");
  path = std::string(base && *base ? base : "/tmp") + "/synthcall-test-XXXXXX";
  if (!mkdtemp(path.data())) throw std::runtime_error("mkdtemp failed");
}

// Directories a test made unreadable or unwritable are opened up before they are emptied.
TempDir::~TempDir() {
  std::system(("chmod -R u+rwx '" + path + "' && rm -rf '" + path + "'").c_str());
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

int FileMode(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 ? static_cast<int>(st.st_mode & 07777) : 0;
}

void MakeDir(const std::string& path, unsigned mode) {
  mkdir(path.c_str(), 0700);
  chmod(path.c_str(), mode);
}

// `bytes` bytes of `value`, most significant first.
static std::string Be(unsigned long value, int bytes) {
  std::string out;
  while (bytes-- > 0) out += static_cast<char>(value >> (8 * bytes) & 0xFF);
  return out;
}

// Name, number, type, element size, elements, data size, the data or its offset, a zero handle.
static std::string AbifEntry(const std::string& name, unsigned long number, unsigned long type,
                             unsigned long size, unsigned long elements, unsigned long dataSize,
                             const std::string& value) {
  return name + Be(number, 4) + Be(type, 2) + Be(size, 2) + Be(elements, 4) + Be(dataSize, 4) +
         value + Be(0, 4);
}

// SCF peaks start at sample 6 and skip unknown letters; ABIF peaks start at sample 5 and draw an
// unknown letter in the channel of the last A, C, G or T before it (nowhere without one).
std::string ModelChromat(const std::string& clean, bool abif) {
  static const int kPeak[13] = {32, 128, 320, 464, 576, 624, 640, 624, 576, 464, 320, 128, 32};
  const size_t samples = 12 * clean.size() + 12, none = std::string::npos;
  std::vector<std::vector<int>> channels(4, std::vector<int>(samples));  // A, C, G, T
  size_t drawn = none;
  for (size_t i = 0; i < clean.size(); ++i) {
    const size_t own = std::string("ACGT").find(clean[i]);
    if (own != none) drawn = own;
    if ((own != none || abif) && drawn != none)
      std::copy(kPeak, kPeak + 13, channels[drawn].begin() + (abif ? 5 : 6) + 12 * i);
  }
  std::string out;
  if (!abif) {  // a 128-byte header, then every sample point as the heights A, C, G, T
    out = ".scf" + Be(samples, 4) + Be(128, 4) + std::string(24, '\0') + "2.00" + Be(2, 4) +
          std::string(84, '\0');
    for (size_t point = 0; point < samples; ++point)
      for (const std::vector<int>& channel : channels) out += Be(channel[point], 2);
    return out;
  }
  // Version 0, a nameless root entry, reserved bytes, six directory entries, the four arrays.
  out = "ABIF" + Be(0, 2) + AbifEntry(Be(0, 4), 0, 0, 28, 6, 0, Be(128, 4)) +
        std::string(94, '\xFF') + AbifEntry("FWO_", 1, 2, 1, 4, 4, "ACGT") +
        AbifEntry("LANE", 1, 4, 2, 1, 2, Be(80, 2) + Be(0, 2));
  for (unsigned long k = 0; k < 4; ++k)
    out += AbifEntry("DATA", 9 + k, 4, 2, samples, 2 * samples, Be(296 + k * 2 * samples, 4));
  for (const std::vector<int>& channel : channels)
    for (int height : channel) out += Be(height, 2);
  return out;
}

std::string Shown(const Str& s) {
  EXPECT_EQ(static_cast<long>(std::strlen(s.String())), s.Length()) << s.String();
  return s.String() + ("/" + std::to_string(s.Size()));
}

std::string Shown(const std::vector<std::string>& items) {
  std::string text;
  for (const std::string& item : items) text += "[" + item + "]";
  return text;
}

std::vector<std::string> Texts(SList<Str>& list) {
  const long position = list.GetPosition();
  std::vector<std::string> texts;
  for (list.Begin(); Str* s = list.GetNext();) texts.push_back(s->String());
  list.Begin(position);
  return texts;
}
