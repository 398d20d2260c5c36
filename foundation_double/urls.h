// NSURL, which is CFURL. Only absolute texts: there are no base URLs.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation_double/accounts.h"
#include "native/corefoundation.h"

namespace foundation_double::objc {

struct UrlBody : Body {
  Held absoluteString;

  [[nodiscard]] std::optional<std::u16string> text() const override;
  [[nodiscard]] std::optional<std::string> literal() const override;
};

/// A new URL with one reference for the caller; null when the text is empty or holds a character
/// that must be escaped, or a bad escape.
zel::CFURLRef createUrl(const std::u16string& text);
/// A new URL of a file; the path is escaped as needed. @param path absolute.
zel::CFURLRef createFileUrl(std::u16string_view path);
/// The path that a file URL names; nullopt for any other URL.
std::optional<std::u16string> filePath(zel::CFURLRef url);

}  // namespace foundation_double::objc
