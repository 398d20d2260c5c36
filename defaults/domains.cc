// The store as a whole.
#include "defaults/instance.h"
#include "plugin/errors.h"
#include "plugin/methods.h"

namespace zel {
extern "C" {

HostBoolean synchronize(REALobject instance) {
  NSUserDefaults* const defaults = wrappedAtFixedPosition(instance);
  return guarded<HostBoolean>(
      [&] { return static_cast<HostBoolean>(send<BOOL, "synchronize">(defaults)); });
}

}  // extern "C"
}  // namespace zel
