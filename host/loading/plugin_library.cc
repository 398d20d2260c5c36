#include "host/loading/plugin_library.h"

namespace host {
namespace {

OpenedFile open(const std::filesystem::path& file) {
  return isBundle(file) ? openBundle(file) : openSharedLibrary(file);
}

}  // namespace

bool isBundle(const std::filesystem::path& file) {
  // A name that ends in a slash has an empty last part.
  return (file.has_filename() ? file : file.parent_path()).extension() == ".bundle";
}

PluginLibrary::PluginLibrary(const std::filesystem::path& file) : opened_(open(file)) {}

}  // namespace host
