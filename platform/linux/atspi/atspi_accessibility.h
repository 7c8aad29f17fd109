// HLAccessibility over AT-SPI.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "platform/accessibility.h"
#include "platform/linux/notifications/open_notifications.h"
#include "platform/linux/session/linux_run_loop.h"
#include "platform/process_info.h"
#include "platform/running_applications.h"

// A process is trusted if accessibility is switched on in its session and it can connect to the accessibility bus.
// Where the notification server has no usable tree, or none runs, the user's consent in the preferences is enough.
//
// An application element exists only for a process that is on that bus and answers, or for a notification server whose
// banners are known without a tree. Reading "AXWindows" reads a snapshot of the whole application; its elements answer
// from that snapshot until the next such read. Actions always call the process. While a process does not answer,
// "AXWindows" returns the last snapshot, so that an unresponsive process never looks like an empty screen.
class HLLinuxAccessibility : public HLAccessibility {
 public:
  // Called on the main thread after a process could not be observed. `isReady` returns whether it can be observed by
  // now; it may block.
  using Unobservable = std::function<void(std::int32_t pid, std::function<bool()> isReady)>;

  // The processes that `servers` lists are notification servers. Their banners without a close control are closed by
  // `notifications`. The preferences are those of `process`. Observers run on `runLoop`.
  HLLinuxAccessibility(HLRunningApplications& servers, HLOpenNotifications& notifications, HLProcessInfo& process,
                       HLLinuxRunLoop& runLoop, Unobservable unobservable)
      : servers_(servers),
        notifications_(notifications),
        process_(process),
        runLoop_(runLoop),
        unobservable_(std::move(unobservable)) {}

  // With `prompt`, switches accessibility on for the session, if necessary, or else stores the user's consent if the
  // server has no usable tree. Without, changes and starts nothing.
  [[nodiscard]] bool isProcessTrusted(bool prompt) override;
  [[nodiscard]] HLElementRef createApplication(std::int32_t pid) override;
  [[nodiscard]] std::unique_ptr<HLObserver> createObserver(std::int32_t pid, HLObserverCallback callback) override;
  void prepareToStay() override { notifications_.prepareToStay(); }

  // Whether a banner is on screen that cannot be closed, or may be on a screen that cannot be read for want of a table.
  // Blocks.
  [[nodiscard]] bool showsUnclosableBanners();

 private:
  [[nodiscard]] bool isConsentEnough();
  [[nodiscard]] std::unique_ptr<HLObserver> makeObserver(std::int32_t pid, HLObserverCallback callback);

  HLRunningApplications& servers_;
  HLOpenNotifications& notifications_;
  HLProcessInfo& process_;
  HLLinuxRunLoop& runLoop_;
  const Unobservable unobservable_;
};
