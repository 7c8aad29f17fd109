// The program's own user interface and the services behind it.
#pragma once

#include "platform/application/application_platform.h"
#include "platform/sim/services/application_services.h"
#include "platform/sim/services/menu_bar_application.h"
#include "platform/sim/services/sim_status_item.h"
#include "platform/sim/services/sim_windows.h"

struct HLSimUserInterface {
  HLSimUserInterface(HLSimDesktop& desktop, HLSimRunLoop& mainRunLoop)
      : application(desktop, mainRunLoop, *this),
        alerts(desktop, application),
        hotKeys(desktop),
        loginItem(desktop),
        userDefaults(desktop),
        httpClient(desktop, mainRunLoop),
        workspace(desktop),
        runLoop(mainRunLoop),
        platform{application, statusItem,   windows,    alerts,    hotKeys,
                 loginItem,   userDefaults, httpClient, workspace, std::nullopt} {}

  HLSimMenuBarApplication application;
  HLSimStatusItem statusItem;
  HLSimWindows windows;
  HLSimAlerts alerts;
  HLSimHotKeys hotKeys;
  HLSimLoginItem loginItem;
  HLSimUserDefaults userDefaults;
  HLSimHTTPClient httpClient;
  HLSimWorkspace workspace;
  const HLSimRunLoop& runLoop;
  HLApplicationPlatform platform;
};
