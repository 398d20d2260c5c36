#include "runner/text/text.h"

#include <algorithm>
#include <cstdint>
#include <utf8proc.h>
#include <vector>

namespace runner {
namespace {

constexpr std::string_view kSpaces = " \t\r\n\v\f";

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

// The next character and its size in bytes; a byte that is no part of one stands for itself.
struct Character {
  utf8proc_int32_t codePoint;
  std::size_t size;
};

Character next(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  if (first < 0x80) return {first, 1};
  utf8proc_int32_t codePoint = 0;
  const utf8proc_ssize_t size =
      utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                       static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
  if (size <= 0) return {first, 1};
  return {codePoint, static_cast<std::size_t>(size)};
}

// How wide a character is on a terminal.
std::size_t columnsOf(const std::string& character) {
  return static_cast<std::size_t>(utf8proc_charwidth(next(character).codePoint));
}

template <class Map>
std::string mapped(std::string_view text, const Map& map) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const Character character = next(text);
    const bool whole = character.size > 1 || character.codePoint < 0x80;
    result += whole ? fromCodePoint(map(character.codePoint)) : std::string(text.substr(0, 1));
    text.remove_prefix(character.size);
  }
  return result;
}

}  // namespace

std::size_t characters(std::string_view text) {
  std::size_t count = 0;
  for (; !text.empty(); ++count) text.remove_prefix(next(text).size);
  return count;
}

std::size_t byteOffset(std::string_view text, std::size_t index) {
  std::size_t offset = 0;
  for (; index > 0 && offset < text.size(); --index) offset += next(text.substr(offset)).size;
  return offset;
}

std::string_view middle(std::string_view text, std::size_t from, std::size_t count) {
  text.remove_prefix(byteOffset(text, from));
  return text.substr(0, byteOffset(text, count));
}

std::optional<int> firstCodePoint(std::string_view text) {
  if (text.empty()) return std::nullopt;
  return next(text).codePoint;
}

std::string fromCodePoint(int codePoint) {
  constexpr std::size_t kLongest = 4;
  if (!utf8proc_codepoint_valid(codePoint)) return "";
  utf8proc_uint8_t bytes[kLongest];
  const utf8proc_ssize_t size = utf8proc_encode_char(codePoint, bytes);
  return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

std::size_t firstBadByte(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const Character character = next(text.substr(at));
    if (character.size == 1 && character.codePoint >= 0x80) return at;
    at += character.size;
  }
  return std::string_view::npos;
}

std::string wellFormed(std::string_view text) {
  constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
  std::string result;
  for (;;) {
    const std::size_t bad = firstBadByte(text);
    result += text.substr(0, bad);
    if (bad == std::string_view::npos) return result;
    result += kReplacement;
    text.remove_prefix(bad + 1);
  }
}

std::string oneLine(std::string_view text, std::size_t columns) {
  constexpr std::string_view kGap = " ... ";
  std::vector<std::string> shown;  // by character
  std::size_t width = 0;
  for (bool broken = false; !text.empty();) {
    const Character character = next(text);
    const bool breaks = utf8proc_category(character.codePoint) == UTF8PROC_CATEGORY_CC;
    if (breaks && !broken) shown.emplace_back(" ");
    if (!breaks) shown.emplace_back(wellFormed(text.substr(0, character.size)));
    broken = breaks;
    text.remove_prefix(character.size);
  }
  while (!shown.empty() && shown.back() == " ") shown.pop_back();
  for (const std::string& character : shown) width += columnsOf(character);
  std::size_t head = 0;
  std::size_t tail = shown.size();
  if (columns > kGap.size() && width > columns) {
    const std::size_t room = columns - kGap.size();
    for (std::size_t used = 0; (used += columnsOf(shown[head])) <= room - room / 2;) ++head;
    for (std::size_t used = 0; (used += columnsOf(shown[tail - 1])) <= room / 2;) --tail;
  } else {
    head = tail;
  }
  std::string line;
  for (std::size_t i = 0; i < head; ++i) line += shown[i];
  if (head < tail) line += kGap;
  for (std::size_t i = tail; i < shown.size(); ++i) line += shown[i];
  return line;
}

std::string uppercase(std::string_view text) {
  // The sharp s has a capital letter that hardly anybody writes.
  constexpr utf8proc_int32_t kSharpS = 0xDF;
  return mapped(text, [](utf8proc_int32_t c) { return c == kSharpS ? c : utf8proc_toupper(c); });
}

std::string lowercase(std::string_view text) { return mapped(text, utf8proc_tolower); }

std::weak_ordering compareText(std::string_view left, std::string_view right) {
  return folded(left) <=> folded(right);
}

std::size_t findText(std::string_view text, std::string_view wanted, std::size_t from,
                     std::size_t* length) {
  const std::string key = folded(wanted);
  *length = wanted.size();
  if (isAscii(text)) {
    const std::size_t found = folded(text.substr(from)).find(key);
    return found == std::string::npos ? found : from + found;
  }
  // Folding can change how many bytes a character takes, so as many characters are compared.
  const std::size_t count = characters(wanted);
  for (std::size_t at = from; at <= text.size();) {
    const std::string_view candidate = middle(text.substr(at), 0, count);
    *length = candidate.size();
    if (folded(candidate) == key) return at;
    if (at == text.size()) break;
    at += next(text.substr(at)).size;
  }
  return std::string::npos;
}

std::string_view trimmedLeft(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(kSpaces), text.size()));
}

std::string_view trimmedRight(std::string_view text) {
  return text.substr(0, text.find_last_not_of(kSpaces) + 1);
}

}  // namespace runner
