// Values that are objects, by key: data, variants, files, lists and dictionaries. The methods have
// the shape of those for single values. A list that a method returns is made before the guard opens
// and is returned on every path, as far as it was filled.
#include "bridge/data.h"
#include "bridge/dictionaries.h"
#include "bridge/files.h"
#include "bridge/native_to_variant.h"
#include "bridge/strings.h"
#include "bridge/variant_to_native.h"
#include "defaults/instance.h"
#include "native/geometry.h"
#include "plugin/arrays.h"
#include "plugin/errors.h"
#include "plugin/methods.h"
#include "plugin/references.h"

namespace zel {
namespace {

REALstring stringAt(REALarray array, std::int32_t index) {
  return REALGetArrayString(reinterpret_cast<REALstringArray>(array), index);
}

REALobject variantAt(REALarray array, std::int32_t index) {
  return REALGetArrayObject(reinterpret_cast<REALobjectArray>(array), index);
}

id asText(REALstring string, Nesting /*nesting*/, REALstring& /*text*/) {
  return reinterpret_cast<id>(const_cast<CFStringObject*>(autoreleasedCFString(string)));
}

// An autoreleased NSMutableArray of a host array; nil for null. Elements that are null or can't be
// converted are left out. A native object may live only as long as the element that it comes from,
// so the element is held until the list holds the object.
template <class Handle, Handle (*Read)(REALarray, std::int32_t),
          id (*Convert)(Handle, Nesting, REALstring& text)>
id newList(REALarray array) {
  if (array == nullptr) return nullptr;
  const std::int32_t last = REALGetArrayUBound(array);
  const id list = send<id, "arrayWithCapacity:">(classNamed<"NSMutableArray">(),
                                                 static_cast<NSUInteger>(NSInteger{last} + 1));
  if (list == nullptr) return nullptr;
  const Nesting inside = Nesting().deeper();
  holding<HeldElement<Handle>>([=](HeldElement<Handle>& held) {
    for (std::int32_t i = 0; i <= last; ++i) {
      held.element = heldElement<Handle>(array, i, Read);
      const id object = Convert(held.element, inside, held.text);
      if (object != nullptr) send<void, "addObject:">(list, object);
      drop(held.element);
    }
  });
  return list;
}

}  // namespace

extern "C" {

REALmemoryBlock dataForKey(REALobject instance, REALstring key) {
  return guarded<REALmemoryBlock>([=] {
    const CFStringRef name = autoreleasedCFString(key);
    return NSDataRB(send<id, "dataForKey:">(wrapped(instance), name));
  });
}

void setDataForKey(REALobject instance, REALstring key, REALmemoryBlock value) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    const id data = NewNSData(value);
    send<void, "setObject:forKey:">(wrapped(instance), data, name);
  });
}

REALobject objectForKey(REALobject instance, REALstring key) {
  return guarded<REALobject>([=] {
    const CFStringRef name = autoreleasedCFString(key);
    return NewVariantFromNSObject(send<id, "objectForKey:">(wrapped(instance), name));
  });
}

void setObjectForKey(REALobject instance, REALstring key, REALobject value) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    const id object = GetVariantAsNSObject(value);
    send<void, "setObject:forKey:">(wrapped(instance), object, name);
  });
}

// A file is stored as its address, never as a path or an alias.
REALfolderItem fileForKey(REALobject instance, REALstring key) {
  return guarded<REALfolderItem>([=] {
    const CFStringRef name = autoreleasedCFString(key);
    return NSURLRBFile(send<CFURLRef, "URLForKey:">(wrapped(instance), name));
  });
}

void setFileForKey(REALobject instance, REALstring key, REALfolderItem value) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    const CFURLRef url = NewNSURLfile(value);
    send<void, "setURL:forKey:">(wrapped(instance), url, name);
  });
}

REALstringArray stringArrayForKey(REALobject instance, REALstring key) {
  const auto array =
      reinterpret_cast<REALstringArray>(REALCreateArray(kStringElements, kEmptyUpperBound));
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    FillStringArray(array, send<id, "stringArrayForKey:">(wrapped(instance), name));
  });
  return array;
}

void setStringArrayForKey(REALobject instance, REALstring key, REALstringArray values) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    const id list = newList<REALstring, stringAt, asText>(reinterpret_cast<REALarray>(values));
    send<void, "setObject:forKey:">(wrapped(instance), list, name);
  });
}

REALobject dictionaryForKey(REALobject instance, REALstring key) {
  return guarded<REALobject>([=] {
    const CFStringRef name = autoreleasedCFString(key);
    return NSDictionaryRB(send<CFDictionaryRef, "dictionaryForKey:">(wrapped(instance), name));
  });
}

void setDictionaryForKey(REALobject instance, REALstring key, REALdictionary value) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    const CFDictionaryRef dictionary = NewNSDictionary(value);
    send<void, "setObject:forKey:">(wrapped(instance), dictionary, name);
  });
}

REALobjectArray arrayForKey(REALobject instance, REALstring key) {
  const REALarray array = REALCreateArray(kObjectElements, kEmptyUpperBound);
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    FillVariantArray(array, send<id, "arrayForKey:">(wrapped(instance), name));
  });
  return reinterpret_cast<REALobjectArray>(array);
}

void setArrayForKey(REALobject instance, REALstring key, REALobjectArray values) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    const id list =
        newList<REALobject, variantAt, GetVariantAsNSObject>(reinterpret_cast<REALarray>(values));
    send<void, "setObject:forKey:">(wrapped(instance), list, name);
  });
}

}  // extern "C"
}  // namespace zel
