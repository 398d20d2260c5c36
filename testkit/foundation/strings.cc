#include "testkit/foundation/strings.h"

#include <map>

#include "testkit/foundation/classes.h"

namespace testkit::objc {
namespace {

zel::CFIndex length(zel::id self, zel::SEL /*selector*/) { return stringBody(self).length(); }

zel::BOOL isEqualToString(zel::id self, zel::SEL /*selector*/, zel::id other) {
  return other != nullptr && stringBody(self).units == stringBody(other).units;
}

}  // namespace

ClassDefinition stringClass() {
  return {.name = "NSString",
          .storable = true,
          .methods = {method("length", &length), method("isEqualToString:", &isEqualToString)}};
}

zel::CFStringRef createString(std::u16string units, std::optional<zel::CFIndex> pretendedLength) {
  return createObject<zel::CFStringRef>(
      "NSString", std::make_unique<StringBody>(std::move(units), pretendedLength));
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

}  // namespace testkit::objc
