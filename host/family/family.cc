#include "host/family/family.h"

#include <stdexcept>
#include <utility>
#include <vector>

#include "host/family/erased.h"

namespace host {
namespace {

Family* currentFamily = nullptr;

std::string utf8(zel::CFStringRef string) {
  if (string == nullptr) return "";
  std::vector<char> buffer(static_cast<std::size_t>(zel::CFStringGetLength(string)) * 3 + 1);
  const auto size = static_cast<zel::CFIndex>(buffer.size());
  const bool converted =
      zel::CFStringGetCString(string, buffer.data(), size, zel::kCFStringEncodingUTF8) != 0;
  return converted ? buffer.data() : "";
}

}  // namespace

Family::Family(Host& host, AddMethod add) : host_(host), add_(std::move(add)) {
  if (currentFamily != nullptr) throw std::logic_error("there is a family of plugins already");
  currentFamily = this;
}

Family::~Family() { currentFamily = nullptr; }

Family& Family::current() {
  if (currentFamily == nullptr) throw std::logic_error("a hook of a family that is gone");
  return *currentFamily;
}

void Family::provideInstances(zel::CFMutableDictionaryRef instances) {
  instances_ = instances;
  addToException("GetInstancesDictionaryZEL", erased(getInstancesDictionary), "^v@:");
}

void Family::providePreparation() {
  addToException("PrepareNSExceptionZEL", erased(prepareNSException), "v@:");
}

void Family::provideExceptions() {
  addToException("NewNSExceptionZEL:", erased(newNSException), "^v@:@");
}

void Family::addToException(const char* selector, void (*implementation)(), const char* types) {
  add_({"NSException", "NSObject", true, selector, implementation, types});
}

zel::CFMutableDictionaryRef Family::getInstancesDictionary(zel::id /*self*/,
                                                           zel::SEL /*selector*/) {
  return current().instances_;
}

void Family::prepareNSException(zel::id /*self*/, zel::SEL /*selector*/) {
  ++current().preparations_;
}

zel::REALobject Family::newNSException(zel::id /*self*/, zel::SEL /*selector*/, zel::id exception) {
  if (!current().givesExceptions_) return nullptr;
  Host& host = current().host_;
  ObjectRef made = host.make("NSExceptionZEL");
  host.setProperty(made, "Message", utf8(zel::send<zel::CFStringRef, "reason">(exception)));
  return made.release();
}

}  // namespace host
