// Whether a file is the macOS bundle that it should be: what the linker gets wrong, and what only
// shows when the bundle is loaded.
#pragma once

#include <llvm/Support/MemoryBufferRef.h>
#include <set>
#include <string>
#include <vector>

#include "macho/check/import_list.h"

namespace macho_check {

/// What the bundle for one processor has to be.
struct Requirements {
  std::string processor;  // i386, x86_64 or arm64
  ImportList imports;
  std::set<std::string> exports;
};

/// What is wrong with the file, one sentence each; empty when all is well.
/// @param processors one after the other, what the file holds; a single one means that the file is
///                   no universal one.
std::vector<std::string> faultsOf(llvm::MemoryBufferRef file,
                                  const std::vector<Requirements>& processors);

}  // namespace macho_check
