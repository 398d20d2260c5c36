// Memory that the plugin can see: zeroed at first, poison once it is dead, with a guard behind it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace host::internal {

class Memory {
 public:
  explicit Memory(std::size_t size);

  [[nodiscard]] void* data() const { return bytes_.get(); }
  [[nodiscard]] std::byte* at(std::size_t offset) const { return bytes_.get() + offset; }
  [[nodiscard]] std::size_t size() const { return size_; }

  /// The memory is dead: whoever reads it finds poison.
  void poison();
  /// Whether nobody wrote behind the memory nor, once it is dead, into it.
  [[nodiscard]] bool intact() const;

 private:
  std::size_t size_;
  bool dead_ = false;
  std::unique_ptr<std::byte[]> bytes_;  // followed by the guard
};

}  // namespace host::internal
