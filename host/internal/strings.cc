#include "host/internal/strings.h"

#include <cstdlib>
#include <cstring>

#include "host/internal/encodings.h"
#include "host/internal/state.h"

namespace host::internal {
namespace {

constexpr std::byte kSkippedByte{0xEE};  // what stands before the text
constexpr std::size_t kTerminator = 1;   // one zero byte behind it
constexpr double kFirstOpaqueVersion = 2013.0;

// What reading an opaque record as an older one finds.
constexpr char kMisread[] = "\xEE<an opaque string, misread>";

bool readableStrings(const HostOptions& options) {
  return !options.version || *options.version < kFirstOpaqueVersion;
}

std::optional<std::string> bytesIn(const HostString& string, std::uint32_t encoding) {
  if (encoding == zel::kNoEncoding || encoding == string.encoding)
    return std::string(string.bytes());
  return convert(string.bytes(), string.encoding, encoding);
}

}  // namespace

HostString::HostString(std::string_view bytes, std::uint32_t encodingOfBytes, bool readable)
    : encoding(encodingOfBytes),
      record_(sizeof(zel::OlderStringRecord)),
      storage_(1 + bytes.size() + kTerminator),
      length_(bytes.size()) {
  *storage_.at(0) = kSkippedByte;
  if (!bytes.empty()) std::memcpy(storage_.at(1), bytes.data(), bytes.size());
  auto* const record = static_cast<zel::OlderStringRecord*>(record_.data());
  record->hostUse0 = 0x7E57;
  record->storage = readable ? static_cast<const char*>(storage_.data()) : kMisread;
  record->hostUse2 = 0x7E57;
  record->length = readable ? static_cast<std::int32_t>(length_) : 7;
}

const char* HostString::text() const { return reinterpret_cast<const char*>(storage_.at(1)); }

std::string HostString::describe() const {
  constexpr std::size_t kShown = 40;
  if (textOfTheDead_) return *textOfTheDead_;
  std::string shown(bytes().substr(0, kShown));
  if (length_ > kShown) shown += "...";
  return "string \"" + shown + "\"";
}

void HostString::poison() {
  textOfTheDead_ = describe();
  record_.poison();
  storage_.poison();
}

HostBuffer::HostBuffer(std::string_view bytes) : memory_(bytes.size() + kZeros) {
  if (!bytes.empty()) std::memcpy(memory_.data(), bytes.data(), bytes.size());
}

std::string HostBuffer::describe() const {
  return "string data of " + std::to_string(memory_.size() - kZeros) + " bytes";
}

zel::REALstring newString(State& state, std::string_view bytes, std::uint32_t encoding) {
  return state.ledger
      .add(std::make_unique<HostString>(bytes, encoding, readableStrings(state.options)))
      .string();
}

void lockString(State& state, zel::REALstring string) {
  if (auto* const found = state.ledger.find<HostString>(string, "REALLockString"))
    state.ledger.addReference(*found, "REALLockString");
}

void unlockString(State& state, zel::REALstring string) {
  if (auto* const found = state.ledger.find<HostString>(string, "REALUnlockString"))
    state.ledger.dropReference(state, *found, "REALUnlockString");
}

zel::REALstring buildString(State& state, const char* bytes, std::int32_t length) {
  if (length <= 0) return nullptr;  // the empty string
  if (bytes == nullptr) {
    state.failures.report("REALBuildString was given no bytes");
    return nullptr;
  }
  return newString(state, {bytes, static_cast<std::size_t>(length)}, zel::kNoEncoding);
}

void setStringEncoding(State& state, zel::REALstring string, std::uint32_t encoding) {
  if (auto* const found = state.ledger.find<HostString>(string, "REALSetStringEncoding"))
    found->encoding = encoding;
}

std::uint32_t getStringEncoding(State& state, zel::REALstring string) {
  const auto* const found = state.ledger.find<HostString>(string, "REALGetStringEncoding");
  return found == nullptr ? 0 : found->encoding;
}

zel::REALstring convertString(State& state, zel::REALstring string, std::uint32_t encoding) {
  const auto* const found = state.ledger.find<HostString>(string, "REALConvertString");
  if (found == nullptr) return nullptr;
  const std::optional<std::string> bytes = bytesIn(*found, encoding);
  return bytes ? newString(state, *bytes, encoding) : nullptr;
}

zel::CFStringRef copyStringCFString(State& state, zel::REALstring string, unsigned char flag) {
  if (flag != 0) state.failures.report("REALGetStringCFString was given a flag that isn't 0");
  const auto* const found = state.ledger.find<HostString>(string, "REALGetStringCFString");
  if (found == nullptr || found->encoding == zel::kNoEncoding) return nullptr;
  const std::optional<std::string> bytes = bytesIn(*found, kUtf16);
  if (!bytes) return nullptr;
  std::u16string units(bytes->size() / sizeof(zel::UniChar), u'\0');
  std::memcpy(units.data(), bytes->data(), units.size() * sizeof(zel::UniChar));
  return zel::CFStringCreateWithCharacters(zel::kDefaultAllocator,
                                           reinterpret_cast<const zel::UniChar*>(units.data()),
                                           static_cast<zel::CFIndex>(units.size()));
}

zel::REALboolean getStringData(State& state, zel::REALstring string, std::uint32_t encoding,
                               zel::REALstringData* out) {
  if (out == nullptr) state.failures.report("PluginGetStringData was given no record");
  if (string == nullptr || out == nullptr) return 0;
  const auto* const found = state.ledger.find<HostString>(string, "PluginGetStringData");
  if (found == nullptr) return 0;
  const std::optional<std::string> bytes = bytesIn(*found, encoding);
  if (!bytes) return 0;
  if (state.control.hidden("PluginDisposeStringData")) {
    out->data = std::calloc(1, bytes->size() + HostBuffer::kZeros);
    std::memcpy(out->data, bytes->data(), bytes->size());
    state.buffers.insert(out->data);
  } else {
    out->data = const_cast<void*>(state.ledger.add(std::make_unique<HostBuffer>(*bytes)).handle());
  }
  out->length = static_cast<std::uint32_t>(bytes->size());
  out->encoding = encoding;
  return 1;
}

void disposeStringData(State& state, zel::REALstringData* record) {
  if (record == nullptr) {
    state.failures.report("PluginDisposeStringData was given no record");
  } else if (state.buffers.erase(record->data) == 1) {
    std::free(record->data);
  } else if (auto* const buffer =
                 state.ledger.find<HostBuffer>(record->data, "PluginDisposeStringData")) {
    state.ledger.dropReference(state, *buffer, "PluginDisposeStringData");
  }
}

const char* getCString(State& state, zel::REALstring string) {
  const auto* const found = state.ledger.find<HostString>(string, "StringGetCString");
  return found == nullptr ? nullptr : found->text();
}

std::int32_t lenB(State& state, zel::REALstring string) {
  if (string == nullptr) return 0;
  const auto* const found = state.ledger.find<HostString>(string, "LenB");
  return found == nullptr ? 0 : static_cast<std::int32_t>(found->bytes().size());
}

}  // namespace host::internal
