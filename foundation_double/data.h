// NSData.
#pragma once

#include <optional>
#include <string>

#include "foundation_double/accounts.h"
#include "native/geometry.h"

namespace foundation_double::objc {

struct DataBody : Body {
  std::string bytes;
  std::optional<zel::NSUInteger> pretendedLength;
  bool isWithoutBytes = false;  // their address is null

  [[nodiscard]] std::optional<std::string> literal() const override;
};

/// New data with one reference for the caller.
zel::id createData(std::unique_ptr<DataBody> body);

}  // namespace foundation_double::objc
