// Spies of the interfaces that the application uses. Each call appends one line to the list of calls.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/application/application_platform.h"
#include "tests/support/application_forwarding.h"

using Calls = std::vector<std::string>;

// Texts of labels by name; names are unique in the application.
using LabelTexts = std::map<std::string, std::string, std::less<>>;

class SpyWindow : public HLWindow {
 public:
  SpyWindow(Calls& calls, LabelTexts& labels) : calls_(calls), labels_(labels) {}

  void setLabel(std::string_view name, const std::string& text, HLTextColor) override {
    calls_.push_back("label " + std::string(name));
    labels_[std::string(name)] = text;
  }
  void setButtonTitle(std::string_view, const std::string&) override {}
  void setCheckBox(std::string_view, bool) override {}
  void setEnabled(std::string_view, bool) override {}
  void fitHeight() override { calls_.emplace_back("fit height"); }
  void center() override { calls_.emplace_back("center"); }
  void makeKeyAndOrderFront() override { calls_.emplace_back("order front"); }
  void close() override { calls_.emplace_back("close"); }

 private:
  Calls& calls_;
  LabelTexts& labels_;
};

class SpyWindows : public HLWindows {
 public:
  explicit SpyWindows(Calls& calls) : calls_(calls) {}

  std::vector<HLWindowDescription> made;
  LabelTexts labels;                // of labels that were changed
  std::vector<HLWindowView> shown;  // returned by views()

  [[nodiscard]] Calls titles() const {
    Calls titles;
    for (const HLWindowDescription& window : made) titles.push_back(window.title);
    return titles;
  }

  [[nodiscard]] std::unique_ptr<HLWindow> makeWindow(HLWindowDescription description) override {
    made.push_back(std::move(description));
    return std::make_unique<SpyWindow>(calls_, labels);
  }
  [[nodiscard]] std::vector<HLWindowView> views() override { return shown; }

 private:
  Calls& calls_;
};

// The controls of one kind from the top down, those in rows too.
template <class Control>
[[nodiscard]] std::vector<Control> ControlsOf(const HLWindowDescription& window) {
  std::vector<Control> found;
  const auto add = [&found](const auto& what) {
    if (const auto* control = std::get_if<Control>(&what)) found.push_back(*control);
  };
  for (const HLStackItem& item : window.stack) {
    add(item.what);
    if (const auto* row = std::get_if<HLRow>(&item.what))
      std::for_each(row->controls.begin(), row->controls.end(), add);
  }
  return found;
}

// The control of that name. Throws when there is none.
template <class Control>
[[nodiscard]] Control ControlNamed(const HLWindowDescription& window, std::string_view name) {
  for (const Control& control : ControlsOf<Control>(window)) {
    if (control.name == name) return control;
  }
  throw std::runtime_error("no control " + std::string(name));
}

[[nodiscard]] inline Calls TextsOf(const HLWindowDescription& window) {
  Calls texts;
  for (const HLLabel& label : ControlsOf<HLLabel>(window)) texts.push_back(label.text);
  return texts;
}
[[nodiscard]] inline Calls CheckBoxesOf(const HLWindowDescription& window) {
  Calls names;
  for (const HLCheckBox& box : ControlsOf<HLCheckBox>(window)) names.push_back(box.name);
  return names;
}

// run() launches the application, reopens it once and returns 7.
class SpyApplication : public HLApplication {
 public:
  explicit SpyApplication(Calls& calls) : calls_(calls) {}

  std::optional<HLEvent> event;  // returned by currentEvent()

  [[nodiscard]] int run(HLApplicationHandlers handlers) override {
    handlers.didFinishLaunching();
    calls_.emplace_back("launched");
    handlers.didReopen();
    return 7;
  }
  void terminate() override { calls_.emplace_back("terminate"); }
  void activate() override { calls_.emplace_back("activate"); }
  void setDarkAppearance() override { calls_.emplace_back("dark appearance"); }
  void beep() override {}
  [[nodiscard]] std::optional<HLEvent> currentEvent() override { return event; }
  [[nodiscard]] std::unique_ptr<HLKeyMonitor> addKeyMonitor(std::function<void(const HLKeyEvent&)>) override {
    return std::make_unique<HLKeyMonitor>();
  }

 private:
  Calls& calls_;
};

