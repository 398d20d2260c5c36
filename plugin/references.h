// Host references that a function holds for the time of its work.
#pragma once

#include "native/exceptions.h"
#include "plugin/host.h"

namespace zel {

/// Adds a reference. @param object nullable.
inline void lock(REALobject object) {
  if (object != nullptr) REALLockObject(object);
}

/// Adds a reference. @param string nullable.
inline void lock(REALstring string) {
  if (string != nullptr) REALLockString(string);
}

/// Drops a reference. @param object nullable.
inline void unlock(REALobject object) {
  if (object != nullptr) REALUnlockObject(object);
}

/// Drops a reference. @param string nullable.
inline void unlock(REALstring string) {
  if (string != nullptr) REALUnlockString(string);
}

/// Runs the body with a host object or string, whose reference is dropped afterwards, also when a
/// native exception passes. Gives back the body's result.
/// @param held nullable.
template <class Handle, class Body>
inline auto unlocking(Handle held, Body body) {
  return withCleanup([&] { return body(held); }, [&] { unlock(held); });
}

/// Runs the body with a new host object, then gives the object to the caller. When a native
/// exception passes, its reference is dropped.
template <class Body>
inline REALobject handingOver(REALobject made, Body body) {
  bool complete = false;
  return withCleanup(
      [&] {
        body(made);
        complete = true;
        return made;
      },
      [&] {
        if (!complete) REALUnlockObject(made);
      });
}

}  // namespace zel
