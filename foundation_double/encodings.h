// Conversions between bytes and UTF-16 units.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "native/corefoundation.h"

namespace foundation_double::objc {

/// ISO 8859-1, which only older host programs still use.
inline constexpr zel::CFStringEncoding kLatin1 = 0x201;

/// The text of bytes in one of the 8-bit encodings (Mac Roman, Latin-1, ASCII, UTF-8); nullopt when
/// the encoding is none of these or the bytes are not valid in it.
std::optional<std::u16string> decode(std::string_view bytes, zel::CFStringEncoding encoding);

/// The text in UTF-8; nullopt when it holds a lone surrogate.
std::optional<std::string> encode(std::u16string_view units);
/// The same, with a lone surrogate in the three bytes that its code would take.
std::string encodeLosslessly(std::u16string_view units);
/// The text in Mac Roman; nullopt when it holds a character that Mac Roman lacks.
std::optional<std::string> encodeMacRoman(std::u16string_view units);
/// The units of text that is known to be valid UTF-8; anything else is misuse.
std::u16string fromUtf8(std::string_view utf8);

}  // namespace foundation_double::objc
