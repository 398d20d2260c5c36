#include "bridge/string_data.h"

#include "native/libc.h"

namespace zel {
namespace {

constexpr std::size_t kTerminator = 4;  // zero bytes: they end units of one, two and four bytes

// What hosts without a hand-out of their own have in its place. Each is asked for once: a host may
// know tomorrow what it didn't know a moment ago.
class OlderRoutines {
 public:
  [[nodiscard]] bool complete() const { return bytesOf_ != nullptr && lengthOf_ != nullptr; }

  [[nodiscard]] std::uint32_t lengthOf(REALstring string) const {
    return static_cast<std::uint32_t>(lengthOf_(string));
  }

  // A copy of the text, `count` bytes of it, in a buffer with room for `room` bytes and the
  // terminator. False when no buffer can be had.
  bool copy(REALstring string, std::uint32_t count, std::uint32_t room, std::uint32_t encoding,
            REALstringData* out) const {
    char* const buffer = static_cast<char*>(std::malloc(room + kTerminator));
    if (buffer == nullptr) return false;
    std::memcpy(buffer, bytesOf_(string), count);
    std::memset(buffer + count, 0, kTerminator);
    *out = {buffer, count, encoding};
    return true;
  }

 private:
  decltype(StringGetCString)::EntryPoint bytesOf_ = StringGetCString.find();
  decltype(LenB)::EntryPoint lengthOf_ = LenB.find();
};

bool copyConverted(const OlderRoutines& older, REALstring string, std::uint32_t encoding,
                   REALstringData* out) {
  const REALstring converted = REALConvertString(string, encoding);
  if (converted == nullptr) return false;
  const std::uint32_t count = older.lengthOf(converted);
  const bool copied = older.copy(converted, count, count, encoding, out);
  REALUnlockString(converted);
  return copied;
}

// How many bytes the buffer of the bytes as stored has room for.
using Room = std::uint32_t (*)(const REALstringData& onEntry, std::uint32_t count);

bool handOut(REALstring string, std::uint32_t encoding, REALstringData* out, Room room) {
  if (const auto byHost = PluginGetStringData.find()) return byHost(string, encoding, out) != 0;

  const OlderRoutines older;
  if (!older.complete() || string == nullptr) return false;
  const bool asStored = encoding == kNoEncoding;
  if (!asStored && REALGetStringEncoding(string) != encoding)
    return copyConverted(older, string, encoding, out);
  const std::uint32_t count = older.lengthOf(string);
  return older.copy(string, count, asStored ? room(*out, count) : count, encoding, out);
}

}  // namespace

bool REALGetStringData(REALstring string, std::uint32_t encoding, REALstringData* out) {
  // Deliberately sized by the caller's record, not by the count.
  return handOut(string, encoding, out,
                 [](const REALstringData& onEntry, std::uint32_t) { return onEntry.length; });
}

bool getStoredBytes(REALstring string, REALstringData* out) {
  return handOut(string, kNoEncoding, out,
                 [](const REALstringData&, std::uint32_t count) { return count; });
}

void disposeStringData(REALstringData& record) {
  if (REALDisposeStringData.find() != nullptr) {
    REALDisposeStringData(&record);
  } else {
    std::free(record.data);
  }
}

}  // namespace zel
