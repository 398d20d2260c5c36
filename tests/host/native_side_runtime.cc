#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "host/family/runtime.h"
#include "tests/host/native_side.h"

namespace tests {

host::AddMethod addToNativeSide() { return host::addToRuntime(); }

Pool::Pool() : pool_(zel::send<zel::id, "new">(zel::classNamed<"NSAutoreleasePool">())) {}
Pool::~Pool() { zel::release(pool_); }

Folder::Folder() : path_(std::filesystem::temp_directory_path() / "folder of testsXXXXXX") {
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no folder " + path_);
}
Folder::~Folder() { std::filesystem::remove_all(path_); }
void Folder::makeFile(const std::string& name) const {
  std::ofstream(path_ + "/" + name) << "text";
}

}  // namespace tests
