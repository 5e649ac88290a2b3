// The benchmark's write floor: what it costs merely to put a tree of files on disk when every byte
// is already in memory. It maps every file of the named directories below <from> into memory, then
// writes each one to the same relative path below <to> with one open, writes of at most 256 KiB
// and one close, and prints the seconds that writing took: the wall-clock time, then the processor
// time (user and system), which a busy shared machine disturbs less. Mapping the files and making
// the directories happen before the clocks start, so the figures are system calls and the kernel's
// copying, nothing else.
//
//   write_floor <from> <to> <directory>...
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct File {
  std::string path;  // relative to <from> and <to>
  size_t size;
  const char* bytes;  // the file mapped into memory
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

// The bytes are mapped from the page cache and faulted in before the clock starts, so they are
// in memory without a second copy of the tree. A private copy doubles the memory the floor
// touches, and on a virtual machine the writes of one clone's files from it took anything from
// 0.2 to 1.8 s from one run to the next.
bool Load(const fs::path& from, File& file) {
  if (file.size == 0) return true;
  const int fd = open((from / file.path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  void* mapped = mmap(nullptr, file.size, PROT_READ, MAP_SHARED | MAP_POPULATE, fd, 0);
  file.bytes = static_cast<const char*>(mapped);
  return close(fd) == 0 && mapped != MAP_FAILED;
}

// Pieces of 256 KiB rather than one write of the whole file: on tmpfs one write of hundreds of
// megabytes took twice as long in about half the runs, so the floor would not be the least.
bool Write(const File& file) {
  constexpr size_t kPiece = 256 * 1024;
  const int fd = open(file.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0664);
  if (fd < 0) return false;
  for (size_t done = 0; done < file.size;) {
    const ssize_t n = write(fd, file.bytes + done, std::min(kPiece, file.size - done));
    if (n <= 0) {
      close(fd);
      return false;
    }
    done += static_cast<size_t>(n);
  }
  return close(fd) == 0;
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

  for (File& file : files) {
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
