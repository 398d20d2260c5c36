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
  if (const auto routine = Routine.find()) return routine(variant);
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

id fromString(REALobject variant, Nesting /*nesting*/, REALstring& text) {
  text = valueOf<REALstring, GetVariantString, REALGetPropValueString, "StringValue">(variant);
  if (text == nullptr) return emptyText();
  const id native = textOrNil(text);
  drop(text);
  return native;
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
  id (*convert)(REALobject, Nesting, REALstring& text);
};

// For what has nothing in it.
template <auto Convert, class Handle = REALobject>
id flat(Handle value, Nesting /*nesting*/, REALstring& /*text*/) {
  return Convert(value);
}

id fromObject(REALobject object, Nesting nesting, REALstring& /*text*/) {
  return fromHostObject(object, nesting);
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
    {2, flat<fromInt32>},  {16, flat<fromInt32>}, {3, flat<fromInt64>},    {4, flat<fromSingle>},
    {5, flat<fromDouble>}, {6, flat<fromDouble>}, {11, flat<fromBoolean>}, {7, flat<fromDate>},
    {8, fromString},       {18, fromString},      {19, fromString},        {20, fromString},
    {21, fromString},      {23, fromString},      {9, fromObject},
};

// The rows by their codes: every value of a list or dictionary is looked up here.
struct Scalars {
  static constexpr std::uint32_t kCodes = 24;
  decltype(Scalar::convert) convert[kCodes] = {};
};

consteval Scalars byCode() {
  Scalars table;
  for (const Scalar& row : kScalars) table.convert[row.code] = row.convert;
  return table;
}

constexpr Scalars kScalarsByCode = byCode();

// What converts values of that type code, or null.
auto scalarConversion(std::int32_t type) {
  const auto code = static_cast<std::uint32_t>(type);  // a negative one is too large
  return code < Scalars::kCodes ? kScalarsByCode.convert[code] : nullptr;
}

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
void addNumbers(id list, REALarray array, std::int32_t last, Nesting /*nesting*/) {
  for (std::int32_t i = 0; i <= last; ++i) add(list, number(numberAt<T, Read>(array, i)));
}

// A native object may live only as long as the element that it comes from, so the element is held
// until the list holds the object.
template <class Handle, auto& Read, id (*Convert)(Handle, Nesting, REALstring& text)>
void addReferences(id list, REALarray array, std::int32_t last, Nesting nesting) {
  holding<HeldElement<Handle>>([=](HeldElement<Handle>& held) {
    for (std::int32_t i = 0; i <= last; ++i) {
      held.element = heldElement<Handle>(array, i, readElement<Handle, Read>);
      add(list, Convert(held.element, nesting, held.text));
      drop(held.element);
    }
  });
}

struct Element {
  std::int32_t code;
  void (*addAll)(id list, REALarray, std::int32_t last, Nesting);
};

constexpr Element kElements[] = {
    {4098, addNumbers<std::int32_t, REALGetArrayValueInt32>},
    {4099, addNumbers<std::int64_t, REALGetArrayValueInt64>},
    {4100, addNumbers<float, REALGetArrayValueSingle>},
    {4101, addNumbers<double, REALGetArrayValueDouble>},
    {4103, addReferences<REALobject, REALGetArrayValueObject, flat<dateOrNil>>},
    {4104, addReferences<REALstring, REALGetArrayValueString, flat<textOrNil>>},
    {4105, addReferences<REALobject, REALGetArrayValueObject, GetVariantAsNSObject>},
    {4107, addNumbers<std::uint8_t, REALGetArrayValueUInt8>},
};

std::int32_t typeOf(REALobject value) {
  if (const auto byHost = GetVariantType.find()) return byHost(value);
  return propertyValue<std::int32_t>(REALGetPropValueInt32, value, "Type");
}

const Element* findElement(std::int32_t code) {
  for (const Element& row : kElements) {
    if (row.code == code) return &row;
  }
  return nullptr;
}

// Out of line: single values are not to pay for what this needs.
[[gnu::noinline]] id fromArray(REALarray array, std::int32_t type, Nesting nesting) {
  const Element* const kind = findElement(type);
  if (kind == nullptr) return nullptr;
  const Nesting inside = nesting.deeper();
  const id list = send<id, "array">(classNamed<"NSMutableArray">());
  const std::int32_t last = REALGetArrayUBound(array);
  kind->addAll(list, array, last, inside);
  return list;
}

// @param text nothing but a text's conversion holds something there.
id converted(REALobject value, std::int32_t type, Nesting nesting, REALstring& text) {
  if (type > kFirstArray) return fromArray(reinterpret_cast<REALarray>(value), type, nesting);
  const auto convert = scalarConversion(type);
  return convert == nullptr ? nullptr : convert(value, nesting, text);
}

}  // namespace

id GetVariantAsNSObject(REALobject value, Nesting nesting, REALstring& text) {
  if (value == nullptr) return nullptr;
  return converted(value, typeOf(value), nesting, text);
}

id GetVariantAsNSObject(REALobject value, Nesting nesting) {
  if (value == nullptr) return nullptr;
  const std::int32_t type = typeOf(value);
  REALstring text = nullptr;
  if (scalarConversion(type) != fromString) return converted(value, type, nesting, text);
  return withCleanup([=, &text] { return fromString(value, nesting, text); }, [&] { drop(text); });
}

}  // namespace zel
