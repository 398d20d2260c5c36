#include "host/folding.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utf8proc.h>

namespace host {
namespace {

struct Free {
  void operator()(utf8proc_uint8_t* text) const { std::free(text); }
};
using Mapped = std::unique_ptr<utf8proc_uint8_t, Free>;

char asciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::string folded(std::string_view text) {
  std::string result(text);
  if (std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; })) {
    std::transform(result.begin(), result.end(), result.begin(), asciiLower);
    return result;
  }
  utf8proc_uint8_t* out = nullptr;
  const utf8proc_ssize_t size =
      utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                   static_cast<utf8proc_ssize_t>(text.size()), &out, UTF8PROC_CASEFOLD);
  const Mapped owner(out);
  if (size < 0) return result;
  return {reinterpret_cast<const char*>(out), static_cast<std::size_t>(size)};
}

}  // namespace host
