// Text toolkit: the growable string Str, the field format Formater, the read cursor Parser and
// the singly linked lists SList and StrList.
//
// Str owns its NUL-terminated buffer exclusively; copies never share. Misuse (a position outside
// the text, a negative count, a refused allocation) is reported by throwing a `const char*`
// message; every check happens before any change, so a throwing call leaves the string as it was.
//
// The many overloads of each family forward to one private worker that takes
// (const char* text, long length); the growth rules live in a few helpers:
//   operator=            the buffer fits exactly (assignment also shrinks);
//   Copy family          grows only, to exactly length + 1 bytes;
//   Append family        doubles: a new buffer of 2 x new length when size <= new length;
//   operator+=           the buffer fits exactly after every change of length.
#ifndef SYNTHCALL_TOOLKIT_STR_H
#define SYNTHCALL_TOOLKIT_STR_H

#include <functional>
#include <iosfwd>
#include <memory>

class Str {
 public:
  // Room for the text of any long or double: a sign, 20 digits or a scientific layout of at most
  // 23 characters, and the terminator.
  static constexpr int kNumberTextSize = 32;

  // The three errors of the toolkit. Each throws its message as a `const char*`.
  [[noreturn]] static void AlError();  // "ERROR: String can not be allocated."
  [[noreturn]] static void RaError();  // "ERROR: String position is out of range"
  [[noreturn]] static void NvError();  // "ERROR: String parameter is invalid"

  // The checks every family makes before it changes anything: a count must not be negative
  // (NvError), a position must lie from 0 up to `last` (RaError). Each returns its argument.
  static long Counted(long n) {
    if (n < 0) NvError();
    return n;
  }
  static long Within(long pos, long last) {
    if (pos < 0 || pos > last) RaError();
    return pos;
  }

  // White space everywhere in the toolkit: the C locale's space class (blank, tab, newline,
  // vertical tab, form feed, carriage return) on the byte taken as a signed char, so bytes 128 to
  // 255 are never white space.
  static bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

  // Number to text, shared by every numeric overload here and in FileWriter. Each writes the text
  // and its terminator into `text` (kNumberTextSize bytes) and returns the text's length.
  static int ConvertInteger(long value, char* text);
  static int ConvertFloat(double value, char* text);

  // A number's text on the stack, so that no numeric overload allocates.
  struct NumberText {
    explicit NumberText(long n) : length(ConvertInteger(n, text)) {}
    explicit NumberText(double x) : length(ConvertFloat(x, text)) {}
    char text[kNumberTextSize];
    int length;
  };

  // Construction. Str(n) makes room for n characters (size n + 1; size 1 when n < 0). The copy
  // constructors keep the source's capacity.
  Str();
  explicit Str(int n);
  explicit Str(long n);
  Str(const Str& s);
  explicit Str(const Str* s);
  Str(const char* s);  // NOLINT(google-explicit-constructor): literals stand for texts
  explicit Str(char c);
  Str(char c, long n);
  ~Str();

  // Size management: Clear keeps the buffer, SetSize() shrinks to fit, SetSize(n) reallocates to
  // exactly n bytes (cutting the text when needed), SetLength(n) reserves room for n characters.
  void Clear();
  void SetSize();
  void SetSize(long n);
  void SetLength(long n);
  long Size() const { return size; }

  // Access.
  long Length() const { return length; }
  char* String() const { return string; }
  operator char*() const { return string; }    // NOLINT(google-explicit-constructor)
  operator char() const { return string[0]; }  // NOLINT(google-explicit-constructor)
  char Get(long i) const;
  char Put(char c, long i);
  bool HasContent() const;
  bool operator==(const char* s) const;
  int ToInteger() const;
  bool IsNumber() const;

  // Assignment: the buffer is made to fit the new text exactly.
  Str& operator=(const Str& s);
  Str& operator=(const char* s);
  Str& operator=(char c);
  Str& operator=(long n);
  Str& operator=(double x);

  // Copy: the buffer only grows. Copy(char) never reallocates (a size-1 buffer is grown first).
  void Copy(const Str& s);
  void Copy(const Str* s);
  void Copy(const char* s);
  void Copy(char c);
  void Copy(long n);
  void Copy(double x);
  void Copy(const char* s, long n);  // exactly n bytes of s, NULs included

  // Append: the buffer doubles when it must grow.
  void Append(const Str& s);
  void Append(const Str* s);
  void Append(const char* s);
  void Append(char c);
  void Append(long n);
  void Append(double x);
  void AppendBytes(const char* bytes, long n);  // exactly n bytes, NULs included

