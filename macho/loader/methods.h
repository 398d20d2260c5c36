// The way into a bundle by a message: methods that it gives to classes of this system.
#pragma once

#include "native/objc.h"

namespace macho {

/// class_addMethod, for a method whose arguments and result are a word each. The runtime calls it
/// through enterBundle(). It stays with the class for good, the bundle's memory does not: no such
/// message may be sent once the bundle is gone. Ends the program when the types are of anything
/// else.
zel::BOOL addMethod(zel::Class* owner, zel::SEL selector, void (*implementation)(),
                    const char* types);

}  // namespace macho
