#include "host/internal/memory_blocks.h"

#include <utility>

#include "host/internal/state.h"

namespace host::internal {

HostMemoryBlock::HostMemoryBlock(std::shared_ptr<const HostClass> objectClass, std::int32_t size)
    : HostObject(std::move(objectClass)),
      reportedSize(size),
      bytes_(static_cast<std::size_t>(size)) {}

void HostMemoryBlock::poison() {
  HostObject::poison();
  bytes_.poison();
}

zel::REALmemoryBlock newMemoryBlock(State& state, std::int32_t size) {
  std::shared_ptr<const HostClass> found = state.classes.find("MemoryBlock");
  if (found == nullptr || size < 0) return nullptr;
  return addObject(state, std::make_unique<HostMemoryBlock>(std::move(found), size)).block();
}

void* memoryBlockPointer(State& state, zel::REALmemoryBlock block) {
  const auto* const found = state.ledger.find<HostMemoryBlock>(block, "memoryBlockGetPtr");
  return found == nullptr ? nullptr : found->bytes();
}

std::int32_t memoryBlockSize(State& state, zel::REALmemoryBlock block) {
  const auto* const found = state.ledger.find<HostMemoryBlock>(block, "memoryBlockGetSize");
  return found == nullptr ? 0 : found->reportedSize;
}

}  // namespace host::internal
