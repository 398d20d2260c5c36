// Stand-ins for the other plugins of the family: the methods that they add to native classes, and
// the classes that they give the host.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>

#include "bridge/struct_data.h"
#include "host/host.h"
#include "native/corefoundation.h"

namespace host {

/// A method that the family adds to a native class.
struct NativeMethod {
  const char* className;     // a class that isn't there yet is made
  const char* superName;     // below this one
  bool ofClass;              // a class method
  const char* selector;      // as text
  void (*implementation)();  // in truth R f(zel::id self, zel::SEL selector, arguments...)
  const char* types;         // the Objective-C type encoding of that
};

/// Adds the method to the native side that the tests run over.
using AddMethod = std::function<void(const NativeMethod&)>;

/// One family at a time: its hooks find it process-wide, as the plugin does. Hooks that were added
/// stay where they are added; they must not be called once the family is gone.
class Family {
 public:
  explicit Family(Host& host, AddMethod add);
  ~Family();
  Family(const Family&) = delete;
  Family& operator=(const Family&) = delete;

  /// Adds GetInstancesDictionaryZEL. @param instances not owned; outlives the family.
  void provideInstances(zel::CFMutableDictionaryRef instances);
  /// Adds PrepareNSExceptionZEL.
  void providePreparation();
  /// Adds NewNSExceptionZEL:, which makes a host object of class NSExceptionZEL whose "Message" is
  /// the exception's reason.
  void provideExceptions();
  /// Lets NewNSExceptionZEL: answer nil.
  void giveNoExceptions() { givesExceptions_ = false; }

  // --- the family's classes in the host
  /// Defines NSSizeZEL, NSRectZEL, NSRangeZEL and NSPointZEL, whose data is a record of
  /// bridge/struct_data.h each.
  void provideStructures();
  /// Defines a class whose objects keep a native object; they give it up when they die.
  /// @param superName "" or a class that exists.
  void provideObjectClass(const std::string& name, const std::string& superName = "");
  /// Defines CFStringZEL, CFNumberZEL, CFBinaryDataZEL, CFURLZEL, CFArrayZEL, CFDictionaryZEL and
  /// CFDateZEL, whose data is a zel::CoreFoundationData.
  void provideCoreFoundation();
  /// Defines QTKitTimeZEL, QTKitTimeRangeZEL, CMTimeZEL, CMTimeRangeZEL and CMTimeMappingZEL, and
  /// gives NSValue the methods that make values of them ("valueWithQTTimeZEL:" and so on) and the
  /// methods that make host objects of such values ("QTTimeValueZEL" and so on). A value that was
  /// made of a host object gives that object back, any other one a new object.
  void provideTimes();
  /// Defines the native class ZELREALobjectWrapper: "wrap:" makes a wrapper that keeps a host
  /// object, "unwrap" gives the object back, with a reference for the caller.
  void provideWrapper();

  /// A host object of such a class that keeps a reference on the native object. @param native
  /// nullable.
  ObjectRef objectOf(const std::string& className, zel::id native);
  ObjectRef coreFoundationObject(const std::string& className, zel::CFTypeRef native,
                                 std::uint32_t marker = zel::kCoreFoundationMarker);
  /// The native object in it, not owned.
  [[nodiscard]] static zel::id nativeIn(const ObjectRef& object);
  /// Gives up the host objects that wrappers and time values keep: they go on as if they had none.
  void forgetKept() { kept_.clear(); }
  /// How many there are.
  [[nodiscard]] std::size_t keptCount() const { return kept_.size(); }

  /// How often PrepareNSExceptionZEL was sent.
  [[nodiscard]] int preparations() const { return preparations_; }

 private:
  static Family& current();
  static zel::CFMutableDictionaryRef getInstancesDictionary(zel::id self, zel::SEL selector);
  static void prepareNSException(zel::id self, zel::SEL selector);
  static zel::REALobject newNSException(zel::id self, zel::SEL selector, zel::id exception);
  static zel::id wrap(zel::id self, zel::SEL selector, zel::REALobject object);
  static zel::REALobject unwrap(zel::id self, zel::SEL selector);
  template <zel::Name hostClass, zel::Name nativeClass, zel::Name type, zel::Name factory,
            zel::Name accessor>
  struct Time;

  void addToException(const char* selector, void (*implementation)(), const char* types);
  /// A new native object, autoreleased, that keeps the host object.
  zel::id keep(zel::id made, zel::REALobject object);
  /// What the native object keeps, with a reference for the caller, or null.
  zel::REALobject keptBy(zel::id native) const;

  Host& host_;
  AddMethod add_;
  std::unordered_map<zel::id, ObjectRef> kept_;
  zel::CFMutableDictionaryRef instances_ = nullptr;
  int preparations_ = 0;
  bool givesExceptions_ = true;
};

}  // namespace host
