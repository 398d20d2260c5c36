// Conversions between the text encodings that the host knows, numbered as Core Foundation does:
// Mac Roman, ASCII, Latin-1, UTF-8 and UTF-16 in machine byte order.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host::internal {

inline constexpr std::uint32_t kMacRoman = 0;
inline constexpr std::uint32_t kUtf16 = 0x100;
inline constexpr std::uint32_t kLatin1 = 0x201;
inline constexpr std::uint32_t kAscii = 0x600;
inline constexpr std::uint32_t kUtf8 = 0x08000100;

/// The bytes in another encoding; nullopt when either encoding is unknown, the bytes are not valid
/// in theirs, or the other one can't express them.
std::optional<std::string> convert(std::string_view bytes, std::uint32_t from, std::uint32_t to);

}  // namespace host::internal
