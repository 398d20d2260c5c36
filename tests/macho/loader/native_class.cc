#include "tests/macho/loader/native_class.h"

#include "host/family/erased.h"
#include "host/family/runtime.h"
#include "native/corefoundation.h"
#include "native/exceptions.h"
#include "native/geometry.h"

// Narrow results, in registers whose other bits are set.
asm(R"(
    .text
narrowResult:
    movl $0x5A5AFE80, %eax
    ret
)");

extern "C" void narrowResult();

namespace tests {
namespace {

struct ByteList {
  std::uint8_t bytes[3];
};
struct OneByte {
  std::uint8_t a;
};
struct TwoBytes {
  std::uint8_t a;
  std::uint8_t b;
};
struct FourBytes {
  std::uint16_t a;
  std::uint16_t b;
};

std::int32_t integer(zel::id /*self*/, zel::SEL /*selector*/) { return -123456; }
std::int64_t longLong(zel::id /*self*/, zel::SEL /*selector*/) { return 0x123456789A; }
float single(zel::id /*self*/, zel::SEL /*selector*/) { return -1.125F; }
double real(zel::id /*self*/, zel::SEL /*selector*/) { return 12345.375; }
OneByte oneByte(zel::id /*self*/, zel::SEL /*selector*/) { return {7}; }
TwoBytes twoBytes(zel::id /*self*/, zel::SEL /*selector*/) { return {8, 9}; }
FourBytes fourBytes(zel::id /*self*/, zel::SEL /*selector*/) { return {10, 11}; }
ByteList threeBytes(zel::id /*self*/, zel::SEL /*selector*/) { return {{0xAB, 0xCD, 0xEF}}; }
zel::NSRange range(zel::id /*self*/, zel::SEL /*selector*/) { return {12, 0x80000000}; }
zel::NSRect rect(zel::id /*self*/, zel::SEL /*selector*/) {
  return {{0.5F, 1.5F}, {2.5F, 1000.125F}};
}
std::int32_t widthOf(zel::id /*self*/, zel::SEL /*selector*/, zel::NSRect rect) {
  return static_cast<std::int32_t>(rect.size.width);
}

struct Twenty {
  std::int32_t numbers[20];
};
std::int64_t sum(zel::id /*self*/, zel::SEL /*selector*/, std::int64_t first, double second,
                 Twenty twenty, double last) {
  std::int64_t total = first + static_cast<std::int64_t>(second + last);
  for (const std::int32_t number : twenty.numbers) total += number;
  return total;
}

zel::CFStringRef textOf(const char* text) {
  return zel::autoreleased(
      zel::CFStringCreateWithCString(nullptr, text, zel::kCFStringEncodingUTF8));
}

void raise(zel::id /*self*/, zel::SEL /*selector*/) {
  const zel::id exception = zel::send<zel::id, "exceptionWithName:reason:userInfo:">(
      zel::classNamed<"NSException">(), textOf("Sample"), textOf("asked to"), zel::id{nullptr});
  zel::objc_exception_throw(exception);
}

}  // namespace

void defineLoaderSample() {
  using host::erased;
  const struct {
    const char* selector;
    void (*implementation)();
    const char* types;
  } methods[] = {
      {"signedChar", narrowResult, "c8@0:4"},
      {"unsignedChar", narrowResult, "C8@0:4"},
      {"boolean", narrowResult, "B8@0:4"},
      {"signedShort", narrowResult, "s8@0:4"},
      {"unsignedShort", narrowResult, "S8@0:4"},
      {"integer", erased(integer), "i8@0:4"},
      {"longLong", erased(longLong), "q8@0:4"},
      {"single", erased(single), "f8@0:4"},
      {"real", erased(real), "d8@0:4"},
      {"oneByte", erased(oneByte), "{one=C}8@0:4"},
      {"twoBytes", erased(twoBytes), "r{two=CC}8@0:4"},
      {"fourBytes", erased(fourBytes), "{four=SS}8@0:4"},
      {"threeBytes", erased(threeBytes), "{three=[3C]}8@0:4"},
      {"range", erased(range), "{_NSRange=II}8@0:4"},
      {"rect", erased(rect), "{_NSRect={_NSPoint=ff}{_NSSize=ff}}8@0:4"},
      {"sum", erased(sum), "q112@0:4q8d16{twenty=[20i]}24d104"},
      {"widthOf:", erased(widthOf), "i24@0:4{_NSRect={_NSPoint=ff}{_NSSize=ff}}8"},
      {"raise", erased(raise), "v8@0:4"},
  };
  const host::AddMethod add = host::addToRuntime();
  for (const auto& method : methods) {
    add({"LoaderSample", "NSObject", true, method.selector, method.implementation, method.types});
  }
}

}  // namespace tests
