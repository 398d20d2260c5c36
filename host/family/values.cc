// The family's classes for values, in the host and on the native side.
#include <utility>

#include "host/family/erased.h"
#include "host/family/family.h"
#include "plugin/instance_data.h"

namespace host {
namespace {

struct DataClass {
  const char* name;
  std::size_t size;  // of the instance data
};

constexpr DataClass kStructures[] = {
    {"NSSizeZEL", sizeof(zel::HostSize)},
    {"NSRectZEL", sizeof(zel::HostRect)},
    {"NSRangeZEL", sizeof(zel::HostRange)},
    {"NSPointZEL", sizeof(zel::HostPoint)},
};

constexpr const char* kCoreFoundationClasses[] = {"CFStringZEL", "CFNumberZEL", "CFBinaryDataZEL",
                                                  "CFURLZEL",    "CFArrayZEL",  "CFDictionaryZEL",
                                                  "CFDateZEL"};

// The instance data of an object class.
struct ObjectData {
  zel::id object;
};

// The destructor of every class whose data begins with a native object.
void releaseNative(zel::REALobject object) {
  zel::release(std::exchange(zel::instanceData<zel::id>(object), nullptr));
}

void addKeepingClass(Host& host, const std::string& name, const std::string& superName,
                     std::size_t dataSize) {
  host.addClass(name, superName, static_cast<std::int32_t>(dataSize));
  // The destructor of the super class runs as well.
  if (superName.empty()) host.setDestructor(name, erased(releaseNative));
}

}  // namespace

// One kind of time: a class in the host, and a native one for values of that type.
template <zel::Name hostClass, zel::Name nativeClass, zel::Name type, zel::Name factory,
          zel::Name accessor>
struct Family::Time {
  static void provide(Family& family) {
    family.host_.addClass(hostClass.text, "");
    family.add_({nativeClass.text, "NSValue", false, "objCType", erased(objCType), "*@:"});
    family.add_({"NSValue", "NSObject", true, factory.text, erased(valueOf), "@@:^v"});
    family.add_({"NSValue", "NSObject", false, accessor.text, erased(objectOf), "^v@:"});
  }

  static const char* objCType(zel::id /*self*/, zel::SEL /*selector*/) { return type.text; }
  static zel::id valueOf(zel::id /*self*/, zel::SEL /*selector*/, zel::REALobject object) {
    const auto made = zel::send<zel::id, "alloc">(zel::classNamed<nativeClass>());
    return current().keep(made, object);
  }
  static zel::REALobject objectOf(zel::id self, zel::SEL /*selector*/) {
    const zel::REALobject kept = current().keptBy(self);
    return kept != nullptr ? kept : current().host_.make(hostClass.text).release();
  }
};

void Family::provideStructures() {
  for (const DataClass& structure : kStructures)
    host_.addClass(structure.name, "", static_cast<std::int32_t>(structure.size));
}

void Family::provideObjectClass(const std::string& name, const std::string& superName) {
  addKeepingClass(host_, name, superName, sizeof(ObjectData));
}

void Family::provideCoreFoundation() {
  for (const char* const name : kCoreFoundationClasses)
    addKeepingClass(host_, name, "", sizeof(zel::CoreFoundationData));
}

void Family::provideTimes() {
  Time<"QTKitTimeZEL", "FamilyQTTime", "{?=qll}", "valueWithQTTimeZEL:", "QTTimeValueZEL">::provide(
      *this);
  Time<"QTKitTimeRangeZEL", "FamilyQTTimeRange", "{?={?=qll}{?=qll}}",
       "valueWithQTTimeRangeZEL:", "QTTimeRangeValueZEL">::provide(*this);
  Time<"CMTimeZEL", "FamilyCMTime", "{?=qiIq}", "valueWithCMTimeZEL:", "CMTimeValueZEL">::provide(
      *this);
  Time<"CMTimeRangeZEL", "FamilyCMTimeRange", "{?={?=qiIq}{?=qiIq}}",
       "valueWithCMTimeRangeZEL:", "CMTimeRangeValueZEL">::provide(*this);
  Time<"CMTimeMappingZEL", "FamilyCMTimeMapping", "{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}",
       "valueWithCMTimeMappingZEL:", "CMTimeMappingValueZEL">::provide(*this);
}

void Family::provideWrapper() {
  constexpr char kWrapper[] = "ZELREALobjectWrapper";
  add_({kWrapper, "NSObject", true, "wrap:", erased(wrap), "@@:^v"});
  add_({kWrapper, "NSObject", false, "unwrap", erased(unwrap), "^v@:"});
}

ObjectRef Family::objectOf(const std::string& className, zel::id native) {
  ObjectRef made = host_.make(className);
  Host::data<zel::id>(made) = zel::retained(native);
  return made;
}

ObjectRef Family::coreFoundationObject(const std::string& className, zel::CFTypeRef native,
                                       std::uint32_t marker) {
  const auto object = static_cast<zel::id>(const_cast<void*>(native));
  ObjectRef made = objectOf(className, object);
  Host::data<zel::CoreFoundationData>(made).marker = marker;
  return made;
}

zel::id Family::nativeIn(const ObjectRef& object) { return Host::data<zel::id>(object); }

zel::id Family::wrap(zel::id self, zel::SEL /*selector*/, zel::REALobject object) {
  return current().keep(zel::send<zel::id, "alloc">(self), object);
}

zel::REALobject Family::unwrap(zel::id self, zel::SEL /*selector*/) {
  return current().keptBy(self);
}

zel::id Family::keep(zel::id made, zel::REALobject object) {
  const zel::id keeper = zel::autoreleased(zel::send<zel::id, "init">(made));
  kept_.insert_or_assign(keeper, ObjectRef::share(object));
  return keeper;
}

zel::REALobject Family::keptBy(zel::id native) const {
  const auto found = kept_.find(native);
  return found == kept_.end() ? nullptr : ObjectRef(found->second).release();
}

}  // namespace host
