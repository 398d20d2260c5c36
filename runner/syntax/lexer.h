// Programs as words, numbers, texts and signs.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/value.h"
#include "runner/text/source.h"

namespace runner {

struct Token {
  enum class Kind { word, number, text, sign, endOfLine, end };

  Kind kind = Kind::end;
  Place place;
  std::string text;   // of a word or a sign as written; of a text what it says
  std::string key;    // of a word or a sign: as names are compared, folded; else ""
  host::Value value;  // of a number
  bool bits = false;  // of a number: by its digits in another base than ten

  /// Whether it is this sign or, in any case, this word. @param wanted folded.
  [[nodiscard]] bool is(std::string_view wanted) const { return key == wanted; }
  [[nodiscard]] Word word() const { return {text, key, place}; }
};

/// All tokens of a program; comments and continued line ends are gone, the last one is Kind::end.
/// Throws Problem.
std::vector<Token> tokens(const Source& source);

}  // namespace runner
