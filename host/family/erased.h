// Functions without their types, as runtimes keep them.
#pragma once

namespace testkit {

template <class Function>
auto erased(Function* function) {
  return reinterpret_cast<void (*)()>(function);
}

}  // namespace testkit
