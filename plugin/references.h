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

/// Drops a reference and forgets it. @param held nullable; null afterwards.
template <class Handle>
inline void drop(Handle& held) {
  const Handle dropped = held;
  held = nullptr;
  unlock(dropped);
}

/// What a loop over a list holds: the element that it is at, and a text that is held while that one
/// is converted. Both are nullable.
template <class Handle>
struct HeldElement {
  Handle element = nullptr;
  REALstring text = nullptr;
};

/// Drops both.
template <class Handle>
inline void drop(HeldElement<Handle>& held) {
  drop(held.element);
  drop(held.text);
}

/// Runs the body with a place for the host references that a loop holds, one after the other. What
/// is in it when the body ends is dropped, also when a native exception passes: one clean-up for
/// the whole loop, because on some targets each is worth a call by itself.
template <class Handle, class Body>
inline void holding(Body&& body) {
  Handle held{};
  withCleanup([&] { body(held); }, [&] { drop(held); });
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
