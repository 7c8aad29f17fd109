// Whether the user has switched banners off.
#pragma once

#include <optional>
#include <string>

#include "platform/linux/notifications/server_connection.h"

// Returns whether the session's notification server keeps banners back, or nullopt if it is not known how to ask that
// server. `configHome` is the folder of the user's configuration files. Blocks for the bus's timeout.
[[nodiscard]] std::optional<bool> HLReadDoNotDisturb(HLServerConnection& connection, const std::string& configHome);
