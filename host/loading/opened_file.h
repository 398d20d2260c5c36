// The two kinds of files in which a plugin comes.
#pragma once

#include <filesystem>
#include <memory>

#include "host/host.h"

namespace host {

struct OpenedFile {
  std::shared_ptr<void> file;  // keeps it loaded
  PluginMain main;             // never null
  Border border;
};

/// Opens a shared library of this system. Throws std::runtime_error with the loader's reason when
/// it can't be loaded, has no REALPluginMain, or is loaded already.
OpenedFile openSharedLibrary(const std::filesystem::path& file);
/// Opens a macOS bundle, NAME.bundle. Throws as openSharedLibrary does, and in a process whose
/// pointers are not as wide as the bundle's.
OpenedFile openBundle(const std::filesystem::path& folder);

}  // namespace host
