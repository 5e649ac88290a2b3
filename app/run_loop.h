// The FASTA run loop: settles the Writer's directories, then reads the input line by line and
// hands every record (only the first one when a reference file is made) to Writer::WriteFiles.
#ifndef SYNTHCALL_APP_RUN_LOOP_H
#define SYNTHCALL_APP_RUN_LOOP_H

#include <iosfwd>

#include "toolkit/str.h"

// Writes the files of every record of the FASTA file `path` and returns 0. `quality` is the
// quality text as typed, `suffix` the reference suffix; `reference` limits the run to the first
// record, `abi` asks for ABIF chromatograms. Progress lines go to `out`, errors to `err` (by
// default standard output and standard error). Throws the int 1, before the input is opened,
// when poly_dir/ cannot be used.
int RunFasta(const Str& path, const Str& quality, const Str& suffix, bool reference, bool abi);
int RunFasta(const Str& path, const Str& quality, const Str& suffix, bool reference, bool abi,
             std::ostream& out, std::ostream& err);

#endif  // SYNTHCALL_APP_RUN_LOOP_H
