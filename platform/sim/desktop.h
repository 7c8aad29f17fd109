// The desktop and its clock, as everything that speaks for them shares them.
#pragma once

#include <memory>

#include "platform/sim/clock.h"
#include "platform/sim/scene.h"
#include "platform/sim/world.h"

struct HLSimDesktop {
  std::unique_ptr<const HLScene> scene;
  std::unique_ptr<HLSimWorld> world;
  std::unique_ptr<HLSimClock> clock;
  bool promptPending = false;  // the user has been asked for trust, and will grant it when the run loop is idle
};
