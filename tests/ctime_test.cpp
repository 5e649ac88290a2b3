#include "toolkit/ctime.h"

#include <cstdlib>
#include <limits>
#include <string>
#include <tuple>

#include "gtest/gtest.h"

namespace {

constexpr time_t kMarch5 = 1772694489;    // 2026-03-05 07:08:09 UTC, Thursday, day 63 from 0
constexpr time_t kEndOf1999 = 946684799;  // 1999-12-31 23:59:59 UTC, Friday, day 364
constexpr time_t kNoCalendar = std::numeric_limits<time_t>::max();  // beyond any year

// Moments are read in UTC, so that their fields do not depend on the machine's zone.
CTime Utc(time_t when) {
  setenv("TZ", "UTC", 1);
  tzset();
  return CTime(when);
}

std::string Text(const Str& s) { return std::string(s.String(), s.Length()); }

// Every number and text a CTime gives about its moment, blank-separated.
std::string Describe(const CTime& t) {
  std::string text;
  for (int n : {t.GetTmYear(), t.GetYear(), t.GetTmMonth(), t.GetMonth(), t.GetYearDay(),
                t.GetMonthDay(), t.GetWeekDay(), t.GetHour(), t.GetMinute(), t.GetSecond()})
    text += std::to_string(n) + " ";
  return text + Text(t.GetMonthName()) + " " + Text(t.GetWeekDayName()) + " " + Text(t.GetCTime()) +
         " " + Text(t.GetString("%Y"));
}

TEST(CTime, FieldsAndTextsOfAMoment) {
  EXPECT_EQ(Describe(Utc(kMarch5)),
            "126 2026 2 3 63 5 4 7 8 9 March Thursday Thu Mar  5 07:08:09 2026 2026");
  EXPECT_EQ(Describe(Utc(kEndOf1999)),
            "99 1999 11 12 364 31 5 23 59 59 December Friday Fri Dec 31 23:59:59 1999 1999");
  EXPECT_EQ(Describe(Utc(kNoCalendar)), "-1 -1 -1 -1 -1 -1 -1 -1 -1 -1    ");
  EXPECT_EQ(Text(CTime::GetMonthName(0)) + Text(CTime::GetMonthName(12)) +
                Text(CTime::GetWeekDayName(-1)) + Text(CTime::GetWeekDayName(6)),
            "JanuarySaturday");
}

TEST(CTime, StringLettersAndPercentPairs) {
  const std::tuple<time_t, const char*, const char*> cases[] = {
      {kMarch5, "%Y-%M-%D %h:%m:%s %y", "2026-03-05 07:08:09 26"},
      {kEndOf1999, "%y%M%D%h%m%s", "991231235959"},  // the top of every two-digit range
      {kMarch5, "100%%, %%Y", "100%, %Y"},
      {kMarch5, "%q%d%H%S", "00000000"},  // strftime's letters mean nothing here
      {kMarch5, "ab%\0%Y", "ab00"},       // a last '%' pairs with the terminator and ends the text
      {kMarch5, "%%%", "%00"},
  };
  for (const auto& [when, format, expected] : cases) {
    EXPECT_EQ(Text(Utc(when).GetString(format)), expected);
  }
}

// The buffer grows in steps of 1024 characters while one pair adds up to four: formats of every
// length, of whole pairs and of pairs behind one to three other characters, end at each place.
TEST(CTime, LongFormatsComeOutWhole) {
  const CTime t = Utc(kMarch5);
  for (const std::string unit : {"", "a", "ab", "abc"}) {
    std::string format, expected;
    for (int i = 0; i < 700; ++i) {
      format += unit + "%Y";
      expected += unit + "2026";
      ASSERT_EQ(Text(t.GetString(format.c_str())), expected) << unit << " " << i;
    }
  }
}

}  // namespace