  // Comparison. Compare is a prefix test; CompareRight a suffix test on a strictly longer text.
  bool Compare(const Str& x) const;
  bool Compare(const Str* x) const;
  bool Compare(const char* x) const;
  bool Compare(char c) const;
  bool Compare(const Str& x, long pos);
  bool Compare(const Str* x, long pos);
  bool Compare(const char* x, long pos);
  bool Compare(char c, long pos);
  bool CompareRight(const Str& x) const;
  bool CompareRight(const Str* x) const;
  bool CompareRight(const char* x) const;
  bool CompareRight(char c) const;
  bool Equals(const Str& x) const;
  bool Equals(const Str* x) const;
  bool operator<(const Str& x) const;
  bool IsLessThan(const Str* x) const;
  bool IsGreaterThan(const Str* x) const;

  // Containment and search. The position forms answer false and leave pos alone on failure.
  bool Contains(const Str& x) const;
  bool Contains(const Str* x) const;
  bool Contains(const char* x) const;
  bool Contains(char c) const;
  bool IsIn(const char* s) const;
  long Find(const Str& x) const;
  long Find(const char* x) const;
  long Find(char c) const;
  bool Find(const Str& x, long& pos) const;
  bool Find(const char* x, long& pos) const;
  bool Find(char c, long& pos) const;
  long FindRight(const Str& x) const;
  long FindRight(const char* x) const;
  long FindRight(char c) const;
  bool FindRight(const Str& x, long& pos) const;
  bool FindRight(const char* x, long& pos) const;
  bool FindRight(char c, long& pos) const;

  // Taking parts of another text (Copy growth). Counts of 0 mean "all" for CopyLeft/CopyRight.
  void CopyLeft(const Str& x, long n);
  void CopyLeft(const Str* x, long n);
  void CopyLeft(const char* x, long n);
  void CopyRight(const Str& x, long n);
  void CopyRight(const Str* x, long n);
  void CopyRight(const char* x, long n);
  void CopyMid(const Str& x, long pos, long n);
  void CopyMid(const Str* x, long pos, long n);
  void CopyMid(const char* s, long pos, long n);
  void CopyEnd(const Str& x, long pos);
  void CopyEnd(const Str* x, long pos);
  void CopyEnd(const char* x, long pos);

  // Appending ranges and lines (Append growth).
  void Append(const Str& x, long n);
  void Append(const Str* x, long n);
  void Append(const char* x, long n);
  void Append(const Str& x, long pos, long n);
  void Append(const char* s, long pos, long n);
  void AppendLine();
  void AppendLine(const Str& x);
  void AppendLine(const Str* x);
  void AppendLine(const char* x);
  void AppendLine(char c);
  void AppendLine(long n);
  void AppendLine(double x);
  Str& operator<<(const Str& x);
  Str& operator<<(const Str* x);
  Str& operator<<(const char* x);
  Str& operator<<(char c);
  Str& operator<<(long n);
  Str& operator<<(double x);

  // += appends and fits the buffer exactly; + builds a new string and changes neither operand.
  Str& operator+=(const Str& x);
  Str& operator+=(const char* x);
  Str& operator+=(char c);
  Str& operator+=(long n);
  Str& operator+=(double x);
  Str operator+(const Str& x) const;
  Str operator+(const Str* x) const;
  Str operator+(const char* x) const;
  Str operator+(char c) const;
  Str operator+(long n) const;
  Str operator+(double x) const;

  // Inserting and overwriting (Append growth).
  void Insert(const Str& x, long pos);
  void Insert(const Str* x, long pos);
  void Insert(const char* x, long pos);
  void Insert(char c, long pos);
  void InsertLeft(const Str& x);
  void InsertLeft(const Str* x);
  void InsertLeft(const char* x);
  void InsertLeft(char c);
  void Replace(const Str& x, long pos);
  void Replace(const Str* x, long pos);
  void Replace(const char* x, long pos);
  void Replace(char c, long pos);
  void Replace(const Str& x, long pos, long n);
  void Replace(const Str* x, long pos, long n);
  void Replace(const char* x, long pos, long n);
  void ReplaceEnd(const Str& x, long pos);
  void ReplaceEnd(const Str* x, long pos);
  void ReplaceEnd(const char* x, long pos);
  void ReplaceEnd(char c, long pos);
  void ReplaceEnd(long n, long pos);
  void ReplaceEnd(double x, long pos);

