// What a scene says about the user and about the platform's services: read into data.
#pragma once

#include <string_view>
#include <vector>

#include "platform/sim/scene/scene.h"
#include "platform/sim/scene/scene_source.h"

[[nodiscard]] bool HLIsUserEvent(std::string_view kind);
// The keys that go with it, its own included.
[[nodiscard]] const std::vector<std::string_view>& HLUserEventKeys(std::string_view kind);
[[nodiscard]] HLSceneUserEvent HLReadUserEvent(HLSceneSource& source, const HLSceneSpot& spot, std::string_view kind);

[[nodiscard]] HLSceneServices HLReadServices(HLSceneSource& source, const HLSceneSpot& spot);
