#include "testkit/library/plugin_library.h"

#include <dlfcn.h>
#include <stdexcept>

namespace testkit {
PluginLibrary::PluginLibrary(const std::filesystem::path& file) {
  // A bare name would be searched for in the system's folders.
  const std::string path = std::filesystem::absolute(file).native();
  if (void* const loaded = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD); loaded != nullptr) {
    dlclose(loaded);
    throw std::runtime_error(path + " is loaded already");
  }
  handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) throw std::runtime_error(dlerror());
  main_ = reinterpret_cast<PluginMain>(dlsym(handle_, "REALPluginMain"));
  if (main_ == nullptr) {
    dlclose(handle_);
    throw std::runtime_error(path + " has no REALPluginMain: it is no plugin");
  }
}

PluginLibrary::~PluginLibrary() { dlclose(handle_); }

}  // namespace testkit
