#include "testkit/siblings/runtime.h"

extern "C" {
// Of the Objective-C runtime.
zel::Class* objc_getMetaClass(const char* className);
bool class_addMethod(zel::Class* owner, zel::SEL selector, void (*implementation)(),
                     const char* types);
}

namespace testkit {

AddClassMethod addToRuntime() {
  return [](const char* selector, void (*implementation)(), const char* types) {
    class_addMethod(objc_getMetaClass("NSException"), zel::sel_registerName(selector),
                    implementation, types);
  };
}

}  // namespace testkit
