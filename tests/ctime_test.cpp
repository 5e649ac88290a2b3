// CTime: the fields, names and texts of a captured moment, read in UTC so that they do not depend
// on the machine's zone, and the class's own format letters.
#include "toolkit/ctime.h"

#include <limits>

#include "test_util.h"

static CTime Utc(time_t when) {
  setenv("TZ", "UTC", 1);
  tzset();
  return CTime(when);
}

// 2026-03-05 07:08:09 UTC is a Thursday, day 63 from 0: every field has a value of its own, so a
// getter that reads the wrong field or misses its offset shows. Without a calendar every number
// is -1 and every text empty; the names are indexed from 0.
TEST(CTime, FieldsAndTextsOfAMoment) {
  const CTime march = Utc(1772694489), none = Utc(std::numeric_limits<time_t>::max());
  Walk(Q(march.GetTmYear(), 126), Q(march.GetYear(), 2026), Q(march.GetTmMonth(), 2),
       Q(march.GetMonth(), 3), Q(march.GetYearDay(), 63), Q(march.GetMonthDay(), 5),
       Q(march.GetWeekDay(), 4), Q(march.GetHour(), 7), Q(march.GetMinute(), 8),
       Q(march.GetSecond(), 9), Q(none.GetTmYear(), -1), Q(none.GetYear(), -1),
       Q(none.GetTmMonth(), -1), Q(none.GetMonth(), -1), Q(none.GetYearDay(), -1),
       Q(none.GetMonthDay(), -1), Q(none.GetWeekDay(), -1), Q(none.GetHour(), -1),
       Q(none.GetMinute(), -1), Q(none.GetSecond(), -1), Q(Text(none.GetMonthName()), ""),
       Q(Text(march.GetMonthName()), "March"), Q(Text(march.GetWeekDayName()), "Thursday"),
       Q(Text(march.GetCTime()), "Thu Mar  5 07:08:09 2026"), Q(Text(none.GetCTime()), ""),
       Q(Text(CTime::GetMonthName(12)), ""), Q(Text(CTime::GetWeekDayName(-1)), ""),
       Q(Text(CTime::GetWeekDayName(6)), "Saturday"));
}

// A '%' always takes the character after it: the class's letters, "%%", and "00" for anything
// else; a last '%' pairs with the terminator and ends the text. The buffer grows in steps of 1024
// characters while a pair adds up to four, so formats of every length end at each place of a
// step.
TEST(CTime, FormatLetters) {
  const CTime march = Utc(1772694489), end1999 = Utc(946684799);
  Walk(Q(Text(march.GetString("%Y-%M-%D %h:%m:%s %y")), "2026-03-05 07:08:09 26"),
       Q(Text(end1999.GetString("%y%M%D%h%m%s")), "991231235959"),
       Q(Text(march.GetString("100%%, %%Y")), "100%, %Y"), Q(Text(march.GetString("%q%d")), "0000"),
       Q(Text(march.GetString("ab%\0%Y")), "ab00"), Q(Text(march.GetString("%%%")), "%00"));
  std::string format, expected;
  for (int i = 0; i < 700; ++i) {
    format += i % 3 == 0 ? "%Y" : "a%Y";
    expected += i % 3 == 0 ? "2026" : "a2026";
    ASSERT_EQ(Text(march.GetString(format.c_str())), expected) << "length " << format.size();
  }
}
