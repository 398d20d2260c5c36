#include "bridge/strings.h"

#include "bridge/string_data.h"
#include "native/exceptions.h"
#include "native/libc.h"
#include "plugin/build_string.h"

namespace zel {
namespace {

constexpr double kFirstWithSecondConversion = 2012.0;
constexpr double kFirstWithOpaqueStrings = 2013.0;

constexpr std::int32_t kShortText = 99;     // UTF-16 units that go through the stack
constexpr std::size_t kShortBuffer = 601;   // bytes
constexpr std::uint32_t kBytesPerUnit = 6;  // UTF-8 needs three, so the terminating zero fits too

// The host's own conversion, or null. Hosts from 2012.0 are deliberately asked a second time.
CFStringRef convertedByHost(REALstring string) {
  CFStringRef converted = nullptr;
  if (rbversion >= kFirstWithSecondConversion) converted = REALCopyStringCFString(string);
  return converted != nullptr ? converted : REALGetStringCFString(string, 0);
}

// A native string of a text's bytes, owned by the caller, or null. UTF-16 is counted (an odd last
// byte is dropped); any other text ends at its first zero byte, whatever its length.
CFStringRef fromBytes(const void* start, std::uint32_t length, CFStringEncoding encoding) {
  if (start == nullptr) return nullptr;
  if (encoding == kCFStringEncodingUnicode) {
    return CFStringCreateWithCharacters(kDefaultAllocator, static_cast<const UniChar*>(start),
                                        static_cast<CFIndex>(length >> 1));
  }
  return CFStringCreateWithCString(kDefaultAllocator, static_cast<const char*>(start), encoding);
}

CFStringRef fromOlderRecord(REALstring string, CFStringEncoding encoding) {
  REALLockString(string);
  return withCleanup(
      [&] {
        const auto& record = *reinterpret_cast<const OlderStringRecord*>(string);
        return fromBytes(record.storage + 1, static_cast<std::uint32_t>(record.length), encoding);
      },
      [&] { REALUnlockString(string); });
}

CFStringRef fromStringData(REALstring string, CFStringEncoding encoding) {
  REALstringData record{};
  if (!getStoredBytes(string, &record)) return nullptr;
  return withCleanup([&] { return fromBytes(record.data, record.length, encoding); },
                     [&] { disposeStringData(record); });
}

// @param size what may be written of the buffer, in bytes.
REALstring throughBuffer(CFStringRef string, char* buffer, std::int32_t size) {
  if (CFStringGetCString(string, buffer, size, kCFStringEncodingUTF8) == 0) return nullptr;
  return buildString(buffer, kCFStringEncodingUTF8);
}

// A text that is too long for the stack. Out of line, as what few texts need.
[[gnu::noinline]] REALstring throughHeap(CFStringRef string, std::int32_t length) {
  // A signed 32-bit size, deliberately: what wraps around to nothing sensible is refused.
  const auto size = static_cast<std::int32_t>(static_cast<std::uint32_t>(length) * kBytesPerUnit);
  if (size < 1) return nullptr;
  char* const buffer = static_cast<char*>(std::calloc(1, static_cast<std::size_t>(size)));
  if (buffer == nullptr) return nullptr;
  return withCleanup([&] { return throughBuffer(string, buffer, size); },
                     [&] { std::free(buffer); });
}

// What stands in for the host's own conversion. Out of line: nearly every text is converted by the
// host, and is not to pay for what this needs.
[[gnu::noinline]] CFStringRef convertedHere(REALstring string) {
  CFStringEncoding encoding = REALGetStringEncoding(string);
  if (encoding == kNoEncoding) encoding = kCFStringEncodingMacRoman;
  return rbversion < kFirstWithOpaqueStrings ? fromOlderRecord(string, encoding)
                                             : fromStringData(string, encoding);
}

}  // namespace

CFStringRef RBString2CFString(REALstring string) {
  if (string == nullptr) return nullptr;
  const CFStringRef converted = convertedByHost(string);
  return converted != nullptr ? converted : convertedHere(string);
}

REALstring CFString2RBString(CFStringRef string) {
  if (string == nullptr) return nullptr;
  const auto length = static_cast<std::int32_t>(CFStringGetLength(string));
  if (length <= 0) return nullptr;
  if (length > kShortText) return throughHeap(string, length);
  char buffer[kShortBuffer] = {};
  return throughBuffer(string, buffer, kShortBuffer - 1);
}

}  // namespace zel
