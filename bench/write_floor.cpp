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
#include <memory>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct File {
  std::string path;  // relative to <from> and <to>
  size_t size;
  char* bytes;  // in the one block that holds every file
};

std::vector<File> ListTree(const fs::path& from, const std::vector<std::string>& directories) {
  std::vector<File> files;
  for (const std::string& directory : directories) {
    for (const fs::directory_entry& entry : fs::directory_iterator(from / directory)) {
      if (entry.is_regular_file())
        files.push_back({fs::relative(entry.path(), from).string(), entry.file_size(), nullptr});
    }
  }
  return files;
}

// As a writer that holds the whole file would do it: one call, repeated only for what the
// kernel did not take (it takes at most about 2 GiB per call).
bool Transfer(int fd, char* bytes, size_t size, bool reading) {
  while (size > 0) {
    const ssize_t done = reading ? read(fd, bytes, size) : write(fd, bytes, size);
    if (done <= 0) return false;
    bytes += done;
    size -= static_cast<size_t>(done);
  }
  return true;
}

bool Load(const fs::path& from, const File& file) {
  const int fd = open((from / file.path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  const bool loaded = Transfer(fd, file.bytes, file.size, true);
  return close(fd) == 0 && loaded;
}

bool Write(const File& file) {
  const int fd = open(file.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0664);
  if (fd < 0) return false;
  const bool written = Transfer(fd, file.bytes, file.size, false);
  return close(fd) == 0 && written;
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
  std::vector<File> files = ListTree(from, directories);

  // One block for all, left for read to fill: on a virtual machine, memory that the program
  // zeroed or grew itself made the later writes from it up to three times slower.
  size_t total = 0;
  for (const File& file : files) total += file.size;
  const std::unique_ptr<char[]> block(new char[total > 0 ? total : 1]);
  char* next = block.get();
  for (File& file : files) {
    file.bytes = next;
    next += file.size;
    if (!Load(from, file)) {
      std::perror(file.path.c_str());
      return 1;
    }
  }
  for (const std::string& directory : directories) fs::create_directories(to / directory);
  fs::current_path(to);

  const auto start = std::chrono::steady_clock::now();
  const double processorStart = ProcessorSeconds();
  for (const File& file : files) {
    if (!Write(file)) {
      std::perror(file.path.c_str());
      return 1;
    }
  }
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
  std::printf("%.6f %.6f\n", wall.count(), ProcessorSeconds() - processorStart);
  return 0;
}
