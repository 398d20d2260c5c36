// What the current host consists of. The services beside it are functions over this state.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "host/host.h"
#include "host/internal/arrays.h"
#include "host/internal/control.h"
#include "host/internal/ledger.h"
#include "host/internal/objects.h"
#include "host/internal/strings.h"

namespace host::internal {

struct State {
  explicit State(HostOptions hostOptions);

  HostOptions options;
  Failures failures;
  Control control;
  Ledger ledger{failures};
  Classes classes;
  BufferAccounts buffers;
  std::vector<zel::REALobject> pending;  // raised exceptions, each with a reference of the host
  std::optional<std::int32_t> announcedVersion;
  std::vector<const void*> describing;  // the objects that describe() is inside of, outermost first
};

/// The live thing that a test refers to; throws std::invalid_argument when it is of another class.
template <class T>
T& thingOf(const State& state, const ObjectRef& object) {
  T* const found = state.ledger.peek<T>(object.handle());
  if (found == nullptr) throw std::invalid_argument("not " + std::string(T::kWhat));
  return *found;
}

/// What a plugin is given in place of the function; null for null.
inline void* outward(const State& state, void* function) {
  return function == nullptr ? nullptr : state.options.border.outward(function);
}

/// The state of the current host. Without one, prints who asked and aborts.
State& currentState(std::string_view who);

}  // namespace host::internal
