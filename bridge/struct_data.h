// Foundation's structures as the instance data of host objects: 32-bit numbers on every target.
#pragma once

#include "native/geometry.h"
#include "native/objc.h"

namespace zel {

struct HostPoint {
  float x;
  float y;
};
struct HostSize {
  float width;
  float height;
};
struct HostRect {
  HostPoint origin;
  HostSize size;
};
struct HostRange {
  std::uint32_t location;
  std::uint32_t length;
};
static_assert(sizeof(HostRect) == 16 && sizeof(HostRange) == 8);

/// The instance data of a host object of one of the Core Foundation classes.
struct CoreFoundationData {
  id object;  // retained by the host object
  std::int32_t hostUse;
  std::uint32_t marker;  // kCoreFoundationMarker while the object is whole
};
inline constexpr std::uint32_t kCoreFoundationMarker = 0x52424346;  // 'RBCF'

inline HostPoint toHost(NSPoint point) {
  return {static_cast<float>(point.x), static_cast<float>(point.y)};
}
inline HostSize toHost(NSSize size) {
  return {static_cast<float>(size.width), static_cast<float>(size.height)};
}
inline HostRect toHost(NSRect rect) { return {toHost(rect.origin), toHost(rect.size)}; }
inline HostRange toHost(NSRange range) {
  return {static_cast<std::uint32_t>(range.location), static_cast<std::uint32_t>(range.length)};
}

inline NSPoint toNative(HostPoint point) { return {point.x, point.y}; }
inline NSSize toNative(HostSize size) { return {size.width, size.height}; }
inline NSRect toNative(HostRect rect) { return {toNative(rect.origin), toNative(rect.size)}; }
inline NSRange toNative(HostRange range) { return {range.location, range.length}; }

}  // namespace zel
