// Host strings from bytes of the plugin's own.
#pragma once

#include "plugin/host.h"

namespace zel {

/// A new host string with one reference for the caller, of the bytes up to the first zero byte.
/// Without the host's routine for it, the string carries no encoding.
/// @param text     not null.
/// @param encoding recorded on the string; the bytes must be in it.
/// @returns null for an empty text, one longer than the host can count, or when the host can't.
REALstring buildString(const char* text, std::uint32_t encoding);

}  // namespace zel
