// The FASTA run loop: settles the Writer's directories, then reads the input line by line and
// hands every record (only the first one when a reference file is made) to Writer::WriteFiles.
#ifndef SYNTHCALL_APP_RUN_LOOP_H
#define SYNTHCALL_APP_RUN_LOOP_H

#include <iosfwd>

#include "app/writer.h"
#include "toolkit/str.h"

// Writes the files of every record of the FASTA file `path` (of the first one only for a
// reference set) and returns 0. Progress lines go to `out`, errors to `err`. Throws the int 1,
// before the input is opened, when poly_dir/ cannot be used.
int RunFasta(const Str& path, const RunOptions& options, std::ostream& out, std::ostream& err);

// The part of a run after the Writer's files are settled (Writer::SetFiles): reads `path` and
// writes its records with `writer`, on whose streams it reports. A caller that keeps its Writer
// can so run many inputs in one process, as the fuzz target does.
int WriteRecords(const Str& path, Writer& writer);

#endif  // SYNTHCALL_APP_RUN_LOOP_H
