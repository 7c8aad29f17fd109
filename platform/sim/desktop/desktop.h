// The desktop and its clock, shared by the simulator's parts. The clock is the mutex of what changes.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/sim/desktop/clock.h"
#include "platform/sim/desktop/world.h"
#include "platform/sim/scene/scene.h"
#include "platform/user_notifications.h"

struct HLSimDesktop {
  std::unique_ptr<const HLScene> scene;
  std::unique_ptr<HLSimWorld> world HL_PT_GUARDED_BY(clock);
  std::unique_ptr<HLSimClock> clock;
  std::vector<HLUserNotification> notifications HL_GUARDED_BY(clock);  // handed over by the program
  // Ends the process at once; empty if the process is not the scene's. Called without the mutex.
  std::function<void(int code)> endProcess;
  std::function<bool()> refusesThreads;  // HLSimulatorSetup's
  // The user has been asked for trust and grants it when the run loop is idle.
  bool promptPending HL_GUARDED_BY(clock) = false;
};
