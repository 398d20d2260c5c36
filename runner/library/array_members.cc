// The methods of arrays.
#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "runner/library/natives.h"
#include "runner/run/arrays.h"
#include "runner/run/operations.h"
#include "runner/run/values.h"

namespace runner {

namespace {

Value append(Machine& machine, const Value& self, const Value* a) {
  arrayIn(machine, self).append(a[0]);
  return {};
}
Value insert(Machine& machine, const Value& self, const Value* a) {
  host::Array array = arrayIn(machine, self);
  array.insert(checkedIndex(machine, array, a[0], 1), a[1]);
  return {};
}
Value removeAt(Machine& machine, const Value& self, const Value* a) {
  host::Array array = arrayIn(machine, self);
  array.remove(checkedIndex(machine, array, a[0]));
  return {};
}
Value removeAll(Machine& machine, const Value& self, const Value*) {
  arrayIn(machine, self).resize(0);
  return {};
}
Value count(Machine& machine, const Value& self, const Value*) {
  return static_cast<std::int32_t>(arrayIn(machine, self).size());
}
Value lastIndex(Machine& machine, const Value& self, const Value*) {
  return static_cast<std::int32_t>(arrayIn(machine, self).size()) - 1;
}
Value pop(Machine& machine, const Value& self, const Value*) {
  host::Array array = arrayIn(machine, self);
  checkedIndex(machine, array, std::int32_t{});  // there is an element
  Value last = array.at(array.size() - 1);
  array.remove(array.size() - 1);
  return last;
}
Value indexOf(Machine& machine, const Value& self, const Value* a) {
  const host::Array array = arrayIn(machine, self);
  for (std::size_t i = 0; i < array.size(); ++i)
    if (areEqual(machine, array.at(i), a[0])) return static_cast<std::int32_t>(i);
  return std::int32_t{-1};
}
Value resize(Machine& machine, const Value& self, const Value* a) {
  resizeArray(machine, self, a[0]);
  return {};
}

Value sort(Machine& machine, const Value& self, const Value*) {
  host::Array array = arrayIn(machine, self);
  std::vector<Value> elements = machine.host().elements(std::get<ObjectRef>(self));
  std::stable_sort(elements.begin(), elements.end(), [&machine](const Value& a, const Value& b) {
    return isTrue(operate(machine, Operator::less, a, b));
  });
  for (std::size_t i = 0; i < elements.size(); ++i) array.replace(i, elements[i]);
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

}  // namespace runner
