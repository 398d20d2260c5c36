#include "host/internal/memory.h"

#include <algorithm>

namespace host::internal {
namespace {

constexpr std::size_t kGuardSize = 16;
constexpr std::byte kGuard{0xFD};
constexpr std::byte kPoison{0xDD};

}  // namespace

Memory::Memory(std::size_t size)
    : size_(size), bytes_(std::make_unique<std::byte[]>(size + kGuardSize)) {
  std::fill_n(at(size_), kGuardSize, kGuard);
}

void Memory::poison() {
  std::fill_n(bytes_.get(), size_, kPoison);
  dead_ = true;
}

bool Memory::intact() const {
  const auto is = [](std::byte wanted) { return [wanted](std::byte b) { return b == wanted; }; };
  return std::all_of(at(size_), at(size_ + kGuardSize), is(kGuard)) &&
         (!dead_ || std::all_of(at(0), at(size_), is(kPoison)));
}

}  // namespace host::internal
