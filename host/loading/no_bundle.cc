// Where bundles can't be opened.
#include <stdexcept>

#include "host/loading/opened_file.h"

namespace host {

OpenedFile openBundle(const std::filesystem::path& folder) {
  throw std::runtime_error(folder.native() +
                           " is a macOS bundle, which needs a 32-bit process over GNUstep");
}

}  // namespace host
