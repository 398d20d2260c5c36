#include "foundation_double/encodings.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "foundation_double/faults.h"

namespace foundation_double::objc {
namespace {

/// Mac Roman from 0x80 on, as Core Foundation maps it.
constexpr char16_t kMacRoman[] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1,  // 0x80
    0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5, 0x00E7, 0x00E9, 0x00E8,  // 0x88
    0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,  // 0x90
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC,  // 0x98
    0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6, 0x00DF,  // 0xA0
    0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,  // 0xA8
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211,  // 0xB0
    0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8,  // 0xB8
    0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,  // 0xC0
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153,  // 0xC8
    0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA,  // 0xD0
    0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,  // 0xD8
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,  // 0xE0
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4,  // 0xE8
    0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,  // 0xF0
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,  // 0xF8
};
static_assert(std::size(kMacRoman) == 128);

/// What decodes one byte; nullopt for a byte that stands for nothing.
using ByteDecoder = std::optional<char16_t> (*)(unsigned char byte);

std::optional<char16_t> fromAscii(unsigned char byte) {
  if (byte >= 0x80) return std::nullopt;
  return byte;
}

std::optional<char16_t> fromLatin1(unsigned char byte) { return byte; }

std::optional<char16_t> fromMacRoman(unsigned char byte) {
  return byte < 0x80 ? char16_t{byte} : kMacRoman[byte - 0x80];
}

template <ByteDecoder Decode>
std::optional<std::u16string> decodeBytes(std::string_view bytes) {
  std::u16string units;
  for (const char byte : bytes) {
    const auto unit = Decode(static_cast<unsigned char>(byte));
    if (!unit) return std::nullopt;
    units += *unit;
  }
  return units;
}

/// A lead byte's share of a UTF-8 sequence.
struct Sequence {
  std::size_t length;
  char32_t least;      // the smallest code that needs that length
  unsigned char mask;  // which bits of the lead byte tell its kind
  unsigned char lead;  // and what they are
};
constexpr Sequence kSequences[] = {
    {1, 0, 0x80, 0x00}, {2, 0x80, 0xE0, 0xC0}, {3, 0x800, 0xF0, 0xE0}, {4, 0x10000, 0xF8, 0xF0}};

constexpr bool isSurrogate(char32_t code) { return code >= 0xD800 && code < 0xE000; }

/// Takes one code from the front of the bytes; nullopt when they don't begin with a valid one.
std::optional<char32_t> takeCode(std::string_view& bytes) {
  const auto lead = static_cast<unsigned char>(bytes.front());
  const auto* const kind =
      std::find_if(std::begin(kSequences), std::end(kSequences),
                   [lead](const Sequence& line) { return (lead & line.mask) == line.lead; });
  if (kind == std::end(kSequences) || bytes.size() < kind->length) return std::nullopt;
  char32_t code = lead & static_cast<unsigned char>(~kind->mask);
  for (const char next : bytes.substr(1, kind->length - 1)) {
    const auto byte = static_cast<unsigned char>(next);
    if ((byte & 0xC0) != 0x80) return std::nullopt;
    code = code << 6 | (byte & 0x3FU);
  }
  if (code < kind->least || code > 0x10FFFF || isSurrogate(code)) return std::nullopt;
  bytes.remove_prefix(kind->length);
  return code;
}

std::optional<std::u16string> decodeUtf8(std::string_view bytes) {
  std::u16string units;
  while (!bytes.empty()) {
    const auto code = takeCode(bytes);
    if (!code) return std::nullopt;
    if (*code < 0x10000) {
      units += static_cast<char16_t>(*code);
    } else {
      units += static_cast<char16_t>(0xD7C0 + (*code >> 10));
      units += static_cast<char16_t>(0xDC00 + (*code & 0x3FF));
    }
  }
  return units;
}

struct Encoding {
  zel::CFStringEncoding number;
  std::optional<std::u16string> (*decode)(std::string_view bytes);
};
constexpr Encoding kEncodings[] = {
    {zel::kCFStringEncodingASCII, decodeBytes<fromAscii>},
    {zel::kCFStringEncodingMacRoman, decodeBytes<fromMacRoman>},
    {kLatin1, decodeBytes<fromLatin1>},
    {zel::kCFStringEncodingUTF8, decodeUtf8},
};

/// Takes one code from the front of the units, a lone surrogate as its own code.
char32_t takeCode(std::u16string_view& units) {
  const char32_t first = units.front();
  units.remove_prefix(1);
  if (first < 0xD800 || first >= 0xDC00 || units.empty()) return first;
  const char32_t second = units.front();
  if (second < 0xDC00 || second >= 0xE000) return first;
  units.remove_prefix(1);
  return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

void appendUtf8(std::string& bytes, char32_t code) {
  const auto* const next = std::find_if(std::begin(kSequences), std::end(kSequences),
                                        [code](const Sequence& line) { return code < line.least; });
  const Sequence& kind = *std::prev(next);
  for (std::size_t i = 0; i < kind.length; ++i) {
    const std::size_t shift = 6 * (kind.length - 1 - i);
    const char32_t bits = code >> shift;
    bytes += static_cast<char>(i == 0 ? kind.lead | bits : 0x80 | (bits & 0x3F));
  }
}

}  // namespace

std::optional<std::u16string> decode(std::string_view bytes, zel::CFStringEncoding encoding) {
  const auto* const known =
      std::find_if(std::begin(kEncodings), std::end(kEncodings),
                   [encoding](const Encoding& line) { return line.number == encoding; });
  return known == std::end(kEncodings) ? std::nullopt : known->decode(bytes);
}

std::optional<std::string> encode(std::u16string_view units) {
  std::string bytes;
  while (!units.empty()) {
    const char32_t code = takeCode(units);
    if (isSurrogate(code)) return std::nullopt;
    appendUtf8(bytes, code);
  }
  return bytes;
}

std::string encodeLosslessly(std::u16string_view units) {
  std::string bytes;
  while (!units.empty()) appendUtf8(bytes, takeCode(units));
  return bytes;
}

std::optional<std::string> encodeMacRoman(std::u16string_view units) {
  std::string bytes;
  for (const char16_t unit : units) {
    const auto* const found = std::find(std::begin(kMacRoman), std::end(kMacRoman), unit);
    if (unit >= 0x80 && found == std::end(kMacRoman)) return std::nullopt;
    bytes += static_cast<char>(unit < 0x80 ? unit : 0x80 + (found - std::begin(kMacRoman)));
  }
  return bytes;
}

std::u16string fromUtf8(std::string_view utf8) {
  auto units = decodeUtf8(utf8);
  if (!units) misuseWithoutAnswer("text that is not UTF-8");
  return *std::move(units);
}

}  // namespace foundation_double::objc
