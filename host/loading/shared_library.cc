#include <dlfcn.h>
#include <stdexcept>
#include <string>

#include "host/loading/opened_file.h"

namespace host {

OpenedFile openSharedLibrary(const std::filesystem::path& file) {
  // A bare name would be searched for in the system's folders.
  const std::string path = std::filesystem::absolute(file).native();
  void* const loaded = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  void* const handle = loaded != nullptr ? loaded : dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) throw std::runtime_error(dlerror());
  std::shared_ptr<void> library(handle, dlclose);
  const auto main = reinterpret_cast<PluginMain>(dlsym(handle, "REALPluginMain"));
  if (main == nullptr) throw std::runtime_error(path + " has no REALPluginMain: it is no plugin");
  if (loaded != nullptr) throw std::runtime_error(path + " is loaded already");
  return {std::move(library), main, Border{}};
}

}  // namespace host
