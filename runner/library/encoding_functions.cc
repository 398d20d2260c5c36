// Encodings of texts, and bytes as texts.
#include <array>
#include <cerrno>
#include <cstdint>
#include <iconv.h>
#include <iterator>
#include <limits>
#include <optional>
#include <resolv.h>
#include <string>

#include "runner/library/natives.h"
#include "runner/run/values.h"

namespace runner {
namespace {

struct Encoding {
  std::uint32_t code;  // as the host records it with a text
  const char* name;    // as the standards of the internet call it
};

// As the functions below count.
constexpr Encoding kEncodings[] = {
    {0x08000100, "UTF-8"}, {0x0600, "US-ASCII"}, {0x0201, "ISO-8859-1"},
    {0, "macintosh"},      {0x0100, "UTF-16LE"}, {0x0500, "windows-1252"},
};
constexpr std::uint32_t kUtf8 = kEncodings[0].code;

const Encoding* encodingOf(std::uint32_t code) {
  for (const Encoding& one : kEncodings)
    if (one.code == code) return &one;
  return nullptr;
}

std::uint32_t codeIn(const Value& text) {
  const auto* const other = std::get_if<host::Text>(&text);
  return other == nullptr ? kUtf8 : other->encoding;
}

// The one object that stands for an encoding; Nil for one that isn't known.
Value objectOf(Machine& machine, std::uint32_t code) {
  const Encoding* const known = encodingOf(code);
  if (known == nullptr) return ObjectRef();
  Value& kept = machine.kept(known->name);
  if (isNil(kept)) {
    kept = newInstance(machine, *machine.types().find("textencoding").value()->own);
    fieldOf(kept, 0) = static_cast<std::int32_t>(code);
  }
  return kept;
}

std::uint32_t codeOf(Machine& machine, const Value& encoding) {
  if (isNil(encoding)) machine.raise("NilObjectException", "The encoding is Nil.");
  return static_cast<std::uint32_t>(integerOf(fieldOf(encoding, 0)));
}

// A text of these bytes.
Value textIn(std::string bytes, std::uint32_t code) {
  if (code == kUtf8) return bytes;
  return host::Text(std::move(bytes), code);
}

// Bytes of one encoding as those of another; what that doesn't have becomes "?".
std::string convertedBytes(const std::string& bytes, const char* from, const char* to) {
  const iconv_t converter = iconv_open(to, from);
  if (converter == reinterpret_cast<iconv_t>(-1)) return bytes;
  std::string input = bytes;
  char* next = input.data();
  std::size_t left = input.size();
  std::string result;
  while (left > 0) {
    std::array<char, 256> buffer{};
    char* out = buffer.data();
    std::size_t room = buffer.size();
    const std::size_t done = iconv(converter, &next, &left, &out, &room);
    result.append(buffer.data(), buffer.size() - room);
    if (done != std::numeric_limits<std::size_t>::max() || errno == E2BIG) continue;
    result += '?';
    const auto isLater = [](char c) { return (c & 0xC0) == 0x80; };
    do {
      ++next;
      --left;
    } while (left > 0 && std::string_view(from) == "UTF-8" && isLater(*next));
  }
  iconv_close(converter);
  return result;
}

Value defineEncoding(Machine& machine, const Value&, const Value* a) {
  return textIn(textOf(a[0]), isNil(a[1]) ? zel::kNoEncoding : codeOf(machine, a[1]));
}
Value convertEncoding(Machine& machine, const Value&, const Value* a) {
  const Encoding* const from = encodingOf(codeIn(a[0]));
  const std::uint32_t code = codeOf(machine, a[1]);
  if (from == nullptr || from->code == code) return textIn(textOf(a[0]), code);
  return textIn(convertedBytes(textOf(a[0]), from->name, encodingOf(code)->name), code);
}
Value encodingOfText(Machine& machine, const Value&, const Value* a) {
  return objectOf(machine, codeIn(a[0]));
}

template <std::size_t index>
Value encoding(Machine& machine, const Value&, const Value*) {
  return objectOf(machine, kEncodings[index].code);
}
Value code(Machine&, const Value& self, const Value*) { return fieldOf(self, 0); }
Value internetName(Machine& machine, const Value& self, const Value*) {
  return std::string(encodingOf(codeOf(machine, self))->name);
}

// --- bytes as letters

Value encodeBase64(Machine&, const Value&, const Value* a) {
  const std::string& bytes = textOf(a[0]);
  std::string digits((bytes.size() + 2) / 3 * 4 + 1, '\0');
  const int size = b64_ntop(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
                            digits.data(), digits.size());
  digits.resize(static_cast<std::size_t>(size));
  const auto width = static_cast<std::size_t>(std::max(0, integerOf(a[1])));
  for (std::size_t at = width; width > 0 && at < digits.size(); at += width + 2)
    digits.insert(at, "\r\n");
  return digits;
}
Value encodeBase64Lines(Machine& machine, const Value& self, const Value* a) {
  constexpr std::int32_t kWidth = 76;
  const Value arguments[] = {a[0], kWidth};
  return encodeBase64(machine, self, arguments);
}
// "" for what isn't Base64. The bytes have no encoding.
Value decodeBase64(Machine&, const Value&, const Value* a) {
  const std::string& digits = textOf(a[0]);
  std::string bytes(digits.size() + 1, '\0');
  const int size =
      b64_pton(digits.c_str(), reinterpret_cast<unsigned char*>(bytes.data()), bytes.size());
  bytes.resize(static_cast<std::size_t>(std::max(0, size)));
  return host::Text(std::move(bytes));
}
Value decodeBase64As(Machine& machine, const Value& self, const Value* a) {
  const Value arguments[] = {decodeBase64(machine, self, a), a[1]};
  return defineEncoding(machine, self, arguments);
}

constexpr NativeRow kFunctions[] = {
    {"DefineEncoding(text As String, encoding As TextEncoding) As String", defineEncoding},
    {"ConvertEncoding(text As String, encoding As TextEncoding) As String", convertEncoding},
    {"Encoding(text As String) As TextEncoding", encodingOfText},
    {"EncodeBase64(bytes As String) As String", encodeBase64Lines},
    {"EncodeBase64(bytes As String, lineWidth As Integer) As String", encodeBase64},
    {"DecodeBase64(digits As String) As String", decodeBase64},
    {"DecodeBase64(digits As String, encoding As TextEncoding) As String", decodeBase64As},
};

constexpr NativeRow kEncodingMembers[] = {
    {"Code As Integer", code},
    {"InternetName As String", internetName},
};

constexpr NativeRow kKnownEncodings[] = {
    {"UTF8 As TextEncoding", encoding<0>},          {"ASCII As TextEncoding", encoding<1>},
    {"ISOLatin1 As TextEncoding", encoding<2>},     {"MacRoman As TextEncoding", encoding<3>},
    {"UTF16 As TextEncoding", encoding<4>},         {"WindowsANSI As TextEncoding", encoding<5>},
    {"SystemDefault As TextEncoding", encoding<0>},
};

}  // namespace

std::span<const NativeRow> encodingFunctions() { return kFunctions; }
std::span<const NativeRow> textEncodingMembers() { return kEncodingMembers; }
std::span<const NativeRow> encodingsMembers() { return kKnownEncodings; }

}  // namespace runner
