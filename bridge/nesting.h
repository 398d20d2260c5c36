// How deep lists and dictionaries stand within each other while a value is converted.
#pragma once

#include <cstdint>

namespace zel {

/// How many lists and dictionaries may stand within each other in one value. A conversion recurses,
/// and so does Foundation with what comes of it: on no target does this take half of the 512 KiB of
/// stack that a thread has at least.
inline constexpr std::int32_t kDeepestValue = 256;

/// Where a conversion is in the value that it converts: how many lists and dictionaries stand
/// around it.
class Nesting {
 public:
  constexpr Nesting() = default;
  /// For the dictionary of a whole domain, which stands around values that may be as deep as any.
  static constexpr Nesting aroundValues() { return Nesting(-1); }

  /// Inside of one more. Where that is one too many, for example because something holds itself,
  /// the host's "StackOverflowException" is raised and the guard that is open is left.
  [[nodiscard]] Nesting deeper() const {
    if (level_ == kDeepestValue) refuse();
    return Nesting(level_ + 1);
  }

 private:
  constexpr explicit Nesting(std::int32_t level) : level_(level) {}
  [[noreturn]] static void refuse();

  std::int32_t level_ = 0;
};

}  // namespace zel
