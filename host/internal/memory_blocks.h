// The host's class MemoryBlock.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "host/internal/objects.h"

namespace host::internal {

class HostMemoryBlock : public HostObject {
 public:
  static constexpr std::string_view kWhat = "a MemoryBlock";

  explicit HostMemoryBlock(std::shared_ptr<const HostClass> objectClass, std::int32_t size = 0);

  void poison() override;
  [[nodiscard]] bool intact() const override { return HostObject::intact() && bytes_.intact(); }

  [[nodiscard]] zel::REALmemoryBlock block() const {
    return reinterpret_cast<zel::REALmemoryBlock>(object());
  }
  /// Never null, also for a block without bytes.
  [[nodiscard]] void* bytes() const { return bytes_.data(); }
  [[nodiscard]] std::size_t size() const { return bytes_.size(); }

  std::int32_t reportedSize;  // what plugins are told

 private:
  Memory bytes_;
};

// --- entry points
/// Null for a negative size, and while the host has no class MemoryBlock.
zel::REALmemoryBlock newMemoryBlock(State& state, std::int32_t size);
void* memoryBlockPointer(State& state, zel::REALmemoryBlock block);
std::int32_t memoryBlockSize(State& state, zel::REALmemoryBlock block);

}  // namespace host::internal
