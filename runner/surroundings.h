// What a host process has around its plugins: an autorelease pool, and the other plugins of the
// family.
#pragma once

#include "native/objc.h"
#include "testkit/host/host.h"
#include "testkit/siblings/siblings.h"

namespace runner {

class Surroundings {
 public:
  explicit Surroundings(testkit::Host& host);
  ~Surroundings();
  Surroundings(const Surroundings&) = delete;
  Surroundings& operator=(const Surroundings&) = delete;

  /// Gives up what was autoreleased so far.
  void drain();

 private:
  testkit::Siblings family_;
  zel::CFMutableDictionaryRef instances_;
  zel::id pool_ = nullptr;
};

}  // namespace runner
