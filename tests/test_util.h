// What the tests share: a scoped temporary directory and whole files, a plain model of the
// chromatogram files, and rows of facts and walks named by their own code, so that a failure says
// which case failed.
#ifndef SYNTHCALL_TESTS_TEST_UTIL_H
#define SYNTHCALL_TESTS_TEST_UTIL_H

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "toolkit/fileio.h"

// A fresh directory under $TMPDIR (or /tmp), removed with everything in it on destruction, also
// below sub-directories that a test made unreadable.
struct TempDir {
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  std::string operator/(const std::string& name) const { return path + "/" + name; }
  std::string path;
};

std::string ReadFile(const std::string& path);  // the whole file; "" when missing
void WriteFile(const std::string& path, const std::string& bytes);
int FileMode(const std::string& path);  // permission bits, e.g. 0664
void MakeDir(const std::string& path, unsigned mode = 0775);

// The chromatogram of a clean sequence, drawn the plain way: the whole trace into arrays, one
// 13-point peak per base at a moving cursor, then the file laid out field by field. It shares no
// code or table with the streaming writers, so a slip in their precomputed slots shows up as a
// byte difference.
std::string ModelChromat(const std::string& clean, bool abif);

// A value as text for comparison: a Str as "text/size" (the size is what the growth rules decide;
// its length must agree with its terminator), a list as "[a][b]", bools as words.
std::string Shown(const Str& s);
std::string Shown(const std::vector<std::string>& items);
template <class T>
std::string Shown(const T& value) {  // texts, characters, numbers
  std::ostringstream text;
  text << std::boolalpha << value;
  return text.str();
}
inline std::string Text(const Str& s) { return std::string(s.String(), s.Length()); }
std::vector<std::string> Texts(SList<Str>& list);  // in order; the cursor stays where it was

// A walk: steps taken in order on objects in the test's scope, each named by its own code and
// held to the answer it must give; a DO step answers nothing.
struct Step {
  const char* code;
  std::function<std::string()> run;
  std::string want;
};
// clang-format off
#define STEP(code, want) Step{#code, [&] { return Shown(code); }, Shown(want)}
#define DO(code) Step{#code, [&] { code; return std::string(); }, ""}
// clang-format on

template <class... Steps>
void Walk(const Steps&... steps) {
  for (const Step& step : {steps...}) EXPECT_EQ(step.run(), step.want) << step.code;
}

// Q(s.Find("b"), 1L) expects s.Find("b") to show as "1", and names the fact by its code: a step
// that changes nothing, so that a walk of facts may hold them in any order.
#define Q(expression, want) STEP(expression, want)

#endif  // SYNTHCALL_TESTS_TEST_UTIL_H
