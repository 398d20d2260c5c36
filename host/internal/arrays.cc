#include "host/internal/arrays.h"

#include <cstring>
#include <stdexcept>
#include <utility>

#include "host/internal/array_procedures.h"
#include "host/internal/element_types.h"
#include "host/internal/state.h"

namespace host::internal {
namespace {

// The type code, as a variant, of an array of that element type; 0 when there are none.
std::int32_t arrayType(std::int32_t elementType) {
  if (elementType == Host::kStringElements) return kArrayType + kStringType;
  if (elementType == Host::kObjectElements) return kArrayType + kObjectType;
  return elementType > kArrayType ? elementType : 0;
}

}  // namespace

HostArray::HostArray(std::int32_t type, std::size_t size, bool withStorage)
    : memory_(sizeof(zel::HostArrayRecord)),
      type_(type),
      elementType_(elementTypeOf(type)),
      withStorage_(withStorage),
      elements_(size * elementType_.size + kLargestElement) {
  publishStorage();
}

std::string HostArray::describe() const {
  return std::string(elementType_.name) + " array of " + std::to_string(size());
}

void HostArray::die(State& state) {
  for (std::size_t i = 0; i < size(); ++i) drop(state, at(i));
}

void HostArray::drop(State& state, const std::byte* element) const {
  if (!elementType_.counted) return;
  const void* handle = nullptr;
  std::memcpy(&handle, element, sizeof handle);
  state.ledger.drop(state, handle);
}

std::size_t HostArray::size() const {
  return (elements_.size() - kLargestElement) / elementType_.size;
}

const std::byte* HostArray::at(std::size_t index) const {
  return elements_.data() + index * elementType_.size;
}

Value HostArray::value(State& state, std::size_t index) const {
  return elementType_.toValue(state, at(index));
}

void HostArray::insert(std::size_t index, const std::byte* element) {
  elements_.insert(elements_.begin() + static_cast<std::ptrdiff_t>(index * elementType_.size),
                   element, element + elementType_.size);
  publishStorage();
}

void HostArray::append(State& state, const Value& value) { insert(state, size(), value); }

void HostArray::insert(State& state, std::size_t index, const Value& value) {
  std::byte element[kLargestElement] = {};
  if (!elementType_.fromValue(state, value, element))
    throw std::invalid_argument("an element isn't a " + std::string(elementType_.name));
  insert(index, element);
}

void HostArray::replace(State& state, std::size_t index, const Value& value) {
  insert(state, index, value);
  remove(state, index + 1);
}

void HostArray::remove(State& state, std::size_t index) {
  const std::vector<std::byte> removed(at(index), at(index) + elementType_.size);
  const auto begin = elements_.begin() + static_cast<std::ptrdiff_t>(index * elementType_.size);
  elements_.erase(begin, begin + static_cast<std::ptrdiff_t>(elementType_.size));
  publishStorage();
  drop(state, removed.data());  // only now: what dies with it may look at the array
}

void HostArray::resize(State& state, std::size_t wanted) {
  while (size() > wanted) remove(state, size() - 1);
  elements_.resize(wanted * elementType_.size + kLargestElement);
  publishStorage();
}

void HostArray::publishStorage() {
  static_cast<zel::HostArrayRecord*>(memory_.data())->storage =
      withStorage_ ? elements_.data() : nullptr;
}

HostArray* newArray(State& state, std::int32_t elementType, std::size_t size) {
  const std::int32_t type = arrayType(elementType);
  if (type == 0) return nullptr;
  return &state.ledger.add(
      std::make_unique<HostArray>(type, size, state.options.arraysWithStorage));
}

zel::REALarray createArray(State& state, std::int32_t elementType, std::int32_t upperBound) {
  if (upperBound < -1) {
    state.failures.report("RuntimeArrayCreateSingleDimBoundedArray was given the upper bound " +
                          std::to_string(upperBound));
    return nullptr;
  }
  if (elementType != Host::kStringElements && elementType != Host::kObjectElements) return nullptr;
  return newArray(state, elementType, static_cast<std::size_t>(std::int64_t{upperBound} + 1))
      ->array();
}

std::int32_t arrayUpperBound(State& state, zel::REALarray array) {
  const auto* const found = state.ledger.find<HostArray>(array, "RuntimeUBound");
  return found == nullptr ? 0 : static_cast<std::int32_t>(found->size()) - 1;
}

zel::REALstring readStringArray(State& state, zel::REALstringArray array, std::int32_t index) {
  zel::REALstring element = nullptr;
  readFrom(state, array, index, &element, "RuntimeDirectReadStringArray");
  return element;
}

zel::REALobject readObjectArray(State& state, zel::REALobjectArray array, std::int32_t index) {
  zel::REALobject element = nullptr;
  readFrom(state, array, index, &element, "RuntimeDirectReadObjectArray");
  return element;
}

void* arrayInsertProcedure(State& state, zel::REALarray array) {
  const auto* const found = state.ledger.find<HostArray>(array, "RuntimeArrayDirectGetInsertProc");
  return found == nullptr ? nullptr : outward(state, found->elementType().insert);
}

void* arrayReadProcedure(State& state, zel::REALarray array) {
  const auto* const found = state.ledger.find<HostArray>(array, "RuntimeArrayDirectGetGetProc");
  return found == nullptr ? nullptr : outward(state, found->elementType().read);
}

}  // namespace host::internal
