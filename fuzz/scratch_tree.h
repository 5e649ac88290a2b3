// A project tree for the targets that run the program in-process: made once per fuzzing process
// in a fresh temporary directory (on /dev/shm when there is one, so that the many small files
// cost no disk), with the working directory and PWD set to its edit_dir/. The tree is removed at
// exit.
//
// Record names and reference suffixes become file names. The targets replace every '/' in their
// input before the program sees it, so that nothing can be written outside the tree, and call
// Clean after every execution, so that a long run does not pile up files.
#ifndef SYNTHCALL_FUZZ_SCRATCH_TREE_H
#define SYNTHCALL_FUZZ_SCRATCH_TREE_H

#include <string>

namespace fuzz {

class ScratchTree {
 public:
  // The one tree of this process, made on first use.
  static ScratchTree& Get();

  // The working directory, "<root>/edit_dir/", as PWD names it.
  const std::string& EditDir() const { return editDir; }

  // Replaces the file `name` in edit_dir/ with `bytes`.
  void WriteInput(const std::string& name, const std::string& bytes) const;

  // Removes every file that a run wrote into chromat_dir/, phd_dir/ and poly_dir/.
  void Clean() const;

 private:
  ScratchTree();
  ~ScratchTree();
  std::string root;
  std::string editDir;
};

// The program's file names are taken from fuzz input; a '/' would let them leave the tree.
void KeepInTree(std::string& text);

}  // namespace fuzz

#endif  // SYNTHCALL_FUZZ_SCRATCH_TREE_H
