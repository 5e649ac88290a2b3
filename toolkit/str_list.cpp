// SList: a sentinel-headed singly linked list of pointers whose cursor is the link in front of
// the current element. StrList: the list of texts that keeps its own copies.
//
// Members of SList never call the overridable insertions internally, so that a StrList copies
// an element once, where its caller asked for a copy, and links plain pointers everywhere else.
#include <cstring>

#include "toolkit/str.h"

template <class T>
SList<T>::SList() : head(new SLink), current(head), count(0) {}

// The links go, and the elements the list made itself; the others belong to whoever handed them
// in.
template <class T>
SList<T>::~SList() {
  Reset();
  while (dropped != nullptr) {
    SLink* const next = dropped->next;
    delete static_cast<T*>(dropped->item);
    delete dropped;
    dropped = next;
  }
  delete head;
}

// An owned element may still be in use (Copy from an array the list itself gave out relinks
// it), so its link is set aside rather than deleted.
template <class T>
void SList<T>::Reset() {
  SLink* link = head->next;
  while (link != nullptr) {
    SLink* const next = link->next;
    if (link->owned) {
      link->next = dropped;
      dropped = link;
    } else {
      delete link;
    }
    link = next;
  }
  head->next = nullptr;
  current = head;
  count = 0;
}

// Every element goes, whoever made it; `owned` is cleared so that Reset does not keep it.
template <class T>
void SList<T>::Clear() {
  for (SLink* link = head->next; link != nullptr; link = link->next) {
    delete static_cast<T*>(link->item);
    link->owned = false;
  }
  Reset();
}

// The cursor family. Stepping never leaves the list: at the end Next stays put, and Back at the
// head stays at the head.
template <class T>
void SList<T>::Begin() {
  current = head;
}

template <class T>
SLink* SList<T>::Begin(long n) {
  current = head;
  Next(n);
  return current;
}

template <class T>
void SList<T>::Next() {
  if (current->next != nullptr) current = current->next;
}

template <class T>
void SList<T>::Next(long n) {
  for (; n > 0 && current->next != nullptr; --n) current = current->next;
}

template <class T>
void SList<T>::Back() {
  if (current == head) return;
  SLink* link = head;
  while (link->next != current) link = link->next;
  current = link;
}

template <class T>
bool SList<T>::IsNotEnd() const {
  return current->next != nullptr;
}

template <class T>
bool SList<T>::IsEnd() const {
  return current->next == nullptr;
}

template <class T>
bool SList<T>::IsNotHead() const {
  return current != head;
}

template <class T>
bool SList<T>::IsHead() const {
  return current == head;
}

template <class T>
bool SList<T>::SetPosition(long i) {
  if (i < 0 || i >= count) return false;
  Begin(i);
  return true;
}

template <class T>
long SList<T>::GetPosition() const {
  long i = 0;
  for (const SLink* link = head; link != current; link = link->next) ++i;
  return i;
}

// Access: the positional forms make element i current, or change nothing when i is out of range.
template <class T>
T* SList<T>::Get() const {
  return IsEnd() ? nullptr : static_cast<T*>(current->next->item);
}

template <class T>
T* SList<T>::Get(long i) {
  return SetPosition(i) ? Get() : nullptr;
}

template <class T>
T* SList<T>::GetNext() {
  T* const x = Get();
  if (x != nullptr) current = current->next;
  return x;
}

template <class T>
SLink* SList<T>::LastLink() const {
  SLink* link = current;
  while (link->next != nullptr) link = link->next;
  return link;
}

template <class T>
void SList<T>::LinkAfter(SLink* link, T* x, bool owned) {
  SLink* const added = new SLink;
  added->item = x;
  added->owned = owned;
  added->next = link->next;
  link->next = added;
  ++count;
}

// Appending: the single form leaves x current, the bulk forms leave the position at the end.
template <class T>
void SList<T>::Append(T* x) {
  AppendItem(x, false);
}

template <class T>
void SList<T>::AppendItem(T* x, bool owned) {
  current = LastLink();
  LinkAfter(current, x, owned);
}

template <class T>
void SList<T>::Append(T** array, long n) {
  current = LastLink();
  for (long i = 0; i < n; ++i) {
    LinkAfter(current, array[i]);
    current = current->next;
  }
}

// Takes the count first, so that a list appended to itself doubles once.
template <class T>
void SList<T>::Append(SList& other) {
  const long n = other.count;
  SLink* from = other.head->next;
  current = LastLink();
  for (long i = 0; i < n; ++i, from = from->next) {
    LinkAfter(current, static_cast<T*>(from->item));
    current = current->next;
  }
}

template <class T>
void SList<T>::Copy(T** array, long n) {
  Reset();
  Append(array, n);
}

template <class T>
void SList<T>::Copy(SList& other) {
  if (&other == this) {
    current = LastLink();
    return;
  }
  Reset();
  Append(other);
}

