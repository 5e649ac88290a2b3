// The benchmark's write floor: what it costs merely to put a tree of files on disk when every byte
// is already in memory. It loads every file of the named directories below <from>, then writes
// each one to the same relative path below <to> with one open, one write and one close, and
// prints the seconds that writing took: the wall-clock time, then the processor time (user and
// system), which a busy shared machine disturbs less. Loading the files and making the
// directories happen before the clocks start, so the figures are system calls and the kernel's
// copying, nothing else.
//
//   write_floor <from> <to> <directory>...
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct File {
  std::string path;  // relative to <from> and <to>
  std::string bytes;
};

// Read into a block of exactly the file's size. (Growing a string while reading made the later
// writes from it up to three times slower on a virtual machine, so the floor came out too high.)
std::string Load(const fs::path& path) {
  std::string bytes(fs::file_size(path), '\0');
  std::ifstream in(path, std::ios::binary);
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

std::vector<File> LoadTree(const fs::path& from, const std::vector<std::string>& directories) {
  std::vector<File> files;
  for (const std::string& directory : directories) {
    for (const fs::directory_entry& entry : fs::directory_iterator(from / directory)) {
      if (!entry.is_regular_file()) continue;
      files.push_back({fs::relative(entry.path(), from).string(), Load(entry.path())});
    }
  }
  return files;
}

// As a writer that holds the whole file would do it: one write, repeated only for what the
// kernel did not take (it takes at most about 2 GiB per call).
bool WriteFile(const File& file) {
  const int fd = open(file.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0664);
  if (fd < 0) return false;
  const char* p = file.bytes.data();
  size_t left = file.bytes.size();
  while (left > 0) {
    const ssize_t written = write(fd, p, left);
    if (written <= 0) break;
    p += written;
    left -= static_cast<size_t>(written);
  }
  return close(fd) == 0 && left == 0;
}

double ProcessorSeconds() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& t) { return t.tv_sec + t.tv_usec / 1e6; };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: write_floor <from> <to> <directory>...\n");
    return 2;
  }
  const fs::path from = fs::absolute(argv[1]);
  const fs::path to = argv[2];
  const std::vector<std::string> directories(argv + 3, argv + argc);
  const std::vector<File> files = LoadTree(from, directories);
  for (const std::string& directory : directories) fs::create_directories(to / directory);
  fs::current_path(to);

  const auto start = std::chrono::steady_clock::now();
  const double processorStart = ProcessorSeconds();
  for (const File& file : files) {
    if (!WriteFile(file)) {
      std::perror(file.path.c_str());
      return 1;
    }
  }
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
  std::printf("%.6f %.6f\n", wall.count(), ProcessorSeconds() - processorStart);
  return 0;
}
