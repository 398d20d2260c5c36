// FSRef records, which hold the serial number of an item of the tree in memory.
#pragma once

#include <cstring>

#include "foundation_double/file_tree.h"
#include "native/files.h"

namespace foundation_double::objc {

/// The reference of an item; that of null is all zeros.
inline zel::FSRef refTo(const FileNode* node) {
  zel::FSRef ref{};
  if (node != nullptr) std::memcpy(ref.hidden, &node->serial, sizeof node->serial);
  return ref;
}

/// The item that a reference names, or null.
inline FileNode* nodeOf(const zel::FSRef& ref) {
  std::uint32_t serial = 0;
  std::memcpy(&serial, ref.hidden, sizeof serial);
  return FileTree::shared().bySerial(serial);
}

}  // namespace foundation_double::objc
