// The host class NSExceptionZEL: a host exception that describes a native one.
#pragma once

#include "native/objc.h"
#include "plugin/handles.h"

namespace zel {

/// A new host object that describes a native exception and keeps a reference on it, with one
/// reference for the caller: "Message" is the exception's reason, "ErrorNumber" is 0. An object of
/// another plugin's class of that name has these properties alone. Native exceptions pass.
/// @param exception nullable.
/// @returns null for nil and when the host makes none.
[[nodiscard]] REALobject newHostException(NSException* exception);

extern "C" {

// The functions that the host calls. An object that no native exception stands behind, made by the
// host program itself for example, answers with nothing.

/// Class hook: the object dies.
void NSExceptionDestructor(REALobject instance);
/// One reference for the caller, as with the two below; null for none.
REALstring exceptionName(REALobject instance);
REALstring exceptionReason(REALobject instance);
/// What Foundation noted beside it, a Dictionary.
REALobject exceptionUserInfo(REALobject instance);

}  // extern "C"
}  // namespace zel
