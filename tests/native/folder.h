// A folder for one test of files.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "native/files.h"
#include "tests/native/support.h"
#include "tests/support/folder.h"

namespace native_test {

/// A test with a new, empty folder, which goes away with everything in it.
class FolderTest : public NativeTest {
 protected:
  /// The path of a name in the folder; the path has no links on the way.
  [[nodiscard]] std::string at(std::string_view name) const {
    return folder_ + "/" + std::string(name);
  }
  [[nodiscard]] const std::string& folder() const { return folder_; }
  /// Makes a file of that name and gives back its path.
  std::string file(std::string_view name) const;
  /// Makes a folder of that name and gives back its path.
  std::string subfolder(std::string_view name) const;

 private:
  tests::TemporaryFolder temporary_;
  std::string folder_ = temporary_.path().native();
};

/// The reference of an existing item; a test failure, and all zeros, for any other.
zel::FSRef refOf(const std::string& path);
/// The path of a reference, or "error " and the code.
std::string pathOf(const zel::FSRef& ref);
/// The name of a reference's item, or nothing.
std::u16string nameOf(const zel::FSRef& ref);
/// The reference of the folder that an item is in.
zel::FSRef folderOf(const zel::FSRef& ref);
bool isNothing(const zel::FSRef& ref);

}  // namespace native_test
