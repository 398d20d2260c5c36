// NSArray and NSMutableArray.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation_double/accounts.h"
#include "native/geometry.h"

namespace foundation_double::objc {

struct ArrayBody : Body {
  std::vector<Held> elements;
  std::optional<zel::NSUInteger> capacity;  // that it was asked for

  [[nodiscard]] std::optional<std::string> literal() const override;
};

/// A new, immutable list with one reference for the caller.
zel::id createArray(std::vector<Held> elements);

}  // namespace foundation_double::objc
