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

// The host, with access for tests. On the virtual clock the thread that creates the simulator is the main thread and
// runs first. Destruction or the end of the process writes the scene's record, if the scene has one.
class HLSimulator : public HLHost {
 public:
  // A handle of the newest element with the id, removed or not; nullptr if there is none.
  [[nodiscard]] virtual HLElementRef element(std::string_view id) = 0;

  [[nodiscard]] virtual std::vector<HLSimulatedAction> actions() const = 0;

  // The ids of the present elements, in tree order.
  [[nodiscard]] virtual std::vector<std::string> presentElements() const = 0;

  // The notifications that the program has posted.
  [[nodiscard]] virtual std::vector<HLUserNotification> notifications() const = 0;

  // The state of the program's own user interface, as one line of JSON.
  [[nodiscard]] virtual std::string dump() = 0;

  // Seconds from the start on the scene's clock.
  [[nodiscard]] virtual double elapsed() const = 0;

  // The screen, drawn in lines of characters.
  [[nodiscard]] virtual std::string picture() const = 0;
};

// Returns the simulator, or the scene's first mistake: "NAME: applications[0].windows[1].frame: expected four numbers".
// `name` is that of the scene's file.
[[nodiscard]] std::variant<std::unique_ptr<HLSimulator>, std::string> HLMakeSimulator(std::string_view scene,
                                                                                      const std::string& name,
                                                                                      HLSimulatorSetup setup);
