// The procedures that arrays hand out, by the type of their elements.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>
#include <typeinfo>

#include "host/internal/arrays.h"
#include "host/internal/element_types.h"
#include "host/internal/exceptions.h"
#include "host/internal/state.h"

namespace host::internal {

/// The live array of such elements; otherwise reports a failure and gives null.
template <class Element>
HostArray* arrayOf(State& state, const void* handle, const char* who) {
  auto* const array = state.ledger.find<HostArray>(handle, who);
  if (array == nullptr || *array->elementType().element == typeid(Element)) return array;
  state.failures.report(std::string(who) + " was given " + array->describe() +
                        ", which has other elements");
  return nullptr;
}

/// Whether an array has so many elements; otherwise raises an exception.
inline bool within(State& state, std::int32_t index, std::size_t size) {
  if (index >= 0 && static_cast<std::size_t>(index) < size) return true;
  raiseByName(state, kOutOfBounds);
  return false;
}

/// Adds a reference to an element that is a handle; false, with the failure reported, for a bad
/// one.
template <class Element>
bool holdElement(State& state, Element element, const char* who) {
  if constexpr (std::is_pointer_v<Element>) {
    return state.ledger.hold<typename ThingOf<Element>::type>(element, who);
  } else {
    return true;
  }
}

/// Reads an element, with a reference for the caller. False, and nothing read, when there is none.
template <class Element>
bool readFrom(State& state, const void* handle, std::int32_t index, Element* out, const char* who) {
  const auto* const array = arrayOf<Element>(state, handle, who);
  if (array == nullptr || !within(state, index, array->size())) return false;
  std::memcpy(out, array->at(static_cast<std::size_t>(index)), kSizeOf<Element>);
  return holdElement(state, *out, who);
}

template <class Element>
void readElement(zel::REALarray handle, std::int32_t index, Element* out) {
  constexpr char kWho[] = "an array's read procedure";
  readFrom(currentState(kWho), handle, index, out, kWho);
}

template <class Element>
void insertElement(zel::REALarray handle, std::int32_t index, Element element) {
  constexpr char kWho[] = "an array's insert procedure";
  State& state = currentState(kWho);
  auto* const array = arrayOf<Element>(state, handle, kWho);
  if (array == nullptr || !within(state, index, array->size() + 1)) return;
  if (holdElement(state, element, kWho))
    array->insert(static_cast<std::size_t>(index), reinterpret_cast<const std::byte*>(&element));
}

}  // namespace host::internal
