// What is measured: each road through the plugin, beside the same work done directly.
#pragma once

#include <cstdint>
#include <span>

namespace bench {

/// What the plugin may cost, in instructions on 64-bit Linux.
struct Bound {
  enum class Kind : std::uint8_t { none, added, ratio };
  Kind kind = Kind::none;
  double most = 0;  // instructions on top of the direct ones, or a multiple of them
};

struct Road {
  const char* family;
  const char* name;
  std::int32_t entries;  // of the value; 1 for a single one
  Bound bound;
  /// Puts into the store, and makes, what one call of that many entries needs. Nullable.
  void (*prepare)(std::int32_t entries);
  void (*direct)();
  void (*plugin)();
};

std::span<const Road> roads();

/// Reads one value, which isn't there, through the plugin or directly.
void readFirst(bool throughPlugin);

/// The single values of the store that the roads read. Before any road, with the plugin loaded.
void prepareStore();

}  // namespace bench
