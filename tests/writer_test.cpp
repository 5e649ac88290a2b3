// What a process run cannot show: the value thrown. Everything the Writer writes is compared byte
// for byte by the end-to-end tests, which see this throw only as an abort.
#include "app/writer.h"

#include <sstream>

#include "test_util.h"

TEST(Writer, MissingPolyDirThrowsOneBeforeAnyOutput) {
  TempDir temp;
  for (const char* dir : {"edit_dir", "chromat_dir", "phd_dir"}) MakeDir(temp / dir);
  setenv("PWD", (temp / "edit_dir").c_str(), 1);
  std::ostringstream out, err;
  Writer writer(out, err);
  int thrown = 0;
  try {
    writer.SetFiles("59", "", false, false);
  } catch (int value) {
    thrown = value;
  }
  EXPECT_EQ(thrown, 1);
  EXPECT_EQ(out.str(), "");
  EXPECT_EQ(err.str(), "");
}
