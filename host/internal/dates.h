// The host's class Date.
#pragma once

#include <stdexcept>

#include "host/internal/objects.h"
#include "host/value.h"

namespace host::internal {

/// A property of a Date and where its value stands among the fields.
struct DateField {
  const char* property;
  std::int32_t DateFields::*field;
};

inline constexpr DateField kDateFields[] = {
    {"Year", &DateFields::year}, {"Month", &DateFields::month},   {"Day", &DateFields::day},
    {"Hour", &DateFields::hour}, {"Minute", &DateFields::minute}, {"Second", &DateFields::second},
};

/// The fields of a Date. Throws std::invalid_argument for any other object.
inline DateFields dateFields(HostObject& date) {
  if (!date.hostClass().isA("Date")) throw std::invalid_argument("not a Date");
  DateFields fields;
  for (const DateField& field : kDateFields)
    fields.*field.field = std::get<std::int32_t>(*date.property(field.property));
  return fields;
}

inline void setDateFields(HostObject& date, const DateFields& fields) {
  for (const DateField& field : kDateFields) *date.property(field.property) = fields.*field.field;
}

}  // namespace host::internal
