#include "toolkit/ctime.h"

#include <cstdlib>
#include <ctime>
#include <limits>
#include <string>

#include "gtest/gtest.h"

namespace {

// 2026-03-05 07:08:09 UTC, a Thursday, day 63 of the year counted from 0.
constexpr time_t kMarch5 = 1772694489;
// 1999-12-31 23:59:59 UTC, a Friday, the last day of a non-leap year.
constexpr time_t kEndOf1999 = 946684799;
// 2005-01-02 03:04:05 UTC, a Sunday.
constexpr time_t kJanuary2 = 1104635045;
// Too late for any calendar year to hold: the local-time conversion fails.
constexpr time_t kNoCalendar = std::numeric_limits<time_t>::max();

// Runs a test in UTC and restores the previous zone afterwards.
class UtcZone {
 public:
  UtcZone() {
    const char* old = getenv("TZ");
    hadZone_ = old != nullptr;
    if (hadZone_) old_ = old;
    setenv("TZ", "UTC", 1);
    tzset();
  }
  ~UtcZone() {
    if (hadZone_) {
      setenv("TZ", old_.c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }

 private:
  std::string old_;
  bool hadZone_;
};

std::string Text(const Str& s) { return std::string(s.String(), s.Length()); }

TEST(CTime, FieldsOfAFixedMoment) {
  UtcZone utc;
  CTime t(kMarch5);
  EXPECT_EQ(t.GetTmYear(), 126);
  EXPECT_EQ(t.GetYear(), 2026);
  EXPECT_EQ(t.GetTmMonth(), 2);
  EXPECT_EQ(t.GetMonth(), 3);
  EXPECT_EQ(t.GetYearDay(), 63);
  EXPECT_EQ(t.GetMonthDay(), 5);
  EXPECT_EQ(t.GetWeekDay(), 4);
  EXPECT_EQ(t.GetHour(), 7);
  EXPECT_EQ(t.GetMinute(), 8);
  EXPECT_EQ(t.GetSecond(), 9);
  EXPECT_EQ(Text(t.GetMonthName()), "March");
  EXPECT_EQ(Text(t.GetWeekDayName()), "Thursday");

  CTime last(kEndOf1999);
  EXPECT_EQ(last.GetTmYear(), 99);
  EXPECT_EQ(last.GetMonth(), 12);
  EXPECT_EQ(last.GetYearDay(), 364);
  EXPECT_EQ(last.GetWeekDay(), 5);
  EXPECT_EQ(Text(last.GetMonthName()), "December");
  EXPECT_EQ(Text(last.GetWeekDayName()), "Friday");
}

TEST(CTime, FailedConversionAnswersNoTime) {
  CTime t(kNoCalendar);
  EXPECT_EQ(t.GetTmYear(), -1);
  EXPECT_EQ(t.GetYear(), -1);
  EXPECT_EQ(t.GetTmMonth(), -1);
  EXPECT_EQ(t.GetMonth(), -1);
  EXPECT_EQ(t.GetYearDay(), -1);
  EXPECT_EQ(t.GetMonthDay(), -1);
  EXPECT_EQ(t.GetWeekDay(), -1);
  EXPECT_EQ(t.GetHour(), -1);
  EXPECT_EQ(t.GetMinute(), -1);
  EXPECT_EQ(t.GetSecond(), -1);
  EXPECT_EQ(Text(t.GetMonthName()), "");
  EXPECT_EQ(Text(t.GetWeekDayName()), "");
  EXPECT_EQ(Text(t.GetCTime()), "");
  EXPECT_EQ(Text(t.GetString("%Y plain text")), "");
  // The indexed names need no captured time.
  EXPECT_EQ(Text(t.GetMonthName(0)), "January");
}

TEST(CTime, NameTablesAndBounds) {
  const char* months[] = {"January", "February", "March",     "April",   "May",      "June",
                          "July",    "August",   "September", "October", "November", "December"};
  for (int i = 0; i < 12; ++i) EXPECT_EQ(Text(CTime::GetMonthName(i)), months[i]) << i;
  const char* days[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                        "Thursday", "Friday", "Saturday"};
  for (int i = 0; i < 7; ++i) EXPECT_EQ(Text(CTime::GetWeekDayName(i)), days[i]) << i;

  EXPECT_EQ(Text(CTime::GetMonthName(12)), "");
  EXPECT_EQ(Text(CTime::GetMonthName(-1)), "");
  EXPECT_EQ(Text(CTime::GetWeekDayName(7)), "");
  EXPECT_EQ(Text(CTime::GetWeekDayName(-1)), "");
}

TEST(CTime, CTimeTextHasNoNewline) {
  UtcZone utc;
  EXPECT_EQ(Text(CTime(kMarch5).GetCTime()), "Thu Mar  5 07:08:09 2026");
  EXPECT_EQ(Text(CTime(kEndOf1999).GetCTime()), "Fri Dec 31 23:59:59 1999");
  Str now = CTime().GetCTime();
  ASSERT_EQ(now.Length(), 24);
  EXPECT_NE(now.String()[23], '\n');
}

TEST(CTime, DefaultConstructionCapturesNow) {
  UtcZone utc;
  time_t before = time(nullptr);
  CTime t;
  time_t after = time(nullptr);
  std::string text = Text(t.GetCTime());
  EXPECT_TRUE(text == Text(CTime(before).GetCTime()) || text == Text(CTime(after).GetCTime()))
      << text;
}

TEST(CTime, KeepsItsOwnCopyOfTheFields) {
  UtcZone utc;
  CTime t(kMarch5);
  time_t other = kEndOf1999;
  ASSERT_NE(localtime(&other), nullptr);  // overwrites the C library's shared result
  EXPECT_EQ(t.GetYear(), 2026);
  EXPECT_EQ(t.GetMonthDay(), 5);
  EXPECT_EQ(Text(t.GetString("%D.%M.%Y")), "05.03.2026");
}

TEST(CTime, StringLetters) {
  UtcZone utc;
  CTime t(kMarch5);
  EXPECT_EQ(Text(t.GetString("%Y-%M-%D %h:%m:%s")), "2026-03-05 07:08:09");
  EXPECT_EQ(Text(t.GetString("%y")), "26");
  EXPECT_EQ(Text(t.GetString("")), "");
  EXPECT_EQ(Text(t.GetString("no letters")), "no letters");

  // Two-digit fields keep their leading zero and reach the top of their range.
  EXPECT_EQ(Text(CTime(kEndOf1999).GetString("%y%M%D%h%m%s")), "991231235959");
  EXPECT_EQ(Text(CTime(kJanuary2).GetString("%Y/%y/%M/%D %h%m%s")), "2005/05/01/02 030405");
}

TEST(CTime, StringPercentPairs) {
  UtcZone utc;
  CTime t(kMarch5);
  EXPECT_EQ(Text(t.GetString("100%%")), "100%");
  EXPECT_EQ(Text(t.GetString("%%Y")), "%Y");
  EXPECT_EQ(Text(t.GetString("%q")), "00");
  EXPECT_EQ(Text(t.GetString("%d%H%S")), "000000");  // strftime's letters mean nothing here
  // A '%' at the end pairs with the terminator and the text stops there.
  EXPECT_EQ(Text(t.GetString("ab%")), "ab00");
  EXPECT_EQ(Text(t.GetString("%")), "00");
  EXPECT_EQ(Text(t.GetString("%%%")), "%00");
}

TEST(CTime, LongFormatsComeOutWhole) {
  UtcZone utc;
  CTime t(kMarch5);
  std::string plain(3000, 'x');
  EXPECT_EQ(Text(t.GetString(plain.c_str())), plain);

  // Four characters per pair make the text cross every buffer step inside a pair.
  std::string years, expected;
  for (int i = 0; i < 1500; ++i) {
    years += "%Y";
    expected += "2026";
  }
  EXPECT_EQ(Text(t.GetString(years.c_str())), expected);

  std::string mixed, mixedExpected;
  for (int i = 0; i < 1000; ++i) {
    mixed += "a%Y";
    mixedExpected += "a2026";
  }
  ASSERT_EQ(mixed.size(), 3000u);
  EXPECT_EQ(Text(t.GetString(mixed.c_str())), mixedExpected);
}

}  // namespace
