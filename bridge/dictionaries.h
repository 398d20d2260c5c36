// Dictionaries across the border, and Foundation's lists of strings into host arrays.
#pragma once

#include "bridge/nesting.h"
#include "native/corefoundation.h"
#include "plugin/handles.h"

namespace zel {

// The host's Dictionary is an ordinary class: its methods are found by declaration, once for each
// object, and kept for the last one met.

/// The object that the methods below were loaded for. Only ever compared: it may be dead.
extern REALobject LastDictionary;
/// "Value(key As Variant, Assigns _value As Variant)"; null when the object has no such method.
using DictionarySetter = void (*)(REALobject dictionary, REALobject key, REALobject value);
extern DictionarySetter LastDictionarySetter;
/// "Value(key As Variant) As Variant": one reference for the caller. Nullable.
using DictionaryGetter = REALobject (*)(REALobject dictionary, REALobject key);
extern DictionaryGetter LastDictionaryGetter;
/// "Key(index As Integer) As Variant": one reference for the caller. Nullable.
using DictionaryKeyGetter = REALobject (*)(REALobject dictionary, std::int32_t index);
extern DictionaryKeyGetter LastDictionaryKeyGetter;

/// A new host Dictionary of a native dictionary, which is only borrowed, with one reference for the
/// caller. Null for nil and when the host makes none. Native exceptions pass.
/// @param nesting where the dictionary stands; see there for one that is too deep.
[[nodiscard]] REALobject NSDictionaryRB(CFDictionaryRef dictionary, Nesting nesting = {});

/// An autoreleased native dictionary of a host Dictionary, which is only borrowed; mutable when it
/// has entries. Nil for null. A key or value that can't be converted becomes NSNull. Native
/// exceptions pass.
/// @param nesting where the dictionary stands; see there for one that is too deep.
CFDictionaryRef NewNSDictionary(REALdictionary dictionary, Nesting nesting = {});

/// Inserts the texts of a native list, in its order, at the front of a host string array.
/// @param array nullable: then nothing happens.
/// @param items an NSArray of strings, which isn't checked; nil: nothing is inserted.
void FillStringArray(REALstringArray array, id items);

}  // namespace zel
