#include "plugin/build_string.h"

#include "native/libc.h"

namespace zel {
namespace {

constexpr std::size_t kLongestText = 0x7FFFFFFE;  // bytes

}  // namespace

REALstring buildString(const char* text, std::uint32_t encoding) {
  const std::size_t length = std::strlen(text);
  if (length == 0 || length > kLongestText) return nullptr;
  const REALstring built = originalREALBuildString(text, static_cast<std::int32_t>(length));
  if (built != nullptr) REALSetStringEncoding(built, encoding);
  return built;
}

}  // namespace zel
