// Foundation's default time zone for the time of a test.
#pragma once

#include "tests/end_to_end/property_lists.h"

namespace tests {

/// The years whose dates are generated; what happens beyond them has tests of its own.
inline constexpr std::int32_t kFirstYear = -9999;
inline constexpr std::int32_t kLastYear = 30000;

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
