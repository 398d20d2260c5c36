#include "host/internal/element_types.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <type_traits>

#include "host/internal/array_procedures.h"
#include "host/internal/passing.h"
#include "host/internal/state.h"
#include "host/internal/variants.h"

namespace host::internal {
namespace {

template <class Element>
Element load(const std::byte* from) {
  Element element;
  std::memcpy(&element, from, kSizeOf<Element>);
  return element;
}

template <class Element>
void store(Element element, std::byte* to) {
  std::memcpy(to, &element, kSizeOf<Element>);
}

// A number, which a test has as an Alternative of its Value.
template <class Element, class Alternative>
struct NumberElement {
  static Value toValue(State& /*state*/, const std::byte* element) {
    return static_cast<Alternative>(load<Element>(element));
  }
  static bool fromValue(State& /*state*/, const Value& value, std::byte* element) {
    const auto* const number = std::get_if<Alternative>(&value);
    if (number != nullptr) store(static_cast<Element>(*number), element);
    return number != nullptr;
  }
};

struct StringElement {
  static Value toValue(State& state, const std::byte* element) {
    return valueOf(state, load<zel::REALstring>(element));
  }
  static bool fromValue(State& state, const Value& value, std::byte* element) {
    const bool text =
        std::holds_alternative<std::string>(value) || std::holds_alternative<Text>(value);
    if (text) store(stringOf(state, value), element);
    return text;
  }
};

struct ObjectElement {
  static Value toValue(State& /*state*/, const std::byte* element) {
    return ObjectRef::share(load<zel::REALobject>(element));
  }
  static bool fromValue(State& state, const Value& value, std::byte* element) {
    store(box(state, value), element);
    return true;
  }
};

struct DateElement : ObjectElement {
  static bool fromValue(State& state, const Value& value, std::byte* element) {
    const auto* const date = std::get_if<ObjectRef>(&value);
    const bool fits = date == nullptr ? std::holds_alternative<std::monostate>(value)
                                      : !*date || varType(state, date->handle()) == kDateType;
    return fits && ObjectElement::fromValue(state, value, element);
  }
};

template <class Element, class Conversion>
ElementType row(std::int32_t type, const char* name) {
  return {kArrayType + type,
          name,
          &typeid(Element),
          kSizeOf<Element>,
          std::is_pointer_v<Element>,
          reinterpret_cast<void*>(&insertElement<Element>),
          reinterpret_cast<void*>(&readElement<Element>),
          Conversion::toValue,
          Conversion::fromValue};
}

constexpr std::int32_t kUnknownType = -1;

}  // namespace

const ElementType& elementTypeOf(std::int32_t arrayType) {
  static const ElementType kTypes[] = {
      row<zel::REALstring, StringElement>(kStringType, "string"),
      row<zel::REALobject, ObjectElement>(kObjectType, "object"),
      row<std::int32_t, NumberElement<std::int32_t, std::int32_t>>(kInt32Type, "Int32"),
      row<std::int64_t, NumberElement<std::int64_t, std::int64_t>>(kInt64Type, "Int64"),
      row<float, NumberElement<float, float>>(kSingleType, "Single"),
      row<double, NumberElement<double, double>>(kDoubleType, "Double"),
      row<zel::REALobject, DateElement>(kDateType, "Date"),
      row<std::uint8_t, NumberElement<std::uint8_t, std::int8_t>>(kBooleanType, "Boolean"),
      row<double, NumberElement<double, double>>(kUnknownType, "unknown"),
  };
  const auto* const found =
      std::find_if(std::begin(kTypes), std::prev(std::end(kTypes)),
                   [arrayType](const ElementType& type) { return type.type == arrayType; });
  return *found;
}

}  // namespace host::internal
