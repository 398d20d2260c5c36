// How failures reach the host program: as host exceptions, never as native ones.
#pragma once

#include <cstdint>

#include "native/corefoundation.h"
#include "native/exceptions.h"
#include "plugin/handles.h"

namespace zel {

/// The map from native objects to the host objects that wrap them, shared by every plugin of the
/// family and owned by another one. It retains neither. Null while nobody provides it.
extern CFMutableDictionaryRef instances;
/// Whether PrepareNSExceptionZEL has been sent.
extern bool ExceptionsInitialized;

/// Asks the other plugins of the family for the instances map and has them prepare native exception
/// handling. What has succeeded is not done again; what has not is tried at every call. Native
/// exceptions pass.
void CocoaInit();

/// Gives a host exception its message and the number that every exception of these plugins has, 0.
/// @param exception not null.
/// @param message   nullable: no message.
void describeException(REALobject exception, REALstring message);

/// Raises a host exception. It pends in the host until the plugin's method returns, so the caller
/// cleans up and returns as usual. When the host can't make one, nothing is raised.
/// @param className   of the host's exception class; "RuntimeException" stands in for an unknown
/// one.
/// @param message     ASCII; null or empty: the exception has no message.
/// @param errorNumber taken and never used, deliberately: every exception raised here has number 0.
void RaiseException(const char* className, const char* message, std::uint32_t errorNumber);

/// Raises a host exception as above, with number 0, and leaves the body of the guard that is open,
/// which then gives its neutral result. What holds references on the way gives them back. Only for
/// code that a guard has called.
[[noreturn]] void raiseAndLeave(const char* className, const char* message);

/// Tells the host about a native exception that left a method: a log line, then the host exception
/// that the family makes of it, if it makes one. What is no NSException is thrown on.
/// @param exception not null.
void reportNativeException(id exception);

/// The native exception guard around the body of a method that the host calls: gives back the
/// body's result, or R{} after a native exception, which is then reported to the host. Nothing that
/// the body had done is undone.
template <class R = void, class Body>
inline R guarded(Body body) {
  if constexpr (std::is_void_v<R>) {
    if (const id thrown = catching(body)) reportNativeException(thrown);
  } else {
    // In one piece: what the guard hands on is one address.
    struct {
      Body body;
      R result;
      void operator()() { result = body(); }
    } call{body, R{}};
    if (const id thrown = catching(call)) reportNativeException(thrown);
    return call.result;
  }
}

}  // namespace zel
