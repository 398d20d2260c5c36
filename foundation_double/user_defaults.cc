#include "foundation_double/user_defaults.h"

#include <algorithm>

#include "foundation_double/arrays.h"
#include "foundation_double/classes.h"
#include "foundation_double/data.h"
#include "foundation_double/exceptions.h"
#include "foundation_double/numbers.h"
#include "foundation_double/strings.h"
#include "foundation_double/urls.h"

namespace foundation_double::objc {
namespace {

struct UserDefaultsBody : Body {
  std::string user;  // "" for the user of the process
};

UserDefaultsBody& userDefaultsBody(const void* defaults) {
  return bodyOf<UserDefaultsBody>(defaults, "defaults object");
}

/// The value of a key, not owned, or nil.
zel::id valueOf(zel::id defaults, zel::CFStringRef key) {
  return domainsOf(defaults).find(checkedKey(key));
}

void store(zel::id defaults, zel::CFStringRef key, Held value) {
  const std::u16string& name = checkedKey(key);
  domainsOf(defaults).set(name, std::move(value));
}

void removeObject(zel::id self, zel::SEL /*selector*/, zel::CFStringRef key) {
  domainsOf(self).remove(checkedKey(key));
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
  if (!IsUsable(*object))
    raiseUnusable(*object, "the value for the key " + describe(*instance(key)));
  store(self, key, frozen(value));
}

template <class Kind>
bool is(const Instance& object) {
  return dynamic_cast<const Kind*>(object.body.get()) != nullptr;
}

bool isListOfTexts(const Instance& object) {
  const auto* const array = dynamic_cast<const ArrayBody*>(object.body.get());
  return array != nullptr &&
         std::all_of(array->elements.begin(), array->elements.end(),
                     [](const Held& element) { return is<StringBody>(*instance(element.get())); });
}

template <class Number, char Code>
void setNumber(zel::id self, zel::SEL /*selector*/, Number value, zel::CFStringRef key) {
  checkedKey(key);
  store(self, key, kept(createNumber(std::string(1, Code), numberValue(value))));
}

template <class Number>
Number numberForKey(zel::id self, zel::SEL /*selector*/, zel::CFStringRef key) {
  return numericValue<Number>(valueOf(self, key));
}

zel::BOOL boolForKey(zel::id self, zel::SEL /*selector*/, zel::CFStringRef key) {
  return booleanValue(valueOf(self, key));
}

zel::id objectForKey(zel::id self, zel::SEL /*selector*/, zel::CFStringRef key) {
  return valueOf(self, key);
}

/// A value that satisfies the condition; nil for any other.
template <bool (*IsWanted)(const Instance&)>
zel::id objectOfKind(zel::id self, zel::SEL /*selector*/, zel::CFStringRef key) {
  const zel::id value = valueOf(self, key);
  return value != nullptr && IsWanted(*instance(value)) ? value : nullptr;
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

/// The messages for single values.
std::vector<Method> valueMethods() {
  return {method("integerForKey:", &numberForKey<zel::NSInteger>),
          method("setInteger:forKey:", &setNumber<zel::NSInteger, 'l'>),
          method("floatForKey:", &numberForKey<float>),
          method("setFloat:forKey:", &setNumber<float, 'f'>),
          method("doubleForKey:", &numberForKey<double>),
          method("setDouble:forKey:", &setNumber<double, 'd'>), method("boolForKey:", &boolForKey),
          method("setBool:forKey:", &setNumber<zel::BOOL, 'c'>),
          method("stringForKey:", &stringForKey), method("objectForKey:", &objectForKey),
          method("setObject:forKey:", &set<isPropertyList, zel::id>),
          method("dataForKey:", &objectOfKind<is<DataBody>>),
          method("arrayForKey:", &objectOfKind<is<ArrayBody>>),
          method("stringArrayForKey:", &objectOfKind<isListOfTexts>),
          method("dictionaryForKey:", &objectOfKind<is<DictionaryBody>>),
          // Only what setURL:forKey: stored: a text is not taken for a path.
          method("URLForKey:", &objectOfKind<is<UrlBody>>),
          method("setURL:forKey:", &set<is<UrlBody>, zel::CFURLRef>),
          method("removeObjectForKey:", &removeObject)};
}

}  // namespace

DefaultsDomains& domainsOf(const void* defaults) {
  return DefaultsDatabase::shared().domainsOf(userDefaultsBody(defaults).user);
}

const std::u16string& checkedKey(zel::CFStringRef key) {
  if (key == nullptr || stringBody(key).units.empty()) {
    raise("NSInvalidArgumentException", "the key is nil or empty");
  }
  return stringBody(key).units;
}

void raiseUnusable(const Instance& value, const std::string& place) {
  raise("NSInvalidArgumentException", place + " is no property list: " + describe(value));
}

ClassDefinition userDefaultsClass() {
  std::vector<Method> methods = valueMethods();
  for (const Method& line : domainMethods()) methods.push_back(line);
  methods.push_back(method("init", &init));
  methods.push_back(method("initWithUser:", &initWithUser));
  methods.push_back(method("synchronize", &synchronize));
  return {
      .name = "NSUserDefaults",
      .makeBody = []() -> std::unique_ptr<Body> { return std::make_unique<UserDefaultsBody>(); },
      .methods = std::move(methods),
      .classMethods = {method("standardUserDefaults", &standardUserDefaults),
                       method("resetStandardUserDefaults", &resetStandardUserDefaults)}};
}

}  // namespace foundation_double::objc
