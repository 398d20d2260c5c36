#include "tests/support/folder.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace tests {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::string name = (fs::canonical(fs::temp_directory_path()) / "test-XXXXXX").native();
  if (mkdtemp(name.data()) == nullptr)
    throw std::system_error(errno, std::generic_category(), "can't make a folder");
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace tests
