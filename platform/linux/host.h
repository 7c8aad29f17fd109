// A Linux desktop, gathered.
#pragma once

#include "platform/linux/accessibility.h"
#include "platform/linux/menu_bar.h"
#include "platform/linux/process_info.h"
#include "platform/linux/property_list.h"
#include "platform/linux/run_loop.h"
#include "platform/linux/running_applications.h"
#include "platform/linux/user_notifications.h"
#include "platform/platform.h"

class HLLinuxHost : public HLHost {
 public:
  HLLinuxHost(int argc, char** argv) : process_(argc, argv) {}

  [[nodiscard]] const HLPlatform& platform() const override { return platform_; }

 private:
  HLLinuxRunLoop runLoop_;
  HLLinuxRunningApplications runningApplications_{runLoop_};
  HLLinuxAccessibility accessibility_{runningApplications_, runLoop_};
  HLLinuxProcessInfo process_;
  HLLinuxPropertyLists propertyLists_;
  HLLinuxUserNotifications userNotifications_;
  HLLinuxMenuBar menuBar_{process_, runLoop_};
  const HLPlatform platform_{
      accessibility_, runningApplications_, runLoop_, process_, propertyLists_, userNotifications_, [this] {
        return menuBar_.platform();
      }};
};
