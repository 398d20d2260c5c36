#include "runner/run/arrays.h"

#include <cstdint>
#include <optional>
#include <string>

#include "runner/run/values.h"

namespace runner {
namespace {

// The elements of an array that no program can make larger.
constexpr std::int32_t kMostElements = 1 << 26;

}  // namespace

host::Array arrayIn(Machine& machine, const Value& value) {
  const auto* const object = std::get_if<ObjectRef>(&value);
  const std::optional<host::Array> array =
      object == nullptr ? std::nullopt : machine.host().findArray(*object);
  if (!array) machine.raise("NilObjectException", "This array is Nil.");
  return *array;
}

std::size_t checkedIndex(Machine& machine, const host::Array& array, const Value& index,
                         std::size_t extra) {
  const auto wanted = numberOf<std::int64_t>(index);
  const std::size_t size = array.size();
  if (wanted < 0 || static_cast<std::uint64_t>(wanted) >= size + extra) {
    machine.raise("OutOfBoundsException", "Index " + std::to_string(wanted) +
                                              " is outside of the array, whose last index is " +
                                              std::to_string(static_cast<std::int64_t>(size) - 1) +
                                              ".");
  }
  return static_cast<std::size_t>(wanted);
}

Value elementOf(Machine& machine, const Value& array, const Value& index) {
  const host::Array found = arrayIn(machine, array);
  return found.at(checkedIndex(machine, found, index));
}

void setElement(Machine& machine, const Value& array, const Value& index, const Value& value) {
  host::Array found = arrayIn(machine, array);
  found.replace(checkedIndex(machine, found, index), value);
}

Value newArray(Machine& machine, Type type, const std::vector<Value>& elements) {
  return machine.host().array(type->element->arrayCode, elements);
}

void resizeArray(Machine& machine, const Value& array, const Value& bound) {
  const std::int32_t last = integerOf(bound);
  if (last < -1 || last >= kMostElements) {
    machine.raise("OutOfBoundsException",
                  "No array can end at index " + std::to_string(last) + ".");
  }
  arrayIn(machine, array).resize(static_cast<std::size_t>(last) + 1);
}

}  // namespace runner
