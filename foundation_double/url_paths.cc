#include "foundation_double/url_paths.h"

#include <algorithm>

#include "foundation_double/encodings.h"

namespace foundation_double::objc {
namespace {

constexpr std::u16string_view kSlash = u"/";
constexpr char kHexDigits[] = "0123456789ABCDEF";
/// What may stand in a path by itself, beside letters and digits.
constexpr std::string_view kPathMarks = "/-_.!~*'():@&=+$,";
constexpr std::string_view kComponentMarks = kPathMarks.substr(1);

bool isPlain(char byte, std::string_view marks) {
  return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= 'a' && byte <= 'z') || marks.find(byte) != std::string_view::npos;
}

std::u16string escaped(std::u16string_view original, std::string_view marks) {
  std::u16string text;
  for (const char byte : encodeLosslessly(original)) {
    const auto bits = static_cast<unsigned char>(byte);
    if (isPlain(byte, marks)) {
      text += static_cast<char16_t>(byte);
    } else {
      text += u'%';
      text += static_cast<char16_t>(kHexDigits[bits >> 4]);
      text += static_cast<char16_t>(kHexDigits[bits & 0xF]);
    }
  }
  return text;
}

unsigned hexValue(char16_t digit) {
  if (digit <= u'9') return digit - unsigned{u'0'};
  return (digit & ~0x20U) - unsigned{u'A'} + 10;
}

/// A path without the slashes at its end.
std::u16string_view withoutEnd(std::u16string_view path) {
  const std::size_t last = path.find_last_not_of(kSlash);
  return last == std::u16string_view::npos ? std::u16string_view() : path.substr(0, last + 1);
}

}  // namespace

std::u16string escapedPath(std::u16string_view path) { return escaped(path, kPathMarks); }

std::u16string escapedComponent(std::u16string_view component) {
  return escaped(component, kComponentMarks);
}

std::optional<UrlParts> urlParts(std::u16string_view url) {
  const std::size_t colon = url.find(u':');
  if (colon == std::u16string_view::npos) return std::nullopt;
  std::size_t begin = colon + 1;
  if (url.substr(begin, 2) == u"//") begin = url.find_first_of(u"/?#", begin + 2);
  if (begin >= url.size() || url[begin] != u'/') return std::nullopt;
  const std::size_t end = std::min(url.find_first_of(u"?#", begin), url.size());
  return UrlParts{url.substr(0, begin), url.substr(begin, end - begin), url.substr(end)};
}

std::optional<std::u16string> unescaped(std::u16string_view path) {
  std::string bytes;
  while (!path.empty()) {
    const bool isEscape = path.front() == u'%';
    bytes += static_cast<char>(isEscape ? hexValue(path[1]) << 4 | hexValue(path[2])
                                        : unsigned{path.front()});
    path.remove_prefix(isEscape ? 3 : 1);
  }
  return decode(bytes, zel::kCFStringEncodingUTF8);
}

std::u16string_view pathOfFolder(std::u16string_view path) {
  const std::u16string_view item = withoutEnd(path);
  return item.empty() ? item : item.substr(0, item.find_last_of(kSlash) + 1);
}

std::u16string_view lastComponent(std::u16string_view path) {
  const std::u16string_view item = withoutEnd(path);
  return item.empty() ? kSlash : item.substr(item.find_last_of(kSlash) + 1);
}

}  // namespace foundation_double::objc
