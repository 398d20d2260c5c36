// Stand-ins for the other plugins of the family: the class methods that they add to NSException.
#pragma once

#include <functional>
#include <string>

#include "native/corefoundation.h"
#include "testkit/host/host.h"

namespace testkit {

/// Adds a class method to NSException. @param types its Objective-C type encoding.
using AddClassMethod =
    std::function<void(const char* selector, void (*implementation)(), const char* types)>;

/// One family at a time: its hooks find it process-wide, as the plugin does. Hooks that were added
/// stay where they are added; they must not be called once the family is gone.
class Siblings {
 public:
  explicit Siblings(Host& host, AddClassMethod add);
  ~Siblings();
  Siblings(const Siblings&) = delete;
  Siblings& operator=(const Siblings&) = delete;

  /// Adds GetInstancesDictionaryZEL. @param instances not owned; outlives the family.
  void provideInstances(zel::CFMutableDictionaryRef instances);
  /// Adds PrepareNSExceptionZEL.
  void providePreparation();
  /// Adds NewNSExceptionZEL:, which makes a host object of class NSExceptionZEL whose "Message" is
  /// the exception's reason.
  void provideExceptions();
  /// Lets NewNSExceptionZEL: answer nil.
  void giveNoExceptions() { givesExceptions_ = false; }

  /// How often PrepareNSExceptionZEL was sent.
  [[nodiscard]] int preparations() const { return preparations_; }

 private:
  static Siblings& current();
  static zel::CFMutableDictionaryRef getInstancesDictionary(zel::id self, zel::SEL selector);
  static void prepareNSException(zel::id self, zel::SEL selector);
  static zel::REALobject newNSException(zel::id self, zel::SEL selector, zel::id exception);

  Host& host_;
  AddClassMethod add_;
  zel::CFMutableDictionaryRef instances_ = nullptr;
  int preparations_ = 0;
  bool givesExceptions_ = true;
};

}  // namespace testkit
