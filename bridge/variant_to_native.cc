#include "bridge/variant_to_native.h"

#include "bridge/data.h"
#include "bridge/dates.h"
#include "bridge/dictionaries.h"
#include "bridge/files.h"
#include "bridge/objects_to_native.h"
#include "bridge/strings.h"
#include "plugin/arrays.h"
#include "plugin/references.h"

namespace zel {
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
  T value{};
  Property(variant, PropertyName.text, &value);
  return value;
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
  return asNative(
      autoreleased(CFStringCreateWithCString(kDefaultAllocator, "", kCFStringEncodingASCII)));
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
  id (*convert)(REALobject);
};

constexpr auto fromInt32 =
    fromNumber<std::int32_t, GetVariantInt32, REALGetPropValueInt32, "Int32Value">;
constexpr auto fromInt64 =
    fromNumber<std::int64_t, GetVariantInt64, REALGetPropValueInt64, "LongValue">;
constexpr auto fromSingle =
    fromNumber<float, GetVariantSingle, REALGetPropValueSingle, "SingleValue">;
constexpr auto fromDouble =
    fromNumber<double, GetVariantDouble, REALGetPropValueDouble, "DoubleValue">;

constexpr Scalar kScalars[] = {
    {2, fromInt32},   {16, fromInt32},   {3, fromInt64},   {4, fromSingle},  {5, fromDouble},
    {6, fromDouble},  {11, fromBoolean}, {7, fromDate},    {8, fromString},  {18, fromString},
    {19, fromString}, {20, fromString},  {21, fromString}, {23, fromString}, {9, fromHostObject},
};

// --- arrays

// An element in place, or as the host reads it; 0 or null when it can't.
template <class T, auto& Read>
T elementAt(REALarray array, std::int32_t index) {
  if (const auto* const elements = static_cast<const T*>(directStorage(array)))
    return elements[index];
  T element{};
  Read(array, index, &element);
  return element;
}

template <class T, auto& Read>
id fromNumberAt(REALarray array, std::int32_t index) {
  return number(elementAt<T, Read>(array, index));
}

// The same with a reference, which the host's own reading gives already.
template <class Handle, auto& Read, auto& Lock, auto Convert>
id fromReferenceAt(REALarray array, std::int32_t index) {
  const auto element = elementAt<Handle, Read>(array, index);
  if (element != nullptr && directStorage(array) != nullptr) Lock(element);
  return unlocking(element, Convert);
}

struct Element {
  std::int32_t code;
  id (*convert)(REALarray, std::int32_t index);
};

constexpr Element kElements[] = {
    {4098, fromNumberAt<std::int32_t, REALGetArrayValueInt32>},
    {4099, fromNumberAt<std::int64_t, REALGetArrayValueInt64>},
    {4100, fromNumberAt<float, REALGetArrayValueSingle>},
    {4101, fromNumberAt<double, REALGetArrayValueDouble>},
    {4103, fromReferenceAt<REALobject, REALGetArrayValueObject, REALLockObject, dateOrNil>},
    {4104, fromReferenceAt<REALstring, REALGetArrayValueString, REALLockString, textOrNil>},
    {4105,
     fromReferenceAt<REALobject, REALGetArrayValueObject, REALLockObject, GetVariantAsNSObject>},
    {4107, fromNumberAt<std::uint8_t, REALGetArrayValueUInt8>},
};

// An element without a native object is handed on as nil, which Foundation rejects.
id fromArray(REALarray array, const Element& kind) {
  const id list = send<id, "array">(classNamed<"NSMutableArray">());
  const std::int32_t last = REALGetArrayUBound(array);
  for (std::int32_t i = 0; i <= last; ++i) {
    send<void, "addObject:">(list, kind.convert(array, i));
  }
  return list;
}

std::int32_t typeOf(REALobject value) {
  if (GetVariantType.find() != nullptr) return GetVariantType(value);
  std::int32_t type = 0;
  REALGetPropValueInt32(value, "Type", &type);
  return type;
}

template <class Row, std::size_t Count>
const Row* find(const Row (&rows)[Count], std::int32_t code) {
  for (const Row& row : rows) {
    if (row.code == code) return &row;
  }
  return nullptr;
}

}  // namespace

id GetVariantAsNSObject(REALobject value) {
  if (value == nullptr) return nullptr;
  const std::int32_t type = typeOf(value);
  if (type > kFirstArray) {
    const Element* const kind = find(kElements, type);
    return kind == nullptr ? nullptr : fromArray(reinterpret_cast<REALarray>(value), *kind);
  }
  const Scalar* const kind = find(kScalars, type);
  return kind == nullptr ? nullptr : kind->convert(value);
}

}  // namespace zel
