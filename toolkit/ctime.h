// CTime: the wall-clock time captured once, at construction, and the questions asked of it.
//
// The broken-down local time is copied into the object, so later calls of the C library's
// localtime elsewhere do not change what a CTime reports. When the conversion fails every query
// answers its no-time value: -1 for numbers, an empty Str for texts. Copyable.
#ifndef SYNTHCALL_TOOLKIT_CTIME_H
#define SYNTHCALL_TOOLKIT_CTIME_H

#include <ctime>

#include "toolkit/str.h"

class CTime {
 public:
  CTime();                        // now
  explicit CTime(time_t when);    // a given moment, for callers that need a fixed time

  int GetTmYear() const;          // years since 1900
  int GetYear() const;
  int GetTmMonth() const;         // 0..11
  int GetMonth() const;           // 1..12
  int GetYearDay() const;         // 0..365
  int GetMonthDay() const;        // 1..31
  int GetWeekDay() const;         // 0 = Sunday
  int GetHour() const;
  int GetMinute() const;
  int GetSecond() const;

  Str GetMonthName() const;
  static Str GetMonthName(int month);
  Str GetWeekDayName() const;
  static Str GetWeekDayName(int day);

  // The C library's ctime text without its newline, e.g. "Sun Nov 15 09:42:04 2026".
  Str GetCTime() const;
  // This class's own format letters: %D day, %M month, %Y year, %y two-digit year, %h hour,
  // %m minute, %s second, %% a percent sign; any other letter after '%' gives "00".
  Str GetString(const char* format) const;

 private:
  time_t now;
  struct tm broken;  // private copy of localtime(&now)
  bool valid;        // localtime succeeded
};

#endif  // SYNTHCALL_TOOLKIT_CTIME_H
