// macOS, gathered.
#pragma once

#include <memory>

#include "platform/application/application_platform.h"
#include "platform/macos/appkit/macos_alerts.h"
#include "platform/macos/appkit/macos_application.h"
#include "platform/macos/appkit/macos_status_item.h"
#include "platform/macos/appkit/macos_windows.h"
#include "platform/macos/macos_host_report.h"
#include "platform/macos/system/macos_accessibility.h"
#include "platform/macos/system/macos_hot_keys.h"
#include "platform/macos/system/macos_http_client.h"
#include "platform/macos/system/macos_login_item.h"
#include "platform/macos/system/macos_process_info.h"
#include "platform/macos/system/macos_property_lists.h"
#include "platform/macos/system/macos_run_loop.h"
#include "platform/macos/system/macos_running_applications.h"
#include "platform/macos/system/macos_user_defaults.h"
#include "platform/macos/system/macos_user_notifications.h"
#include "platform/macos/system/macos_workspace.h"
#include "platform/platform.h"

// What only the menu-bar application needs. Making it connects the process to the window server.
class HLMacApplicationHost {
 public:
  [[nodiscard]] const HLApplicationPlatform& platform() const { return platform_; }

 private:
  HLMacApplication application_;
  HLMacStatusItem statusItem_;
  HLMacWindows windows_;
  HLMacAlerts alerts_;
  HLMacHotKeys hotKeys_;
  HLMacLoginItem loginItem_;
  HLMacUserDefaults userDefaults_;
  HLMacHTTPClient httpClient_;
  HLMacWorkspace workspace_;
  const HLApplicationPlatform platform_{application_, statusItem_,   windows_,    alerts_,    hotKeys_,
                                        loginItem_,   userDefaults_, httpClient_, workspace_, {}};
};

// The functions behind @autoreleasepool, for a pool that is no block's.
extern "C" void* objc_autoreleasePoolPush(void);
extern "C" void objc_autoreleasePoolPop(void* pool);

// An autorelease pool that lives as long as this object.
class HLAutoreleaseScope {
 public:
  HLAutoreleaseScope() = default;
  HLAutoreleaseScope(const HLAutoreleaseScope&) = delete;
  HLAutoreleaseScope& operator=(const HLAutoreleaseScope&) = delete;
  ~HLAutoreleaseScope() { objc_autoreleasePoolPop(pool_); }

 private:
  void* const pool_ = objc_autoreleasePoolPush();
};

class HLMacHost : public HLHost {
 public:
  [[nodiscard]] const HLPlatform& platform() const override { return platform_; }

 private:
  [[nodiscard]] const HLApplicationPlatform& applicationPlatform() {
    if (applicationHost_ == nullptr) applicationHost_ = std::make_unique<HLMacApplicationHost>();
    return applicationHost_->platform();
  }

  const HLAutoreleaseScope autoreleaseScope_;  // first, and so around the whole of main()
  HLMacAccessibility accessibility_;
  HLMacRunningApplications runningApplications_;
  HLMacRunLoop runLoop_;
  HLMacProcessInfo process_;
  HLMacPropertyLists propertyLists_;
  HLMacUserNotifications userNotifications_;
  HLMacHostReport report_;
  std::unique_ptr<HLMacApplicationHost> applicationHost_;
  const HLPlatform platform_{accessibility_, runningApplications_, runLoop_, process_,
                             propertyLists_, userNotifications_,   report_,  [this] { return &applicationPlatform(); }};
};
