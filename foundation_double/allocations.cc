#include "foundation_double/allocations.h"

#include <limits>

namespace foundation_double {

Allocations& Allocations::shared() {
  static auto* const allocations = new Allocations;  // blocks are still freed at exit
  return *allocations;
}

void Allocations::reset() {
  failIn_ = 0;
  sizes_.clear();
  blocks_.clear();
}

void Allocations::failAt(long n) { failIn_ = n; }

bool Allocations::request(std::size_t size) {
  sizes_.push_back(size);
  if (failIn_ == 0) return true;
  failIn_--;
  return failIn_ != 0;
}

void Allocations::made(void* block) {
  if (block != nullptr) blocks_.insert(block);
}

void Allocations::freed(void* block) { blocks_.erase(block); }

}  // namespace foundation_double

using foundation_double::Allocations;

// The names that the linker's --wrap asks for.
extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void __real_free(void* block);

void* __wrap_malloc(std::size_t size) {
  if (!Allocations::shared().request(size)) return nullptr;
  void* const block = __real_malloc(size);
  Allocations::shared().made(block);
  return block;
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  std::size_t total = 0;
  if (__builtin_mul_overflow(count, size, &total)) total = std::numeric_limits<std::size_t>::max();
  if (!Allocations::shared().request(total)) return nullptr;
  void* const block = __real_calloc(count, size);
  Allocations::shared().made(block);
  return block;
}

void __wrap_free(void* block) {
  Allocations::shared().freed(block);
  __real_free(block);
}

}  // extern "C"