// Insertion in front of the current element.
template <class T>
void SList<T>::Insert(T* x) {
  LinkAfter(current, x);
}

// Only index 0 of a non-empty list is accepted; every other index, negative ones included,
// inserts nothing.
template <class T>
void SList<T>::Insert(T* x, long i) {
  if (i != 0 || count == 0) return;
  current = head;
  LinkAfter(current, x);
}

template <class T>
void SList<T>::Insert(SList& other) {
  if (&other == this || other.count == 0) return;
  SLink* const last = other.LastLink();
  last->next = current->next;
  current->next = other.head->next;
  current = last;
  count += other.count;
  other.head->next = nullptr;
  other.current = other.head;
  other.count = 0;
}

template <class T>
void SList<T>::InsertNext(T* x) {
  InsertNextItem(x, false);
}

template <class T>
void SList<T>::InsertNextItem(T* x, bool owned) {
  LinkAfter(current, x, owned);
  current = current->next;
}

// Replace and Remove hand the old pointer back to the caller, who then owns it.
template <class T>
T* SList<T>::Replace(T* x) {
  if (IsEnd()) return nullptr;
  SLink* const link = current->next;
  T* const old = static_cast<T*>(link->item);
  link->item = x;
  link->owned = false;
  return old;
}

template <class T>
T* SList<T>::Replace(T* x, long i) {
  return SetPosition(i) ? Replace(x) : nullptr;
}

template <class T>
T* SList<T>::Remove() {
  if (IsEnd()) return nullptr;
  SLink* const link = current->next;
  T* const x = static_cast<T*>(link->item);
  current->next = link->next;
  delete link;
  --count;
  return x;
}

template <class T>
T* SList<T>::Remove(long i) {
  return SetPosition(i) ? Remove() : nullptr;
}

template <class T>
T** SList<T>::CopyToArray() {
  T** const array = new T*[count];
  CopyToArray(array);
  return array;
}

template <class T>
void SList<T>::CopyToArray(T** array) {
  long i = 0;
  for (current = head; current->next != nullptr; current = current->next) {
    array[i++] = static_cast<T*>(current->next->item);
  }
}

// The cursor's link would describe a different element after the turn, so it goes to the head.
template <class T>
void SList<T>::Reverse() {
  SLink* reversed = nullptr;
  SLink* link = head->next;
  while (link != nullptr) {
    SLink* const next = link->next;
    link->next = reversed;
    reversed = link;
    link = next;
  }
  head->next = reversed;
  current = head;
}

template <class T>
bool SList<T>::Contains(T* x) const {
  for (const SLink* link = head->next; link != nullptr; link = link->next) {
    if (link->item == x) return true;
  }
  return false;
}

template class SList<Str>;

namespace {

// A list element of exactly n characters; the text may hold NULs.
Str* NewCopy(const char* text, long n) {
  Str* const copy = new Str(n);
  copy->Copy(text, n);
  return copy;
}

Str* NewCopy(const char* text) { return NewCopy(text, static_cast<long>(std::strlen(text))); }

Str* NewCopy(const Str& text) { return NewCopy(text.String(), text.Length()); }

const Str& TextOf(const SLink* link) { return *static_cast<const Str*>(link->item); }

}  // namespace

StrList::StrList() = default;

void StrList::SetList(Str& text) {
  Clear();
  Parser lines(text);
  Str line;
  while (lines.GetLine(line)) AppendItem(NewCopy(line), true);
}

void StrList::SetList(const char* text) {
  Str copy(text == nullptr ? "" : text);
  SetList(copy);
}

// Like SList::Copy, the links are dropped but not the elements they carried.
void StrList::Copy(const StrList& other) {
  if (&other == this) {
    current = LastLink();
    return;
  }
  Reset();
  for (const SLink* link = other.head->next; link != nullptr; link = link->next) {
    LinkAfter(current, NewCopy(TextOf(link)), true);
    current = current->next;
  }
}

// The insertions of SList, each with a new copy of its argument that the list owns.
void StrList::Append(Str* x) { AppendItem(NewCopy(*x), true); }
void StrList::Append(const Str& x) { AppendItem(NewCopy(x), true); }
void StrList::Append(const char* x) { AppendItem(NewCopy(x), true); }
void StrList::Insert(Str* x) { LinkAfter(current, NewCopy(*x), true); }
void StrList::Insert(const Str& x) { LinkAfter(current, NewCopy(x), true); }
void StrList::Insert(const char* x) { LinkAfter(current, NewCopy(x), true); }

// The copy is made only when the index is accepted, so a refused insertion leaks nothing.
void StrList::Insert(Str* x, long i) { Insert(*x, i); }
void StrList::Insert(const Str& x, long i) {
  if (i != 0 || count == 0) return;
  current = head;
  LinkAfter(current, NewCopy(x), true);
}
void StrList::Insert(const char* x, long i) {
  if (i != 0 || count == 0) return;
  current = head;
  LinkAfter(current, NewCopy(x), true);
}

