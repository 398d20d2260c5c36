// Foundation's structures of numbers, in the widths of this target.
#pragma once

#include <cstdint>
#include <type_traits>

namespace zel {

/// Foundation's floating-point type: 32 bits on the 32-bit targets, 64 on the others.
using CGFloat = std::conditional_t<sizeof(void*) == 4, float, double>;
/// Foundation's unsigned integer: as wide as a pointer on every target.
using NSUInteger = std::uintptr_t;

struct NSPoint {
  CGFloat x;
  CGFloat y;
};
struct NSSize {
  CGFloat width;
  CGFloat height;
};
struct NSRect {
  NSPoint origin;
  NSSize size;
};
struct NSRange {
  NSUInteger location;
  NSUInteger length;
};

// What a native value that holds such a structure answers to objCType.
inline constexpr bool kNarrowGeometry = sizeof(CGFloat) == 4;
#if defined(__APPLE__) && defined(__LP64__)
// Foundation's structures are Core Graphics' there.
inline constexpr const char* kPointEncoding = "{CGPoint=dd}";
inline constexpr const char* kSizeEncoding = "{CGSize=dd}";
inline constexpr const char* kRectEncoding = "{CGRect={CGPoint=dd}{CGSize=dd}}";
#else
inline constexpr const char* kPointEncoding = kNarrowGeometry ? "{_NSPoint=ff}" : "{_NSPoint=dd}";
inline constexpr const char* kSizeEncoding = kNarrowGeometry ? "{_NSSize=ff}" : "{_NSSize=dd}";
inline constexpr const char* kRectEncoding =
    kNarrowGeometry ? "{_NSRect={_NSPoint=ff}{_NSSize=ff}}" : "{_NSRect={_NSPoint=dd}{_NSSize=dd}}";
#endif
inline constexpr const char* kRangeEncoding = kNarrowGeometry ? "{_NSRange=II}" : "{_NSRange=QQ}";

}  // namespace zel
