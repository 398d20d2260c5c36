#include "host/internal/encodings.h"

#include <algorithm>
#include <bit>
#include <iconv.h>
#include <iterator>

namespace host::internal {
namespace {

struct Encoding {
  std::uint32_t number;
  const char* name;  // as iconv knows it
};

constexpr Encoding kEncodings[] = {
    {kMacRoman, "MACINTOSH"},
    {kUtf16, std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE"},
    {kLatin1, "ISO-8859-1"},
    {kAscii, "ASCII"},
    {kUtf8, "UTF-8"},
};

const char* nameOf(std::uint32_t encoding) {
  const auto* const found =
      std::find_if(std::begin(kEncodings), std::end(kEncodings),
                   [encoding](const Encoding& known) { return known.number == encoding; });
  return found == std::end(kEncodings) ? nullptr : found->name;
}

class Converter {
 public:
  Converter(const char* to, const char* from) : descriptor_(iconv_open(to, from)) {}
  ~Converter() {
    if (usable()) iconv_close(descriptor_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  [[nodiscard]] bool usable() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

  std::optional<std::string> run(std::string_view bytes) {
    std::string converted(bytes.size() * 4, '\0');  // no byte becomes more than four
    std::string input(bytes);                       // iconv takes it as writable
    char* next = input.data();
    std::size_t left = input.size();
    char* out = converted.data();
    std::size_t room = converted.size();
    if (iconv(descriptor_, &next, &left, &out, &room) != 0 || left != 0) return std::nullopt;
    converted.resize(converted.size() - room);
    return converted;
  }

 private:
  iconv_t descriptor_;
};

}  // namespace

std::optional<std::string> convert(std::string_view bytes, std::uint32_t from, std::uint32_t to) {
  const char* const source = nameOf(from);
  const char* const target = nameOf(to);
  if (source == nullptr || target == nullptr) return std::nullopt;
  Converter converter(target, source);
  if (!converter.usable()) return std::nullopt;
  return converter.run(bytes);
}

}  // namespace host::internal
