// CTime: calendar fields, names and texts of one captured moment.
#include "toolkit/ctime.h"

#include <cstddef>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>

namespace {

// English month and weekday names, indexed like struct tm's tm_mon and tm_wday.
constexpr const char* kMonthNames[] = {
    "January",    // 0
    "February",   // 1
    "March",      // 2
    "April",      // 3
    "May",        // 4
    "June",       // 5
    "July",       // 6
    "August",     // 7
    "September",  // 8
    "October",    // 9
    "November",   // 10
    "December",   // 11
};
constexpr const char* kWeekDayNames[] = {
    "Sunday",     // 0
    "Monday",     // 1
    "Tuesday",    // 2
    "Wednesday",  // 3
    "Thursday",   // 4
    "Friday",     // 5
    "Saturday",   // 6
};
static_assert(std::size(kMonthNames) == 12, "one name per month");
static_assert(std::size(kWeekDayNames) == 7, "one name per weekday");

constexpr int kNoTime = -1;

// GetString grows its buffer in steps of this many characters.
constexpr long kFormatStep = 1024;
// The widest output of one format pair ("%Y") and its terminator must always fit.
constexpr long kWidestPair = 4;
static_assert(kFormatStep > kWidestPair, "a step must hold the widest pair");

// ctime_r needs 26 bytes; the slack covers libraries that print years wider than four digits.
constexpr int kCTimeSize = 64;

// GetString's output buffer: a plain character array that grows by kFormatStep and throws the
// integer 1 when the heap refuses more.
class FormatBuffer {
 public:
  FormatBuffer() { Grow(); }

  void Put(char c) { text[length++] = c; }

  // Two digits made arithmetically, so out-of-range values give non-digits rather than a
  // wider field.
  void PutTwoDigits(int value) {
    Put(static_cast<char>('0' + value / 10));
    Put(static_cast<char>('0' + value % 10));
  }

  void PutFourDigits(int value) {
    Put(static_cast<char>('0' + value / 1000));
    Put(static_cast<char>('0' + value % 1000 / 100));
    PutTwoDigits(value % 100);
  }

  // The output of '%' followed by letter: this class's own letters, "%%" for a percent sign and
  // "00" for anything else, the terminator included.
  void PutPair(char letter, const struct tm& t) {
    switch (letter) {
      case '%':
        return Put('%');
      case 'D':
        return PutTwoDigits(t.tm_mday);
      case 'M':
        return PutTwoDigits(t.tm_mon + 1);
      case 'Y':
        return PutFourDigits(t.tm_year + 1900);
      case 'y':
        return PutTwoDigits(t.tm_year % 100);
      case 'h':
        return PutTwoDigits(t.tm_hour);
      case 'm':
        return PutTwoDigits(t.tm_min);
      case 's':
        return PutTwoDigits(t.tm_sec);
      default:
        return PutTwoDigits(0);
    }
  }

  // Makes room for one more pair and the terminator.
  void Reserve() {
    if (length + kWidestPair >= size) Grow();
  }

  Str Finish() {
    text[length] = '\0';
    return Str(text.get());
  }

 private:
  std::unique_ptr<char[]> text;
  long length = 0;
  long size = 0;

  void Grow() {
    std::unique_ptr<char[]> larger(new (std::nothrow) char[size + kFormatStep]);
    if (!larger) throw 1;
    if (length > 0) memcpy(larger.get(), text.get(), length);
    text = std::move(larger);
    size += kFormatStep;
  }
};

template <std::size_t N>
Str TableEntry(const char* const (&table)[N], int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= N) return Str();
  return Str(table[index]);
}

}  // namespace

CTime::CTime() : CTime(time(nullptr)) {}

CTime::CTime(time_t when) : now(when), broken(), valid(localtime_r(&now, &broken) != nullptr) {}

int CTime::GetTmYear() const { return valid ? broken.tm_year : kNoTime; }
int CTime::GetYear() const { return valid ? broken.tm_year + 1900 : kNoTime; }
int CTime::GetTmMonth() const { return valid ? broken.tm_mon : kNoTime; }
int CTime::GetMonth() const { return valid ? broken.tm_mon + 1 : kNoTime; }
int CTime::GetYearDay() const { return valid ? broken.tm_yday : kNoTime; }
int CTime::GetMonthDay() const { return valid ? broken.tm_mday : kNoTime; }
int CTime::GetWeekDay() const { return valid ? broken.tm_wday : kNoTime; }
int CTime::GetHour() const { return valid ? broken.tm_hour : kNoTime; }
int CTime::GetMinute() const { return valid ? broken.tm_min : kNoTime; }
int CTime::GetSecond() const { return valid ? broken.tm_sec : kNoTime; }

// The captured forms answer empty without a time; the indexed forms need none.
Str CTime::GetMonthName() const { return valid ? GetMonthName(broken.tm_mon) : Str(); }

Str CTime::GetMonthName(int month) { return TableEntry(kMonthNames, month); }

Str CTime::GetWeekDayName() const { return valid ? GetWeekDayName(broken.tm_wday) : Str(); }

Str CTime::GetWeekDayName(int day) { return TableEntry(kWeekDayNames, day); }

Str CTime::GetCTime() const {
  char text[kCTimeSize];
  if (!valid || ctime_r(&now, text) == nullptr) return Str();
  Str result(text);
  long n = result.Length();
  if (n > 0 && text[n - 1] == '\n') result.DeleteRight(1);
  return result;
}

// A '%' always consumes the character after it; a '%' at the very end pairs with the terminator,
// gives "00" and ends the text there.
Str CTime::GetString(const char* format) const {
  FormatBuffer out;
  if (!valid || format == nullptr) return out.Finish();
  for (const char* p = format; *p != '\0'; ++p) {
    out.Reserve();
    if (*p != '%') {
      out.Put(*p);
      continue;
    }
    out.PutPair(*++p, broken);
    if (*p == '\0') break;
  }
  return out.Finish();
}
