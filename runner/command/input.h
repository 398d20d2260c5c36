// Where programs read from.
#pragma once

#include <array>
#include <istream>
#include <streambuf>

namespace runner {

/// Text from a file descriptor, no more of it than there is when it is asked for. It ends when
/// Ctrl-C interrupts the program, as Interrupts has it; clear() lets it go on.
class Input : public std::istream {
 public:
  /// @param descriptor stays open.
  explicit Input(int descriptor);
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

 private:
  class Buffer : public std::streambuf {
   public:
    explicit Buffer(int descriptor) : descriptor_(descriptor) {}

   protected:
    int_type underflow() override;

   private:
    int descriptor_;
    std::array<char, 4096> bytes_{};
  };

  Buffer buffer_;
};

}  // namespace runner