  // Deleting; never reallocates.
  void Delete(long pos);
  void Delete(long pos, long n);
  void DeleteLeft(long n);
  void DeleteRight(long n);
  void DeleteEnd(long pos);

  // Whole-text changes.
  void UpperCase();
  void LowerCase();
  void RemoveLeftSpaces();
  void RemoveRightSpaces();
  void RemoveEndSpaces();
  void Fill(char c);
  void Fill(char c, long n);
  void Reverse();
  bool HasLineEnd() const;

  // Copying out into arrays that the caller owns (and frees with delete[]) or provides.
  char* CopyToChar() const;
  char* CopyToChar(long n) const;
  char* CopyToChar(long pos, long n) const;
  char* StringCopy(char* dest, long n, bool terminate) const;
  char* StringCopy(char* dest, long n, long pos, bool terminate) const;

  // Tokens: the value's text followed by one separator (a blank by default). Append growth, also
  // for CopyToken.
  void CopyToken(const Str& x);
  void CopyToken(const Str* x);
  void CopyToken(const char* x);
  void CopyToken(char c);
  void CopyToken(long n);
  void CopyToken(double x);
  void CopyToken(const Str& x, char sep);
  void CopyToken(const Str* x, char sep);
  void CopyToken(const char* x, char sep);
  void CopyToken(char c, char sep);
  void CopyToken(long n, char sep);
  void CopyToken(double x, char sep);
  void AppendToken(const Str& x);
  void AppendToken(const Str* x);
  void AppendToken(const char* x);
  void AppendToken(char c);
  void AppendToken(long n);
  void AppendToken(double x);
  void AppendToken(const Str& x, char sep);
  void AppendToken(const Str* x, char sep);
  void AppendToken(const char* x, char sep);
  void AppendToken(char c, char sep);
  void AppendToken(long n, char sep);
  void AppendToken(double x, char sep);

  // Fields: a value padded to a width and placed as the Formater format says. AppendField places
  // the value as if the whole text were the field; use it with "JR" formats or on empty texts.
  void CopyField(const Str& x, long width, const char* format);
  void CopyField(const Str* x, long width, const char* format);
  void CopyField(const char* x, long width, const char* format);
  void CopyField(char c, long width, const char* format);
  void CopyField(long n, long width, const char* format);
  void CopyField(double x, long width, const char* format);
  void AppendField(const Str& x, long width, const char* format);
  void AppendField(const Str* x, long width, const char* format);
  void AppendField(const char* x, long width, const char* format);
  void AppendField(char c, long width, const char* format);
  void AppendField(long n, long width, const char* format);
  void AppendField(double x, long width, const char* format);
  void Justify(long width, bool right);

  // Hexadecimal text in both directions.
  void HexToString(long value, int digits, bool prefix);
  long ToHex() const;

  // Streams: >> reads one line (the newline is not stored), << writes the text.
  friend std::istream& operator>>(std::istream& in, Str& s);
  friend std::ostream& operator<<(std::ostream& out, const Str& s);

 private:
  char* string;  // heap buffer, always NUL-terminated at string[length]
  long length;   // characters before the terminator
  long size;     // bytes allocated, terminator included

  // Sizes and lengths stay within 32 bits; a larger request is refused with AlError before any
  // allocation is tried.
  static constexpr long kMaxSize = 0x7FFFFFFF;

  // True when p points into this string's own buffer: such a source moves or is overwritten when
  // the string changes, so it is copied out first.
  bool Holds(const char* p) const {
    const std::less<const char*> before;
    return !before(p, string) && before(p, string + size);
  }

  // Buffer helpers. Each allocates the new buffer before releasing the old one, so a refused
  // allocation (AlError) leaves the string as it was.
  static char* NewBuffer(long bytes);    // AlError when refused or out of range
  void Adopt(char* buffer, long bytes);  // frees the old buffer
  // Append rule: makes size > newLength, doubling; the old buffer is handed back so that a source
  // inside it stays readable until the caller has copied it.
  std::unique_ptr<char[]> MakeRoom(long newLength);
  void Reallocate(long newSize, bool keepText);
  void AssignText(const char* text, long n);  // operator= rule
  void CopyText(const char* text, long n);    // Copy rule
  // Worker of the two above: a new buffer of exactly n + 1 bytes, or the old one reused.
  void SetText(const char* text, long n, bool newBuffer);
  // Append rule: AppendBytes is the worker of the whole Append family.
  void AppendTokenText(const char* text, long n, char sep);
  void CopyTokenText(const char* text, long n, char sep);
  void InsertText(const char* text, long n, long pos);
  void ReplaceText(const char* text, long n, long pos);
  void ReplaceEndText(const char* text, long n, long pos);
  void AddAssignText(const char* text, long n);     // operator+= rule
  static char* NewArray(const char* text, long n);  // CopyToChar: a terminated copy
  void TextField(const char* text, long n, long width, const char* format, bool append);
  void NumberField(const char* text, long n, long width, const char* format, bool append,
                   bool isDouble);
  void OpenField(long fieldWidth, char fill, bool append);  // fill characters to place a value on

