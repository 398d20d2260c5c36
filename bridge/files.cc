#include "bridge/files.h"

#include "native/exceptions.h"
#include "native/files.h"
#include "plugin/host.h"

namespace zel {
namespace {

constexpr std::uint32_t kVolumeRoot = 2;  // the node identifier of every volume's root folder
constexpr CFIndex kLongestName = 255;     // UTF-16 units
constexpr CFIndex kDecomposed = 0;        // normalisation form D
constexpr Boolean kNoFolder = 0;

// Runs the body, then gives up the caller's reference on the object, also when a native exception
// leaves the body.
template <class Body>
auto releasing(CFTypeRef object, Body body) {
  return withCleanup(body, [&] { CFRelease(object); });
}

// The name in Unicode form D, owned by the caller; the name itself where no copy can be made.
CFStringRef decomposed(CFStringRef name) {
  const CFMutableStringRef copy = CFStringCreateMutableCopy(kDefaultAllocator, 0, name);
  if (copy == nullptr) return static_cast<CFStringRef>(CFRetain(name));
  bool complete = false;
  return withCleanup(
      [&]() -> CFStringRef {
        CFStringNormalize(copy, kDecomposed);
        complete = true;
        return copy;
      },
      [&] {
        if (!complete) CFRelease(copy);
      });
}

// --- host to native

// The URL of an item that exists, owned by the caller, or null.
CFURLRef urlOfExisting(REALfolderItem item) {
  FSRef ref{};
  if (REALFSRefFromFolderItem(item, &ref, nullptr) == 0) return nullptr;
  return CFURLCreateFromFSRef(kDefaultAllocator, &ref);
}

// The URL of a name in a folder, owned by the caller, or null. False: there is no such name.
bool urlInFolder(CFURLRef folder, const HFSUniStr255& name, CFURLRef& url) {
  if (name.length == 0) return false;
  const CFStringRef leaf =
      CFStringCreateWithCharacters(kDefaultAllocator, name.unicode, name.length);
  if (leaf == nullptr) return false;
  const CFStringRef normalised = releasing(leaf, [&] { return decomposed(leaf); });
  url = releasing(normalised, [&] {
    return CFURLCreateCopyAppendingPathComponent(kDefaultAllocator, folder, normalised, kNoFolder);
  });
  return true;
}

// The URL of an item that may not exist yet, owned by the caller; it may be null. False: the item
// can't be expressed so.
bool urlOfUnmade(REALfolderItem item, CFURLRef& url) {
  FSRef ref{};
  HFSUniStr255 name{};
  if (REALFSRefFromFolderItem(item, &ref, &name) == 0) return false;
  const CFURLRef folder = CFURLCreateFromFSRef(kDefaultAllocator, &ref);
  if (folder == nullptr) return false;
  return releasing(folder, [&] { return urlInFolder(folder, name, url); });
}

// The URL of an item that has only an old-style specification, owned by the caller, or null.
CFURLRef urlOfSpecification(REALfolderItem item) {
  FSSpec specification{};
  FSRef ref{};
  if (REALFSSpecFromFolderItem(&specification, item) == 0) return nullptr;
  if (FSpMakeFSRef(&specification, &ref) != noErr) return nullptr;
  return CFURLCreateFromFSRef(kDefaultAllocator, &ref);
}

// --- native to host

bool exists(const FSRef& ref) {
  return FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr) == noErr;
}

// The folder and the name of an existing item; false for one that has none, as a volume's root.
bool folderAndName(const FSRef& ref, FSRef& folder, HFSUniStr255& name) {
  FSCatalogInfo info{};
  if (FSGetCatalogInfo(&ref, kFSCatInfoNodeID, &info, nullptr, nullptr, &folder) != noErr) {
    return false;
  }
  if (info.nodeID == kVolumeRoot) folder = {};
  const bool named =
      FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, &name, nullptr, nullptr) == noErr;
  return exists(folder) && named;
}

REALfolderItem itemOfExisting(const FSRef& ref) {
  FSRef folder{};
  HFSUniStr255 name{};
  if (folderAndName(ref, folder, name)) return REALFolderItemFromParentFSRef(&folder, &name);
  FSSpec specification{};
  if (FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, &specification, nullptr) != noErr) {
    return nullptr;
  }
  return REALFolderItemFromFSSpec(&specification);
}

// A name record of a text, cut to what fits.
HFSUniStr255 nameRecord(CFStringRef text) {
  HFSUniStr255 name{};
  CFIndex count = CFStringGetLength(text);
  if (count > kLongestName) count = kLongestName;
  if (count > 0) {
    name.length = static_cast<std::uint16_t>(count);
    CFStringGetCharacters(text, {0, count}, name.unicode);
  }
  return name;
}

REALfolderItem itemInFolder(const FSRef& folder, CFURLRef url) {
  const CFStringRef leaf = CFURLCopyLastPathComponent(url);
  if (leaf == nullptr) return nullptr;
  return releasing(leaf, [&] {
    const CFStringRef normalised = decomposed(leaf);
    return releasing(normalised, [&] {
      const HFSUniStr255 name = nameRecord(normalised);
      return REALFolderItemFromParentFSRef(&folder, &name);
    });
  });
}

REALfolderItem itemOfMissing(CFURLRef url) {
  const CFURLRef parent = CFURLCreateCopyDeletingLastPathComponent(kDefaultAllocator, url);
  if (parent == nullptr) return nullptr;
  return releasing(parent, [&]() -> REALfolderItem {
    FSRef folder{};
    if (CFURLGetFSRef(parent, &folder) == 0) return nullptr;
    return itemInFolder(folder, url);
  });
}

}  // namespace

CFURLRef NewNSURLfile(REALfolderItem item) {
  if (item == nullptr) return nullptr;
  CFURLRef url = urlOfExisting(item);
  if (url == nullptr && !urlOfUnmade(item, url)) url = urlOfSpecification(item);
  return autoreleased(url);
}

REALfolderItem NSURLRBFile(CFURLRef url) {
  if (url == nullptr) return nullptr;
  FSRef ref{};
  return CFURLGetFSRef(url, &ref) != 0 ? itemOfExisting(ref) : itemOfMissing(url);
}

}  // namespace zel
