#include "bridge/native_to_variant.h"

#include "bridge/data.h"
#include "bridge/dates.h"
#include "bridge/dictionaries.h"
#include "bridge/files.h"
#include "bridge/strings.h"
#include "bridge/struct_data.h"
#include "native/libc.h"
#include "native/numbers.h"
#include "plugin/arrays.h"
#include "plugin/instance_data.h"
#include "plugin/references.h"

namespace zel {

constinit ClassMemory<NativeKind> KnownKinds;

namespace {

// A row of a table in which text decides.
struct Encoded {
  const char* encoding;
  REALobject (*convert)(id);
};

template <std::size_t Count>
const Encoded* find(const Encoded (&rows)[Count], const char* encoding) {
  for (const Encoded& row : rows) {
    // Most rows differ in the first character, and then no function is called.
    if (row.encoding[0] == encoding[0] && std::strcmp(row.encoding, encoding) == 0) return &row;
  }
  return nullptr;
}

template <class Result>
REALobject asObject(Result* handle) {
  return reinterpret_cast<REALobject>(handle);
}

// --- lists, texts, data, dictionaries, addresses

REALobject fromArray(id list, Nesting nesting, REALstring& /*text*/) {
  const REALarray array = REALCreateArray(kObjectElements, kEmptyUpperBound);
  return handingOver(asObject(array), [&](REALobject) { FillVariantArray(array, list, nesting); });
}

REALobject fromString(id object, Nesting /*nesting*/, REALstring& text) {
  text = CFString2RBString(reinterpret_cast<CFStringRef>(object));
  const REALobject made = REALNewVariantString(text);
  drop(text);
  return made;
}

REALobject fromData(id object) { return asObject(NSDataRB(object)); }

REALobject fromDictionary(id object, Nesting nesting, REALstring& /*text*/) {
  return NSDictionaryRB(reinterpret_cast<CFDictionaryRef>(object), nesting);
}

// A file's address is a file; any other one is its text.
REALobject fromURL(id object, Nesting nesting, REALstring& text) {
  const auto url = reinterpret_cast<CFURLRef>(object);
  const REALfolderItem item = NSURLRBFile(url);
  if (item != nullptr) return asObject(item);
  return fromString(send<id, "absoluteString">(url), nesting, text);
}

// --- numbers

template <Name Accessor, class Native, auto& NewVariant, class Host>
REALobject fromNumberAs(id number) {
  return NewVariant(static_cast<Host>(send<Native, Accessor>(number)));
}

// Deliberately reads only the low 32 bits, on every target.
REALobject fromUnsigned64(id number) {
  const auto low = static_cast<std::uint32_t>(send<unsigned long, "unsignedLongValue">(number));
  return REALNewVariantUInt64(low);
}

// The type code alone decides: a boolean and a plain char are both "c", so both become booleans.
constexpr Encoded kNumberTypes[] = {
    {"c", fromNumberAs<"boolValue", BOOL, REALNewVariantBoolean, REALboolean>},
    {"C", fromNumberAs<"unsignedCharValue", unsigned char, REALNewVariantInteger, std::int32_t>},
    {"s", fromNumberAs<"shortValue", short, REALNewVariantInteger, std::int32_t>},
    {"S", fromNumberAs<"unsignedShortValue", unsigned short, REALNewVariantInteger, std::int32_t>},
    {"i", fromNumberAs<"intValue", int, REALNewVariantInteger, std::int32_t>},
    {"I", fromNumberAs<"unsignedIntValue", unsigned int, REALNewVariantUInt32, std::uint32_t>},
    {"l", fromNumberAs<"longValue", long, REALNewVariantInteger, std::int32_t>},
    {"L", fromNumberAs<"unsignedLongValue", unsigned long, REALNewVariantUInt32, std::uint32_t>},
    {"q", fromNumberAs<"longLongValue", long long, REALNewVariantInt64, std::int64_t>},
    {"Q", fromUnsigned64},
    {"f", fromNumberAs<"floatValue", float, REALNewVariantSingle, float>},
};

REALobject fromNumber(id number) {
  const Encoded* const row = find(kNumberTypes, zelNumberType(number));
  if (row != nullptr) return row->convert(number);
  return REALNewVariantDouble(send<double, "doubleValue">(number));
}

// --- structures

// A new host object with the structure as its instance data; null when the host has no such class.
template <class Data>
REALobject newStructure(const char* className, Data data) {
  const REALobject made = REALnewInstance(className);
  if (made != nullptr) instanceData<Data>(made) = data;
  return made;
}

template <Name Accessor, class Native, Name ClassName>
REALobject fromStructure(id value) {
  return newStructure(ClassName.text, toHost(send<Native, Accessor>(value)));
}

// Times are made by methods that other plugins of the family add to NSValue.
template <Name Method>
REALobject fromTime(id value) {
  return respondsTo<Method>(value) ? send<REALobject, Method>(value) : nullptr;
}

constexpr Encoded kStructures[] = {
    {kRectEncoding, fromStructure<"rectValue", NSRect, "NSRectZEL">},
    {kSizeEncoding, fromStructure<"sizeValue", NSSize, "NSSizeZEL">},
    {kRangeEncoding, fromStructure<"rangeValue", NSRange, "NSRangeZEL">},
    {kPointEncoding, fromStructure<"pointValue", NSPoint, "NSPointZEL">},
    {"{?=qll}", fromTime<"QTTimeValueZEL">},
    {"{?={?=qll}{?=qll}}", fromTime<"QTTimeRangeValueZEL">},
    {"{?=qiIq}", fromTime<"CMTimeValueZEL">},
    {"{?={?=qiIq}{?=qiIq}}", fromTime<"CMTimeRangeValueZEL">},
    {"{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}", fromTime<"CMTimeMappingValueZEL">},
};

REALobject fromValue(id value) {
  const Encoded* const row = find(kStructures, send<const char*, "objCType">(value));
  return row == nullptr ? nullptr : row->convert(value);
}

// --- what the family knows

// Another plugin may define the class at any time.
bool isWrapper(id object) {
  Class* const wrapper = lookUpClass("ZELREALobjectWrapper");
  return wrapper != nullptr && send<BOOL, "isKindOfClass:">(object, wrapper) != 0;
}

REALobject unwrapped(id wrapper) { return send<REALobject, "unwrap">(wrapper); }

constexpr std::size_t kLongestClassName = 199;
constexpr char kSuffix[] = "ZEL";

// A new object of the host class for the native class of that name, or null.
REALobject newSibling(const char* className) {
  if (className == nullptr || std::strlen(className) > kLongestClassName) return nullptr;
  char hostName[kLongestClassName + sizeof kSuffix];
  std::snprintf(hostName, sizeof hostName, "%s%s", className, kSuffix);
  return REALnewInstance(hostName);
}

// The first class of the object's, going up, for which the host has a class.
REALobject fromClass(id object) {
  for (Class* native = send<Class*, "class">(object); native != nullptr;
       native = class_getSuperclass(native)) {
    const REALobject made = newSibling(object_getClassName(native));
    if (made == nullptr) continue;
    return handingOver(made, [&](REALobject) { instanceData<id>(made) = retained(object); });
  }
  return nullptr;
}

// --- the order of tests, which is part of the design: a number is a value too

// For what has nothing in it.
template <REALobject (*Convert)(id)>
REALobject flat(id object, Nesting /*nesting*/, REALstring& /*text*/) {
  return Convert(object);
}

constexpr NativeKind kKinds[] = {
    {isKindOf<"NSArray", Object>, fromArray},
    {isKindOf<"NSString", Object>, fromString},
    {isKindOf<"NSData", Object>, flat<fromData>},
    {isKindOf<"NSNumber", Object>, flat<fromNumber>},
    {isKindOf<"NSDate", Object>, flat<NSDateRB>},
    {isKindOf<"NSDictionary", Object>, fromDictionary},
    {isKindOf<"NSURL", Object>, fromURL},
    {isKindOf<"NSValue", Object>, flat<fromValue>},
};

// An object of a class that isn't remembered. Out of line: what is remembered is not to pay for the
// tests.
[[gnu::noinline]] REALobject tested(id object, Nesting nesting, REALstring& text) {
  for (const NativeKind& kind : kKinds) {
    if (!kind.matches(object)) continue;
    KnownKinds.remember(classOf(object), kind);
    return kind.convert(object, nesting, text);
  }
  return isWrapper(object) ? unwrapped(object) : fromClass(object);
}

}  // namespace

REALobject NewVariantFromNSObject(id object, Nesting nesting, REALstring& text) {
  if (object == nullptr || object == nullObject()) return nullptr;
  const NativeKind* const known = KnownKinds.rowOf(classOf(object));
  return known != nullptr ? known->convert(object, nesting, text) : tested(object, nesting, text);
}

REALobject NewVariantFromNSObject(id object, Nesting nesting) {
  REALstring text = nullptr;
  return withCleanup([=, &text] { return NewVariantFromNSObject(object, nesting, text); },
                     [&] { drop(text); });
}

void FillVariantArray(REALarray array, id list, Nesting nesting) {
  if (array == nullptr) return;
  const Nesting inside = nesting.deeper();
  const Repeated<id, "nextObject"> next(send<id, "objectEnumerator">(list));
  holding<HeldElement<REALobject>>([=](HeldElement<REALobject>& held) {
    std::int32_t index = 0;
    while (const id element = next()) {
      held.element = NewVariantFromNSObject(element, inside, held.text);
      REALInsertArrayValueObject(array, index, held.element);
      drop(held.element);
      ++index;
    }
  });
}

}  // namespace zel
