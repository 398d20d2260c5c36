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
  host::Value value;  // of a number

  /// Whether it is this sign or, in any case, this word.
  [[nodiscard]] bool is(std::string_view wanted) const;
};

/// All tokens of a program; comments and continued line ends are gone, the last one is Kind::end.
/// Throws Problem.
std::vector<Token> tokens(const Source& source);

}  // namespace runner
