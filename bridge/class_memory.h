// What objects of a class turned out to be, so that the next one of the class isn't asked again.
#pragma once

#include <cstddef>
#include <cstdint>

#include "native/objc.h"

namespace zel {

/// Remembers something about classes, which live as long as the process: for each the row of a
/// table that decided. It has room for as many classes as one program's values have, and more; when
/// two meet in one place, the later one is remembered.
/// @tparam Row what a row of the table is; rows are compared and kept by address.
template <class Row>
class ClassMemory {
 public:
  static constexpr std::size_t kPlaces = 64;

  /// The row of a class, or null while none is remembered. @param owner not nil.
  [[nodiscard]] const Row* rowOf(const Class* owner) const {
    const Place& place = places_[placeOf(owner)];
    return place.owner == owner ? place.row : nullptr;
  }

  /// Remembers the row of a class, if isKindOfClass: is answered for it as NSObject does: by the
  /// class alone. A proxy answers for the object that it stands for, so it has to be asked each
  /// time.
  /// @param owner not nil.
  void remember(Class* owner, const Row& row) {
    if (inheritsFromRoot<"isKindOfClass:">(owner)) places_[placeOf(owner)] = {owner, &row};
  }

  /// Where a class is remembered. The product's upper bits depend on every bit of the address,
  /// whose own lowest bits are the same for all classes.
  static std::size_t placeOf(const Class* owner) {
    constexpr std::uint32_t kGoldenRatio = 0x9E3779B9;
    constexpr int kShift = 32 - 6;
    static_assert(kPlaces == std::size_t{1} << (32 - kShift));
    const auto address = reinterpret_cast<std::uintptr_t>(owner);
    return (static_cast<std::uint32_t>(address >> 4) * kGoldenRatio) >> kShift;
  }

 private:
  struct Place {
    const Class* owner = nullptr;
    const Row* row = nullptr;
  };
  Place places_[kPlaces] = {};
};

}  // namespace zel
