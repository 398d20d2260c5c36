// NSDate, NSCalendarDate and NSTimeZone. Time zones are a fixed distance from Greenwich.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "foundation_double/accounts.h"
#include "native/objc.h"

namespace foundation_double::objc {

struct DateBody : Body {
  double seconds = 0;            // since the first instant of 2001 in Greenwich
  std::int32_t zoneSeconds = 0;  // east of Greenwich; what a calendar date's fields are in

  [[nodiscard]] std::optional<std::string> literal() const override;
};

/// A new NSDate with one reference for the caller.
zel::id createDate(double seconds);

/// The local time zone, in seconds east of Greenwich.
std::int32_t& localZoneSeconds();

}  // namespace foundation_double::objc
