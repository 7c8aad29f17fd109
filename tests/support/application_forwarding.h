// One forwarding wrapper for each interface that only the menu-bar application uses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/application/alerts.h"
#include "platform/application/application.h"
#include "platform/application/hot_keys.h"
#include "platform/application/http_client.h"
#include "platform/application/login_item.h"
#include "platform/application/status_item.h"
#include "platform/application/user_defaults.h"
#include "platform/application/windows.h"
#include "platform/application/workspace.h"

class ForwardingApplication : public HLApplication {
 public:
  explicit ForwardingApplication(HLApplication& inner) : inner_(inner) {}

  [[nodiscard]] int run(HLApplicationHandlers handlers) override { return inner_.run(std::move(handlers)); }
  void terminate() override { inner_.terminate(); }
  void activate() override { inner_.activate(); }
  void setDarkAppearance() override { inner_.setDarkAppearance(); }
  void beep() override { inner_.beep(); }
  [[nodiscard]] std::optional<HLEvent> currentEvent() override { return inner_.currentEvent(); }
  [[nodiscard]] std::unique_ptr<HLKeyMonitor> addKeyMonitor(std::function<void(const HLKeyEvent&)> handler) override {
    return inner_.addKeyMonitor(std::move(handler));
  }

 private:
  HLApplication& inner_;
};

class ForwardingStatusItem : public HLStatusItem {
 public:
  explicit ForwardingStatusItem(HLStatusItem& inner) : inner_(inner) {}

  void install(HLStatusItemDescription description) override { inner_.install(std::move(description)); }
  void setTitle(const std::string& title) override { inner_.setTitle(title); }
  void setImage(const HLSymbolImage& image) override { inner_.setImage(image); }
  void setToolTip(const std::string& toolTip) override { inner_.setToolTip(toolTip); }
  [[nodiscard]] bool isVisible() override { return inner_.isVisible(); }
  void setMenuItem(std::string_view name, const std::string& title, bool on) override {
    inner_.setMenuItem(name, title, on);
  }
  void popUpMenu() override { inner_.popUpMenu(); }

 private:
  HLStatusItem& inner_;
};

class ForwardingWindow : public HLWindow {
 public:
  explicit ForwardingWindow(std::unique_ptr<HLWindow> inner) : inner_(std::move(inner)) {}

  void setLabel(std::string_view name, const std::string& text, HLTextColor color) override {
    inner_->setLabel(name, text, color);
  }
  void setButtonTitle(std::string_view name, const std::string& title) override { inner_->setButtonTitle(name, title); }
  void setCheckBox(std::string_view name, bool on) override { inner_->setCheckBox(name, on); }
  void setEnabled(std::string_view name, bool enabled) override { inner_->setEnabled(name, enabled); }
  void fitHeight() override { inner_->fitHeight(); }
  void center() override { inner_->center(); }
  void makeKeyAndOrderFront() override { inner_->makeKeyAndOrderFront(); }
  void close() override { inner_->close(); }

 private:
  const std::unique_ptr<HLWindow> inner_;
};

class ForwardingWindows : public HLWindows {
 public:
  explicit ForwardingWindows(HLWindows& inner) : inner_(inner) {}

  [[nodiscard]] std::unique_ptr<HLWindow> makeWindow(HLWindowDescription description) override {
    return inner_.makeWindow(std::move(description));
  }
  [[nodiscard]] std::vector<HLWindowView> views() override { return inner_.views(); }

 private:
  HLWindows& inner_;
};

class ForwardingAlerts : public HLAlerts {
 public:
  explicit ForwardingAlerts(HLAlerts& inner) : inner_(inner) {}

  [[nodiscard]] std::size_t runModal(const HLAlert& alert) override { return inner_.runModal(alert); }

 private:
  HLAlerts& inner_;
};

class ForwardingHotKeys : public HLHotKeys {
 public:
  explicit ForwardingHotKeys(HLHotKeys& inner) : inner_(inner) {}

  void installHandler(Handler handler) override { inner_.installHandler(std::move(handler)); }
  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) override {
    return inner_.registerHotKey(code, modifiers, identity);
  }
  [[nodiscard]] HLHotKeyStatus userRecorded(std::uint32_t code, std::uint32_t modifiers) override {
    return inner_.userRecorded(code, modifiers);
  }
  void userCleared() override { inner_.userCleared(); }
  [[nodiscard]] std::optional<std::string> unsupportedReason() const override { return inner_.unsupportedReason(); }
  [[nodiscard]] std::optional<std::string> storageNote() const override { return inner_.storageNote(); }

 private:
  HLHotKeys& inner_;
};

class ForwardingLoginItem : public HLLoginItem {
 public:
  explicit ForwardingLoginItem(HLLoginItem& inner) : inner_(inner) {}

  [[nodiscard]] HLLoginItemStatus status() override { return inner_.status(); }
  [[nodiscard]] HLLoginItemOutcome registerItem() override { return inner_.registerItem(); }
  [[nodiscard]] HLLoginItemOutcome unregisterItem() override { return inner_.unregisterItem(); }

 private:
  HLLoginItem& inner_;
};

class ForwardingUserDefaults : public HLUserDefaults {
 public:
  explicit ForwardingUserDefaults(HLUserDefaults& inner) : inner_(inner) {}

  void registerDefaults(const HLDictionary& defaults) override { inner_.registerDefaults(defaults); }
  [[nodiscard]] HLValue value(std::string_view key) override { return inner_.value(key); }
  void setValue(std::string_view key, const HLValue& value) override { inner_.setValue(key, value); }

 private:
  HLUserDefaults& inner_;
};

class ForwardingHTTPClient : public HLHTTPClient {
 public:
  explicit ForwardingHTTPClient(HLHTTPClient& inner) : inner_(inner) {}

  void get(const std::string& address, double timeout, std::function<void(HLHTTPAnswer)> answer) override {
    inner_.get(address, timeout, std::move(answer));
  }

 private:
  HLHTTPClient& inner_;
};

class ForwardingWorkspace : public HLWorkspace {
 public:
  explicit ForwardingWorkspace(HLWorkspace& inner) : inner_(inner) {}

  [[nodiscard]] bool openAddress(const std::string& address) override { return inner_.openAddress(address); }

 private:
  HLWorkspace& inner_;
};
