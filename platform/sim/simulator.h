// A simulated desktop: a whole platform made from a scene. docs/scenes.md describes scenes.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/accessibility.h"
#include "platform/platform.h"
#include "platform/sim/desktop/simulation.h"
#include "platform/user_notifications.h"

// The host, and the control side that tests look at. On the virtual clock the thread that made the simulator is its
// main thread and has the first turn. Destruction or the end of the process writes the scene's record, if it asks for
// one.
class HLSimulator : public HLHost {
 public:
  // The newest element that bears the id, present or gone, as a handle; nullptr when there is none.
  [[nodiscard]] virtual HLElementRef element(std::string_view id) = 0;

  [[nodiscard]] virtual std::vector<HLSimulatedAction> actions() const = 0;

  // The ids of the elements that are still there, in tree order.
  [[nodiscard]] virtual std::vector<std::string> presentElements() const = 0;

  // The notifications of its own that the program has handed over.
  [[nodiscard]] virtual std::vector<HLUserNotification> notifications() const = 0;

  // The state of the program's own user interface, as one line of JSON.
  [[nodiscard]] virtual std::string dump() = 0;

  // Seconds from the start on the scene's clock.
  [[nodiscard]] virtual double elapsed() const = 0;

  // The screen as it is now, drawn in lines of characters.
  [[nodiscard]] virtual std::string picture() const = 0;
};

// The simulator, or what is wrong with the scene: "NAME: applications[0].windows[1].frame: expected four numbers". The
// name is that of the scene's file.
[[nodiscard]] std::variant<std::unique_ptr<HLSimulator>, std::string> HLMakeSimulator(std::string_view scene,
                                                                                      const std::string& name,
                                                                                      HLSimulatorSetup setup);
