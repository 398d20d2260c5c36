// What a bundle's imports come to on this system.
#pragma once

#include <string_view>

namespace macho {

/// The import by which a bundle gives methods to the runtime, which keeps them for good.
inline constexpr std::string_view kAddMethod = "_class_addMethod";

/// What stands for the symbol, ready to be called by a bundle: native exceptions reach it in its
/// own way. Null for a symbol that isn't known here.
/// @param symbol with its leading underscore.
void* bindingOf(std::string_view symbol);

}  // namespace macho
