#include "bridge/nesting.h"

#include "plugin/errors.h"

namespace zel {

void Nesting::refuse() {
  static_assert(kDeepestValue == 256, "the message names it");
  raiseAndLeave("StackOverflowException",
                "A value can't hold itself, nor more than 256 levels of arrays and dictionaries.");
}

}  // namespace zel
