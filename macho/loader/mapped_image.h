// An image in the memory of this process.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "macho/file/image.h"

namespace macho {

/// What an import is to point at, or null when it is nothing that this system has.
using ImportResolver = std::function<void*(const Import&)>;

class MappedImage {
 public:
  /// Maps the segments, adjusts them and protects them. Throws std::runtime_error when there is no
  /// memory, and when imports come to nothing: with all of them in its text, "can't be bound: a,
  /// b".
  MappedImage(const Image& image, const ImportResolver& resolve);
  ~MappedImage();
  MappedImage(const MappedImage&) = delete;
  MappedImage& operator=(const MappedImage&) = delete;

  /// Where that address of the image is in this process.
  [[nodiscard]] void* at(Address address) const { return memory_ + address; }

 private:
  void place(const Image& image);
  void bind(const Image& image, const ImportResolver& resolve);
  void protect(const Image& image) const;
  [[nodiscard]] std::uint32_t& pointerAt(Address address) const;

  std::uint32_t size_;
  std::uint8_t* memory_;
};

}  // namespace macho
