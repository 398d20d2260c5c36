#include "foundation_double/dates.h"

#include <algorithm>
#include <cmath>

#include "foundation_double/classes.h"
#include "foundation_double/numbers.h"
#include "native/geometry.h"

namespace foundation_double::objc {
namespace {

constexpr std::int64_t kSecondsOfDay = 86400;
constexpr double kFarthest = 1e15;  // seconds; what is beyond has the fields of this

std::int64_t floorDivided(std::int64_t value, std::int64_t by) {
  return value / by - (value % by < 0 ? 1 : 0);
}

struct Day {
  std::int64_t year;
  std::int64_t month;  // 1 to 12
  std::int64_t day;    // 1 to 31
};

// The calendar is counted in years that begin in March, so that leap days come last, and in eras
// of 400 years, which are all of the same length.
constexpr std::int64_t kDaysOfEra = 146097;
constexpr std::int64_t kEraStart = -730791;  // the first of March of year 0, in days from 2001

/// Days since the first of January 2001. @param day may lie outside of the month.
std::int64_t daysUntil(const Day& day) {
  const std::int64_t months = day.year * 12 + day.month - 3;
  const std::int64_t year = floorDivided(months, 12);
  const std::int64_t month = months - year * 12;  // 0 for March
  const std::int64_t era = floorDivided(year, 400);
  const std::int64_t yearOfEra = year - era * 400;
  const std::int64_t dayOfYear = (153 * month + 2) / 5 + day.day - 1;
  return kEraStart + era * kDaysOfEra + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 +
         dayOfYear;
}

Day dayAfter(std::int64_t days) {
  const std::int64_t era = floorDivided(days - kEraStart, kDaysOfEra);
  const std::int64_t rest = days - kEraStart - era * kDaysOfEra;
  const std::int64_t yearOfEra = (rest - rest / 1460 + rest / 36524 - rest / 146096) / 365;
  const std::int64_t dayOfYear = rest - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t month = (5 * dayOfYear + 2) / 153;
  const std::int64_t day = dayOfYear - (153 * month + 2) / 5 + 1;
  const bool isNextYear = month >= 10;
  return {era * 400 + yearOfEra + (isNextYear ? 1 : 0), month + (isNextYear ? -9 : 3), day};
}

DateBody& dateBody(const void* date) { return bodyOf<DateBody>(date, "date"); }

std::unique_ptr<Body> makeDateBody() { return std::make_unique<DateBody>(); }

/// The date's whole seconds on the wall clock of its zone.
std::int64_t wallSeconds(const DateBody& date) {
  if (std::isnan(date.seconds)) return 0;
  const double wall = date.seconds + date.zoneSeconds;
  return static_cast<std::int64_t>(std::floor(std::clamp(wall, -kFarthest, kFarthest)));
}

// --- NSTimeZone

struct TimeZoneBody : Body {
  std::int32_t seconds = localZoneSeconds();
};

std::unique_ptr<Body> makeTimeZoneBody() { return std::make_unique<TimeZoneBody>(); }

zel::id localTimeZone(zel::id self, zel::SEL /*selector*/) {
  return pooled(createInstance(classRecord(self)));
}

std::int32_t secondsOf(const void* zone) {
  return zone == nullptr ? localZoneSeconds() : bodyOf<TimeZoneBody>(zone, "time zone").seconds;
}

// --- NSDate

double timeInterval(zel::id self, zel::SEL /*selector*/) { return dateBody(self).seconds; }

zel::id initWithTimeInterval(zel::id self, zel::SEL /*selector*/, double seconds) {
  DateBody& body = dateBody(self);
  body.seconds = seconds;
  body.zoneSeconds = localZoneSeconds();
  return self;
}

zel::id dateWithTimeInterval(zel::id self, zel::SEL selector, double seconds) {
  return pooled(initWithTimeInterval(createInstance(classRecord(self)), selector, seconds));
}

// --- NSCalendarDate

/// Fields outside of their range are carried over.
zel::id dateWithFields(zel::id self, zel::SEL /*selector*/, zel::NSInteger year,
                       zel::NSUInteger month, zel::NSUInteger day, zel::NSUInteger hour,
                       zel::NSUInteger minute, zel::NSUInteger second, zel::id zone) {
  const auto number = [](zel::NSUInteger value) { return static_cast<zel::NSInteger>(value); };
  const std::int64_t days = daysUntil({year, number(month), number(day)});
  const std::int64_t time =
      (std::int64_t{number(hour)} * 60 + number(minute)) * 60 + number(second);
  const zel::id made = createInstance(classRecord(self));
  DateBody& body = dateBody(made);
  body.zoneSeconds = secondsOf(zone);
  body.seconds = static_cast<double>(days * kSecondsOfDay + time - body.zoneSeconds);
  return pooled(made);
}

template <std::int64_t Day::*Field>
zel::NSInteger dayField(zel::id self, zel::SEL /*selector*/) {
  const Day day = dayAfter(floorDivided(wallSeconds(dateBody(self)), kSecondsOfDay));
  return static_cast<zel::NSInteger>(day.*Field);
}

/// @tparam Unit in seconds. @tparam Count how many of them are one of the next larger unit.
template <std::int64_t Unit, std::int64_t Count>
zel::NSInteger timeField(zel::id self, zel::SEL /*selector*/) {
  const std::int64_t units = floorDivided(wallSeconds(dateBody(self)), Unit);
  return static_cast<zel::NSInteger>(units - floorDivided(units, Count) * Count);
}

}  // namespace

std::optional<std::string> DateBody::literal() const { return "date(" + textOf(seconds) + ")"; }

ClassDefinition dateClass() {
  return {
      .name = "NSDate",
      .makeBody = &makeDateBody,
      .storable = true,
      .methods = {method("timeIntervalSinceReferenceDate", &timeInterval),
                  method("initWithTimeIntervalSinceReferenceDate:", &initWithTimeInterval)},
      .classMethods = {method("dateWithTimeIntervalSinceReferenceDate:", &dateWithTimeInterval)}};
}

ClassDefinition calendarDateClass() {
  return {.name = "NSCalendarDate",
          .superName = "NSDate",
          .storable = true,
          .methods = {method("yearOfCommonEra", &dayField<&Day::year>),
                      method("monthOfYear", &dayField<&Day::month>),
                      method("dayOfMonth", &dayField<&Day::day>),
                      method("hourOfDay", &timeField<3600, 24>),
                      method("minuteOfHour", &timeField<60, 60>),
                      method("secondOfMinute", &timeField<1, 60>)},
          .classMethods = {
              method("dateWithYear:month:day:hour:minute:second:timeZone:", &dateWithFields)}};
}

ClassDefinition timeZoneClass() {
  return {.name = "NSTimeZone",
          .makeBody = &makeTimeZoneBody,
          .classMethods = {method("localTimeZone", &localTimeZone)}};
}

zel::id createDate(double seconds) {
  auto body = std::make_unique<DateBody>();
  body->seconds = seconds;
  return createObject("NSDate", std::move(body));
}

std::int32_t& localZoneSeconds() {
  static std::int32_t seconds = 0;
  return seconds;
}

}  // namespace foundation_double::objc
