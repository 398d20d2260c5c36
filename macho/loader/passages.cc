#include "macho/loader/passages.h"

#include <cstdint>
#include <cstring>
#include <map>
#include <stdexcept>
#include <sys/mman.h>

#include "macho/loader/frames.h"

extern "C" {
// In passage.S.
void machoPassage();
void machoPassageForStructure();
void machoPassageInward();
/// Calls the function of a record. @param record as passage.S lays it out.
void machoCallAsRecorded(void* record);
void machoEnterBundle(void* record);
/// Where a passage lands with a native exception.
[[noreturn]] void machoThrowToFrame(zel::id exception);
}

void machoThrowToFrame(zel::id exception) { macho::throwToFrame(exception); }
void machoEnterBundle(void* record) { macho::enterBundle(machoCallAsRecorded, record); }

namespace macho {
namespace {

// Loads the function's address where the passage expects it, and goes to the passage:
//   movl $function, %eax;  jmp passage
class Thunk {
 public:
  Thunk(std::uint8_t* code, const void* function, void (*passage)()) {
    code[0] = 0xB8;
    put(code + 1, address(function));
    code[5] = 0xE9;
    put(code + 6, address(reinterpret_cast<void*>(passage)) - address(code + kSize));
  }
  static constexpr std::size_t kSize = 10;

 private:
  static std::uint32_t address(const void* place) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(place));
  }
  static void put(std::uint8_t* code, std::uint32_t value) {
    std::memcpy(code, &value, sizeof value);
  }
};

// The thunks of the process, in a stretch of memory that is never both written and run.
class Thunks {
 public:
  explicit Thunks(void (*passage)()) : passage_(passage) {
    void* const memory =
        mmap(nullptr, kMemorySize, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("there is no memory for thunks");
    memory_ = static_cast<std::uint8_t*>(memory);
  }

  void* of(void* function) {
    const auto [entry, isNew] = known_.try_emplace(function, nullptr);
    if (isNew) entry->second = make(function);
    return entry->second;
  }

 private:
  static constexpr std::size_t kMemorySize = 16 * 4096;
  static constexpr std::size_t kDistance = 16;

  void* make(void* function) {
    if (used_ + kDistance > kMemorySize) throw std::runtime_error("there are too many thunks");
    std::uint8_t* const code = memory_ + used_;
    used_ += kDistance;
    protect(PROT_READ | PROT_WRITE);
    Thunk(code, function, passage_);
    protect(PROT_READ | PROT_EXEC);
    return code;
  }
  void protect(int protection) const {
    if (mprotect(memory_, kMemorySize, protection) != 0)
      throw std::runtime_error("the memory of the thunks can't be protected");
  }

  void (*passage_)();
  std::uint8_t* memory_;
  std::size_t used_ = 0;
  std::map<void*, void*> known_;
};

}  // namespace

void* outward(void* function) {
  static Thunks thunks(machoPassage);
  return thunks.of(function);
}

void* outwardForStructure(void* function) {
  static Thunks thunks(machoPassageForStructure);
  return thunks.of(function);
}

void* inward(void* function) {
  static Thunks thunks(machoPassageInward);
  return thunks.of(function);
}

}  // namespace macho
