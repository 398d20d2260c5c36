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

// The entry that a conversion is at.
struct HeldEntry {
  REALobject key = nullptr;
  REALobject value = nullptr;
  REALstring text = nullptr;  // held while one of the two is converted
};

void drop(HeldEntry& held) {
  zel::drop(held.key);
  zel::drop(held.value);
  zel::drop(held.text);
}

// --- native to host

void copyEntry(id key, id value, REALobject target, Nesting nesting, HeldEntry& held) {
  held.key = NewVariantFromNSObject(key, nesting, held.text);
  held.value = NewVariantFromNSObject(value, nesting, held.text);
  setEntry(target, held.key, held.value);
  drop(held);
}

void copyEntries(CFDictionaryRef source, REALobject target, Nesting nesting) {
  const id keys = send<id, "allKeys">(source);
  const auto count = send<NSUInteger, "count">(keys);
  const Repeated<id, "objectAtIndex:", NSUInteger> keyAt(keys);
  const Repeated<id, "objectForKey:", id> valueOf(source);
  holding<HeldEntry>([=](HeldEntry& held) {
    for (NSUInteger i = 0; i < count; ++i) {
      const id key = keyAt(i);
      copyEntry(key, valueOf(key), target, nesting, held);
    }
  });
}

// --- host to native

id orNull(id object) { return object != nullptr ? object : nullObject(); }

void addEntry(REALobject source, std::int32_t index, id target, Nesting nesting, HeldEntry& held) {
  held.key = keyAt(source, index);
  held.value = valueOf(source, held.key);
  if (held.key != nullptr) {
    const id nativeKey = GetVariantAsNSObject(held.key, nesting, held.text);
    const id nativeValue = GetVariantAsNSObject(held.value, nesting, held.text);
    send<void, "setObject:forKey:">(target, orNull(nativeValue), orNull(nativeKey));
  }
  drop(held);
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
  holding<HeldEntry>([=](HeldEntry& held) {
    for (std::int32_t i = 0; i < count; ++i) addEntry(source, i, made, inside, held);
  });
  return reinterpret_cast<CFDictionaryRef>(made);
}

void FillStringArray(REALstringArray array, id items) {
  if (array == nullptr) return;
  const Repeated<CFStringRef, "nextObject"> next(send<id, "objectEnumerator">(items));
  holding<REALstring>([=](REALstring& text) {
    std::int32_t index = 0;
    while (const CFStringRef item = next()) {
      text = CFString2RBString(item);
      REALInsertArrayValueString(reinterpret_cast<REALarray>(array), index, text);
      drop(text);
      ++index;
    }
  });
}

}  // namespace zel
