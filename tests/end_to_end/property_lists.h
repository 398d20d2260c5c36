// Property lists as Foundation itself reads and writes them, without the plugin.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "native/corefoundation.h"

namespace tests {

/// A native string of that UTF-8 text, autoreleased.
zel::CFStringRef nativeText(std::string_view text);
/// The UTF-8 text of a native string; "(null)" for null.
std::string textOf(const void* string);

/// What is in a file of any format, autoreleased; a test failure and null when it can't be read.
zel::id propertyListIn(const std::filesystem::path& file);
/// Writes it in the binary format; a test failure when that can't be done.
void writeBinary(zel::id propertyList, const std::filesystem::path& file);
/// Foundation's own opinion.
bool areEqual(zel::id left, zel::id right);

/// Foundation forgets which defaults it holds and reads the files again for the next standard
/// object.
void readDefaultsAnew();

/// Every value of a property list by its path, "Accounts.0.Port", as a literal:
///   text "x"  integer 7  real 0.5  boolean 1  date 400000000.5  data 00ff  list 2  dictionary 1
/// The number of a date is seconds since the beginning of 2001 in UTC; behind "list" and
/// "dictionary" stands how much is in it. Numbers are named by their own type: an integer that
/// equals a real is another value here.
using Lines = std::map<std::string, std::string>;
Lines linesOf(zel::id propertyList);

/// What differs, in the order of the paths: "path: before -> after", with "nothing" on the side
/// where the path is missing.
std::vector<std::string> differences(const Lines& before, const Lines& after);

}  // namespace tests
