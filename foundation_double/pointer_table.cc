#include "foundation_double/pointer_table.h"

#include "foundation_double/classes.h"

namespace foundation_double::objc {

ClassDefinition pointerTableClass() { return {.name = "CFPointerTable"}; }

zel::CFMutableDictionaryRef createPointerTable() {
  return createObject<zel::CFMutableDictionaryRef>("CFPointerTable",
                                                   std::make_unique<PointerTableBody>());
}

zel::CFMutableDictionaryRef sharedPointerTable() {
  static Instance* const table = Accounts::shared().createImmortal(
      Runtime::shared().require("CFPointerTable"), std::make_unique<PointerTableBody>());
  return handle<zel::CFMutableDictionaryRef>(table);
}

}  // namespace foundation_double::objc