class SpyStatusItem : public HLStatusItem {
 public:
  explicit SpyStatusItem(Calls& calls) : calls_(calls) {}

  HLStatusItemDescription installed;
  bool visible = true;

  void install(HLStatusItemDescription description) override {
    installed = std::move(description);
    calls_.emplace_back("install status item");
  }
  void setTitle(const std::string& title) override { calls_.push_back("title " + title); }
  void setImage(const HLSymbolImage& image) override { calls_.push_back("image " + image.name); }
  void setToolTip(const std::string& toolTip) override { calls_.push_back("tool tip " + toolTip); }
  [[nodiscard]] bool isVisible() override { return visible; }
  void setMenuItem(std::string_view, const std::string& title, bool) override { calls_.push_back("item " + title); }
  void popUpMenu() override { calls_.emplace_back("pop up menu"); }

 private:
  Calls& calls_;
};

class SpyAlerts : public HLAlerts {
 public:
  explicit SpyAlerts(Calls& calls) : calls_(calls) {}

  [[nodiscard]] std::size_t runModal(const HLAlert&) override {
    calls_.emplace_back("alert");
    return 0;
  }

 private:
  Calls& calls_;
};

class SpyHotKeys : public HLHotKeys {
 public:
  explicit SpyHotKeys(Calls& calls) : calls_(calls) {}

  void installHandler(Handler) override { calls_.emplace_back("install hot key handler"); }
  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t, std::uint32_t, const HLHotKeyIdentity&) override {
    calls_.emplace_back("register hot key");
    return {status, nullptr};
  }
  [[nodiscard]] HLHotKeyStatus userRecorded(std::uint32_t, std::uint32_t) override { return recorded; }
  void userCleared() override { ++cleared; }
  [[nodiscard]] std::optional<std::string> unsupportedReason() const override { return reason; }
  [[nodiscard]] std::optional<std::string> storageNote() const override { return note; }

  HLHotKeyStatus recorded = HLHotKeyStatus::success;
  int cleared = 0;
  std::optional<std::string> note;
  HLHotKeyStatus status = HLHotKeyStatus::success;
  std::optional<std::string> reason;

 private:
  Calls& calls_;
};

// Calls `answer` before get() returns, as a host with a thread of its own may.
class SpyHTTPClient : public HLHTTPClient {
 public:
  explicit SpyHTTPClient(Calls& calls) : calls_(calls) {}

  void get(const std::string&, double, std::function<void(HLHTTPAnswer)> answer) override {
    answer({});
    calls_.emplace_back("answered");
  }

 private:
  Calls& calls_;
};

// Records registerDefaults() and reads of the auto-close preference; successive reads count once.
class SpyUserDefaults : public ForwardingUserDefaults {
 public:
  SpyUserDefaults(Calls& calls, HLUserDefaults& inner) : ForwardingUserDefaults(inner), calls_(calls) {}

  void registerDefaults(const HLDictionary& defaults) override {
    calls_.emplace_back("register defaults");
    ForwardingUserDefaults::registerDefaults(defaults);
  }
  [[nodiscard]] HLValue value(std::string_view key) override {
    const std::string_view asked = "look at auto-close";
    const bool again = !calls_.empty() && calls_.back() == asked;
    if (key == "HLAutoCloseAutomationBanners" && !again) calls_.emplace_back(asked);
    return ForwardingUserDefaults::value(key);
  }

 private:
  Calls& calls_;
};

// A copy of a platform in which these spies replace the interfaces.
struct SpyHost {
  explicit SpyHost(const HLApplicationPlatform& inner) : userDefaults(calls, inner.userDefaults), platform(inner) {
    platform.application = application;
    platform.statusItem = statusItem;
    platform.windows = windows;
    platform.alerts = alerts;
    platform.hotKeys = hotKeys;
    platform.userDefaults = userDefaults;
    platform.httpClient = httpClient;
  }
  SpyHost(const SpyHost&) = delete;
  SpyHost& operator=(const SpyHost&) = delete;

  Calls calls;
  SpyApplication application{calls};
  SpyStatusItem statusItem{calls};
  SpyWindows windows{calls};
  SpyAlerts alerts{calls};
  SpyHotKeys hotKeys{calls};
  SpyUserDefaults userDefaults;
  SpyHTTPClient httpClient{calls};
  HLApplicationPlatform platform;
};
