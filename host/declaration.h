// Declarations of methods and properties in the host's language, such as
// "objectIsForcedForKey(key as string, domain as string) as boolean". The language doesn't
// distinguish upper and lower case.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// A type as it was written: "string", and array for "string()".
struct Type {
  std::string name;
  bool array = false;
};

struct Parameter {
  std::string name;
  Type type;
  bool byRef = false;
  bool assigns = false;  // takes the value of an assignment; only the last parameter can
};

struct Declaration {
  std::string name;
  std::vector<Parameter> parameters;
  std::optional<Type> result;
};

/// Whether two names are the same name to the host's language.
bool sameName(std::string_view left, std::string_view right);
bool sameType(const Type& left, const Type& right);
/// Whether a method found by one declaration is the one that the other declares: the names of the
/// parameters don't matter.
bool sameSignature(const Declaration& left, const Declaration& right);

/// Reads a declaration. Throws std::invalid_argument, which says what was expected and where.
Declaration parseDeclaration(std::string_view text);

}  // namespace host
