// The operators of the language.
#pragma once

#include <string_view>

namespace runner {

enum class Operator {
  add,
  subtract,
  multiply,
  divide,
  divideWhole,
  modulo,
  power,
  negate,
  equal,
  different,
  less,
  greater,
  lessOrEqual,
  greaterOrEqual,
  is,
  bothOf,
  eitherOf,
  oneOf,
  opposite
};

/// The sign or word that programs write for it.
std::string_view signOf(Operator op);
/// The same as names are compared: folded.
std::string_view keyOf(Operator op);

}  // namespace runner
