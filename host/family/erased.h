// Functions without their types, as runtimes keep them.
#pragma once

namespace host {

template <class Function>
auto erased(Function* function) {
  return reinterpret_cast<void (*)()>(function);
}

}  // namespace host
