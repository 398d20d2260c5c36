// NSURL, which is CFURL. Only absolute texts: there are no base URLs.
#pragma once

#include <optional>
#include <string>

#include "native/corefoundation.h"
#include "testkit/foundation/accounts.h"

namespace testkit::objc {

struct UrlBody : Body {
  Held absoluteString;

  [[nodiscard]] std::optional<std::u16string> text() const override;
};

/// A new URL with one reference for the caller; null when the text is empty or holds a character
/// that must be escaped, or a bad escape.
zel::CFURLRef createUrl(const std::u16string& text);

}  // namespace testkit::objc
