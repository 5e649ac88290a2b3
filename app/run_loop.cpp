#include "app/run_loop.h"

#include <ostream>

#include "app/writer.h"
#include "toolkit/fileio.h"

namespace {

constexpr char kCannotOpen[] = "\nERROR: can not open file ";
constexpr long kLineRoom = 1024;

// Reads every line of an open input and writes the records it holds. Lines before the first
// header are kept and so begin the first record's sequence; the sequence is cleared only when a
// record is handed over.
void ReadRecords(FileReader& input, Writer& writer) {
  Str line(kLineRoom);
  Str sequence(kLineRoom);
  Str name;
  Parser cursor(line);
  bool started = false;
  while (input.GetTextLine(line)) {
    cursor.Begin();  // the line may have grown into a new buffer
    cursor.SkipSpaces();
    if (cursor.Get() != '>') {
      sequence.Append(line);
      continue;
    }
    if (started) {
      if (writer.ReferenceSet()) break;  // a reference set is made of the first record only
      writer.WriteFiles(name, sequence);
      sequence.Clear();
    }
    cursor.Next(1);
    cursor.GetToken(name);
    started = true;
  }
  if (started) writer.WriteFiles(name, sequence);
}

}  // namespace

int RunFasta(const Str& path, const RunOptions& options, std::ostream& out, std::ostream& err) {
  Writer writer(out, err);
  // The project tree is examined, and may end the run, before the input is looked at.
  writer.SetFiles(options.quality, options.suffix, options.Reference(), options.abi);
  return WriteRecords(path, writer);
}

int WriteRecords(const Str& path, Writer& writer) {
  FileReader input;
  if (!input.Open(path)) {
    writer.Errors() << kCannotOpen << path << std::endl;
    return 0;
  }
  ReadRecords(input, writer);
  input.Close();
  writer.Progress() << std::endl;
  return 0;
}
