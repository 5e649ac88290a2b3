#include "scratch_tree.h"

#include <dirent.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

namespace fuzz {

namespace {

constexpr const char* kOutputDirs[] = {"chromat_dir", "phd_dir", "poly_dir"};

int RemoveEntry(const char* path, const struct stat*, int, struct FTW*) { return remove(path); }

[[noreturn]] void Fail(const char* what, const std::string& path) {
  std::perror((std::string(what) + " " + path).c_str());
  std::abort();
}

std::string TemporaryBase() {
  struct stat status;
  if (stat("/dev/shm", &status) == 0 && S_ISDIR(status.st_mode) && access("/dev/shm", W_OK) == 0)
    return "/dev/shm";
  const char* base = std::getenv("TMPDIR");
  return base != nullptr && *base != '\0' ? base : "/tmp";
}

}  // namespace

ScratchTree& ScratchTree::Get() {
  static ScratchTree tree;
  return tree;
}

ScratchTree::ScratchTree() {
  std::string pattern = TemporaryBase() + "/synthcall-fuzz-XXXXXX";
  std::vector<char> name(pattern.begin(), pattern.end());
  name.push_back('\0');
  if (mkdtemp(name.data()) == nullptr) Fail("mkdtemp", pattern);
  root = name.data();
  for (const char* dir : {"edit_dir", "chromat_dir", "phd_dir", "poly_dir"}) {
    std::string path = root + "/" + dir;
    if (mkdir(path.c_str(), 0775) != 0) Fail("mkdir", path);
  }
  editDir = root + "/edit_dir/";
  if (chdir(editDir.c_str()) != 0) Fail("chdir", editDir);
  setenv("PWD", editDir.c_str(), 1);
}

ScratchTree::~ScratchTree() { nftw(root.c_str(), RemoveEntry, 16, FTW_DEPTH | FTW_PHYS); }

void ScratchTree::WriteInput(const std::string& name, const std::string& bytes) const {
  std::ofstream out(editDir + name, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) Fail("write", editDir + name);
}

void ScratchTree::Clean() const {
  for (const char* dir : kOutputDirs) {
    std::string path = root + "/" + dir + "/";
    DIR* listing = opendir(path.c_str());
    if (listing == nullptr) Fail("opendir", path);
    while (dirent* entry = readdir(listing)) {
      std::string file = entry->d_name;
      if (file != "." && file != "..") unlink((path + file).c_str());
    }
    closedir(listing);
  }
}

void KeepInTree(std::string& text) { std::replace(text.begin(), text.end(), '/', '_'); }

}  // namespace fuzz
