#include "foundation_double/file_tree.h"

#include "foundation_double/encodings.h"
#include "foundation_double/faults.h"
#include "foundation_double/normalization.h"

namespace foundation_double::objc {
namespace {

constexpr std::uint32_t kRootId = 2;
constexpr std::uint32_t kFirstSerial = 16;   // lower numbers have a meaning of their own
constexpr std::int16_t kFirstVolume = -100;  // the next ones are -101, -102, ...
constexpr std::size_t kLongestName = 255;    // UTF-16 units
constexpr std::u16string_view kNameOfRoot = u"Disk";

/// The components of an absolute path, in form D.
std::vector<std::u16string> componentsOf(std::u16string_view path) {
  std::vector<std::u16string> components;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find(u'/'), path.size());
    if (end > 0) components.push_back(decomposed(path.substr(0, end)));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return components;
}

void checkAbsolute(std::u16string_view path) {
  if (path.empty() || path.front() != u'/') misuseWithoutAnswer("a path that is not absolute");
}

std::unique_ptr<FileNode> newNode(std::uint32_t serial, std::int16_t volume, FileKind kind,
                                  std::u16string_view name, FileNode* parent) {
  return std::make_unique<FileNode>(
      FileNode{serial, volume, kind, std::u16string(name), parent, {}});
}

}  // namespace

std::uint32_t FileNode::id() const { return kind == FileKind::kVolume ? kRootId : serial; }

std::u16string FileNode::path() const {
  if (parent == nullptr) return u"/";
  return (parent->parent == nullptr ? u"" : parent->path()) + u"/" + name;
}

FileTree& FileTree::shared() {
  static auto* const tree = new FileTree;  // outlives every static user of it
  return *tree;
}

FileTree::FileTree() { reset(); }

void FileTree::reset() {
  root_ = newNode(kFirstSerial, kFirstVolume, FileKind::kVolume, kNameOfRoot, nullptr);
  nodes_ = {{kFirstSerial, root_.get()}};
  volumes_ = {kFirstSerial};
  nextSerial_ = kFirstSerial + 1;
}

FileNode& FileTree::make(std::u16string_view path, FileKind kind) {
  checkAbsolute(path);
  const auto components = componentsOf(path);
  FileNode* node = root_.get();
  for (std::size_t i = 0; i < components.size(); ++i) {
    node = &child(*node, components[i], i + 1 == components.size() ? kind : FileKind::kFolder);
  }
  const bool fits =
      node->kind == kind || (node->kind == FileKind::kVolume && kind == FileKind::kFolder);
  if (!fits) misuseWithoutAnswer("an item of another kind is there: " + encodeLosslessly(path));
  return *node;
}

/// The item of that name in the folder, made when there is none.
FileNode& FileTree::child(FileNode& folder, const std::u16string& name, FileKind kind) {
  if (folder.kind == FileKind::kFile) misuseWithoutAnswer("an item in what is no folder");
  if (name.size() > kLongestName) misuseWithoutAnswer("a name that is too long");
  auto& place = folder.children[name];
  if (place != nullptr) return *place;
  const bool isVolume = kind == FileKind::kVolume;
  const auto ownVolume =
      static_cast<std::int16_t>(kFirstVolume - static_cast<int>(volumes_.size()));
  place = newNode(nextSerial_++, isVolume ? ownVolume : folder.volume, kind, name, &folder);
  if (isVolume) volumes_.push_back(place->serial);
  nodes_.emplace(place->serial, place.get());
  return *place;
}

void FileTree::remove(std::u16string_view path) {
  checkAbsolute(path);
  FileNode* const node = find(path);
  if (node == nullptr || node->parent == nullptr) {
    misuseWithoutAnswer("no item to remove: " + encodeLosslessly(path));
  }
  forget(*node);
  const std::u16string name = node->name;
  node->parent->children.erase(name);
}

void FileTree::forget(const FileNode& node) {
  for (const auto& [name, child] : node.children) forget(*child);
  nodes_.erase(node.serial);
}

FileNode* FileTree::find(std::u16string_view path) {
  FileNode* node = root_.get();
  for (const std::u16string& name : componentsOf(path)) {
    const auto found = node->children.find(name);
    if (found == node->children.end()) return nullptr;
    node = found->second.get();
  }
  return node;
}

FileNode* FileTree::bySerial(std::uint32_t serial) {
  const auto found = nodes_.find(serial);
  return found == nodes_.end() ? nullptr : found->second;
}

FileNode* FileTree::byId(std::int16_t volume, std::uint32_t id) {
  FileNode* const node = id == kRootId ? rootOf(volume) : bySerial(id);
  return node != nullptr && node->volume == volume && node->id() == id ? node : nullptr;
}

FileNode* FileTree::rootOf(std::int16_t volume) {
  const int place = kFirstVolume - volume;
  if (place < 0 || static_cast<std::size_t>(place) >= volumes_.size()) return nullptr;
  return bySerial(volumes_[static_cast<std::size_t>(place)]);
}

}  // namespace foundation_double::objc