  friend Str operator+(const char* x, const Str& s);
  friend Str operator+(char c, const Str& s);
  friend Str operator+(long n, const Str& s);
  friend Str operator+(double x, const Str& s);
};

Str operator+(const char* x, const Str& s);
Str operator+(char c, const Str& s);
Str operator+(long n, const Str& s);
Str operator+(double x, const Str& s);

// The parsed form of a field format: "A<n>" integer part ends at column n, "JR"/"JC" right or
// centre alignment, "P<n>" at most n decimals, "S" sign for non-negative numbers, "F<c>" fill
// character, "R" round at the precision. Other characters are skipped.
class Formater {
 public:
  static constexpr long kRight = -1;
  static constexpr long kCentre = -2;

  explicit Formater(const char* format);

  long align = 0;      // 0 left, kRight, kCentre, or the column where the integer part ends
  long precision = 0;  // 0: no limit
  char sign = 0;       // '+' when "S" was given
  char fill = 0;       // 0: blank
  char round = 0;      // nonzero when "R" was given
};

// A read cursor over one Str. It neither owns nor copies the text: it keeps a raw position in the
// string's buffer, so after anything that may move that buffer the owner calls Begin or SetString
// again. White space is the C locale's space class, characters classified as signed chars.
class Parser {
 public:
  Parser();
  explicit Parser(Str& s);
  void SetString(Str& s);
  void SetString(Str* s);
  void Begin();

  // Single characters.
  char Get() const;
  char GetNext();
  bool GetCharacter(char& c);
  bool SkipSpaces();

  // Moving.
  bool Next(int n = 1);
  bool Previous(int n = 1);
  bool SetPosition(long i);
  bool SetPosition(char c);
  bool SkipToken(int n = 1);
  bool SkipToken(char sep, int n = 1);
  bool SkipLine(int n = 1);
  void SkipBack();
  void SkipBack(char sep);

  // Copying pieces into a target; at the end the target is cleared and the result is false.
  bool GetToken(Str& t);
  bool GetToken(Str& t, char sep);
  bool GetToken(Str& t, long n);
  bool GetToken(Str& t, int n) { return GetToken(t, static_cast<long>(n)); }
  bool GetLine(Str& t);
  bool GetRight(Str& t);
  bool GetLeft(Str& t);
  bool WordWrap(Str& t, long width);

  // Testing.
  bool Compare(const Str& s) const;
  bool Compare(const char* s) const;
  bool Contains(const Str& s);
  bool Contains(const char* s);
  bool Contains(char c);

 private:
  Str* source;     // not owned; null in a default-constructed cursor
  char* position;  // inside source's buffer, between its start and its terminator

  bool AtEnd() const { return *position == '\0'; }
  char* Start() const { return source->String(); }
  long Offset() const { return position - Start(); }
  void SkipWhite();
  void SkipToChar(char c);  // stops on c or on the terminator
  bool CompareText(const char* s, long n) const;
  bool ContainsText(const char* s, long n);
  static void Take(Str& t, const char* from, long n);
  bool ClearedAtEnd(Str& t) const;  // at the end: t is emptied, true
};

// One node of an SList: the next link, the element it carries, and whether the list made that
// element itself (a StrList copy) and so must delete it.
struct SLink {
  SLink* next = nullptr;
  void* item = nullptr;
  bool owned = false;
};

// A singly linked list of pointers with a sentinel head and one built-in cursor. `current` is
// the link in front of the current element. SList stores the pointers it is given and never
// copies or deletes them, except Clear, which deletes them. An owned element belongs to its link:
// links moved by Insert(SList&) take it along, Remove and Replace hand it to the caller, and
// Reset (so also Copy) keeps it alive until the list is destroyed. Not copyable.
template <class T>
class SList {
 public:
  SList();
  SList(const SList&) = delete;
  SList& operator=(const SList&) = delete;
  virtual ~SList();
  virtual void Reset();
  virtual void Clear();

