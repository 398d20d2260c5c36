// The paths within the texts of URLs.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace foundation_double::objc {

/// The text with every character escaped that may not stand in a path.
std::u16string escapedPath(std::u16string_view path);
/// The same for one component, in which slashes are escaped too.
std::u16string escapedComponent(std::u16string_view component);
/// A URL that is cut where its path begins and ends. Escapes are left as they are.
struct UrlParts {
  std::u16string_view head;  // scheme and authority
  std::u16string_view path;  // begins with a slash
  std::u16string_view tail;  // query and fragment
};
/// nullopt: the URL has no path that begins with a slash.
std::optional<UrlParts> urlParts(std::u16string_view url);
/// The text with its escapes resolved; nullopt when they are no UTF-8.
std::optional<std::u16string> unescaped(std::u16string_view path);
/// The path without the last component, up to and with the slash before it; empty for "/".
std::u16string_view pathOfFolder(std::u16string_view path);
/// The last component, without slashes around it; "/" for "/".
std::u16string_view lastComponent(std::u16string_view path);

}  // namespace foundation_double::objc
