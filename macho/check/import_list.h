// The list of what the macOS bundles import: native/darwin/imports.txt.
#pragma once

#include <istream>
#include <map>
#include <string>

namespace macho_check {

/// What a bundle for one processor imports.
struct ImportList {
  /// The oldest version that will do, by install name: "300.0".
  std::map<std::string, std::string> libraries;
  /// The library's install name, by symbol.
  std::map<std::string, std::string> symbols;
};

/// Reads the list, as far as it is about that bundle for that processor.
/// @param bundle the name that the bundle's own sections of the list have.
/// @throws std::runtime_error with the line that can't be understood.
ImportList readImportList(std::istream& text, const std::string& bundle,
                          const std::string& processor);

}  // namespace macho_check
