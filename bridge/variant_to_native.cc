#include "bridge/variant_to_native.h"

#include "bridge/data.h"
#include "bridge/dates.h"
#include "bridge/dictionaries.h"
#include "bridge/files.h"
#include "bridge/objects_to_native.h"
#include "bridge/strings.h"
#include "plugin/arrays.h"
#include "plugin/properties.h"
#include "plugin/references.h"

namespace zel {

constinit CFStringRef EmptyText = nullptr;

namespace {

constexpr std::int32_t kFirstArray =
    4096;  // the type code of an array: this and its elements' code

template <class Native>
id asNative(Native* object) {
  return reinterpret_cast<id>(const_cast<std::remove_const_t<Native>*>(object));
}

// --- numbers

id number(std::int32_t value) {
  return send<id, "numberWithLong:">(classNamed<"NSNumber">(), long{value});
}
id number(std::int64_t value) {
  return send<id, "numberWithLongLong:">(classNamed<"NSNumber">(), static_cast<long long>(value));
}
id number(float value) { return send<id, "numberWithFloat:">(classNamed<"NSNumber">(), value); }
id number(double value) { return send<id, "numberWithDouble:">(classNamed<"NSNumber">(), value); }
id number(std::uint8_t boolean) {
  return send<id, "numberWithBool:">(classNamed<"NSNumber">(), static_cast<BOOL>(boolean));
}

// A variant's value by the host's routine for it or, where the host lacks that, by a property; 0 or
// null when that fails too.
template <class T, auto& Routine, auto& Property, Name PropertyName>
T valueOf(REALobject variant) {
  if (Routine.find() != nullptr) return Routine(variant);
  return propertyValue<T>(Property, variant, PropertyName.text);
}

constexpr auto integerOf =
    valueOf<std::int32_t, GetVariantInt32, REALGetPropValueInt32, "Int32Value">;

template <class T, auto& Routine, auto& Property, Name PropertyName>
id fromNumber(REALobject variant) {
  return number(valueOf<T, Routine, Property, PropertyName>(variant));
}

// Only the low byte counts.
id fromBoolean(REALobject variant) { return number(static_cast<std::uint8_t>(integerOf(variant))); }

// --- texts and dates

id textOrNil(REALstring text) { return asNative(autoreleasedCFString(text)); }

id emptyText() {
  if (EmptyText == nullptr) {
    EmptyText = CFStringCreateWithCString(kDefaultAllocator, "", kCFStringEncodingASCII);
  }
  return asNative(EmptyText);
}

id fromString(REALobject variant) {
  const auto text =
      valueOf<REALstring, GetVariantString, REALGetPropValueString, "StringValue">(variant);
  if (text == nullptr) return emptyText();
  return unlocking(text, textOrNil);
}

id dateOrNil(REALobject date) { return NewNSDate(reinterpret_cast<REALdate>(date)); }

id fromDate(REALobject variant) {
  REALobject date = nullptr;
  if (REALGetPropValueObject(variant, "DateValue", &date) == 0) return nullptr;
  return unlocking(date, dateOrNil);
}

// --- what each type code becomes

struct Scalar {
  std::int32_t code;
  id (*convert)(REALobject, Nesting);
};

// For what has nothing in it.
template <auto Convert, class Handle = REALobject>
id flat(Handle value, Nesting /*nesting*/) {
  return Convert(value);
}

constexpr auto fromInt32 =
    fromNumber<std::int32_t, GetVariantInt32, REALGetPropValueInt32, "Int32Value">;
constexpr auto fromInt64 =
    fromNumber<std::int64_t, GetVariantInt64, REALGetPropValueInt64, "LongValue">;
constexpr auto fromSingle =
    fromNumber<float, GetVariantSingle, REALGetPropValueSingle, "SingleValue">;
constexpr auto fromDouble =
    fromNumber<double, GetVariantDouble, REALGetPropValueDouble, "DoubleValue">;

constexpr Scalar kScalars[] = {
    {2, flat<fromInt32>},   {16, flat<fromInt32>},  {3, flat<fromInt64>},    {4, flat<fromSingle>},
    {5, flat<fromDouble>},  {6, flat<fromDouble>},  {11, flat<fromBoolean>}, {7, flat<fromDate>},
    {8, flat<fromString>},  {18, flat<fromString>}, {19, flat<fromString>},  {20, flat<fromString>},
    {21, flat<fromString>}, {23, flat<fromString>}, {9, fromHostObject},
};

// --- arrays

// An element as the host reads it; 0 or null when it can't.
template <class T, auto& Read>
T readElement(REALarray array, std::int32_t index) {
  T element{};
  Read(array, index, &element);
  return element;
}

// A number, in place or as the host reads it.
template <class T, auto& Read>
T numberAt(REALarray array, std::int32_t index) {
  const auto* const elements = static_cast<const T*>(directStorage(array));
  return elements != nullptr ? elements[index] : readElement<T, Read>(array, index);
}

// An element without a native object is handed on as nil, which Foundation rejects.
void add(id list, id object) { send<void, "addObject:">(list, object); }

template <class T, auto& Read>
void addNumberAt(id list, REALarray array, std::int32_t index, Nesting /*nesting*/) {
  add(list, number(numberAt<T, Read>(array, index)));
}

// A native object may live only as long as the element that it comes from, so the element is held
// until the list holds the object.
template <class Handle, auto& Read, id (*Convert)(Handle, Nesting)>
void addReferenceAt(id list, REALarray array, std::int32_t index, Nesting nesting) {
  unlocking(heldElement<Handle>(array, index, readElement<Handle, Read>),
            [=](Handle element) { add(list, Convert(element, nesting)); });
}

struct Element {
  std::int32_t code;
  void (*addTo)(id list, REALarray, std::int32_t index, Nesting);
};

constexpr Element kElements[] = {
    {4098, addNumberAt<std::int32_t, REALGetArrayValueInt32>},
    {4099, addNumberAt<std::int64_t, REALGetArrayValueInt64>},
    {4100, addNumberAt<float, REALGetArrayValueSingle>},
    {4101, addNumberAt<double, REALGetArrayValueDouble>},
    {4103, addReferenceAt<REALobject, REALGetArrayValueObject, flat<dateOrNil>>},
    {4104, addReferenceAt<REALstring, REALGetArrayValueString, flat<textOrNil>>},
    {4105, addReferenceAt<REALobject, REALGetArrayValueObject, GetVariantAsNSObject>},
    {4107, addNumberAt<std::uint8_t, REALGetArrayValueUInt8>},
};

id fromArray(REALarray array, const Element& kind, Nesting nesting) {
  const Nesting inside = nesting.deeper();
  const id list = send<id, "array">(classNamed<"NSMutableArray">());
  const std::int32_t last = REALGetArrayUBound(array);
  for (std::int32_t i = 0; i <= last; ++i) kind.addTo(list, array, i, inside);
  return list;
}

std::int32_t typeOf(REALobject value) {
  if (GetVariantType.find() != nullptr) return GetVariantType(value);
  return propertyValue<std::int32_t>(REALGetPropValueInt32, value, "Type");
}

template <class Row, std::size_t Count>
const Row* find(const Row (&rows)[Count], std::int32_t code) {
  for (const Row& row : rows) {
    if (row.code == code) return &row;
  }
  return nullptr;
}

}  // namespace

id GetVariantAsNSObject(REALobject value, Nesting nesting) {
  if (value == nullptr) return nullptr;
  const std::int32_t type = typeOf(value);
  if (type > kFirstArray) {
    const Element* const kind = find(kElements, type);
    if (kind == nullptr) return nullptr;
    return fromArray(reinterpret_cast<REALarray>(value), *kind, nesting);
  }
  const Scalar* const kind = find(kScalars, type);
  return kind == nullptr ? nullptr : kind->convert(value, nesting);
}

}  // namespace zel
