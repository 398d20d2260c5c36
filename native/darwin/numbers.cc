#include "native/numbers.h"

namespace zel {

// Foundation's booleans say "c" by themselves.
const char* zelNumberType(id number) { return send<const char*, "objCType">(number); }

}  // namespace zel
