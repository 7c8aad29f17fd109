// A Linux desktop, gathered.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "platform/linux/atspi/atspi_accessibility.h"
#include "platform/linux/files/linux_property_lists.h"
#include "platform/linux/linux_conventions.h"
#include "platform/linux/linux_host_report.h"
#include "platform/linux/linux_menu_bar.h"
#include "platform/linux/notifications/session_notifications.h"
#include "platform/linux/session/linux_process_info.h"
#include "platform/linux/session/linux_run_loop.h"
#include "platform/linux/session/linux_running_applications.h"
#include "platform/linux/session/linux_user_notifications.h"
#include "platform/platform.h"

class HLLinuxHost : public HLHost {
 public:
  HLLinuxHost(int argc, char** argv) : process_(argc, argv) {}

  [[nodiscard]] const HLPlatform& platform() const override { return platform_; }

 private:
  HLLinuxRunLoop runLoop_;
  HLLinuxRunningApplications runningApplications_{runLoop_};
  HLLinuxProcessInfo process_;
  HLSessionNotifications notifications_{[this] { return HLMayWatchNotifications(process_); }};
  // The auto-closer does not retry: it starts again when a launch is reported.
  HLLinuxAccessibility accessibility_{runningApplications_, notifications_, process_, runLoop_,
                                      [this](std::int32_t pid, std::function<bool()> isReady) {
                                        runningApplications_.reportAgainWhenReady(pid, std::move(isReady));
                                      }};
  HLLinuxPropertyLists propertyLists_;
  HLLinuxUserNotifications userNotifications_;
  HLLinuxMenuBar menuBar_{process_, runLoop_};
  HLLinuxHostReport report_;
  const HLPlatform platform_{accessibility_,
                             runningApplications_,
                             runLoop_,
                             process_,
                             propertyLists_,
                             userNotifications_,
                             report_,
                             [this] { return menuBar_.platform(); },
                             HLLinuxCommandAdvice([this] { return accessibility_.showsUnclosableBanners(); })};
};
