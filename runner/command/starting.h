// The start of a plugin.
#pragma once

#include <string>

#include "host/host.h"

namespace runner {

/// What people are told beside what is wrong with the file of a plugin.
inline constexpr char kPluginHelp[] =
    "--plugin takes the file of a plugin, such as NSUserDefaultsZEL.so.";

/// Loads a plugin into a host. Should it crash as it starts, this ends the process with status 1,
/// and a message names the file and what it had asked of the host in vain.
void startPlugin(host::Host& host, const std::string& file, host::PluginMain pluginMain);

}  // namespace runner