  // Cursor.
  virtual void Begin();
  virtual SLink* Begin(long n);
  virtual void Next();
  virtual void Next(long n);
  virtual void Back();
  virtual bool IsNotEnd() const;
  virtual bool IsEnd() const;
  virtual bool IsNotHead() const;
  virtual bool IsHead() const;
  virtual bool SetPosition(long i);
  virtual long GetPosition() const;

  // Access and change.
  virtual T* Get() const;
  virtual T* Get(long i);
  virtual T* GetNext();
  virtual void Append(T* x);
  virtual void Append(T** array, long n);
  virtual void Append(SList& other);
  virtual void Copy(T** array, long n);
  virtual void Copy(SList& other);
  virtual void Insert(T* x);
  virtual void Insert(T* x, long i);
  virtual void Insert(SList& other);
  virtual void InsertNext(T* x);
  virtual T* Replace(T* x);
  virtual T* Replace(T* x, long i);
  virtual T* Remove();
  virtual T* Remove(long i);
  virtual T** CopyToArray();
  virtual void CopyToArray(T** array);
  virtual void Reverse();
  virtual bool Contains(T* x) const;

  long Count() const { return count; }

 protected:
  SLink* head;     // sentinel; the first element is in the link after it
  SLink* current;  // the link in front of the current element
  long count;
  SLink* dropped = nullptr;  // links of owned elements that Reset let go, freed with the list

  SLink* LastLink() const;
  void LinkAfter(SLink* link, T* x, bool owned = false);
  // The workers of Append(T*) and InsertNext(T*); `owned` marks a copy the list made itself.
  void AppendItem(T* x, bool owned);
  void InsertNextItem(T* x, bool owned);
};

// A list of texts. Its own insertions store a new copy of the text, which the list owns and
// deletes when it is destroyed. The inherited pointer operations (Append of an array or a list,
// Copy of an array or an SList, Replace) link the caller's pointers, which its destruction leaves
// alone, so lists sharing pointers may be destroyed in any order. Clear and SetList, like
// SList::Clear, delete every element, shared or not.
class StrList : public SList<Str> {
 public:
  StrList();

  using SList<Str>::Append;
  using SList<Str>::Insert;
  using SList<Str>::Copy;
  using SList<Str>::Contains;

  void SetList(Str& text);
  void SetList(const char* text);
  void Copy(const StrList& other);

  // Insertion of copies.
  void Append(Str* x) override;
  void Append(const Str& x);
  void Append(const char* x);
  void Insert(Str* x) override;
  void Insert(const Str& x);
  void Insert(const char* x);
  void Insert(Str* x, long i) override;
  void Insert(const Str& x, long i);
  void Insert(const char* x, long i);
  void InsertNext(Str* x) override;
  void InsertNext(const Str& x);
  void InsertNext(const char* x);
  void Insert(StrList& other);

  // Sorted insertion: behind every equal text; CollateOnce inserts nothing when x is present.
  void Collate(const Str& x);
  void Collate(Str* x);
  void Collate(const char* x);
  bool CollateOnce(const Str& x);
  bool CollateOnce(Str* x);
  bool CollateOnce(const char* x);

  // Reading texts out.
  bool GetString(Str& out);
  bool GetString(Str& out, long i);
  bool GetNextString(Str& out);

  // Searches: equal texts (GetIndex, Find), prefixes (Compare), substrings (Contains).
  long GetIndex(const Str& x);
  long GetIndex(const char* x);
  bool Find(const Str& x);
  bool Find(const char* x);
  bool FindNext(const Str& x);
  bool FindNext(const char* x);
  bool Compare(const Str& x);
  bool Compare(const char* x);
  bool CompareNext(const Str& x);
  bool CompareNext(const char* x);
  bool Contains(const Str& x);
  bool Contains(const char* x);
  bool ContainsNext(const Str& x);
  bool ContainsNext(const char* x);

  // Sorting: flag false ascending, flag true descending.
  void Sort(bool flag);
  void QuickSort(SLink* before, SLink* end, bool flag);

 private:
  bool Collate(const char* text, long n, bool once);
  enum class Match { kEqual, kPrefix, kContains };
  bool Search(const char* x, SLink* from, Match match);
};

extern template class SList<Str>;

#endif  // SYNTHCALL_TOOLKIT_STR_H
