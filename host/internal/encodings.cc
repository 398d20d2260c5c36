#include "host/internal/encodings.h"

#include <algorithm>
#include <array>
#include <bit>
#include <iconv.h>
#include <iterator>
#include <memory>

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

constexpr std::size_t kCount = std::size(kEncodings);

// Where an encoding stands in the table; nullopt for one that isn't there.
std::optional<std::size_t> indexOf(std::uint32_t encoding) {
  const auto* const found =
      std::find_if(std::begin(kEncodings), std::end(kEncodings),
                   [encoding](const Encoding& known) { return known.number == encoding; });
  if (found == std::end(kEncodings)) return std::nullopt;
  return static_cast<std::size_t>(found - std::begin(kEncodings));
}

// A descriptor of iconv's. Opening one takes longer than all that a call of a plugin does besides,
// so each is opened once and kept.
class Converter {
 public:
  Converter(const char* to, const char* from) : descriptor_(iconv_open(to, from)) {}
  ~Converter() {
    if (usable()) iconv_close(descriptor_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  std::optional<std::string> run(std::string_view bytes) {
    if (!usable()) return std::nullopt;
    std::string converted(bytes.size() * 4, '\0');  // no byte becomes more than four
    char* next = const_cast<char*>(bytes.data());   // which iconv only reads
    std::size_t left = bytes.size();
    char* out = converted.data();
    std::size_t room = converted.size();
    if (iconv(descriptor_, &next, &left, &out, &room) != 0 || left != 0) {
      iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);  // the next text begins afresh
      return std::nullopt;
    }
    converted.resize(converted.size() - room);
    return converted;
  }

 private:
  [[nodiscard]] bool usable() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

  iconv_t descriptor_;
};

Converter& converterOf(std::size_t from, std::size_t to) {
  static std::array<std::unique_ptr<Converter>, kCount * kCount> converters;
  std::unique_ptr<Converter>& found = converters[from * kCount + to];
  if (found == nullptr)
    found = std::make_unique<Converter>(kEncodings[to].name, kEncodings[from].name);
  return *found;
}

bool isAscii(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char c) { return (c & 0x80) == 0; });
}

std::string widened(std::string_view ascii) {
  std::u16string units(ascii.begin(), ascii.end());
  return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t)};
}

}  // namespace

std::optional<std::string> convert(std::string_view bytes, std::uint32_t from, std::uint32_t to) {
  const std::optional<std::size_t> source = indexOf(from);
  const std::optional<std::size_t> target = indexOf(to);
  if (!source || !target) return std::nullopt;
  // Most texts are keys, and those are ASCII, which is the same in all encodings of bytes.
  if (from != kUtf16 && isAscii(bytes)) return to == kUtf16 ? widened(bytes) : std::string(bytes);
  return converterOf(*source, *target).run(bytes);
}

}  // namespace host::internal
