#include "tests/native/support.h"

namespace native_test {

using zel::autoreleased;
using zel::send;

zel::CFStringRef string(const char* text) {
  return autoreleased(
      zel::CFStringCreateWithCString(zel::kDefaultAllocator, text, zel::kCFStringEncodingUTF8));
}

std::string text(const void* string) {
  if (string == nullptr) return "(null)";
  const auto* const native = static_cast<zel::CFStringRef>(string);
  std::string buffer(static_cast<std::size_t>(zel::CFStringGetLength(native)) * 3 + 1, '\0');
  if (zel::CFStringGetCString(native, buffer.data(), static_cast<zel::CFIndex>(buffer.size()),
                              zel::kCFStringEncodingUTF8) == 0) {
    return "(not convertible)";
  }
  return buffer.c_str();
}

zel::NSInteger referencesOf(const void* object) {
  return send<zel::NSInteger, "retainCount">(object);
}

std::string probe(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), ownDomain());
  return outputOf(ZEL_PROBE, std::move(arguments));
}

std::string ownDomain() {
  const auto info = send<zel::id, "processInfo">(zel::classNamed<"NSProcessInfo">());
  return text(send<zel::id, "processName">(info));
}

}  // namespace native_test
