#include "macho/file/bytes.h"

#include <algorithm>

namespace macho {
namespace {

constexpr std::size_t kWord = 4;

Bytes wordBytes(Bytes bytes, std::size_t offset) {
  if (offset > bytes.size() || bytes.size() - offset < kWord)
    throw MalformedFile("the file ends within a number");
  return bytes.subspan(offset, kWord);
}

}  // namespace

Bytes partOf(Bytes bytes, std::uint32_t offset, std::uint32_t size, std::string_view what) {
  if (offset > bytes.size() || bytes.size() - offset < size)
    throw MalformedFile(std::string(what) + " lies outside the file");
  return bytes.subspan(offset, size);
}

std::uint32_t wordAt(Bytes bytes, std::size_t offset) {
  const Bytes word = wordBytes(bytes, offset);
  return word[0] | std::uint32_t{word[1]} << 8 | std::uint32_t{word[2]} << 16 |
         std::uint32_t{word[3]} << 24;
}

std::uint32_t bigEndianWordAt(Bytes bytes, std::size_t offset) {
  const Bytes word = wordBytes(bytes, offset);
  return std::uint32_t{word[0]} << 24 | std::uint32_t{word[1]} << 16 | std::uint32_t{word[2]} << 8 |
         word[3];
}

std::string paddedTextIn(Bytes part) {
  return {part.begin(), std::find(part.begin(), part.end(), 0)};
}

std::uint8_t Reader::byte() {
  if (atEnd()) fail("ends too early");
  return bytes_[position_++];
}

Reader::Groups Reader::groups() {
  std::uint64_t value = 0;
  for (int bits = 0; bits < 64; bits += 7) {
    const std::uint8_t group = byte();
    const auto payload = static_cast<std::uint64_t>(group & 0x7F);
    if (bits == 63 && payload > 1 && payload != 0x7F) break;
    value |= payload << bits;
    if ((group & 0x80) == 0) return {value, bits + 7, (group & 0x40) != 0};
  }
  fail("has a number of more than 64 bits");
}

std::uint64_t Reader::number() { return groups().value; }

std::int64_t Reader::signedNumber() {
  const Groups read = groups();
  std::uint64_t value = read.value;
  if (read.negative && read.bits < 64) value |= ~std::uint64_t{0} << read.bits;
  return static_cast<std::int64_t>(value);
}

std::string_view Reader::text() {
  const std::size_t begin = position_;
  while (byte() != 0) {
  }
  return {reinterpret_cast<const char*>(bytes_.data()) + begin, position_ - begin - 1};
}

void Reader::fail(std::string_view problem) const {
  throw MalformedFile(std::string(what_) + " " + std::string(problem));
}

}  // namespace macho
