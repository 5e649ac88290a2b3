// CTime: the fields, names and texts of a captured moment, read in UTC so that they do not depend
// on the machine's zone, and the class's own format letters.
#include "toolkit/ctime.h"

#include <limits>
#include <tuple>

#include "test_util.h"

static CTime Utc(time_t when) {
  setenv("TZ", "UTC", 1);
  tzset();
  return CTime(when);
}

// 2026-03-05 07:08:09 UTC is a Thursday, day 63 from 0; 1999-12-31 23:59:59 a Friday, day 364.
// Without a calendar every number is -1 and every text empty; the names are indexed from 0.
TEST(CTime, FieldsAndTextsOfAMoment) {
  const std::tuple<int (CTime::*)() const, int, int> fields[] = {
      {&CTime::GetTmYear, 126, 99}, {&CTime::GetYear, 2026, 1999}, {&CTime::GetTmMonth, 2, 11},
      {&CTime::GetMonth, 3, 12},    {&CTime::GetYearDay, 63, 364}, {&CTime::GetMonthDay, 5, 31},
      {&CTime::GetWeekDay, 4, 5},   {&CTime::GetHour, 7, 23},      {&CTime::GetMinute, 8, 59},
      {&CTime::GetSecond, 9, 59}};
  const CTime march = Utc(1772694489), end1999 = Utc(946684799);
  const CTime none = Utc(std::numeric_limits<time_t>::max());
  for (size_t k = 0; k < std::size(fields); ++k) {
    const auto& [get, inMarch, in1999] = fields[k];
    EXPECT_EQ((march.*get)(), inMarch) << "field " << k;
    EXPECT_EQ((end1999.*get)(), in1999) << "field " << k;
    EXPECT_EQ((none.*get)(), -1) << "field " << k;
  }
  ExpectFacts(Q(Text(march.GetMonthName()), "March"), Q(Text(end1999.GetWeekDayName()), "Friday"),
              Q(Text(march.GetCTime()), "Thu Mar  5 07:08:09 2026"),
              Q(Text(none.GetMonthName()), ""), Q(Text(none.GetCTime()), ""),
              Q(Text(CTime::GetMonthName(12)), ""), Q(Text(CTime::GetWeekDayName(-1)), ""),
              Q(Text(CTime::GetWeekDayName(6)), "Saturday"));
}

// A '%' always takes the character after it: the class's letters, "%%", and "00" for anything
// else; a last '%' pairs with the terminator and ends the text. The buffer grows in steps of 1024
// characters while a pair adds up to four, so formats of every length end at each place of a
// step.
TEST(CTime, FormatLetters) {
  const CTime march = Utc(1772694489), end1999 = Utc(946684799);
  ExpectFacts(Q(Text(march.GetString("%Y-%M-%D %h:%m:%s %y")), "2026-03-05 07:08:09 26"),
              Q(Text(end1999.GetString("%y%M%D%h%m%s")), "991231235959"),
              Q(Text(march.GetString("100%%, %%Y")), "100%, %Y"),
              Q(Text(march.GetString("%q%d")), "0000"), Q(Text(march.GetString("ab%\0%Y")), "ab00"),
              Q(Text(march.GetString("%%%")), "%00"));
  std::string format, expected;
  for (int i = 0; i < 700; ++i) {
    format += i % 3 == 0 ? "%Y" : "a%Y";
    expected += i % 3 == 0 ? "2026" : "a2026";
    ASSERT_EQ(Text(march.GetString(format.c_str())), expected) << "length " << format.size();
  }
}
