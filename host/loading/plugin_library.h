// The built plugin, as a host loads it.
#pragma once

#include <filesystem>

#include "host/host.h"
#include "host/loading/opened_file.h"

namespace host {

/// Whether a plugin's file is a macOS bundle, by its name.
bool isBundle(const std::filesystem::path& file);

/// The plugin in this process, from the loading of its file to the end of this object: every load
/// starts with the plugin's process-wide values as they were built.
class PluginLibrary {
 public:
  /// Throws std::runtime_error with the loader's reason when the file can't be loaded, has no
  /// REALPluginMain, or is loaded already.
  /// @param file a shared library; or NAME.bundle in a 32-bit process.
  explicit PluginLibrary(const std::filesystem::path& file);
  PluginLibrary(const PluginLibrary&) = delete;
  PluginLibrary& operator=(const PluginLibrary&) = delete;

  /// Its entry point, never null; a host calls it through the border.
  [[nodiscard]] PluginMain main() const { return opened_.main; }
  /// What a host that loads it has to be given.
  [[nodiscard]] Border border() const { return opened_.border; }

 private:
  OpenedFile opened_;
};

}  // namespace host
