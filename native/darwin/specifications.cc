#include "native/files.h"

namespace zel {
namespace {

constexpr OSErr kNotSupported = -50;

}  // namespace

// 64-bit macOS has no old-style file specifications, so a host can have none either.
OSErr FSpMakeFSRef(const FSSpec* /*spec*/, FSRef* /*ref*/) { return kNotSupported; }

}  // namespace zel
