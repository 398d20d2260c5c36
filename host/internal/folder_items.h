// The host's class FolderItem: files and folders that exist or don't, by their paths.
#pragma once

#include <string>
#include <string_view>

#include "host/internal/objects.h"
#include "native/files.h"

namespace host::internal {

class HostFolderItem : public HostObject {
 public:
  static constexpr std::string_view kWhat = "a FolderItem";

  using HostObject::HostObject;

  [[nodiscard]] zel::REALfolderItem item() const {
    return reinterpret_cast<zel::REALfolderItem>(object());
  }

  std::string path = "/";  // absolute, in UTF-8, without a slash at its end
};

/// A new item with one reference for the caller; null while the host has no class FolderItem.
HostFolderItem* newFolderItem(State& state, std::string path);

// --- entry points
/// Null when there is no such item.
zel::REALfolderItem folderItemFromFSSpec(State& state, const zel::FSSpec* specification);
/// False when the item doesn't exist.
zel::REALboolean fsSpecFromFolderItem(State& state, zel::FSSpec* out, zel::REALfolderItem item);
/// Without a name record: the reference of the item; false when it doesn't exist. With one: that of
/// its folder, and its own name; false when the folder doesn't exist or there is none.
zel::REALboolean fsRefFromFolderItem(State& state, zel::REALfolderItem item, zel::FSRef* out,
                                     zel::HFSUniStr255* name);
/// Null when there is no such folder, or no name.
zel::REALfolderItem folderItemFromParentFSRef(State& state, const zel::FSRef* parent,
                                              const zel::HFSUniStr255* name);

// --- methods
/// "TrueItem(Index as integer) as Folderitem": this host doesn't list folders, so this raises
/// UnsupportedOperationException and gives null.
zel::REALobject trueItem(State& state, zel::REALobject item, std::int32_t index);

}  // namespace host::internal
