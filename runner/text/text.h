// Text in UTF-8 as the language sees it: by characters, and without regard to case.
#pragma once

#include <compare>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "host/folding.h"

namespace runner {

/// How many characters (code points) there are; a byte that is no part of one counts as one.
std::size_t characters(std::string_view text);
/// Where the n-th character starts, in bytes; the size of the text when there are fewer.
/// @param index counted from 0.
std::size_t byteOffset(std::string_view text, std::size_t index);
/// Characters from one on. @param from counted from 0. @param count of characters.
std::string_view middle(std::string_view text, std::size_t from, std::size_t count);
/// The code point at the start; the byte when there is none; nullopt for an empty text.
std::optional<int> firstCodePoint(std::string_view text);
/// A code point as text; "" for a number that is none.
std::string fromCodePoint(int codePoint);
/// The first byte that is no part of a character; npos when the text is well-formed.
std::size_t firstBadByte(std::string_view text);

/// The text with U+FFFD for every byte that is no part of a character.
std::string wellFormed(std::string_view text);
/// The text as one line of a terminal: what breaks lines becomes a space, and of a text that is
/// wider, the middle is left out. @param columns that there are; 0: no limit.
std::string oneLine(std::string_view text, std::size_t columns);

std::string uppercase(std::string_view text);
std::string lowercase(std::string_view text);
using host::folded;
/// Order without regard to case.
std::weak_ordering compareText(std::string_view left, std::string_view right);
/// Where a text stands in another, without regard to case: in bytes from the start, from an offset
/// on; npos when it doesn't. @param length receives how many bytes of the text it takes.
std::size_t findText(std::string_view text, std::string_view wanted, std::size_t from,
                     std::size_t* length);

std::string_view trimmedLeft(std::string_view text);
std::string_view trimmedRight(std::string_view text);

}  // namespace runner
