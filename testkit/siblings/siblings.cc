#include "testkit/siblings/siblings.h"

#include <stdexcept>
#include <utility>
#include <vector>

#include "testkit/siblings/erased.h"

namespace testkit {
namespace {

Siblings* currentSiblings = nullptr;

std::string utf8(zel::CFStringRef string) {
  if (string == nullptr) return "";
  std::vector<char> buffer(static_cast<std::size_t>(zel::CFStringGetLength(string)) * 3 + 1);
  const auto size = static_cast<zel::CFIndex>(buffer.size());
  const bool converted =
      zel::CFStringGetCString(string, buffer.data(), size, zel::kCFStringEncodingUTF8) != 0;
  return converted ? buffer.data() : "";
}

}  // namespace

Siblings::Siblings(Host& host, AddMethod add) : host_(host), add_(std::move(add)) {
  if (currentSiblings != nullptr) throw std::logic_error("there is a family of plugins already");
  currentSiblings = this;
}

Siblings::~Siblings() { currentSiblings = nullptr; }

Siblings& Siblings::current() {
  if (currentSiblings == nullptr) throw std::logic_error("a hook of a family that is gone");
  return *currentSiblings;
}

void Siblings::provideInstances(zel::CFMutableDictionaryRef instances) {
  instances_ = instances;
  addToException("GetInstancesDictionaryZEL", erased(getInstancesDictionary), "^v@:");
}

void Siblings::providePreparation() {
  addToException("PrepareNSExceptionZEL", erased(prepareNSException), "v@:");
}

void Siblings::provideExceptions() {
  addToException("NewNSExceptionZEL:", erased(newNSException), "^v@:@");
}

void Siblings::addToException(const char* selector, void (*implementation)(), const char* types) {
  add_({"NSException", "NSObject", true, selector, implementation, types});
}

zel::CFMutableDictionaryRef Siblings::getInstancesDictionary(zel::id /*self*/,
                                                             zel::SEL /*selector*/) {
  return current().instances_;
}

void Siblings::prepareNSException(zel::id /*self*/, zel::SEL /*selector*/) {
  ++current().preparations_;
}

zel::REALobject Siblings::newNSException(zel::id /*self*/, zel::SEL /*selector*/,
                                         zel::id exception) {
  if (!current().givesExceptions_) return nullptr;
  Host& host = current().host_;
  ObjectRef made = host.make("NSExceptionZEL");
  host.setProperty(made, "Message", utf8(zel::send<zel::CFStringRef, "reason">(exception)));
  return made.release();
}

}  // namespace testkit
