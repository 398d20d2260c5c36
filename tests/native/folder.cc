#include "tests/native/folder.h"

#include <cstring>
#include <fstream>

namespace native_test {

namespace fs = std::filesystem;

std::string FolderTest::file(std::string_view name) const {
  std::string path = at(name);
  std::ofstream(path) << "something";
  EXPECT_TRUE(fs::exists(path)) << path;
  return path;
}

std::string FolderTest::subfolder(std::string_view name) const {
  std::string path = at(name);
  EXPECT_TRUE(fs::create_directory(path)) << path;
  return path;
}

zel::FSRef refOf(const std::string& path) {
  zel::FSRef ref{};
  EXPECT_EQ(zel::FSPathMakeRef(reinterpret_cast<const std::uint8_t*>(path.c_str()), &ref, nullptr),
            zel::noErr)
      << path;
  return ref;
}

std::string pathOf(const zel::FSRef& ref) {
  std::string path(4096, '\0');
  const zel::OSStatus status =
      zel::FSRefMakePath(&ref, reinterpret_cast<std::uint8_t*>(path.data()), 4096);
  return status == zel::noErr ? path.c_str() : "error " + std::to_string(status);
}

std::u16string nameOf(const zel::FSRef& ref) {
  zel::HFSUniStr255 name{};
  if (zel::FSGetCatalogInfo(&ref, zel::kFSCatInfoNone, nullptr, &name, nullptr, nullptr) !=
      zel::noErr) {
    return {};
  }
  return {name.unicode, name.unicode + name.length};
}

zel::FSRef folderOf(const zel::FSRef& ref) {
  zel::FSRef folder{};
  EXPECT_EQ(zel::FSGetCatalogInfo(&ref, zel::kFSCatInfoNone, nullptr, nullptr, nullptr, &folder),
            zel::noErr);
  return folder;
}

bool isNothing(const zel::FSRef& ref) {
  const zel::FSRef nothing{};
  return std::memcmp(&ref, &nothing, sizeof ref) == 0;
}

}  // namespace native_test
