// The autorelease pool that a host has in place while it calls plugins.
#pragma once

#include "native/objc.h"

namespace host {

/// What native code autoreleases while a pool is the innermost one lives until that pool is
/// drained. Pools end in the opposite order of their beginnings.
class Pool {
 public:
  Pool() : pool_(open()) {}
  ~Pool() { close(); }
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;

  /// Gives up what was autoreleased until now, and goes on as a new pool.
  void drain() {
    close();
    pool_ = open();
  }

 private:
  static zel::id open() {
    return zel::send<zel::id, "new">(zel::classNamed<"NSAutoreleasePool">());
  }
  void close() { zel::send<void, "drain">(pool_); }

  zel::id pool_;
};

}  // namespace host
