// A file system in memory: what the File Manager's functions see.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace foundation_double::objc {

enum class FileKind { kFile, kFolder, kVolume };

struct FileNode {
  std::uint32_t serial;  // its own for ever, never 0
  std::int16_t volume;
  FileKind kind;
  std::u16string name;  // in Unicode form D
  FileNode* parent;     // null for "/"
  std::map<std::u16string, std::unique_ptr<FileNode>, std::less<>> children;

  /// Its number on its volume.
  [[nodiscard]] std::uint32_t id() const;
  /// Absolute; without a slash at the end, but for "/".
  [[nodiscard]] std::u16string path() const;
};

class FileTree {
 public:
  static FileTree& shared();
  void reset();

  /// Makes an item, and the folders above it as needed, or finds it. An item of another kind in its
  /// place is misuse, and so is a path that is not absolute.
  FileNode& make(std::u16string_view path, FileKind kind);
  /// Removes an item with what is in it; there not being one is misuse, and so is "/".
  void remove(std::u16string_view path);

  /// The item at that path, or null. Empty components don't count.
  FileNode* find(std::u16string_view path);
  /// The item of that serial number, or null.
  FileNode* bySerial(std::uint32_t serial);
  /// The item of that number on that volume, or null.
  FileNode* byId(std::int16_t volume, std::uint32_t id);
  /// The root folder of a volume, or null.
  FileNode* rootOf(std::int16_t volume);

 private:
  FileTree();
  FileNode& child(FileNode& folder, const std::u16string& name, FileKind kind);
  void forget(const FileNode& node);

  std::uint32_t nextSerial_;
  std::unique_ptr<FileNode> root_;
  std::unordered_map<std::uint32_t, FileNode*> nodes_;  // by serial number
  std::vector<std::uint32_t> volumes_;  // the serial numbers of their roots; their own is the place
};

}  // namespace foundation_double::objc
