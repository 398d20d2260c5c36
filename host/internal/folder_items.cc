#include "host/internal/folder_items.h"

#include <cstring>
#include <iterator>
#include <optional>
#include <utility>

#include "host/internal/encodings.h"
#include "host/internal/exceptions.h"
#include "host/internal/state.h"

namespace host::internal {
namespace {

constexpr std::size_t kLongestPath = 4096;  // bytes

bool makeRef(const std::string& path, zel::FSRef* out) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(path.c_str());
  return zel::FSPathMakeRef(bytes, out, nullptr) == zel::noErr;
}

std::optional<std::string> pathOf(const zel::FSRef& ref) {
  std::uint8_t path[kLongestPath];
  if (zel::FSRefMakePath(&ref, path, sizeof path) != zel::noErr) return std::nullopt;
  return reinterpret_cast<const char*>(path);
}

std::string withoutSlash(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

// False when the name doesn't fit into the record.
bool fillName(std::string_view name, zel::HFSUniStr255* out) {
  const std::optional<std::string> units = convert(name, kUtf8, kUtf16);
  if (!units || units->size() > sizeof out->unicode) return false;
  std::memcpy(out->unicode, units->data(), units->size());
  out->length = static_cast<std::uint16_t>(units->size() / sizeof(zel::UniChar));
  return true;
}

std::optional<std::string> textOf(const zel::HFSUniStr255& name) {
  if (name.length == 0 || name.length > std::size(name.unicode)) return std::nullopt;
  const std::string_view units(reinterpret_cast<const char*>(name.unicode),
                               name.length * sizeof(zel::UniChar));
  return convert(units, kUtf16, kUtf8);
}

// The folder that an item is in, and its own name.
bool fillParent(const std::string& path, zel::FSRef* parent, zel::HFSUniStr255* name) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos || slash + 1 == path.size()) return false;
  return makeRef(slash == 0 ? "/" : path.substr(0, slash), parent) &&
         fillName(std::string_view(path).substr(slash + 1), name);
}

zel::REALfolderItem itemAt(State& state, std::optional<std::string> path) {
  const HostFolderItem* const made = path ? newFolderItem(state, std::move(*path)) : nullptr;
  return made == nullptr ? nullptr : made->item();
}

// Reports a missing record.
bool given(const State& state, const void* record, const char* who) {
  if (record == nullptr) state.failures.report(std::string(who) + " was given no record");
  return record != nullptr;
}

}  // namespace

HostFolderItem* newFolderItem(State& state, std::string path) {
  std::shared_ptr<const HostClass> found = state.classes.find("FolderItem");
  if (found == nullptr) return nullptr;
  HostFolderItem& item = addObject(state, std::make_unique<HostFolderItem>(std::move(found)));
  item.path = withoutSlash(std::move(path));
  return &item;
}

zel::REALfolderItem folderItemFromFSSpec(State& state, const zel::FSSpec* specification) {
  zel::FSRef ref{};
  if (!given(state, specification, "FolderItemFromFSSpec") ||
      zel::FSpMakeFSRef(specification, &ref) != zel::noErr)
    return nullptr;
  return itemAt(state, pathOf(ref));
}

zel::REALboolean fsSpecFromFolderItem(State& state, zel::FSSpec* out, zel::REALfolderItem item) {
  constexpr char kWho[] = "REALFSSpecFromFolderItem";
  const auto* const found = state.ledger.find<HostFolderItem>(item, kWho);
  zel::FSRef ref{};
  if (found == nullptr || !given(state, out, kWho) || !makeRef(found->path, &ref)) return 0;
  return zel::FSGetCatalogInfo(&ref, zel::kFSCatInfoNone, nullptr, nullptr, out, nullptr) ==
                 zel::noErr
             ? 1
             : 0;
}

zel::REALboolean fsRefFromFolderItem(State& state, zel::REALfolderItem item, zel::FSRef* out,
                                     zel::HFSUniStr255* name) {
  constexpr char kWho[] = "REALFSRefFromFolderItem";
  const auto* const found = state.ledger.find<HostFolderItem>(item, kWho);
  if (found == nullptr || !given(state, out, kWho)) return 0;
  const bool filled =
      name == nullptr ? makeRef(found->path, out) : fillParent(found->path, out, name);
  return filled ? 1 : 0;
}

zel::REALfolderItem folderItemFromParentFSRef(State& state, const zel::FSRef* parent,
                                              const zel::HFSUniStr255* name) {
  constexpr char kWho[] = "REALFolderItemFromParentFSRef";
  if (!given(state, parent, kWho) || !given(state, name, kWho)) return nullptr;
  const std::optional<std::string> folder = pathOf(*parent);
  const std::optional<std::string> leaf = textOf(*name);
  if (!folder || !leaf) return nullptr;
  return itemAt(state, (*folder == "/" ? "" : *folder) + "/" + *leaf);
}

zel::REALobject trueItem(State& state, zel::REALobject item, std::int32_t /*index*/) {
  if (state.ledger.find<HostFolderItem>(item, "FolderItem.TrueItem") != nullptr)
    raiseByName(state, "UnsupportedOperationException");
  return nullptr;
}

}  // namespace host::internal
