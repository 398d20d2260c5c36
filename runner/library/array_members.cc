// The methods of arrays.
#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "host/internal/arrays.h"
#include "host/internal/variants.h"
#include "runner/library/natives.h"
#include "runner/run/operations.h"
#include "runner/run/values.h"

namespace runner {

using host::internal::HostArray;

namespace {

// The elements of an array that no program can make larger.
constexpr std::int32_t kMostElements = 1 << 26;

struct ElementCode {
  Kind kind;
  std::int32_t type;  // of a variant
};
// Everything else is kept as objects.
constexpr ElementCode kElementCodes[] = {
    {Kind::int32, host::kInt32Type},   {Kind::int64, host::kInt64Type},
    {Kind::single, host::kSingleType}, {Kind::real, host::kDoubleType},
    {Kind::text, host::kStringType},   {Kind::boolean, host::kBooleanType},
};

std::int32_t elementCode(const Type& array) {
  if (array.element() == objectOf("Date")) return host::kArrayType + host::kDateType;
  for (const ElementCode& code : kElementCodes)
    if (code.kind == array.kind) return host::kArrayType + code.type;
  return host::kArrayType + host::kObjectType;
}

[[noreturn]] void failToFind(Machine& machine, const HostArray& array, std::int64_t index) {
  machine.raise("OutOfBoundsException",
                "Index " + std::to_string(index) +
                    " is outside of the array, whose last index is " +
                    std::to_string(static_cast<std::int64_t>(array.size()) - 1) + ".");
}

// @param extra 1 where the position behind the last element is good, too.
std::size_t checkedIndex(Machine& machine, const HostArray& array, const Value& index,
                         std::size_t extra = 0) {
  const auto wanted = numberOf<std::int64_t>(index);
  if (wanted < 0 || static_cast<std::uint64_t>(wanted) >= array.size() + extra)
    failToFind(machine, array, wanted);
  return static_cast<std::size_t>(wanted);
}

Value elementAt(Machine& machine, const HostArray& array, std::size_t index) {
  return machine.host().valueOf(array.value(machine.state(), index));
}

Value append(Machine& machine, const Value& self, const Value* a) {
  arrayIn(machine, self).append(machine.state(), a[0]);
  return {};
}
Value insert(Machine& machine, const Value& self, const Value* a) {
  HostArray& array = arrayIn(machine, self);
  array.insert(machine.state(), checkedIndex(machine, array, a[0], 1), a[1]);
  return {};
}
Value removeAt(Machine& machine, const Value& self, const Value* a) {
  HostArray& array = arrayIn(machine, self);
  array.remove(machine.state(), checkedIndex(machine, array, a[0]));
  return {};
}
Value removeAll(Machine& machine, const Value& self, const Value*) {
  arrayIn(machine, self).resize(machine.state(), 0);
  return {};
}
Value count(Machine& machine, const Value& self, const Value*) {
  return static_cast<std::int32_t>(arrayIn(machine, self).size());
}
Value lastIndex(Machine& machine, const Value& self, const Value*) {
  return static_cast<std::int32_t>(arrayIn(machine, self).size()) - 1;
}
Value pop(Machine& machine, const Value& self, const Value*) {
  HostArray& array = arrayIn(machine, self);
  if (array.size() == 0) failToFind(machine, array, 0);
  Value last = elementAt(machine, array, array.size() - 1);
  array.remove(machine.state(), array.size() - 1);
  return last;
}
Value indexOf(Machine& machine, const Value& self, const Value* a) {
  const HostArray& array = arrayIn(machine, self);
  for (std::size_t i = 0; i < array.size(); ++i)
    if (areEqual(machine, elementAt(machine, array, i), a[0])) return static_cast<std::int32_t>(i);
  return std::int32_t{-1};
}
Value resize(Machine& machine, const Value& self, const Value* a) {
  resizeArray(machine, self, a[0]);
  return {};
}

Value sort(Machine& machine, const Value& self, const Value*) {
  HostArray& array = arrayIn(machine, self);
  std::vector<Value> elements;
  for (std::size_t i = 0; i < array.size(); ++i) elements.push_back(elementAt(machine, array, i));
  std::stable_sort(elements.begin(), elements.end(), [&machine](const Value& a, const Value& b) {
    return isTrue(operate(machine, Operator::less, a, b));
  });
  for (std::size_t i = 0; i < elements.size(); ++i) array.replace(machine.state(), i, elements[i]);
  return {};
}

constexpr NativeRow kMembers[] = {
    {"Append(value As T)", append},
    {"Add(value As T)", append},
    {"AddAt(index As Integer, value As T)", insert},
    {"Insert(index As Integer, value As T)", insert},
    {"Remove(index As Integer)", removeAt},
    {"RemoveAt(index As Integer)", removeAt},
    {"RemoveAll", removeAll},
    {"Ubound As Integer", lastIndex},
    {"LastIndex As Integer", lastIndex},
    {"LastRowIndex As Integer", lastIndex},
    {"Count As Integer", count},
    {"Pop As T", pop},
    {"IndexOf(value As T) As Integer", indexOf},
    {"ResizeTo(lastIndex As Integer)", resize},
    {"Sort", sort},
};

}  // namespace

std::span<const NativeRow> arrayMembers() { return kMembers; }

HostArray& arrayIn(Machine& machine, const Value& value) {
  const auto* const object = std::get_if<ObjectRef>(&value);
  HostArray* const array =
      object == nullptr ? nullptr : machine.state().ledger.peek<HostArray>(object->handle());
  if (array == nullptr) machine.raise("NilObjectException", "This array is Nil.");
  return *array;
}

Value elementOf(Machine& machine, const Value& array, const Value& index) {
  const HostArray& found = arrayIn(machine, array);
  return elementAt(machine, found, checkedIndex(machine, found, index));
}

void setElement(Machine& machine, const Value& array, const Value& index, const Value& value) {
  HostArray& found = arrayIn(machine, array);
  found.replace(machine.state(), checkedIndex(machine, found, index), value);
}

Value newArray(Machine& machine, const Type& type, const std::vector<Value>& elements) {
  return machine.host().array(elementCode(type), elements);
}

void resizeArray(Machine& machine, const Value& array, const Value& bound) {
  const std::int32_t last = integerOf(bound);
  if (last < -1 || last >= kMostElements) {
    machine.raise("OutOfBoundsException",
                  "No array can end at index " + std::to_string(last) + ".");
  }
  arrayIn(machine, array).resize(machine.state(), static_cast<std::size_t>(last) + 1);
}

}  // namespace runner
