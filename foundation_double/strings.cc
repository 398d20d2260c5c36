#include "foundation_double/strings.h"

#include <map>

#include "foundation_double/classes.h"
#include "foundation_double/literals.h"

namespace foundation_double::objc {
namespace {

zel::CFIndex length(zel::id self, zel::SEL /*selector*/) { return stringBody(self).length(); }

zel::BOOL isEqualToString(zel::id self, zel::SEL /*selector*/, zel::id other) {
  return other != nullptr && stringBody(self).units == stringBody(other).units;
}

}  // namespace

std::optional<std::string> StringBody::literal() const { return quoted(units); }

ClassDefinition stringClass() {
  return {.name = "NSString",
          .storable = true,
          .methods = {method("length", &length), method("isEqualToString:", &isEqualToString)}};
}

ClassDefinition mutableStringClass() {
  return {.name = "NSMutableString", .superName = "NSString", .storable = true};
}

zel::CFStringRef createString(std::u16string units, std::optional<zel::CFIndex> pretendedLength) {
  return createObject<zel::CFStringRef>(
      "NSString", std::make_unique<StringBody>(std::move(units), pretendedLength));
}

zel::CFMutableStringRef createMutableString(const StringBody& original) {
  return createObject<zel::CFMutableStringRef>(
      "NSMutableString", std::make_unique<StringBody>(original.units, original.pretendedLength));
}

zel::CFStringRef constantString(const std::string& utf8) {
  static auto* const constants = new std::map<std::string, zel::CFStringRef>;
  zel::CFStringRef& constant = (*constants)[utf8];
  if (constant == nullptr) {
    constant = handle<zel::CFStringRef>(Accounts::shared().createImmortal(
        Runtime::shared().require("NSString"), std::make_unique<StringBody>(fromUtf8(utf8))));
  }
  return constant;
}

}  // namespace foundation_double::objc
