// Whether the user has switched banners off.
#pragma once

#include <optional>
#include <string>

#include "platform/linux/session/bus.h"

// The answer to GetServerInformation of org.freedesktop.Notifications.
struct HLServerInformation {
  std::string name;
  std::string vendor;
  std::string version;
};

[[nodiscard]] std::optional<HLServerInformation> HLReadServerInformation(HLBus& session);

// Returns whether the session's notification server keeps banners back, or nullopt if it is not known how to ask that
// server. `configHome` is the folder of the user's configuration files. Blocks for the bus's timeout.
[[nodiscard]] std::optional<bool> HLReadDoNotDisturb(HLBus& session, const std::string& configHome);
