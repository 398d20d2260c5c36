// The File Manager's functions, over the tree in memory.

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

#include "foundation_double/encodings.h"
#include "foundation_double/faults.h"
#include "foundation_double/file_refs.h"
#include "foundation_double/normalization.h"
#include "native/files.h"

namespace foundation_double::objc {
namespace {

// The File Manager's result codes, under their own names.
constexpr zel::OSErr nsvErr = -35;    // no such volume
constexpr zel::OSErr ioErr = -36;     // what a call that is told to fail answers
constexpr zel::OSErr bdNamErr = -37;  // a name that can't be expressed
constexpr zel::OSErr fnfErr = -43;    // no such item
constexpr zel::OSStatus pathTooLongErr = -2110;

constexpr std::uint32_t kParentOfRoots = 1;
constexpr std::size_t kLongestOldName = 63;  // bytes

/// Records the call; false when it is to fail.
bool enter(const char* function) { return Faults::shared().countCall(function); }

zel::HFSUniStr255 nameOf(const FileNode& node) {
  zel::HFSUniStr255 name{};
  name.length = static_cast<std::uint16_t>(node.name.size());
  std::copy(node.name.begin(), node.name.end(), name.unicode);
  return name;
}

/// nullopt: the name is too long for it or has characters that Mac Roman lacks.
std::optional<zel::FSSpec> specificationOf(const FileNode& node) {
  const auto name = encodeMacRoman(node.name);
  if (!name || name->size() > kLongestOldName) return std::nullopt;
  zel::FSSpec spec{};
  spec.vRefNum = node.volume;
  const bool isRoot = node.kind == FileKind::kVolume;
  spec.parID = static_cast<std::int32_t>(isRoot ? kParentOfRoots : node.parent->id());
  spec.name[0] = static_cast<std::uint8_t>(name->size());
  std::memcpy(spec.name + 1, name->data(), name->size());
  return spec;
}

/// The item that a file specification names, or null.
FileNode* findBySpecification(const zel::FSSpec& spec) {
  FileTree& tree = FileTree::shared();
  const auto* const bytes = reinterpret_cast<const char*>(spec.name) + 1;
  const auto name = decode({bytes, spec.name[0]}, zel::kCFStringEncodingMacRoman);
  const auto id = static_cast<std::uint32_t>(spec.parID);
  if (id == kParentOfRoots) {
    FileNode* const root = tree.rootOf(spec.vRefNum);
    return root != nullptr && root->name == decomposed(*name) ? root : nullptr;
  }
  FileNode* const folder = tree.byId(spec.vRefNum, id);
  if (folder == nullptr) return nullptr;
  const auto found = folder->children.find(decomposed(*name));
  return found == folder->children.end() ? nullptr : found->second.get();
}

/// What any call that gives a reference to an item answers. @param node nullable.
zel::OSErr give(const FileNode* node, zel::FSRef* ref) {
  if (node == nullptr) return fnfErr;
  *ref = refTo(node);
  return zel::noErr;
}

void give(const FileNode& node, zel::FSCatalogInfoBitmap which, zel::FSCatalogInfo* info) {
  if ((which & ~zel::kFSCatInfoNodeID) != 0) {
    misuseWithoutAnswer("a field of the catalog that the double doesn't know");
  }
  if (info != nullptr && which != zel::kFSCatInfoNone) info->nodeID = node.id();
}

}  // namespace
}  // namespace foundation_double::objc

namespace zel {

using namespace foundation_double::objc;  // NOLINT(google-build-using-namespace): this file is its
                                          // C face.

OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, FSCatalogInfo* info,
                       HFSUniStr255* name, FSSpec* spec, FSRef* parent) {
  if (!enter(__func__)) return ioErr;
  const FileNode* const node = nodeOf(*ref);
  if (node == nullptr) return fnfErr;
  if (spec != nullptr) {
    const auto specification = specificationOf(*node);
    if (!specification) return bdNamErr;
    *spec = *specification;
  }
  give(*node, which, info);
  if (name != nullptr) *name = nameOf(*node);
  // A volume's root is in no folder, and what the record then holds is nothing to rely on: here,
  // for a volume but the first one, the folder that shows it.
  if (parent != nullptr) *parent = refTo(node->parent);
  return noErr;
}

OSErr FSpMakeFSRef(const FSSpec* spec, FSRef* ref) {
  if (!enter(__func__)) return ioErr;
  if (FileTree::shared().rootOf(spec->vRefNum) == nullptr) return nsvErr;
  return give(findBySpecification(*spec), ref);
}

OSStatus FSPathMakeRef(const std::uint8_t* path, FSRef* ref, Boolean* isFolder) {
  if (!enter(__func__)) return ioErr;
  const auto units = decode(reinterpret_cast<const char*>(path), kCFStringEncodingUTF8);
  if (!units || units->empty() || units->front() != u'/') return fnfErr;
  const FileNode* const node = FileTree::shared().find(*units);
  if (node != nullptr && isFolder != nullptr) *isFolder = node->kind != FileKind::kFile;
  return give(node, ref);
}

OSStatus FSRefMakePath(const FSRef* ref, std::uint8_t* path, std::uint32_t size) {
  if (!enter(__func__)) return ioErr;
  const FileNode* const node = nodeOf(*ref);
  if (node == nullptr) return fnfErr;
  const std::string bytes = encodeLosslessly(node->path());
  if (bytes.size() >= size) return pathTooLongErr;
  std::memcpy(path, bytes.c_str(), bytes.size() + 1);
  return noErr;
}

}  // namespace zel
