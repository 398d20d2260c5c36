// How calls cross between the host and its plugins.
#pragma once

namespace host {

/// Directly, as it stands. Plugins that were built for another system raise native exceptions in
/// that system's way, which must be turned into this one's, and back, where calls cross. All
/// plugins of a host are of one kind.
struct Border {
  /// Calls body(context), which calls one function of a plugin and does nothing else.
  void (*enter)(void (*body)(void*), void* context) = [](void (*body)(void*), void* context) {
    body(context);
  };
  /// What a plugin is given in place of a function of the host; the same for the same function.
  void* (*outward)(void* function) = [](void* function) { return function; };

  /// enter(), for any callable. Nothing in it may have a destructor.
  template <class Body>
  void in(Body body) const {
    enter([](void* raw) { (*static_cast<Body*>(raw))(); }, &body);
  }
};

}  // namespace host
