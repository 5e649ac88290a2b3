// Shared test helpers: a scoped temporary directory, whole files, and a program runner.
#ifndef SYNTHCALL_TESTS_TEST_UTIL_H
#define SYNTHCALL_TESTS_TEST_UTIL_H

#include <string>
#include <vector>

namespace testutil {

// A fresh directory under $TMPDIR (or /tmp), removed with everything in it on destruction.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

std::string ReadFile(const std::string& path);  // the whole file; "" when missing
void WriteFile(const std::string& path, const std::string& bytes);
bool Exists(const std::string& path);
unsigned FileMode(const std::string& path);  // permission bits, e.g. 0664
void MakeDir(const std::string& path, unsigned mode = 0775);

struct RunResult {
  std::string out;
  std::string err;
  int status = -1;  // exit code, or -1 when killed by a signal
  int signal = 0;   // the signal that ended the process, if any
};

// Runs `program` with `args` (argv[1]...) in `directory` (when not empty), with the test's own
// environment but each "NAME=value" of `env` set and each bare "NAME" removed, in that order.
// Standard input is /dev/null; the umask is 002.
RunResult Run(const std::string& program, const std::vector<std::string>& args,
              const std::string& directory = "", const std::vector<std::string>& env = {});

// The synthcall binary under test.
inline std::string Binary() { return SYNTHCALL_BINARY; }

}  // namespace testutil

#endif  // SYNTHCALL_TESTS_TEST_UTIL_H
