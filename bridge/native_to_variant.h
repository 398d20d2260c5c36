// Any native object as a host value.
#pragma once

#include "bridge/class_memory.h"
#include "bridge/nesting.h"
#include "native/objc.h"
#include "plugin/handles.h"

namespace zel {

/// A kind of native objects, and what they become.
struct NativeKind {
  bool (*matches)(Object*);
  REALobject (*convert)(id, Nesting, REALstring& text);
};

/// The kinds of the classes whose objects have been converted.
extern ClassMemory<NativeKind> KnownKinds;

/// A host value of a native object, which is only borrowed, with one reference for the caller: a
/// Variant of a string, number or boolean, an array, Date, MemoryBlock, FolderItem or Dictionary,
/// or an object of the host class that another plugin of the family has for it. Null for nil, for
/// NSNull, and for what has no host value. Native exceptions pass.
/// @param nesting where the object stands; see there for one that is too deep.
[[nodiscard]] REALobject NewVariantFromNSObject(id object, Nesting nesting = {});

/// The same within a list or dictionary, which has one clean-up for all that it holds.
/// @param text a place for a text that is held meanwhile: null before and afterwards. What a native
///             exception leaves there is the caller's to drop.
[[nodiscard]] REALobject NewVariantFromNSObject(id object, Nesting nesting, REALstring& text);

/// Inserts the host values of a native list, in its order, into a host array of variants. What has
/// no host value is inserted as null. Native exceptions pass.
/// @param array   nullable: then nothing happens.
/// @param list    an NSArray; nil: nothing is inserted.
/// @param nesting where the list stands; see there for one that is too deep.
void FillVariantArray(REALarray array, id list, Nesting nesting = {});

}  // namespace zel
