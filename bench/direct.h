// The work of every call as an Objective-C programmer writes it who cares for speed: the same
// messages with classes and selectors remembered, the host's values made and read by the host's
// functions, and exceptions caught. The reference that the plugin is measured against.
#pragma once

#include "bench/lean_host.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Remembers the classes, and the standard defaults. Before everything else here.
void directPrepare(void);

/// An autorelease pool, and its end.
void* directOpenPool(void);
void directDrainPool(void* pool);

// One value by key: 0 or null after a native exception.
int32_t directInteger(LeanString* key);
float directFloat(LeanString* key);
double directDouble(LeanString* key);
signed char directBool(LeanString* key);
LeanString* directString(LeanString* key);
LeanString* directURL(LeanString* key);
LeanObject* directData(LeanString* key);
LeanObject* directFile(LeanString* key);
LeanObject* directVariant(LeanString* key);
void directSetInteger(LeanString* key, int32_t value);
void directSetFloat(LeanString* key, float value);
void directSetDouble(LeanString* key, double value);
void directSetBool(LeanString* key, signed char value);
void directSetString(LeanString* key, LeanString* value);
void directSetURL(LeanString* key, LeanString* value);
void directSetData(LeanString* key, LeanObject* block);
void directSetFile(LeanString* key, LeanObject* item);
void directSetVariant(LeanString* key, LeanObject* value);

// Lists and dictionaries by key.
LeanObject* directStringArray(LeanString* key);
LeanObject* directArray(LeanString* key);
LeanObject* directDictionary(LeanString* key);
void directSetStringArray(LeanString* key, LeanObject* array);
void directSetArray(LeanString* key, LeanObject* array);
void directSetDictionary(LeanString* key, LeanObject* dictionary);

// The store as a whole.
LeanObject* directRepresentation(void);
LeanObject* directPersistentNames(void);
LeanObject* directPersistentDomain(LeanString* name);
void directSetPersistentDomain(LeanObject* dictionary, LeanString* name);
LeanObject* directVolatileDomain(LeanString* name);
void directSetVolatileDomain(LeanObject* dictionary, LeanString* name);
void directRemoveVolatileDomain(LeanString* name);
void directRegister(LeanObject* dictionary);
void directRemove(LeanString* key);
signed char directIsForced(LeanString* key);
signed char directSynchronize(void);

#ifdef __cplusplus
}
#endif
