// The desktop and its clock, as everything that speaks for them shares them.
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
  std::unique_ptr<HLSimWorld> world;
  std::unique_ptr<HLSimClock> clock;
  std::vector<HLUserNotification> notifications;  // handed over by the program
  std::function<void(int code)> endProcess;  // at once; none where the process is not the scene's. Without the lock
  bool promptPending = false;  // the user has been asked for trust, and will grant it when the run loop is idle
};
