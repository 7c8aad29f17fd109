// What a scene says about the user and about the platform's services: read into data.
#pragma once

#include <initializer_list>
#include <string_view>

#include "platform/sim/scene.h"
#include "platform/sim/scene_source.h"

[[nodiscard]] bool HLIsUserEvent(std::string_view kind);
// The keys that go with it, its own included.
[[nodiscard]] std::initializer_list<std::string_view> HLUserEventKeys(std::string_view kind);
[[nodiscard]] HLSceneUserEvent HLReadUserEvent(HLSceneSource& source, const HLSceneSpot& spot, std::string_view kind);

[[nodiscard]] HLSceneServices HLReadServices(HLSceneSource& source, const HLSceneSpot& spot);
