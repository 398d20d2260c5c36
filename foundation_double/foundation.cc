#include "foundation_double/foundation.h"

#include "foundation_double/dates.h"
#include "foundation_double/defaults_database.h"
#include "foundation_double/exceptions.h"
#include "foundation_double/file_tree.h"
#include "foundation_double/pointer_table.h"
#include "foundation_double/runtime.h"
#include "foundation_double/strings.h"

namespace foundation_double {

using objc::Accounts;
using objc::DefaultsDatabase;
using objc::Faults;
using objc::Records;
using objc::Runtime;

Foundation& Foundation::shared() {
  static Foundation foundation;
  return foundation;
}

void Foundation::reset() {
  DefaultsDatabase::shared().reset();
  Accounts::shared().reset();
  Runtime::shared().reset();
  Faults::shared().reset();
  Records::shared() = Records();
  objc::tableEntries(pointerTable()).clear();
  objc::FileTree::shared().reset();
  objc::localZoneSeconds() = 0;
}

std::string Foundation::unbalanced() { return Accounts::shared().unbalanced(); }

void Foundation::drainPool() { Accounts::shared().drainPool(); }

long Foundation::references(const void* object) {
  const objc::Instance* const found = Accounts::shared().find(object);
  return found == nullptr ? 0 : found->count;
}

const std::vector<std::string>& Foundation::messages() { return Records::shared().messages; }

const std::vector<std::string>& Foundation::calls() { return Records::shared().calls; }

const std::vector<std::string>& Foundation::log() { return Records::shared().log; }

void Foundation::clearRecords() { Records::shared().clear(); }

void Foundation::onRecord(std::function<void(const std::string&)> observer) {
  Records::shared().observer = std::move(observer);
}

void Foundation::throwAtMessage(long n, zel::id exception) {
  Faults::shared().throwAtMessage(n, exception);
}

void Foundation::throwAtCall(const std::string& cfFunction, long n) {
  Faults::shared().throwAtCall(cfFunction, n);
}

void Foundation::failCall(const std::string& cfFunction, long n) {
  Faults::shared().failCall(cfFunction, n);
}

bool Foundation::faultsPending() { return Faults::shared().pending(); }

void Foundation::hideConstant(const std::string& name) { Faults::shared().hideConstant(name); }

void Foundation::hideSelector(const std::string& className, const std::string& selector) {
  objc::ClassRecord& hiding = Runtime::shared().require(className);
  const zel::SEL hidden = Runtime::shared().selector(selector);
  hiding.hidden.insert(hidden);
  hiding.isa->hidden.insert(hidden);
}

void Foundation::hideClassName(const std::string& className) {
  objc::Runtime::shared().require(className).isa->nameless = true;
}

void Foundation::beforeCatching(std::function<void()> action) {
  Faults::shared().beforeCatching(std::move(action));
}

void Foundation::onFailure(std::function<void(const std::string&)> handler) {
  Faults::shared().onFailure(std::move(handler));
}

zel::Class* Foundation::addClass(const std::string& name, const std::string& superName) {
  return objc::handle<zel::Class*>(&Runtime::shared().addClass(name, superName));
}

void Foundation::addImplementation(const std::string& className, const std::string& selector,
                                   Implementation implementation) {
  objc::ClassRecord& owner = Runtime::shared().require(className);
  owner.addedMethods[Runtime::shared().selector(selector)] = implementation;
}

void Foundation::addClassImplementation(const std::string& className, const std::string& selector,
                                        Implementation implementation) {
  objc::ClassRecord& owner = *Runtime::shared().require(className).isa;
  owner.addedMethods[Runtime::shared().selector(selector)] = implementation;
}

std::string Foundation::typesOfAdded(const std::string& className, const std::string& selector) {
  const auto& types = Runtime::shared().require(className).isa->addedTypes;
  const auto found = types.find(Runtime::shared().selector(selector));
  return found == types.end() ? "" : found->second;
}

zel::CFStringRef Foundation::string(std::string_view utf8) {
  return objc::pooled(objc::createString(objc::fromUtf8(utf8)));
}

zel::CFStringRef Foundation::string16(std::u16string_view units) {
  return objc::pooled(objc::createString(std::u16string(units)));
}

zel::CFStringRef Foundation::stringOfLength(zel::CFIndex pretended) {
  return objc::pooled(objc::createString(u"x", pretended));
}

zel::id Foundation::exception(const std::optional<std::string>& name,
                              const std::optional<std::string>& reason,
                              const std::string& className, zel::id userInfo) {
  return objc::pooled(objc::createException(className, name, reason, userInfo));
}

zel::id Foundation::object(const std::string& className) {
  return objc::pooled(objc::createInstance(Runtime::shared().require(className)));
}

zel::CFMutableDictionaryRef Foundation::pointerTable() { return objc::sharedPointerTable(); }

const std::map<const void*, const void*>& Foundation::pointerTableEntries() {
  return objc::tableEntries(pointerTable());
}

std::string Foundation::utf8(zel::CFStringRef string) {
  if (string == nullptr) return "(null)";
  return objc::encodeLosslessly(objc::stringBody(string).units);
}

zel::NSUserDefaults* Foundation::standardDefaults() {
  return objc::handle<zel::NSUserDefaults*>(objc::instance(DefaultsDatabase::shared().standard()));
}

void Foundation::standardDefaultsGivesNil(bool givesNil) {
  DefaultsDatabase::shared().standardGivesNil = givesNil;
}

void Foundation::initWithUserGivesNil(bool givesNil) {
  DefaultsDatabase::shared().initWithUserGivesNil = givesNil;
}

void Foundation::initGivesNil(bool givesNil) { DefaultsDatabase::shared().initGivesNil = givesNil; }

std::optional<std::optional<std::string>> Foundation::lastUserName() {
  return DefaultsDatabase::shared().lastUserName;
}

}  // namespace foundation_double
