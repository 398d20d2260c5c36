// Foundation's default time zone for the time of a test, and the dates it can hold.
#pragma once

#include "tests/end_to_end/property_lists.h"

namespace tests {

/// On 32 bits GNUstep takes an earlier date for the 2nd of January of the year 1, midnight in UTC,
/// and a later one for that of the year 4001.
inline constexpr bool kNarrowDates = sizeof(void*) == 4;
/// The years whose dates Foundation can hold whole, in every zone; no year before 1 can be stored.
inline constexpr std::int32_t kFirstYear = 2;
inline constexpr std::int32_t kLastYear = kNarrowDates ? 4000 : 9999;

/// The zone in which host dates are read and made while this exists; then what it was before.
class DefaultZone {
 public:
  /// @param name such as "Europe/Berlin"; isKnown() tells whether Foundation knows it.
  explicit DefaultZone(std::string_view name)
      : before_(zel::retained(zel::send<zel::id, "defaultTimeZone">(zones()))),
        zone_(zel::retained(zel::send<zel::id, "timeZoneWithName:">(zones(), nativeText(name)))) {
    if (isKnown()) set(zone_);
  }
  ~DefaultZone() {
    set(before_);
    zel::release(before_);
    zel::release(zone_);
  }
  DefaultZone(const DefaultZone&) = delete;
  DefaultZone& operator=(const DefaultZone&) = delete;

  [[nodiscard]] bool isKnown() const { return zone_ != nullptr; }

 private:
  static zel::Class* zones() { return zel::classNamed<"NSTimeZone">(); }
  static void set(zel::id zone) { zel::send<void, "setDefaultTimeZone:">(zones(), zone); }

  zel::id before_;  // owned
  zel::id zone_;    // owned; null when unknown
};

}  // namespace tests
