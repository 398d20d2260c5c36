// The class records that the plugin registers.
#pragma once

#include "plugin/handles.h"
#include "plugin/records.h"

namespace host::internal {

struct State;

// --- entry points
void registerPluginVersion(State& state, std::int32_t version);
/// Reads a class record: in the current layout or, when its version is 9 or less, in the older one.
/// Writes where the instance data begins into it. A record that no host would take is reported as a
/// failure and left alone.
void registerClass(State& state, zel::REALclassDefinition* definition);

}  // namespace host::internal
