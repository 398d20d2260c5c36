// Core Foundation's functions for URLs.

#include <string>

#include "foundation_double/faults.h"
#include "foundation_double/file_refs.h"
#include "foundation_double/strings.h"
#include "foundation_double/url_paths.h"
#include "foundation_double/urls.h"
#include "native/files.h"

namespace foundation_double::objc {
namespace {

/// Records the call; false when it is to fail.
bool enter(const char* function) { return Faults::shared().countCall(function); }

std::u16string textOf(zel::CFURLRef url) { return *bodyOf<UrlBody>(url, "URL").text(); }

}  // namespace
}  // namespace foundation_double::objc

namespace zel {

using namespace foundation_double::objc;  // NOLINT(google-build-using-namespace): this file is its
                                          // C face.

CFURLRef CFURLCreateWithString(CFAllocatorRef /*allocator*/, CFStringRef text, CFURLRef base) {
  if (!enter(__func__) || text == nullptr) return nullptr;
  if (base != nullptr) misuseWithoutAnswer("a URL with a base, which the double doesn't resolve");
  return createUrl(stringBody(text).units);
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef /*allocator*/, CFURLRef url,
                                               CFStringRef component, Boolean isFolder) {
  if (!enter(__func__)) return nullptr;
  const std::u16string text = textOf(url);
  const auto parts = urlParts(text);
  if (!parts) return nullptr;
  std::u16string path(parts->path);
  if (path.back() != u'/') path += u'/';
  path += escapedComponent(stringBody(component).units);
  if (isFolder != 0) path += u'/';
  return createUrl(std::u16string(parts->head) + path + std::u16string(parts->tail));
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef /*allocator*/, CFURLRef url) {
  if (!enter(__func__)) return nullptr;
  const std::u16string text = textOf(url);
  const auto parts = urlParts(text);
  if (!parts || pathOfFolder(parts->path).empty()) return nullptr;
  const std::u16string folder(pathOfFolder(parts->path));
  return createUrl(std::u16string(parts->head) + folder + std::u16string(parts->tail));
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
  if (!enter(__func__)) return nullptr;
  const std::u16string text = textOf(url);
  const auto parts = urlParts(text);
  if (!parts) return nullptr;
  auto component = unescaped(lastComponent(parts->path));
  return component ? createString(*std::move(component)) : nullptr;
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef /*allocator*/, const FSRef* ref) {
  if (!enter(__func__)) return nullptr;
  const FileNode* const node = nodeOf(*ref);
  if (node == nullptr) return nullptr;
  std::u16string path = node->path();
  if (node->kind != FileKind::kFile && path.back() != u'/') path += u'/';
  return createFileUrl(path);
}

Boolean CFURLGetFSRef(CFURLRef url, FSRef* ref) {
  if (!enter(__func__)) return 0;
  const auto path = filePath(url);
  const FileNode* const node = path ? FileTree::shared().find(*path) : nullptr;
  if (node != nullptr) *ref = refTo(node);
  return node != nullptr;
}

}  // namespace zel
