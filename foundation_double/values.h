// NSValue and NSNull.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "foundation_double/accounts.h"
#include "native/geometry.h"

namespace foundation_double::objc {

struct ValueBody : Body {
  std::string type;
  bool isFilled = false;  // false: only the type is known
  std::array<std::byte, sizeof(zel::NSRect)> bytes{};

  [[nodiscard]] std::optional<std::string> literal() const override;
};

/// New values with one reference for the caller; of one that is only a type, nothing can be read.
zel::id createValue(zel::NSPoint point);
zel::id createValue(zel::NSSize size);
zel::id createValue(zel::NSRect rect);
zel::id createValue(zel::NSRange range);
zel::id createValue(const std::string& type);

/// The NSNull; it lives as long as the process.
zel::id sharedNull();

}  // namespace foundation_double::objc
