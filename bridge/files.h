// Files across the border: a host FolderItem and a native file URL. An item that doesn't exist yet
// is carried as its folder and its own name.
#pragma once

#include "native/corefoundation.h"
#include "plugin/handles.h"

namespace zel {

/// An autoreleased file URL of an item, which is only borrowed. Nil for null and for an item that
/// can't be expressed. Native exceptions pass.
CFURLRef NewNSURLfile(REALfolderItem item);

/// A new item of a URL, which is only borrowed, with one reference for the caller. Null for nil,
/// for a URL that is no file URL, and for one whose folder doesn't exist. Native exceptions pass.
[[nodiscard]] REALfolderItem NSURLRBFile(CFURLRef url);

}  // namespace zel
