// What the menu-bar application asks of its host, watched.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/application/application_platform.h"
#include "tests/support/application_forwarding.h"
#include "tests/swarm/watch.h"

class WatchedApplication : public ForwardingApplication {
 public:
  WatchedApplication(HLApplication& inner, Watcher& watcher) : ForwardingApplication(inner), watcher_(watcher) {}

  [[nodiscard]] int run(HLApplicationHandlers handlers) override;
  [[nodiscard]] std::unique_ptr<HLKeyMonitor> addKeyMonitor(std::function<void(const HLKeyEvent&)> handler) override;

 private:
  Watcher& watcher_;
};

class WatchedStatusItem : public ForwardingStatusItem {
 public:
  WatchedStatusItem(HLStatusItem& inner, Watcher& watcher) : ForwardingStatusItem(inner), watcher_(watcher) {}

  void install(HLStatusItemDescription description) override;
  void setTitle(const std::string& title) override;
  void setImage(const HLSymbolImage& image) override;

 private:
  Watcher& watcher_;
};

class WatchedWindows : public ForwardingWindows {
 public:
  WatchedWindows(HLWindows& inner, Watcher& watcher) : ForwardingWindows(inner), watcher_(watcher) {}

  [[nodiscard]] std::unique_ptr<HLWindow> makeWindow(HLWindowDescription description) override;

 private:
  Watcher& watcher_;
};

class WatchedHotKeys : public ForwardingHotKeys {
 public:
  WatchedHotKeys(HLHotKeys& inner, Watcher& watcher) : ForwardingHotKeys(inner), watcher_(watcher) {}

  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) override;

 private:
  Watcher& watcher_;
};

// The platform of the application with all of the above in it.
struct WatchedHost {
  WatchedHost(const HLApplicationPlatform& inner, Watcher& watcher)
      : application(inner.application, watcher),
        statusItem(inner.statusItem, watcher),
        windows(inner.windows, watcher),
        hotKeys(inner.hotKeys, watcher),
        platform(inner) {
    platform.application = application;
    platform.statusItem = statusItem;
    platform.windows = windows;
    platform.hotKeys = hotKeys;
  }

  WatchedApplication application;
  WatchedStatusItem statusItem;
  WatchedWindows windows;
  WatchedHotKeys hotKeys;
  HLApplicationPlatform platform;
};
