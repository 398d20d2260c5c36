// The built plugin, as a host loads it.
#pragma once

#include <filesystem>
#include <string>

#include "testkit/host/host.h"

namespace testkit {

/// The plugin's file in this process, from dlopen to dlclose: every load starts with the plugin's
/// process-wide values as they were built.
class PluginLibrary {
 public:
  /// Throws std::runtime_error with the loader's reason when the file can't be loaded, has no
  /// REALPluginMain, or is loaded already.
  explicit PluginLibrary(const std::filesystem::path& file);
  ~PluginLibrary();
  PluginLibrary(const PluginLibrary&) = delete;
  PluginLibrary& operator=(const PluginLibrary&) = delete;

  /// Its entry point, never null.
  [[nodiscard]] PluginMain main() const { return main_; }

 private:
  void* handle_;
  PluginMain main_;
};

}  // namespace testkit
