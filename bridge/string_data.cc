#include "bridge/string_data.h"

#include "native/libc.h"

namespace zel {
namespace {

constexpr std::size_t kTerminator = 4;  // zero bytes: they end units of one, two and four bytes

std::uint32_t byteLengthOf(REALstring string) { return static_cast<std::uint32_t>(LenB(string)); }

// A copy of the text, `count` bytes of it, in a buffer with room for `room` bytes and the
// terminator. The allocation isn't tested for failure.
REALstringData copyOf(REALstring string, std::uint32_t count, std::uint32_t room,
                      std::uint32_t encoding) {
  char* const buffer = static_cast<char*>(std::malloc(room + kTerminator));
  std::memcpy(buffer, StringGetCString(string), count);
  std::memset(buffer + count, 0, kTerminator);
  return {buffer, count, encoding};
}

}  // namespace

bool REALGetStringData(REALstring string, std::uint32_t encoding, REALstringData* out) {
  if (PluginGetStringData.find() != nullptr) return PluginGetStringData(string, encoding, out) != 0;

  const bool hasBytes = StringGetCString.find() != nullptr;
  const bool hasLength = LenB.find() != nullptr;
  if (!hasBytes || !hasLength || string == nullptr) return false;

  if (encoding == kNoEncoding) {
    // Deliberately sized by the caller's record, not by the count.
    *out = copyOf(string, byteLengthOf(string), out->length, kNoEncoding);
    return true;
  }
  if (REALGetStringEncoding(string) == encoding) {
    const std::uint32_t count = byteLengthOf(string);
    *out = copyOf(string, count, count, encoding);
    return true;
  }
  const REALstring converted = REALConvertString(string, encoding);
  if (converted == nullptr) return false;
  const std::uint32_t count = byteLengthOf(converted);
  *out = copyOf(converted, count, count, encoding);
  REALUnlockString(converted);
  return true;
}

void disposeStringData(REALstringData& record) {
  if (REALDisposeStringData.find() != nullptr) {
    REALDisposeStringData(&record);
  } else {
    std::free(record.data);
  }
}

}  // namespace zel
