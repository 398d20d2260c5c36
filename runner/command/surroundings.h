// What a host process has around its plugins: an autorelease pool, and the other plugins of the
// family.
#pragma once

#include "host/family/family.h"
#include "host/host.h"
#include "host/pool.h"

namespace runner {

class Surroundings {
 public:
  /// @param host without plugins yet.
  explicit Surroundings(host::Host& host);

  /// Stands in for what the plugins, which are all loaded now, have left out.
  void complete();
  /// Gives up what was autoreleased so far.
  void drain() { pool_.drain(); }

 private:
  host::Host& host_;
  host::Family family_;
  zel::CFMutableDictionaryRef instances_;
  host::Pool pool_;
};

}  // namespace runner
