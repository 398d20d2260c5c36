#include "runner/command/input.h"

#include "runner/command/interrupts.h"

namespace runner {

Input::Input(int descriptor) : std::istream(nullptr), buffer_(descriptor) { rdbuf(&buffer_); }

Input::Buffer::int_type Input::Buffer::underflow() {
  const ssize_t count = readUnlessInterrupted(descriptor_, bytes_.data(), bytes_.size());
  if (count <= 0) return traits_type::eof();
  setg(bytes_.data(), bytes_.data(), bytes_.data() + count);
  return traits_type::to_int_type(bytes_.front());
}

}  // namespace runner
