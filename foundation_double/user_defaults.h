// NSUserDefaults over the database in memory.
#pragma once

#include <string>
#include <vector>

#include "foundation_double/defaults_database.h"
#include "foundation_double/runtime.h"
#include "native/corefoundation.h"

namespace foundation_double::objc {

/// What a defaults object reads and writes.
DefaultsDomains& domainsOf(const void* defaults);
/// The text of a key; nil and "" raise.
const std::u16string& checkedKey(zel::CFStringRef key);
/// @param place what the value was meant for, which begins the reason.
[[noreturn]] void raiseUnusable(const Instance& value, const std::string& place);

/// The messages for whole domains and suites.
std::vector<Method> domainMethods();

}  // namespace foundation_double::objc