void StrList::InsertNext(Str* x) { InsertNextItem(NewCopy(*x), true); }
void StrList::InsertNext(const Str& x) { InsertNextItem(NewCopy(x), true); }
void StrList::InsertNext(const char* x) { InsertNextItem(NewCopy(x), true); }
void StrList::Insert(StrList& other) { SList<Str>::Insert(other); }

// Sorted insertion in strcmp order, behind every equal text.
void StrList::Collate(const Str& x) { Collate(x.String(), x.Length(), false); }
void StrList::Collate(Str* x) { Collate(x->String(), x->Length(), false); }
void StrList::Collate(const char* x) { Collate(x, static_cast<long>(std::strlen(x)), false); }
bool StrList::CollateOnce(const Str& x) { return Collate(x.String(), x.Length(), true); }
bool StrList::CollateOnce(Str* x) { return Collate(x->String(), x->Length(), true); }
bool StrList::CollateOnce(const char* x) {
  return Collate(x, static_cast<long>(std::strlen(x)), true);
}

bool StrList::Collate(const char* text, long n, bool once) {
  SLink* link = head;
  for (; link->next != nullptr; link = link->next) {
    const int order = std::strcmp(text, TextOf(link->next).String());
    if (once && order == 0) {
      current = link;
      return true;
    }
    if (order < 0) break;
  }
  current = link;
  LinkAfter(current, NewCopy(text, n), true);
  return false;
}

// Reading texts out; out is left alone when there is no element to read.
bool StrList::GetString(Str& out) {
  if (IsEnd()) return false;
  out.Copy(*Get());
  return true;
}

bool StrList::GetString(Str& out, long i) {
  Begin(i);
  return GetString(out);
}

bool StrList::GetNextString(Str& out) {
  if (!GetString(out)) return false;
  current = current->next;
  return true;
}

// The searches leave the element they found current, or the position at the end.
long StrList::GetIndex(const Str& x) { return GetIndex(x.String()); }
long StrList::GetIndex(const char* x) {
  return Search(x, head, Match::kEqual) ? GetPosition() : -1;
}
bool StrList::Find(const Str& x) { return Search(x.String(), head, Match::kEqual); }
bool StrList::Find(const char* x) { return Search(x, head, Match::kEqual); }
bool StrList::FindNext(const Str& x) { return FindNext(x.String()); }
bool StrList::FindNext(const char* x) {
  return IsNotEnd() && Search(x, current->next, Match::kEqual);
}
bool StrList::Compare(const Str& x) { return Search(x.String(), head, Match::kPrefix); }
bool StrList::Compare(const char* x) { return Search(x, head, Match::kPrefix); }
bool StrList::CompareNext(const Str& x) { return CompareNext(x.String()); }
bool StrList::CompareNext(const char* x) {
  return IsNotEnd() && Search(x, current->next, Match::kPrefix);
}
bool StrList::Contains(const Str& x) { return Search(x.String(), head, Match::kContains); }
bool StrList::Contains(const char* x) { return Search(x, head, Match::kContains); }
bool StrList::ContainsNext(const Str& x) { return ContainsNext(x.String()); }
bool StrList::ContainsNext(const char* x) {
  return IsNotEnd() && Search(x, current->next, Match::kContains);
}

bool StrList::Search(const char* x, SLink* from, Match match) {
  const size_t n = std::strlen(x);
  for (current = from; current->next != nullptr; current = current->next) {
    const char* const text = TextOf(current->next).String();
    switch (match) {
      case Match::kEqual:
        if (std::strcmp(text, x) == 0) return true;
        break;
      case Match::kPrefix:
        if (std::strncmp(text, x, n) == 0) return true;
        break;
      case Match::kContains:
        if (n > 0 && std::strstr(text, x) != nullptr) return true;
        break;
    }
  }
  return false;
}

// Sorting: flag true puts the greatest text first, flag false the least.
void StrList::Sort(bool flag) { QuickSort(head, nullptr, flag); }

// Partitions the links after `before` up to `end` around the first one: the links that belong
// in front of the pivot are relinked directly behind `before`. The walk uses the list's cursor,
// which is left where the last walk ended.
void StrList::QuickSort(SLink* before, SLink* end, bool flag) {
  SLink* const pivot = before->next;
  if (pivot == end) return;
  const char* const key = TextOf(pivot).String();
  current = pivot;
  while (current->next != end) {
    SLink* const link = current->next;
    const int order = std::strcmp(key, TextOf(link).String());
    if (flag ? order < 0 : order > 0) {
      current->next = link->next;
      link->next = before->next;
      before->next = link;
    } else {
      current = link;
    }
  }
  QuickSort(before, pivot, flag);
  QuickSort(pivot, end, flag);
}
