// The plugin as it is when a host has just loaded it.
#pragma once

namespace tests {

/// Puts every process-wide value of the plugin back to what it is at load time: the resolver, the
/// versions, the class record, the entry points that were found, the cooperation with the family.
void makePluginFresh();

/// Gives back the native objects that the plugin makes once and keeps for good.
void giveBackConstants();

}  // namespace tests
