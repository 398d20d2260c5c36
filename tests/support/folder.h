// A folder for the files of a test.
#pragma once

#include <filesystem>
#include <string>

namespace tests {

/// A new, empty folder, which goes away with everything in it. Its path has no links on the way.
/// Throws std::system_error or std::filesystem::filesystem_error when it can't be made.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tests
