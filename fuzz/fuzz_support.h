// What the fuzz targets share.
//
// FUZZ_CHECK stops the run with a message when a property of the code under test does not hold,
// so that libFuzzer keeps the input as a crash.
//
// ScratchTree() is the project tree of the targets that run the program in-process: made on
// first use in a fresh directory (on /dev/shm when there is one, so that the many small files
// cost no disk) and reused by every execution, each run overwriting the files of the last. The
// working directory and PWD are its edit_dir/; it is removed at exit. Record names and reference
// suffixes become file names, so the targets take their input through TreeInput, which replaces
// every '/' and every thousandth time first empties the output directories, so that the names of
// many inputs do not pile up.
#ifndef SYNTHCALL_FUZZ_FUZZ_SUPPORT_H
#define SYNTHCALL_FUZZ_FUZZ_SUPPORT_H

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#define FUZZ_CHECK(condition) ((condition) ? void() : CheckFailed(__FILE__, __LINE__, #condition))

[[noreturn]] inline void CheckFailed(const char* file, int line, const char* condition) {
  std::fprintf(stderr, "%s:%d: check failed: %s\n", file, line, condition);
  std::abort();
}

// The path lives on the heap and is never destroyed: the exit handler that removes the tree runs
// after the static objects constructed before it have gone.
inline const std::string& ScratchTree() {
  static const std::string& root = *new std::string([] {
    std::string path =
        access("/dev/shm", W_OK) == 0 ? "/dev/shm" : std::filesystem::temp_directory_path();
    path += "/synthcall-fuzz-XXXXXX";
    FUZZ_CHECK(mkdtemp(path.data()) != nullptr);
    for (const char* dir : {"/edit_dir", "/chromat_dir", "/phd_dir", "/poly_dir"})
      std::filesystem::create_directory(path + dir);
    FUZZ_CHECK(chdir((path + "/edit_dir/").c_str()) == 0);
    setenv("PWD", (path + "/edit_dir/").c_str(), 1);
    std::atexit([] { std::filesystem::remove_all(ScratchTree()); });
    return path;
  }());
  return root;
}

inline std::string TreeInput(const uint8_t* data, size_t size) {
  static long runs = 0;
  if (++runs % 1000 == 0)
    for (const char* dir : {"/chromat_dir", "/phd_dir", "/poly_dir"})
      for (const auto& file : std::filesystem::directory_iterator(ScratchTree() + dir))
        std::filesystem::remove(file);
  std::string text(reinterpret_cast<const char*>(data), size);
  std::replace(text.begin(), text.end(), '/', '_');
  return text;
}

#endif  // SYNTHCALL_FUZZ_FUZZ_SUPPORT_H
