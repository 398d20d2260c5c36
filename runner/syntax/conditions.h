// What "#If" decides by: expressions whose values are known before the program is looked at.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <variant>

#include "runner/syntax/ast.h"
#include "runner/text/targets.h"

namespace runner {

/// Constants by their names, folded; nullopt: one that has a value, but not one that is known yet.
using KnownValues = std::map<std::string, std::optional<PlatformValue>>;

/// The host's own.
KnownValues platformValues(double hostVersion);

/// What an expression comes to. Throws Problem for what isn't made of known values.
PlatformValue valueOf(const Expression& expression, const KnownValues& known);
/// Whether a condition holds. Throws Problem, also for what is no condition.
bool isTrue(const Expression& condition, const KnownValues& known);

}  // namespace runner
