#include "test_util.h"

#include <fcntl.h>
#include <ftw.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

extern char** environ;

namespace testutil {

TempDir::TempDir() {
  const char* base = getenv("TMPDIR");
  std::string pattern = std::string(base && *base ? base : "/tmp") + "/synthcall-test-XXXXXX";
  std::vector<char> name(pattern.begin(), pattern.end());
  name.push_back('\0');
  if (!mkdtemp(name.data())) throw std::runtime_error("mkdtemp failed");
  path_ = name.data();
}

static int RemoveEntry(const char* path, const struct stat*, int, struct FTW*) {
  chmod(path, 0700);  // directories made unreadable by a test must still be emptied
  return remove(path);
}

static int OpenUp(const char* path, const struct stat* st, int flag, struct FTW*) {
  if (flag == FTW_D || flag == FTW_DNR) chmod(path, (st->st_mode & 0777) | 0700);
  return 0;
}

TempDir::~TempDir() {
  nftw(path_.c_str(), OpenUp, 16, FTW_PHYS);
  nftw(path_.c_str(), RemoveEntry, 16, FTW_DEPTH | FTW_PHYS);
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

bool Exists(const std::string& path) {
  struct stat st;
  return lstat(path.c_str(), &st) == 0;
}

unsigned FileMode(const std::string& path) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0) return 0;
  return st.st_mode & 07777;
}

void MakeDir(const std::string& path, unsigned mode) {
  mkdir(path.c_str(), 0700);
  chmod(path.c_str(), mode);
}

// Reads both pipes until they close, so that a child writing much to either never blocks.
static void Drain(int outFd, int errFd, std::string& out, std::string& err) {
  struct pollfd fds[2] = {{outFd, POLLIN, 0}, {errFd, POLLIN, 0}};
  std::string* sinks[2] = {&out, &err};
  int open = 2;
  char chunk[65536];
  while (open > 0) {
    if (poll(fds, 2, -1) < 0) continue;
    for (int i = 0; i < 2; ++i) {
      if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP | POLLERR))) continue;
      ssize_t n = read(fds[i].fd, chunk, sizeof chunk);
      if (n > 0) {
        sinks[i]->append(chunk, static_cast<size_t>(n));
      } else {
        close(fds[i].fd);
        fds[i].fd = -1;
        --open;
      }
    }
  }
}

RunResult Run(const std::string& program, const std::vector<std::string>& args,
              const std::string& directory, const std::vector<std::string>& env) {
  int outPipe[2], errPipe[2];
  if (pipe(outPipe) != 0 || pipe(errPipe) != 0) throw std::runtime_error("pipe failed");
  pid_t pid = fork();
  if (pid == 0) {
    dup2(outPipe[1], 1);
    dup2(errPipe[1], 2);
    int in = open("/dev/null", O_RDONLY);
    dup2(in, 0);
    close(outPipe[0]);
    close(errPipe[0]);
    if (!directory.empty() && chdir(directory.c_str()) != 0) _exit(127);
    for (const std::string& e : env) {
      size_t eq = e.find('=');
      if (eq == std::string::npos)
        unsetenv(e.c_str());
      else
        setenv(e.substr(0, eq).c_str(), e.substr(eq + 1).c_str(), 1);
    }
    umask(002);
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    _exit(127);
  }
  close(outPipe[1]);
  close(errPipe[1]);
  RunResult result;
  Drain(outPipe[0], errPipe[0], result.out, result.err);
  int status = 0;
  waitpid(pid, &status, 0);
  if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
  return result;
}

}  // namespace testutil
