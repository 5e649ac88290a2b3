#include "test_util.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

namespace testutil {

TempDir::TempDir() {
  const char* base = getenv("TMPDIR");
  path_ = std::string(base && *base ? base : "/tmp") + "/synthcall-test-XXXXXX";
  if (!mkdtemp(path_.data())) throw std::runtime_error("mkdtemp failed");
}

// Directories a test made unreadable or unwritable are opened up before they are emptied.
static void RemoveTree(const fs::path& path) {
  std::error_code ec;
  if (fs::is_directory(fs::symlink_status(path, ec))) {
    fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, ec);
    for (fs::directory_iterator it(path, ec), end; !ec && it != end; it.increment(ec))
      RemoveTree(it->path());
  }
  fs::remove(path, ec);
}

TempDir::~TempDir() { RemoveTree(path_); }

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

bool Exists(const std::string& path) {
  struct stat st;
  return lstat(path.c_str(), &st) == 0;
}

unsigned FileMode(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 ? st.st_mode & 07777 : 0;
}

void MakeDir(const std::string& path, unsigned mode) {
  mkdir(path.c_str(), 0700);
  chmod(path.c_str(), mode);
}

// The child writes into files rather than pipes, so that it never waits for the parent.
RunResult Run(const std::string& program, const std::vector<std::string>& args,
              const std::string& directory, const std::vector<std::string>& env) {
  const TempDir capture;
  const std::string out = capture / "out", err = capture / "err";
  std::vector<char*> argv{const_cast<char*>(program.c_str())};
  for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), 0);
    dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600), 1);
    dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600), 2);
    if (!directory.empty() && chdir(directory.c_str()) != 0) _exit(127);
    for (const std::string& e : env)
      e.find('=') == e.npos ? unsetenv(e.c_str()) : putenv(const_cast<char*>(e.c_str()));
    umask(002);
    execv(program.c_str(), argv.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  RunResult result{ReadFile(out), ReadFile(err)};
  if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  return result;
}

}  // namespace testutil
