// A host string's bytes.
#pragma once

#include "plugin/host.h"

namespace zel {

/// Hands out a host string's bytes in an encoding, by the host's own routine or, where the host
/// lacks it, by what older hosts have.
/// @param encoding kNoEncoding: the bytes as stored, labelled so.
/// @param out      filled on true; its data then belongs to the caller, who gives it back with
///                 disposeStringData. For the bytes as stored, its length field must hold their
///                 number on entry: where the host lacks its own routine the buffer is sized by it.
/// @returns false when the bytes can't be had; `out` is then not written to.
bool REALGetStringData(REALstring string, std::uint32_t encoding, REALstringData* out);

/// The same for the bytes as stored, in a buffer of their own size whatever `out` holds on entry.
bool getStoredBytes(REALstring string, REALstringData* out);

/// Takes back what REALGetStringData handed out.
void disposeStringData(REALstringData& record);

}  // namespace zel
