// Watches and fails the C allocations of the program under test.
//
// The test program is linked with --wrap for malloc, calloc and free, so every direct call of these
// from code that is linked statically (the product, the test and its kit) passes here. Memory that
// the C++ and C libraries take for themselves (operator new, strdup, realloc) doesn't, so the kit
// takes its own memory with these and what is counted is what the product allocates.
#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

namespace foundation_double {

class Allocations {
 public:
  static Allocations& shared();
  Allocations(const Allocations&) = delete;
  Allocations& operator=(const Allocations&) = delete;

  /// Forgets the fault and everything recorded; blocks that still live are no longer watched.
  void reset();

  /// Makes the n-th malloc or calloc from now answer null; 1 is the next one, 0 takes it back.
  void failAt(long n);
  /// Whether the fault that was asked for hasn't gone off yet.
  [[nodiscard]] bool faultPending() const { return failIn_ != 0; }

  /// The size in bytes of every block asked for since reset, in order, failed ones included.
  [[nodiscard]] const std::vector<std::size_t>& sizes() const { return sizes_; }
  /// How many blocks made since reset haven't been freed.
  [[nodiscard]] std::size_t live() const { return blocks_.size(); }

  // For the wrappers.
  /// Records a request. False: it is to fail.
  bool request(std::size_t size);
  void made(void* block);
  void freed(void* block);

 private:
  Allocations() = default;

  long failIn_ = 0;
  std::vector<std::size_t> sizes_;
  std::unordered_set<void*> blocks_;
};

}  // namespace foundation_double
