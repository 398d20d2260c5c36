#include "foundation_double/literals.h"

#include "foundation_double/encodings.h"
#include "foundation_double/runtime.h"

namespace foundation_double::objc {

std::string literalOf(const void* object) {
  if (object == nullptr) return "nil";
  const Instance* const found = Accounts::shared().find(object);
  if (found == nullptr) misuseWithoutAnswer("a description of what is no object");
  if (found->dead) return "dead " + found->isa->name;
  const auto literal = found->body == nullptr ? std::nullopt : found->body->literal();
  return literal.value_or(found->isa->name);
}

std::string quoted(std::u16string_view units) {
  std::string text = "\"";
  for (const char byte : encodeLosslessly(units)) {
    if (byte == '"' || byte == '\\') text += '\\';
    text += byte;
  }
  return text + '"';
}

}  // namespace foundation_double::objc
