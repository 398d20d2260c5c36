#include "host/family/double.h"

#include "foundation_double/foundation.h"

namespace host {

using foundation_double::Foundation;

AddMethod addToDouble() {
  return [](const NativeMethod& method) {
    Foundation& foundation = Foundation::shared();
    if (zel::lookUpClass(method.className) == nullptr)
      foundation.addClass(method.className, method.superName);
    if (method.ofClass) {
      foundation.addClassMethod(method.className, method.selector, method.implementation);
    } else {
      foundation.addMethod(method.className, method.selector, method.implementation);
    }
  };
}

}  // namespace host
