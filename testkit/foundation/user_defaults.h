// NSUserDefaults over a database in memory.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "native/objc.h"
#include "testkit/foundation/accounts.h"

namespace testkit::objc {

/// The values of every user, the standard defaults object, and what a test makes Foundation refuse.
/// Every defaults object of the same user reads and writes the same values.
class DefaultsDatabase {
 public:
  using Values = std::map<std::u16string, Held, std::less<>>;

  static DefaultsDatabase& shared();
  void reset();

  /// A user's values. @param user "" for the user of the process.
  Values& valuesOf(const std::string& user) { return values_[user]; }
  /// The standard defaults object, made when there is none; Foundation's.
  zel::id standard();
  /// Foundation gives up the standard defaults object; the next one is another.
  void forgetStandard() { standard_ = Held(); }

  bool standardGivesNil = false;
  bool initGivesNil = false;
  bool initWithUserGivesNil = false;
  std::optional<std::optional<std::string>> lastUserName;

 private:
  DefaultsDatabase() = default;

  std::map<std::string, Values> values_;
  Held standard_;
};

}  // namespace testkit::objc
