// Numbers by a pattern, as the language's Format gives them.
#pragma once

#include <string>
#include <string_view>

namespace runner {

/// @param pattern up to three, with ";" between them: for positive numbers, for negative ones, for
/// 0.
///   #   a digit that is left out when it isn't needed
///   0   a digit that is always there
///   .   where the decimals begin; digits behind it say how many there are
///   ,   among the digits: groups of three get commas
///   %   the number as a percentage
///   -   a minus sign when the number is negative
///   +   a plus or minus sign
///   E+  or E-: the number with an exponent
///   \c  the character c
/// Every other character stands for itself. A sign is shown only where the pattern has one.
std::string formatted(double number, std::string_view pattern);

}  // namespace runner
