// The messengers of 32-bit macOS over the GNU runtime.
//
// They find the method and call it with the words that the bundle has passed. Where the two systems
// return a result in different ways, they return it in macOS's. All of them may raise, and have to
// be wrapped (passages.h).
#pragma once

#include <cstdint>

#include "native/objc.h"

namespace macho {

/// objc_msgSend. A message to nil gives 0. Structures of 1, 2, 4 and 8 bytes come back as a number;
/// numbers narrower than 32 bits are extended. Ends the program when the method gives back anything
/// that macOS's doesn't leave in these registers: floating-point numbers and other structures.
std::uint64_t sendMessage(zel::id receiver, zel::SEL selector, ...);
/// objc_msgSend_fpret. A message to nil gives 0. Ends the program when the method gives back
/// anything but a floating-point number.
long double sendMessageForFloat(zel::id receiver, zel::SEL selector, ...);
/// objc_msgSend_stret, to be wrapped with outwardForStructure(). A message to nil leaves the
/// structure as it is.
void sendMessageForStructure(void* result, zel::id receiver, zel::SEL selector, ...);

}  // namespace macho
