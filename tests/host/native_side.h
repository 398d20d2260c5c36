// The native side as these tests need it, the same over the Foundation double and over the real
// one.
#pragma once

#include <string>

#include "host/family/family.h"

namespace tests {

host::AddMethod addToNativeSide();

/// What is autoreleased while this exists is given up when it goes.
class Pool {
 public:
  Pool();
  ~Pool();
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;

 private:
  [[maybe_unused]] zel::id pool_ = nullptr;
};

/// A folder that the File Manager's functions see, and that goes with this.
class Folder {
 public:
  Folder();
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  /// Without a slash at its end.
  [[nodiscard]] const std::string& path() const { return path_; }
  void makeFile(const std::string& name) const;

 private:
  std::string path_;
};

}  // namespace tests
