// Native exceptions: how they travel, and NSException.
#pragma once

#include <optional>
#include <string>

#include "native/objc.h"

namespace foundation_double::objc {

/// What is thrown when a native object is: the object, without a reference of its own. It unwinds
/// like the exceptions of the GNU runtime, so clean-ups of frames that have some are run.
struct NativeException {
  zel::id object;
};

/// A new exception with one reference for the caller. @param className NSException or a subclass.
zel::id createException(const std::string& className, const std::optional<std::string>& name,
                        const std::optional<std::string>& reason, zel::id userInfo);

/// Throws a new NSException.
[[noreturn]] void raise(const std::string& name, const std::string& reason);

}  // namespace foundation_double::objc
