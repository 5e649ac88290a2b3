#include "app/command_line.h"

#include <iostream>

#include "app/run_loop.h"
#include "toolkit/str.h"

namespace {

// Written to standard error one after another, then one end of line.
constexpr const char* kUsage[] = {
    "\nsynthcall [filename] [arguments]\n\n",
    "  [filename]  is the file containing sequences in FASTA format.\n",
    "  [arguments] can be one or more of the following:\n",
    "     -q [number]  to set the quality value for the phd file\n",
    "     -r [string]  write a reference phd file; [string] is optional\n",
    "     -abi         write the chromat file in ABI format.\n\n",
    "synthcall -h (or -help)     print this help message\n",
    "synthcall -v (or -version)  print the version\n",
};

constexpr char kVersion[] = "\nsynthcall Version 3.3  (Build 2006.02.23)\n";
constexpr char kNoFileName[] = "\nERROR: no file name was specified.\n";
constexpr char kBadQuality[] = "\nERROR: invalid quality value ";
constexpr char kQualityRange[] = "\nERROR: quality value must be from 0 to 59.\n";
constexpr char kBadArgument[] = "\nERROR: invalid command line argument ";
constexpr char kDefaultQuality[] = "59";
constexpr char kDefaultSuffix[] = ".REF";
constexpr int kLowestQuality = 0;
constexpr int kHighestQuality = 59;

// The arguments after the file name are joined into one text and split again, so a quoted
// argument holding blanks gives several tokens and an empty argument none.
void JoinArguments(int argc, const char* const* argv, Str& line) {
  line.Copy(' ');
  for (int i = 2; i < argc; ++i) line.AppendToken(argv[i]);
}

// The value after -q is checked as a number and by its leading integer, but kept as typed.
bool ReadQuality(Parser& cursor, Str& token, RunOptions& options, std::ostream& err) {
  cursor.GetToken(token);
  if (!token.IsNumber()) {
    err << kBadQuality << token << '\n' << std::endl;
    return false;
  }
  int value = token.ToInteger();
  if (value < kLowestQuality || value > kHighestQuality) {
    err << kQualityRange << std::endl;
    return false;
  }
  options.quality.Copy(token);
  return true;
}

// A token after -r that looks like an option is pushed back and read again as one; a later -r
// without a string keeps the suffix already set.
void ReadSuffix(Parser& cursor, Str& token, RunOptions& options) {
  if (cursor.GetToken(token)) {
    if (token.String()[0] == '-')
      cursor.SkipBack();
    else
      options.suffix.Copy(token);
  }
  if (!options.suffix.HasContent()) options.suffix.Copy(kDefaultSuffix);
}

// Reads the option tokens to the end of the joined text; false after an error was reported.
bool ScanOptions(Parser& cursor, Str& token, RunOptions& options, std::ostream& err) {
  while (cursor.GetToken(token)) {
    if (token == "-q") {
      if (!ReadQuality(cursor, token, options, err)) return false;
    } else if (token == "-r") {
      ReadSuffix(cursor, token, options);
    } else if (token == "-abi") {
      options.abi = true;
    } else {
      err << kBadArgument << token << '\n' << std::endl;
      return false;
    }
  }
  return true;
}

void PrintUsage(std::ostream& err) {
  for (const char* text : kUsage) err << text;
  err << std::endl;
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv) {
  return RunCommandLine(argc, argv, std::cout, std::cerr);
}

int RunCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  if (argc < 2) {
    err << kNoFileName << std::endl;
    return 0;
  }
  Str name(argv[1]);
  if (name == "-h" || name == "-help") {
    PrintUsage(err);
    return 0;
  }
  if (name == "-v" || name == "-version") {
    err << kVersion << std::endl;
    return 0;
  }
  Str line(1024);
  Str token(128);
  RunOptions options;
  JoinArguments(argc, argv, line);
  options.quality.Copy(kDefaultQuality);
  // Bound only now: joining may have moved the text to a larger buffer.
  Parser cursor(line);
  if (!ScanOptions(cursor, token, options, err)) return 0;
  return RunFasta(name, options, out, err);
}
