#include "bridge/data.h"

#include "native/exceptions.h"
#include "native/geometry.h"
#include "native/libc.h"
#include "plugin/errors.h"
#include "plugin/host.h"

namespace zel {
namespace {

// A size that is never asked of the host: it counts as one that it can't provide.
constexpr std::int32_t kRefusedSize = 0x7FFFFFFF;

void raiseOutOfMemory(std::int32_t size) {
  char message[200];
  std::snprintf(message, sizeof message,
                "Failed to allocate a memoryblock with %lld bytes in size.",
                static_cast<long long>(size));
  RaiseException("OutOfMemoryException", message, 0);
}

}  // namespace

id NewNSData(REALmemoryBlock block) {
  if (block == nullptr) return nullptr;
  const auto object = reinterpret_cast<REALobject>(block);
  REALLockObject(object);
  return withCleanup(
      [&]() -> id {
        const std::int32_t size = REALMemoryBlockGetSize(block);
        const void* const bytes = REALMemoryBlockGetPtr(block);
        if (bytes == nullptr || size <= 0) return nullptr;
        return send<id, "dataWithBytes:length:">(classNamed<"NSData">(), bytes,
                                                 static_cast<NSUInteger>(size));
      },
      [&] { REALUnlockObject(object); });
}

REALmemoryBlock NSDataRB(id data) {
  const auto* const bytes = send<const void*, "bytes">(data);
  const auto length = static_cast<std::int32_t>(send<NSUInteger, "length">(data));
  if (bytes == nullptr || length <= 0) return nullptr;

  const REALmemoryBlock block =
      length == kRefusedSize ? nullptr : REALNewMemoryBlockOriginal(length);
  if (block == nullptr) {
    raiseOutOfMemory(length);
    return nullptr;
  }
  void* const target = REALMemoryBlockGetPtr(block);
  if (target == nullptr) return nullptr;  // deliberately leaves the block as it is
  std::memcpy(target, bytes, static_cast<std::size_t>(length));
  return block;
}

}  // namespace zel
