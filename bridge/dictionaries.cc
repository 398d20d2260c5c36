#include "bridge/dictionaries.h"

#include "bridge/native_to_variant.h"
#include "bridge/strings.h"
#include "bridge/variant_to_native.h"
#include "native/geometry.h"
#include "plugin/properties.h"
#include "plugin/references.h"

namespace zel {

constinit REALobject LastDictionary = nullptr;
constinit DictionarySetter LastDictionarySetter = nullptr;
constinit DictionaryGetter LastDictionaryGetter = nullptr;
constinit DictionaryKeyGetter LastDictionaryKeyGetter = nullptr;

namespace {

template <class Method>
void load(Method& method, REALobject dictionary, const char* declaration) {
  method = reinterpret_cast<Method>(REALLoadObjectMethod(dictionary, declaration));
}

// Makes the kept methods those of this object. Deliberately, a method that wasn't found isn't
// looked for again until another object has been met.
void meet(REALobject dictionary) {
  if (LastDictionary == dictionary) return;
  LastDictionary = dictionary;
  load(LastDictionarySetter, dictionary, "Value(key As Variant, Assigns _value As Variant)");
  load(LastDictionaryGetter, dictionary, "Value(key As Variant) As Variant");
  load(LastDictionaryKeyGetter, dictionary, "Key(index As Integer) As Variant");
}

// A key or value that is null is handed to the host as it is.
void setEntry(REALobject dictionary, REALobject key, REALobject value) {
  meet(dictionary);
  if (LastDictionarySetter != nullptr) LastDictionarySetter(dictionary, key, value);
}

REALobject keyAt(REALobject dictionary, std::int32_t index) {
  meet(dictionary);
  return LastDictionaryKeyGetter == nullptr ? nullptr : LastDictionaryKeyGetter(dictionary, index);
}

REALobject valueOf(REALobject dictionary, REALobject key) {
  meet(dictionary);
  return LastDictionaryGetter == nullptr ? nullptr : LastDictionaryGetter(dictionary, key);
}

// --- native to host

void copyEntry(CFDictionaryRef source, id nativeKey, REALobject target, Nesting nesting) {
  const id nativeValue = send<id, "objectForKey:">(source, nativeKey);
  REALobject key = nullptr;
  REALobject value = nullptr;
  withCleanup(
      [&] {
        key = NewVariantFromNSObject(nativeKey, nesting);
        value = NewVariantFromNSObject(nativeValue, nesting);
        setEntry(target, key, value);
      },
      [&] {
        unlock(key);
        unlock(value);
      });
}

void copyEntries(CFDictionaryRef source, REALobject target, Nesting nesting) {
  const id keys = send<id, "allKeys">(source);
  const auto count = send<NSUInteger, "count">(keys);
  for (NSUInteger i = 0; i < count; ++i) {
    copyEntry(source, send<id, "objectAtIndex:">(keys, i), target, nesting);
  }
}

// --- host to native

id orNull(id object) { return object != nullptr ? object : nullObject(); }

void addEntry(REALobject source, std::int32_t index, id target, Nesting nesting) {
  REALobject key = nullptr;
  REALobject value = nullptr;
  withCleanup(
      [&] {
        key = keyAt(source, index);
        value = valueOf(source, key);
        if (key == nullptr) return;
        const id nativeKey = GetVariantAsNSObject(key, nesting);
        const id nativeValue = GetVariantAsNSObject(value, nesting);
        send<void, "setObject:forKey:">(target, orNull(nativeValue), orNull(nativeKey));
      },
      [&] {
        unlock(key);
        unlock(value);
      });
}

}  // namespace

REALobject NSDictionaryRB(CFDictionaryRef dictionary, Nesting nesting) {
  if (dictionary == nullptr) return nullptr;
  const Nesting inside = nesting.deeper();
  const REALobject made = REALnewInstance("Dictionary");
  if (made == nullptr) return nullptr;
  return handingOver(made, [&](REALobject target) { copyEntries(dictionary, target, inside); });
}

CFDictionaryRef NewNSDictionary(REALdictionary dictionary, Nesting nesting) {
  if (dictionary == nullptr) return nullptr;
  const Nesting inside = nesting.deeper();
  const auto source = reinterpret_cast<REALobject>(dictionary);
  const auto count = propertyValue<std::int32_t>(REALGetPropValueInt32, source, "Count");
  if (count < 1) return send<CFDictionaryRef, "dictionary">(classNamed<"NSDictionary">());
  const id made = send<id, "dictionaryWithCapacity:">(classNamed<"NSMutableDictionary">(),
                                                      static_cast<NSUInteger>(count));
  if (made == nullptr) return nullptr;
  for (std::int32_t i = 0; i < count; ++i) addEntry(source, i, made, inside);
  return reinterpret_cast<CFDictionaryRef>(made);
}

void FillStringArray(REALstringArray array, id items) {
  if (array == nullptr) return;
  const id enumerator = send<id, "objectEnumerator">(items);
  std::int32_t index = 0;
  while (const auto item = send<CFStringRef, "nextObject">(enumerator)) {
    unlocking(CFString2RBString(item), [&](REALstring text) {
      REALInsertArrayValueString(reinterpret_cast<REALarray>(array), index, text);
    });
    ++index;
  }
}

}  // namespace zel
