// Directory: usability checks, listings and path splitting on top of the POSIX directory calls.
#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

#include "toolkit/fileio.h"

namespace {

// The error codes of Directory::Check.
constexpr int kUsable = 0;
constexpr int kNoDirectory = 1;
constexpr int kNotReadable = 2;
constexpr int kNotWritable = 3;

// Tries a path as a directory stream and closes it again; errno tells why it failed.
bool OpensAsDirectory(const char* path) {
  DIR* stream = opendir(path);
  if (stream == nullptr) return false;
  closedir(stream);
  return true;
}

// A directory text ends in '/'; an empty text becomes "/".
void EndWithSlash(Str& text) {
  if (!text.CompareRight('/')) text.Append('/');
}

// An environment variable as a directory text; empty when it is not set.
Str DirectoryVariable(const char* name) {
  const char* value = getenv(name);
  if (value == nullptr) return Str();
  Str text(value);
  EndWithSlash(text);
  return text;
}

// The first n characters of text as a new Str.
Str Head(const Str& text, long n) {
  Str part;
  part.Copy(text.String(), n);
  return part;
}

// Copies every name of a listing into out; the walk leaves the listing's position at its end.
void CopyList(StrList& listing, StrList& out) {
  out.Clear();
  listing.Begin();
  while (Str* name = listing.GetNext()) out.Append(name);  // StrList::Append stores a copy
}

// The element at the listing's position, which then moves on.
bool TakeNext(StrList& listing, Str& out) {
  Str* name = listing.GetNext();
  if (name == nullptr) return false;
  out.Copy(*name);
  return true;
}

}  // namespace

// The lists own their names and delete them when they go.
Directory::Directory() = default;

Directory::~Directory() = default;

// The steps run in a fixed order and the first failure decides the code: the stream test comes
// before lstat, so a symbolic link to a directory passes it and fails only at the mode test.
// Only the owner's permission bits count, whoever runs the program.
bool Directory::Check(const char* path, bool mustRead, bool mustWrite) {
  error = kUsable;
  struct stat status;
  if (path == nullptr || !OpensAsDirectory(path) || lstat(path, &status) != 0 ||
      (status.st_mode & S_IFMT) != S_IFDIR) {
    error = kNoDirectory;
  } else if (mustRead && (status.st_mode & S_IRUSR) == 0) {
    error = kNotReadable;
  } else if (mustWrite && (status.st_mode & S_IWUSR) == 0) {
    error = kNotWritable;
  }
  return error == kUsable;
}

bool Directory::Check(const Str& path, bool mustRead, bool mustWrite) {
  return Check(path.String(), mustRead, mustWrite);
}

// True when stat can reach the path; kind and permissions do not matter.
bool Directory::CheckFile(const Str& path) { return CheckFile(path.String()); }

bool Directory::CheckFile(const char* path) {
  struct stat status;
  return path != nullptr && stat(path, &status) == 0;
}

Str Directory::GetHomeDirectory() { return DirectoryVariable("HOME"); }

// The shell's idea of the current directory, not the kernel's: a project reached through a
// symbolic link keeps the path the user typed.
Str Directory::GetCurrentDirectory() { return DirectoryVariable("PWD"); }

// Each entry is tried as a directory stream: success lists it as a sub-directory (links to
// directories included), ENOTDIR as a file, and any other failure leaves it out. A path that
// cannot be opened keeps the previous lists.
bool Directory::Open(const char* path, bool showHidden) {
  if (path == nullptr) return false;
  Str directory(path);
  EndWithSlash(directory);
  DIR* stream = opendir(directory.String());
  if (stream == nullptr) return false;
  dirs.Clear();
  files.Clear();
  Str entryPath;
  while (const dirent* entry = readdir(stream)) {
    if (entry->d_name[0] == '.' && !showHidden) continue;
    entryPath.Copy(directory);
    entryPath.Append(entry->d_name);
    if (OpensAsDirectory(entryPath.String())) {
      dirs.Collate(entry->d_name);
    } else if (errno == ENOTDIR) {
      files.Collate(entry->d_name);
    }
  }
  closedir(stream);
  return true;
}

bool Directory::Open(bool showHidden) { return Open(getenv("PWD"), showHidden); }

void Directory::GetDirList(StrList& out) { CopyList(dirs, out); }

void Directory::GetFileList(StrList& out) { CopyList(files, out); }

// Both continue from the list's own position, which Open and the list copies leave behind.
bool Directory::GetNextDir(Str& out) { return TakeNext(dirs, out); }

bool Directory::GetNextFile(Str& out) { return TakeNext(files, out); }

Str Directory::GetFileName(Str& path) { return Str(path.String() + path.FindRight('/') + 1); }

// A dot at index 0 starts a hidden name, not an extension.
Str Directory::GetExtension(Str& path) {
  const long dot = path.FindRight('.');
  if (dot <= 0 || dot < path.FindRight('/')) return Str();
  return Str(path.String() + dot + 1);
}

Str Directory::GetPath(Str& path) { return Head(path, path.FindRight('/') + 1); }

Str Directory::GetParent(Str& path) {
  if (path.CompareRight('/')) path.DeleteRight(1);
  return Head(path, path.FindRight('/') + 1);
}
