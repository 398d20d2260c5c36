// The work of a call as an Objective-C programmer would write it, without host and plugin.
#pragma once

#ifdef __cplusplus
#include <cstdint>
extern "C" {
#else
#include <stdint.h>
#endif

/// The integer under that key of the standard defaults, 0 after a native exception.
/// @param key NUL-terminated UTF-8.
int32_t directIntegerForKey(const char* key);
/// Stores an integer under that key of the standard defaults.
void directSetIntegerForKey(const char* key, int32_t value);
/// The length in bytes of the text under that key, read out as UTF-8 into the buffer.
int32_t directStringForKey(const char* key, char* buffer, int32_t size);

/// An autorelease pool, and its end.
void* directOpenPool(void);
void directDrainPool(void* pool);

#ifdef __cplusplus
}
#endif
