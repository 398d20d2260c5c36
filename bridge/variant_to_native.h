// Any host value as a native object.
#pragma once

#include "bridge/nesting.h"
#include "native/corefoundation.h"
#include "plugin/handles.h"

namespace zel {

/// What empty host texts become: one object, made at its first use and kept for the life of the
/// process; null before.
extern CFStringRef EmptyText;

/// A native object of a host value (a Variant, array or object), which is only borrowed. The result
/// is not the caller's: it is autoreleased, a constant, or owned by the host object that it came
/// from. Nil for null and for what has no native object. Native exceptions pass.
/// @param nesting where the value stands; see there for one that is too deep.
id GetVariantAsNSObject(REALobject value, Nesting nesting = {});

/// The same within a list or dictionary, which has one clean-up for all that it holds.
/// @param text a place for a text that is held meanwhile: null before and afterwards. What a native
///             exception leaves there is the caller's to drop.
id GetVariantAsNSObject(REALobject value, Nesting nesting, REALstring& text);

}  // namespace zel
