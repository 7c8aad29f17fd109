#include "platform/sim/simulator.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <utility>

#include "platform/sim/desktop/desktop.h"
#include "platform/sim/desktop/sim_accessibility.h"
#include "platform/sim/desktop/sim_process.h"
#include "platform/sim/desktop/sim_run_loop.h"
#include "platform/sim/scene/scene_reader.h"
#include "platform/sim/services/host_services.h"
#include "platform/sim/services/picture.h"
#include "platform/sim/services/record.h"
#include "platform/sim/services/user_interface.h"

namespace {

class Simulator : public HLSimulator {
 public:
  Simulator(std::unique_ptr<const HLScene> scene, HLSimulatorSetup setup)
      : runLoop_(desktop_),
        accessibility_(desktop_),
        runningApplications_(desktop_, runLoop_),
        showsScreen_(setup.showsScreen),
        endsProcess_(setup.endsProcess),
        process_(*scene, setup),
        report_(*scene),
        propertyLists_(desktop_),
        userNotifications_(desktop_),
        interface_(desktop_, runLoop_),
        platform_{accessibility_, runningApplications_, runLoop_, process_,
                  propertyLists_, userNotifications_,   report_,  [this] { return &interface_.platform; }} {
    desktop_.scene = std::move(scene);
    desktop_.refusesThreads = std::move(setup.refusesThreads);
    desktop_.world = std::make_unique<HLSimWorld>(
        *desktop_.scene, [this](HLSimNode& node) { return HLMakeSimElement(desktop_, node); },
        [this](const std::shared_ptr<HLSimRegistrations>& observer, HLElementRef element, const std::string& name,
               HLMicroseconds now) {
          runLoop_.post(now, [observer, element = std::move(element), name] {
            if (!observer->attached) return;
            const HLObserverCallback callback = observer->callback;
            callback(element, name);
          });
        },
        [this](const HLSceneUserEvent& event, HLMicroseconds now) { interface_.application.userEvent(event, now); });
    HLSimEvents events = {[this] {
                            desktop_.clock->assertHeld();
                            return desktop_.world->nextDue();
                          },
                          [this](HLMicroseconds now) {
                            desktop_.clock->assertHeld();
                            desktop_.world->advanceTo(now);
                          }};
    desktop_.clock =
        desktop_.scene->realClock ? HLMakeRealClock(std::move(events)) : HLMakeVirtualClock(std::move(events));
    if (endsProcess_) {
      desktop_.endProcess = [this](int code) {
        end();
        std::cout.flush();
        std::fflush(nullptr);
        std::_Exit(code);
      };
    }
    showScreen("before");
  }

  ~Simulator() override {
    runLoop_.finishGlobalQueue();
    end();
    // Pending steps may own windows, timers and hot keys, whose destructors need the services.
    runLoop_.forgetSteps();
    interface_.hotKeys.installHandler(nullptr);
    const auto observers = desktop_.world->takeLaunchObservers();
  }

  const HLPlatform& platform() const override { return platform_; }

  HLElementRef element(std::string_view id) override {
    const HLSimLock lock(*desktop_.clock);
    HLSimNode* node = desktop_.world->newest(id);
    return node == nullptr ? nullptr : desktop_.world->handle(*node);
  }

  std::vector<HLSimulatedAction> actions() const override {
    const HLSimLock lock(*desktop_.clock);
    return desktop_.world->actions();
  }

  std::vector<std::string> presentElements() const override {
    const HLSimLock lock(*desktop_.clock);
    return desktop_.world->presentElements();
  }

  std::vector<HLUserNotification> notifications() const override {
    const HLSimLock lock(*desktop_.clock);
    return desktop_.notifications;
  }

  std::string dump() override {
    const HLSimLock lock(*desktop_.clock);
    return HLDumpLine(desktop_, interface_);
  }

  double elapsed() const override {
    const HLSimLock lock(*desktop_.clock);
    return HLSecondsFromMicroseconds(desktop_.clock->now());
  }

  std::string picture() const override {
    const HLSimLock lock(*desktop_.clock);
    return HLPictureOfScreen(*desktop_.world);
  }

 private:
  void showScreen(const char* when) const {
    if (showsScreen_) std::cout << when << ":\n" << picture() << std::flush;
  }

  void end() {
    showScreen("after");
    if (!desktop_.scene->record) return;
    const HLSimLock lock(*desktop_.clock);
    HLAppendRecord(*desktop_.scene->record, HLRecordLine(desktop_, interface_));
  }

  HLSimDesktop desktop_;
  HLSimRunLoop runLoop_;
  HLSimAccessibility accessibility_;
  HLSimRunningApplications runningApplications_;
  const bool showsScreen_;
  const bool endsProcess_;
  HLSimProcessInfo process_;
  HLSimHostReport report_;
  HLSimPropertyLists propertyLists_;
  HLSimUserNotifications userNotifications_;
  HLSimUserInterface interface_;
  HLPlatform platform_;
};

}  // namespace

std::variant<std::unique_ptr<HLSimulator>, std::string> HLMakeSimulator(std::string_view scene, const std::string& name,
                                                                        HLSimulatorSetup setup) {
  auto read = HLReadScene(scene, name);
  if (auto* error = std::get_if<std::string>(&read)) return std::move(*error);
  return std::make_unique<Simulator>(std::get<std::unique_ptr<const HLScene>>(std::move(read)), std::move(setup));
}
