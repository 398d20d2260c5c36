// Calendar dates of every year, against the calendar of the C++ library.
#include <chrono>
#include <limits>
#include <tuple>

#include "native/geometry.h"
#include "tests/native/values.h"

namespace native_test {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using zel::classNamed;
using zel::id;
using zel::NSInteger;
using zel::NSUInteger;
using zel::send;

constexpr double kDay = 86400;
constexpr sys_days kReference = std::chrono::January / 1 / 2001;

using Fields = std::tuple<NSInteger, NSInteger, NSInteger, NSInteger, NSInteger, NSInteger>;

class CalendarDatesTest : public NativeTest {
 protected:
  static id zone(NSInteger seconds) {
    return send<id, "timeZoneForSecondsFromGMT:">(classNamed<"NSTimeZone">(), seconds);
  }
  static id calendarDate(double seconds, NSInteger offset = 0) {
    const id made = zel::autoreleased(send<id, "initWithTimeIntervalSinceReferenceDate:">(
        send<id, "alloc">(classNamed<"NSCalendarDate">()), seconds));
    send<void, "setTimeZone:">(made, zone(offset));
    return made;
  }
  static id calendarDate(NSInteger year, NSUInteger month, NSUInteger day, NSUInteger hour,
                         NSUInteger minute, NSUInteger second) {
    return send<id, "dateWithYear:month:day:hour:minute:second:timeZone:">(
        classNamed<"NSCalendarDate">(), year, month, day, hour, minute, second, zone(0));
  }
  static Fields fields(id date) {
    return {send<NSInteger, "yearOfCommonEra">(date), send<NSInteger, "monthOfYear">(date),
            send<NSInteger, "dayOfMonth">(date),      send<NSInteger, "hourOfDay">(date),
            send<NSInteger, "minuteOfHour">(date),    send<NSInteger, "secondOfMinute">(date)};
  }
  static double seconds(id date) { return send<double, "timeIntervalSinceReferenceDate">(date); }
  static std::string described(id date) { return text(send<id, "description">(date)); }

  /// The same day everywhere.
  static void expectDay(sys_days day) {
    const std::chrono::year_month_day expected(day);
    const auto year = static_cast<int>(expected.year());
    const auto month = static_cast<unsigned>(expected.month());
    const auto dayOfMonth = static_cast<unsigned>(expected.day());
    const double start = kDay * static_cast<double>((day - kReference).count());
    const id date = calendarDate(start + kDay - 1);
    ASSERT_EQ(fields(date), Fields(year, month, dayOfMonth, 23, 59, 59));
    ASSERT_EQ((send<NSInteger, "dayOfWeek">(date)),
              static_cast<NSInteger>(std::chrono::weekday(day).c_encoding()));
    ASSERT_EQ((send<NSInteger, "dayOfYear">(date)),
              (day - sys_days(expected.year() / 1 / 1)).count() + 1);
    ASSERT_EQ((send<NSInteger, "dayOfCommonEra">(date)),
              (day - sys_days(std::chrono::year(1) / 1 / 1)).count() + 1);
    ASSERT_EQ(seconds(calendarDate(year, month, dayOfMonth, 0, 0, 0)), start);
  }
};

TEST_F(CalendarDatesTest, DaysOfAllYears) {
  constexpr int kStep = 97;  // so that every day of a month and of a week is met
  const sys_days first = std::chrono::year(-9999) / 1 / 1;
  const sys_days last = std::chrono::year(30000) / 12 / 31;
  for (sys_days day = first; day <= last; day += days(kStep))
    ASSERT_NO_FATAL_FAILURE(expectDay(day));
}

TEST_F(CalendarDatesTest, EndsOfYears) {
  for (int year = -2001; year <= 4001; ++year) {
    const sys_days first = std::chrono::year(year) / 1 / 1;
    ASSERT_NO_FATAL_FAILURE(expectDay(first)) << year;
    ASSERT_NO_FATAL_FAILURE(expectDay(first - days(1))) << year;
    ASSERT_NO_FATAL_FAILURE(expectDay(std::chrono::year(year) / 2 / std::chrono::last)) << year;
  }
}

TEST_F(CalendarDatesTest, ASecondBeforeTheYear1) {
  EXPECT_EQ(fields(calendarDate(-63113904000.0)), Fields(1, 1, 1, 0, 0, 0));
  EXPECT_EQ(fields(calendarDate(-63113904001.0)), Fields(0, 12, 31, 23, 59, 59));
  EXPECT_EQ(fields(calendarDate(-63113904001.0, 3600)), Fields(1, 1, 1, 0, 59, 59));
  EXPECT_EQ(fields(calendarDate(-63113904000.0, -3600)), Fields(0, 12, 31, 23, 0, 0));
}

TEST_F(CalendarDatesTest, AFractionIsDroppedTowardsThePast) {
  EXPECT_EQ(fields(calendarDate(-0.25)), Fields(2000, 12, 31, 23, 59, 59));
  EXPECT_EQ(fields(calendarDate(0.9999999)), Fields(2001, 1, 1, 0, 0, 0));
  EXPECT_EQ(fields(calendarDate(kDay - 0.0000001)), Fields(2001, 1, 1, 23, 59, 59));
}

TEST_F(CalendarDatesTest, AbsurdDatesComeToAnEnd) {
  const Fields latest = fields(calendarDate(6.7e16));
  const Fields earliest = fields(calendarDate(-6.7e16));
  EXPECT_EQ(std::get<0>(latest), 2123147480);
  EXPECT_EQ(std::get<0>(earliest), -2123143479);
  for (const double far : {1e17, 1e300, std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(fields(calendarDate(far)), latest);
    EXPECT_EQ(fields(calendarDate(-far)), earliest);
    EXPECT_EQ(described(calendarDate(far)), "2123147480-12-15 23:06:40 +0000");
    EXPECT_NE(text(send<id, "description">(date(-far))), "(null)");
  }
  EXPECT_EQ(raisedBy([] { date(std::numeric_limits<double>::quiet_NaN()); }),
            "NSInvalidArgumentException");
}

TEST_F(CalendarDatesTest, Descriptions) {
  EXPECT_EQ(described(calendarDate(-63113904001.0)), "0000-12-31 23:59:59 +0000");
  EXPECT_EQ(described(calendarDate(-43, 3, 15, 12, 30, 0)), "-0043-03-15 12:30:00 +0000");
  EXPECT_EQ(described(calendarDate(12345, 6, 7, 8, 9, 10)), "12345-06-07 08:09:10 +0000");
  EXPECT_EQ(described(calendarDate(9999, 12, 31, 23, 59, 59)), "9999-12-31 23:59:59 +0000");
  EXPECT_EQ(text(send<id, "descriptionWithCalendarFormat:locale:">(
                calendarDate(-43, 3, 15, 12, 30, 0), string("%A %d.%m.%Y"), id{})),
            "Friday 15.03.-0043");
}

TEST_F(CalendarDatesTest, DatesOnDiskComeBackWhole) {
  for (const double seconds : {-1e11, -63113990400.5, 63113990400.5, 1e12}) {
    const std::string file = fileOfDomain(dictionary({{object("d"), date(seconds)}}));
    EXPECT_EQ(literal(parsed(file)), "{\"d\": " + literal(date(seconds)) + "}");
    EXPECT_EQ(native_test::CalendarDatesTest::seconds(date(seconds)), seconds);
  }
}

}  // namespace
}  // namespace native_test
