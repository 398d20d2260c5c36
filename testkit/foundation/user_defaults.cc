#include "testkit/foundation/user_defaults.h"

#include "testkit/foundation/classes.h"
#include "testkit/foundation/exceptions.h"
#include "testkit/foundation/numbers.h"
#include "testkit/foundation/strings.h"
#include "testkit/foundation/urls.h"

namespace testkit::objc {
namespace {

struct UserDefaultsBody : Body {
  std::string user;  // "" for the user of the process
};

UserDefaultsBody& userDefaultsBody(const void* defaults) {
  return bodyOf<UserDefaultsBody>(defaults, "defaults object");
}

const std::u16string& checkedKey(zel::CFStringRef key) {
  if (key == nullptr || stringBody(key).units.empty()) {
    raise("NSInvalidArgumentException", "the key is nil or empty");
  }
  return stringBody(key).units;
}

DefaultsDatabase::Values& valuesOf(zel::id defaults) {
  return DefaultsDatabase::shared().valuesOf(userDefaultsBody(defaults).user);
}

/// The value of a key, not owned, or nil.
zel::id valueOf(zel::id defaults, zel::CFStringRef key) {
  const auto& values = valuesOf(defaults);
  const auto found = values.find(checkedKey(key));
  return found == values.end() ? nullptr : found->second.get();
}

void store(zel::id defaults, zel::CFStringRef key, Held value) {
  const std::u16string& name = checkedKey(key);
  valuesOf(defaults).insert_or_assign(name, std::move(value));
}

void removeObject(zel::id self, zel::SEL /*selector*/, zel::CFStringRef key) {
  valuesOf(self).erase(checkedKey(key));
}

[[noreturn]] void raiseUnusable(const Instance& value, zel::CFStringRef key) {
  raise("NSInvalidArgumentException", "the value for the key " + describe(*instance(key)) +
                                          " is no property list: " + describe(value));
}

/// Stores an object that satisfies the condition; nil removes the key.
template <bool (*IsUsable)(const Instance&), class Value>
void set(zel::id self, zel::SEL selector, Value value, zel::CFStringRef key) {
  if (value == nullptr) {
    removeObject(self, selector, key);
    return;
  }
  checkedKey(key);
  const Instance* const object = Accounts::shared().find(value);
  if (object == nullptr || object->dead) misuseWithoutAnswer("the value is no live object");
  if (!IsUsable(*object)) raiseUnusable(*object, key);
  store(self, key, Held(value));
}

bool isUrl(const Instance& object) {
  return dynamic_cast<const UrlBody*>(object.body.get()) != nullptr;
}

template <class Number>
void setNumber(zel::id self, zel::SEL /*selector*/, Number value, zel::CFStringRef key) {
  checkedKey(key);
  store(self, key, kept(createNumber(value)));
}

template <class Number>
Number numberForKey(zel::id self, zel::SEL /*selector*/, zel::CFStringRef key) {
  return numericValue<Number>(valueOf(self, key));
}

zel::id objectForKey(zel::id self, zel::SEL /*selector*/, zel::CFStringRef key) {
  return valueOf(self, key);
}

/// A number's text too, as Foundation documents.
zel::CFStringRef stringForKey(zel::id self, zel::SEL /*selector*/, zel::CFStringRef key) {
  const zel::id value = valueOf(self, key);
  if (value == nullptr) return nullptr;
  const Body* const body = instance(value)->body.get();
  if (dynamic_cast<const StringBody*>(body) != nullptr) {
    return handle<zel::CFStringRef>(instance(value));
  }
  const auto* const number = dynamic_cast<const NumberBody*>(body);
  return number == nullptr ? nullptr : pooled(createString(*number->text()));
}

/// Only what setURL:forKey: stored: a text is not taken for a path.
zel::id urlForKey(zel::id self, zel::SEL /*selector*/, zel::CFStringRef key) {
  const zel::id value = valueOf(self, key);
  return value != nullptr && isUrl(*instance(value)) ? value : nullptr;
}

zel::BOOL synchronize(zel::id /*self*/, zel::SEL /*selector*/) { return 1; }

/// An initialiser that answers nil gives up the object that alloc made, as Foundation does.
zel::id initialized(zel::id self, bool givesNil, std::string user) {
  if (givesNil) {
    Accounts::shared().release(*instance(self));
    return nullptr;
  }
  userDefaultsBody(self).user = std::move(user);
  return self;
}

zel::id init(zel::id self, zel::SEL /*selector*/) {
  return initialized(self, DefaultsDatabase::shared().initGivesNil, "");
}

zel::id initWithUser(zel::id self, zel::SEL /*selector*/, zel::CFStringRef user) {
  DefaultsDatabase& database = DefaultsDatabase::shared();
  std::optional<std::string> name;
  if (user != nullptr) name = encodeLosslessly(stringBody(user).units);
  database.lastUserName = name;
  return initialized(self, database.initWithUserGivesNil, name.value_or(""));
}

zel::id standardUserDefaults(zel::id /*self*/, zel::SEL /*selector*/) {
  DefaultsDatabase& database = DefaultsDatabase::shared();
  return database.standardGivesNil ? nullptr : database.standard();
}

void resetStandardUserDefaults(zel::id /*self*/, zel::SEL /*selector*/) {
  DefaultsDatabase::shared().forgetStandard();
}

}  // namespace

ClassDefinition userDefaultsClass() {
  return {
      .name = "NSUserDefaults",
      .makeBody = []() -> std::unique_ptr<Body> { return std::make_unique<UserDefaultsBody>(); },
      .methods = {method("init", &init), method("initWithUser:", &initWithUser),
                  method("integerForKey:", &numberForKey<zel::NSInteger>),
                  method("setInteger:forKey:", &setNumber<zel::NSInteger>),
                  method("floatForKey:", &numberForKey<float>),
                  method("setFloat:forKey:", &setNumber<float>),
                  method("doubleForKey:", &numberForKey<double>),
                  method("setDouble:forKey:", &setNumber<double>),
                  method("boolForKey:", &numberForKey<zel::BOOL>),
                  method("setBool:forKey:", &setNumber<zel::BOOL>),
                  method("stringForKey:", &stringForKey), method("objectForKey:", &objectForKey),
                  method("setObject:forKey:", &set<isStorable, zel::id>),
                  method("URLForKey:", &urlForKey),
                  method("setURL:forKey:", &set<isUrl, zel::CFURLRef>),
                  method("removeObjectForKey:", &removeObject),
                  method("synchronize", &synchronize)},
      .classMethods = {method("standardUserDefaults", &standardUserDefaults),
                       method("resetStandardUserDefaults", &resetStandardUserDefaults)}};
}

DefaultsDatabase& DefaultsDatabase::shared() {
  static auto* const database = new DefaultsDatabase;  // outlives every static user of it
  return *database;
}

void DefaultsDatabase::reset() { *this = DefaultsDatabase(); }

zel::id DefaultsDatabase::standard() {
  if (standard_.get() == nullptr) {
    standard_ = kept(createObject("NSUserDefaults", std::make_unique<UserDefaultsBody>()));
  }
  return standard_.get();
}

}  // namespace testkit::objc
