// Host strings: bytes with a recorded encoding, and the buffers of bytes handed out of them.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "host/internal/ledger.h"
#include "host/internal/memory.h"
#include "native/corefoundation.h"
#include "plugin/handles.h"

namespace host::internal {

class HostString : public Thing {
 public:
  static constexpr std::string_view kWhat = "a string";

  /// @param readable whether the record is laid out as hosts before 2013.0 do, for all to read;
  /// otherwise reading it that way finds a wrong length and wrong text.
  HostString(std::string_view bytes, std::uint32_t encodingOfBytes, bool readable);

  [[nodiscard]] const void* handle() const override { return record_.data(); }
  [[nodiscard]] std::string describe() const override;
  void poison() override;
  [[nodiscard]] bool intact() const override { return record_.intact() && storage_.intact(); }

  [[nodiscard]] zel::REALstring string() const {
    return static_cast<zel::REALstring>(record_.data());
  }
  /// The text, followed by a zero byte.
  [[nodiscard]] const char* text() const;
  [[nodiscard]] std::string_view bytes() const { return {text(), length_}; }

  std::uint32_t encoding;

 private:
  Memory record_;
  Memory storage_;  // one byte, the text, zero bytes
  std::size_t length_;
  std::optional<std::string> textOfTheDead_;  // how it is described once the text is poison
};

/// The bytes of a string as handed out by "PluginGetStringData".
class HostBuffer : public Thing {
 public:
  static constexpr std::string_view kWhat = "the data of a string";
  static constexpr std::size_t kZeros = 4;  // uncounted, behind the bytes

  explicit HostBuffer(std::string_view bytes);

  [[nodiscard]] const void* handle() const override { return memory_.data(); }
  [[nodiscard]] std::string describe() const override;
  void poison() override { memory_.poison(); }
  [[nodiscard]] bool intact() const override { return memory_.intact(); }

 private:
  Memory memory_;
};

/// Buffers handed out while "PluginDisposeStringData" was hidden: the plugin frees those itself,
/// or gives them back if it finds the entry point after all.
using BufferAccounts = std::set<const void*>;

/// The class of things that a handle stands for.
template <class Handle>
struct ThingOf;
template <>
struct ThingOf<zel::REALstring> {
  using type = HostString;
};
template <>
struct ThingOf<zel::REALobject> {
  using type = AnyObject;
};

/// A new string with one reference for the caller; never null.
zel::REALstring newString(State& state, std::string_view bytes, std::uint32_t encoding);

// --- entry points
void lockString(State& state, zel::REALstring string);
void unlockString(State& state, zel::REALstring string);
zel::REALstring buildString(State& state, const char* bytes, std::int32_t length);
void setStringEncoding(State& state, zel::REALstring string, std::uint32_t encoding);
std::uint32_t getStringEncoding(State& state, zel::REALstring string);
zel::REALstring convertString(State& state, zel::REALstring string, std::uint32_t encoding);
zel::CFStringRef copyStringCFString(State& state, zel::REALstring string, unsigned char flag);
zel::REALboolean getStringData(State& state, zel::REALstring string, std::uint32_t encoding,
                               zel::REALstringData* out);
void disposeStringData(State& state, zel::REALstringData* record);
const char* getCString(State& state, zel::REALstring string);

// --- global methods
/// "LenB( s as string ) as integer"
std::int32_t lenB(State& state, zel::REALstring string);

}  // namespace host::internal
