// Objects as literals in one line, for tests to compare.
#pragma once

#include <string>
#include <string_view>

namespace foundation_double::objc {

/// The object's literal; its class's name when it has none, "nil" for null. A dead object's class
/// follows "dead".
std::string literalOf(const void* object);
/// The text in quotes; quotes and backslashes in it follow a backslash.
std::string quoted(std::u16string_view units);

}  // namespace foundation_double::objc
