#include "bridge/dates.h"

#include "native/exceptions.h"
#include "native/geometry.h"
#include "plugin/host.h"

namespace zel {
namespace {

// The fields of a host Date, in the order in which they are read and set.
constexpr const char* kFields[] = {"Year", "Month", "Day", "Hour", "Minute", "Second"};
constexpr std::size_t kFieldCount = sizeof kFields / sizeof *kFields;

struct Fields {
  std::int32_t values[kFieldCount] = {};
};

bool read(REALobject date, Fields& fields) {
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    if (REALGetPropValueInt32(date, kFields[i], &fields.values[i]) == 0) return false;
  }
  return true;
}

// What a calendar date answers, in the order of the messages.
Fields fieldsOf(id calendarDate) {
  const auto year = send<NSInteger, "yearOfCommonEra">(calendarDate);
  const auto month = send<NSInteger, "monthOfYear">(calendarDate);
  const auto day = send<NSInteger, "dayOfMonth">(calendarDate);
  const auto second = send<NSInteger, "secondOfMinute">(calendarDate);
  const auto minute = send<NSInteger, "minuteOfHour">(calendarDate);
  const auto hour = send<NSInteger, "hourOfDay">(calendarDate);
  return {{static_cast<std::int32_t>(year), static_cast<std::int32_t>(month),
           static_cast<std::int32_t>(day), static_cast<std::int32_t>(hour),
           static_cast<std::int32_t>(minute), static_cast<std::int32_t>(second)}};
}

}  // namespace

id NewNSDate(REALdate date) {
  Fields fields;
  if (date == nullptr || !read(reinterpret_cast<REALobject>(date), fields)) return nullptr;
  const auto& [year, month, day, hour, minute, second] = fields.values;
  const id zone = send<id, "localTimeZone">(classNamed<"NSTimeZone">());
  return send<id, "dateWithYear:month:day:hour:minute:second:timeZone:">(
      classNamed<"NSCalendarDate">(), NSInteger{year}, static_cast<NSUInteger>(month),
      static_cast<NSUInteger>(day), static_cast<NSUInteger>(hour), static_cast<NSUInteger>(minute),
      static_cast<NSUInteger>(second), zone);
}

REALobject NSDateRB(id date) {
  const auto seconds = send<double, "timeIntervalSinceReferenceDate">(date);
  const id blank = send<id, "alloc">(classNamed<"NSCalendarDate">());
  const id calendarDate =
      autoreleased(send<id, "initWithTimeIntervalSinceReferenceDate:">(blank, seconds));
  if (calendarDate == nullptr) return nullptr;
  const Fields fields = fieldsOf(calendarDate);
  const REALobject made = REALnewInstance("Date");
  if (made == nullptr) return nullptr;
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    REALSetPropValueInt32(made, kFields[i], fields.values[i]);
  }
  return made;
}

}  // namespace zel
