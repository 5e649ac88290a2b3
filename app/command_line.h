// The program's command line: the usage and version texts, the argument errors, and the option
// scan that settles the quality text, the reference suffix and the chromatogram form before the
// FASTA run loop takes over.
//
// Nothing here keeps state between calls, exits or throws on its own: a caller such as a test or
// a fuzz target may run it any number of times in one process. The only exception that can leave
// it is the int 1 of Writer::SetFiles when poly_dir/ cannot be used.
#ifndef SYNTHCALL_APP_COMMAND_LINE_H
#define SYNTHCALL_APP_COMMAND_LINE_H

#include <iosfwd>

// Runs the program on argv[1] .. argv[argc - 1] and returns its exit status, which is always 0.
// Progress lines go to `out`, usage, version and error messages to `err` (by default standard
// output and standard error).
int RunCommandLine(int argc, const char* const* argv);
int RunCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

#endif  // SYNTHCALL_APP_COMMAND_LINE_H
