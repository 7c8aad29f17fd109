// The services that the application uses, as the scene has them.
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
#include "platform/application/hot_keys.h"
#include "platform/application/http_client.h"
#include "platform/application/login_item.h"
#include "platform/application/user_defaults.h"
#include "platform/application/workspace.h"
#include "platform/sim/desktop/desktop.h"
#include "platform/sim/desktop/sim_run_loop.h"

class HLSimMenuBarApplication;

// Alerts are answered at once.
class HLSimAlerts : public HLAlerts {
 public:
  HLSimAlerts(const HLSimDesktop& desktop, HLSimMenuBarApplication& application)
      : desktop_(desktop), application_(application) {}

  [[nodiscard]] std::size_t runModal(const HLAlert& alert) override;

  struct Shown {
    HLAlert alert;
    std::string answer;
  };
  [[nodiscard]] const std::vector<Shown>& shown() const { return shown_; }

 private:
  const HLSimDesktop& desktop_;
  HLSimMenuBarApplication& application_;
  std::vector<Shown> shown_;
};

// The hot-key service's numbers for modifiers of events; those that it does not know count for nothing.
[[nodiscard]] std::uint32_t HLSimHotKeyModifiers(std::uint64_t modifiers);

struct HLSimHotKey : HLHotKey {
  HLSimHotKey(std::vector<HLSimHotKey*>& list, std::uint32_t keyCode, std::uint32_t keyModifiers,
              HLHotKeyIdentity keyIdentity)
      : code(keyCode), modifiers(keyModifiers), identity(std::move(keyIdentity)), list_(list) {
    list_.push_back(this);
  }
  ~HLSimHotKey() override { std::erase(list_, this); }

  const std::uint32_t code;
  const std::uint32_t modifiers;
  const HLHotKeyIdentity identity;

 private:
  std::vector<HLSimHotKey*>& list_;
};

class HLSimHotKeys : public HLHotKeys {
 public:
  explicit HLSimHotKeys(const HLSimDesktop& desktop) : desktop_(desktop) {}

  void installHandler(Handler handler) override { handler_ = std::move(handler); }
  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) override;

  void press(const std::optional<HLHotKeyIdentity>& identity);
  // The one that the combination fires; nullptr when none is registered for it.
  [[nodiscard]] const HLSimHotKey* find(std::uint32_t code, std::uint32_t modifiers) const;
  // The last one; nullptr when there is none.
  [[nodiscard]] const HLSimHotKey* registered() const { return registered_.empty() ? nullptr : registered_.back(); }
  [[nodiscard]] std::optional<HLHotKeyStatus> answer() const { return answer_; }

 private:
  const HLSimDesktop& desktop_;
  std::vector<HLSimHotKey*> registered_;  // in the order in which they were
  Handler handler_;
  std::optional<HLHotKeyStatus> answer_;
};

class HLSimLoginItem : public HLLoginItem {
 public:
  explicit HLSimLoginItem(const HLSimDesktop& desktop) : desktop_(desktop) {}

  [[nodiscard]] HLLoginItemStatus status() override;
  [[nodiscard]] HLLoginItemOutcome registerItem() override;
  [[nodiscard]] HLLoginItemOutcome unregisterItem() override;

 private:
  const HLSimDesktop& desktop_;
  std::optional<HLLoginItemStatus> status_;  // once it has changed
};

class HLSimUserDefaults : public HLUserDefaults {
 public:
  explicit HLSimUserDefaults(const HLSimDesktop& desktop) : desktop_(desktop) {}

  void registerDefaults(const HLDictionary& defaults) override;
  [[nodiscard]] HLValue value(std::string_view key) override;
  void setValue(std::string_view key, const HLValue& value) override;

  [[nodiscard]] const HLDictionary& stored() const { return changed_ ? *changed_ : desktop_.scene->defaults; }

 private:
  const HLSimDesktop& desktop_;
  std::optional<HLDictionary> changed_;
  HLDictionary registered_;
};

class HLSimHTTPClient : public HLHTTPClient {
 public:
  HLSimHTTPClient(const HLSimDesktop& desktop, HLSimRunLoop& runLoop) : desktop_(desktop), runLoop_(runLoop) {}

  void get(const std::string& address, double timeout, std::function<void(HLHTTPAnswer)> answer) override;

 private:
  const HLSimDesktop& desktop_;
  HLSimRunLoop& runLoop_;
};

class HLSimWorkspace : public HLWorkspace {
 public:
  explicit HLSimWorkspace(const HLSimDesktop& desktop) : desktop_(desktop) {}

  [[nodiscard]] bool openAddress(const std::string& address) override;
  [[nodiscard]] const std::vector<std::string>& opened() const { return opened_; }

 private:
  const HLSimDesktop& desktop_;
  std::vector<std::string> opened_;
};
