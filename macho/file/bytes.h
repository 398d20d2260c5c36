// The bytes of a file, read with every offset checked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace macho {

using Bytes = std::span<const std::uint8_t>;

/// A file that isn't what it says it is. The text tells what is wrong with it.
class MalformedFile : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A part of the bytes. @param what named in the exception when it isn't all there.
Bytes partOf(Bytes bytes, std::uint32_t offset, std::uint32_t size, std::string_view what);
/// The 32-bit number at that offset, low byte first.
std::uint32_t wordAt(Bytes bytes, std::size_t offset);
/// The same, high byte first.
std::uint32_t bigEndianWordAt(Bytes bytes, std::size_t offset);
/// A text that ends at the first zero byte, or with the part when there is none.
std::string paddedTextIn(Bytes part);

/// Reads a packed stream from its beginning to its end. Everything throws MalformedFile at the end.
class Reader {
 public:
  /// @param what names the stream in exceptions.
  Reader(Bytes bytes, std::string_view what) : bytes_(bytes), what_(what) {}

  [[nodiscard]] bool atEnd() const { return position_ == bytes_.size(); }
  [[nodiscard]] std::size_t position() const { return position_; }
  std::uint8_t byte();
  /// A number in groups of seven bits, lowest first; at most 64 bits.
  std::uint64_t number();
  std::int64_t signedNumber();
  /// A text up to its zero byte; valid as long as the bytes.
  std::string_view text();
  /// Throws what is wrong with the stream.
  [[noreturn]] void fail(std::string_view problem) const;

 private:
  struct Groups {
    std::uint64_t value;
    int bits;
    bool negative;  // the highest bit of the last group
  };
  Groups groups();

  Bytes bytes_;
  std::string_view what_;
  std::size_t position_ = 0;
};

}  // namespace macho
