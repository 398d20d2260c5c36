// Host objects, other than arrays, as native objects.
#pragma once

#include "bridge/nesting.h"
#include "native/objc.h"
#include "plugin/handles.h"

namespace zel {

/// A native object of a host object, which is only borrowed and not null. The result is not the
/// caller's; nil for what has no native object. Native exceptions pass.
id fromHostObject(REALobject object, Nesting nesting);

}  // namespace zel
