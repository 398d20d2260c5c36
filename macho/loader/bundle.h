// A macOS bundle, loaded into this process.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "macho/loader/bindings.h"
#include "macho/loader/frames.h"
#include "macho/loader/mapped_image.h"

namespace macho {

/// The file of a bundle's code: NAME.bundle/Contents/MacOS/NAME.
std::filesystem::path executableOf(const std::filesystem::path& bundle);
/// The image in a file. Throws std::runtime_error with the file's name in front of the reason.
Image imageOf(const std::filesystem::path& file);

/// From loading, which runs the initialisers, to the end of the object, with which its memory goes.
/// Every bundle that is loaded has variables of its own, also when it is loaded a second time.
class Bundle {
 public:
  /// Throws std::runtime_error with the reason when it can't be loaded. @param folder NAME.bundle.
  explicit Bundle(const std::filesystem::path& folder);

  /// Whether the bundle may have given the runtime methods, and so must be kept as long as the
  /// process.
  [[nodiscard]] bool mustStay() const;

  /// The function of that name (without the underscore in front), or null.
  [[nodiscard]] void* find(const std::string& function) const;

  /// Calls a function of the bundle. A native exception that leaves it goes on as one of this
  /// system. Throws std::runtime_error when there is no such function.
  template <class R = void, class... Arguments>
  R call(const std::string& function, Arguments... arguments) const;

 private:
  [[nodiscard]] void* get(const std::string& function) const;
  void initialise() const;

  std::string name_;
  Image image_;
  MappedImage mapped_;
};

template <class R, class... Arguments>
R Bundle::call(const std::string& function, Arguments... arguments) const {
  const auto entry = reinterpret_cast<R (*)(Arguments...)>(get(function));
  const auto calling = [&]() -> R { return entry(arguments...); };
  if constexpr (std::is_void_v<R>) {
    enterBundle([](void* raw) { (*static_cast<decltype(calling)*>(raw))(); },
                const_cast<void*>(static_cast<const void*>(&calling)));
  } else {
    R result{};
    const auto keeping = [&] { result = calling(); };
    enterBundle([](void* raw) { (*static_cast<decltype(keeping)*>(raw))(); },
                const_cast<void*>(static_cast<const void*>(&keeping)));
    return result;
  }
}

}  // namespace macho
