// NSString, which is CFString.
#pragma once

#include <optional>
#include <string>

#include "foundation_double/accounts.h"
#include "foundation_double/encodings.h"
#include "native/corefoundation.h"

namespace foundation_double::objc {

struct StringBody : Body {
  std::u16string units;
  std::optional<zel::CFIndex> pretendedLength;

  explicit StringBody(std::u16string text, std::optional<zel::CFIndex> pretended = std::nullopt)
      : units(std::move(text)), pretendedLength(pretended) {}

  [[nodiscard]] std::optional<std::u16string> text() const override { return units; }
  [[nodiscard]] std::optional<std::string> literal() const override;
  [[nodiscard]] zel::CFIndex length() const {
    return pretendedLength.value_or(static_cast<zel::CFIndex>(units.size()));
  }
};

inline StringBody& stringBody(const void* string) { return bodyOf<StringBody>(string, "string"); }

/// A new string with one reference for the caller.
zel::CFStringRef createString(std::u16string units,
                              std::optional<zel::CFIndex> pretendedLength = std::nullopt);
/// A new string that can be changed, with one reference for the caller.
zel::CFMutableStringRef createMutableString(const StringBody& original);
/// The string of that text that lives as long as the process: the same one each time.
zel::CFStringRef constantString(const std::string& utf8);

}  // namespace foundation_double::objc
