#include "testkit/host/arrays.h"

#include <algorithm>
#include <iterator>

#include "testkit/host/exceptions.h"
#include "testkit/host/state.h"

namespace testkit::host {
namespace {

struct ArrayRecord {
  void* hostUse0;
  void* hostUse1;
  void* storage;  // of the elements; nullable
};
static_assert(sizeof(void*) != 4 || sizeof(ArrayRecord) == 12);

constexpr char kInsert[] = "an array's insert procedure";
constexpr char kRead[] = "an array's read procedure";
constexpr char kOutOfBounds[] = "OutOfBoundsException";

// The live array of that element type; otherwise reports a failure and gives null.
HostArray* arrayOf(State& state, const void* handle, std::int32_t elementType, const char* who) {
  auto* const array = state.ledger.find<HostArray>(handle, who);
  if (array == nullptr || array->elementType() == elementType) return array;
  state.failures.report(std::string(who) + " was given " + array->describe() +
                        ", which has other elements");
  return nullptr;
}

template <std::int32_t elementType, class Element>
void insertElement(zel::REALarray handle, std::int32_t index, Element element) {
  State& state = currentState(kInsert);
  auto* const array = arrayOf(state, handle, elementType, kInsert);
  if (array == nullptr) return;
  if (index < 0 || static_cast<std::size_t>(index) > array->size()) {
    raiseByName(state, kOutOfBounds);
    return;
  }
  if (state.ledger.hold<typename ThingOf<Element>::type>(element, kInsert))
    array->insert(static_cast<std::size_t>(index), element);
}

// Gives the element with a reference for the caller.
template <std::int32_t elementType, class Element>
bool readElement(State& state, const void* handle, std::int32_t index, Element* out,
                 const char* who) {
  const auto* const array = arrayOf(state, handle, elementType, who);
  if (array == nullptr) return false;
  if (index < 0 || static_cast<std::size_t>(index) >= array->size()) {
    raiseByName(state, kOutOfBounds);
    return false;
  }
  *out = static_cast<Element>(array->element(static_cast<std::size_t>(index)));
  return state.ledger.hold<typename ThingOf<Element>::type>(*out, who);
}

template <std::int32_t elementType, class Element>
void readInto(zel::REALarray handle, std::int32_t index, Element* out) {
  readElement<elementType>(currentState(kRead), handle, index, out, kRead);
}

struct ElementType {
  std::int32_t code;
  const char* name;
  void* insert;
  void* read;
};

template <std::int32_t code, class Element>
ElementType elementType(const char* name) {
  return {code, name, reinterpret_cast<void*>(&insertElement<code, Element>),
          reinterpret_cast<void*>(&readInto<code, Element>)};
}

const ElementType* findElementType(std::int32_t code) {
  static const ElementType kTypes[] = {
      elementType<Host::kStringElements, zel::REALstring>("string"),
      elementType<Host::kObjectElements, zel::REALobject>("object"),
  };
  const auto* const found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                         [code](const auto& type) { return type.code == code; });
  return found == std::end(kTypes) ? nullptr : found;
}

}  // namespace

HostArray::HostArray(std::int32_t elementType, std::size_t size, bool withStorage)
    : memory_(sizeof(ArrayRecord)),
      elementType_(elementType),
      withStorage_(withStorage),
      elements_(size + 1, nullptr) {
  publishStorage();
}

std::string HostArray::describe() const {
  return std::string(findElementType(elementType_)->name) + " array of " + std::to_string(size());
}

void HostArray::die(State& state) {
  for (void*& element : elements_) state.ledger.drop(state, std::exchange(element, nullptr));
}

void HostArray::insert(std::size_t index, void* element) {
  elements_.insert(elements_.begin() + static_cast<std::ptrdiff_t>(index), element);
  publishStorage();
}

void HostArray::publishStorage() {
  static_cast<ArrayRecord*>(memory_.data())->storage = withStorage_ ? elements_.data() : nullptr;
}

HostArray* newArray(State& state, std::int32_t elementType, std::size_t size) {
  if (findElementType(elementType) == nullptr) return nullptr;
  return &state.ledger.add(
      std::make_unique<HostArray>(elementType, size, state.options.arraysWithStorage));
}

zel::REALarray createArray(State& state, std::int32_t elementType, std::int32_t upperBound) {
  if (upperBound < -1) {
    state.failures.report("RuntimeArrayCreateSingleDimBoundedArray was given the upper bound " +
                          std::to_string(upperBound));
    return nullptr;
  }
  HostArray* const array =
      newArray(state, elementType, static_cast<std::size_t>(std::int64_t{upperBound} + 1));
  return array == nullptr ? nullptr : array->array();
}

std::int32_t arrayUpperBound(State& state, zel::REALarray array) {
  const auto* const found = state.ledger.find<HostArray>(array, "RuntimeUBound");
  return found == nullptr ? 0 : static_cast<std::int32_t>(found->size()) - 1;
}

zel::REALstring readStringArray(State& state, zel::REALstringArray array, std::int32_t index) {
  zel::REALstring element = nullptr;
  readElement<Host::kStringElements>(state, array, index, &element, "RuntimeDirectReadStringArray");
  return element;
}

zel::REALobject readObjectArray(State& state, zel::REALobjectArray array, std::int32_t index) {
  zel::REALobject element = nullptr;
  readElement<Host::kObjectElements>(state, array, index, &element, "RuntimeDirectReadObjectArray");
  return element;
}

void* arrayInsertProcedure(State& state, zel::REALarray array) {
  const auto* const found = state.ledger.find<HostArray>(array, "RuntimeArrayDirectGetInsertProc");
  return found == nullptr ? nullptr : findElementType(found->elementType())->insert;
}

void* arrayReadProcedure(State& state, zel::REALarray array) {
  const auto* const found = state.ledger.find<HostArray>(array, "RuntimeArrayDirectGetGetProc");
  return found == nullptr ? nullptr : findElementType(found->elementType())->read;
}

}  // namespace testkit::host
