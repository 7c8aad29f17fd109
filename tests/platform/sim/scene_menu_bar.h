// A small program with a user interface on a simulated desktop: it notes what it is told, and when.
#pragma once

#include <cmath>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/application/alerts.h"
#include "platform/application/application.h"
#include "platform/application/application_platform.h"
#include "platform/application/hot_keys.h"
#include "platform/application/http_client.h"
#include "platform/application/login_item.h"
#include "platform/application/status_item.h"
#include "platform/application/user_defaults.h"
#include "platform/application/windows.h"
#include "platform/application/workspace.h"
#include "tests/platform/sim/scene_desktop.h"

class MenuBar {
 public:
  explicit MenuBar(std::string_view scene, HLSimulatorSetup setup = {}) : desktop_(scene, std::move(setup)) {}

  [[nodiscard]] SimulatedDesktop& desktop() { return desktop_; }
  [[nodiscard]] HLRunLoop& runLoop() { return desktop_.runLoop(); }
  [[nodiscard]] const HLApplicationPlatform& host() {
    return *std::get<const HLApplicationPlatform*>(desktop_.simulator().platform().applicationPlatform());
  }

  // The event loop from its begin to its end; the exit code.
  int run(std::function<void()> launch = [] {}) { return host().application->run({std::move(launch), {}}); }

  // On the main thread, after all that the scene has at that moment.
  void at(double seconds, std::function<void()> step) { runLoop().postToMainQueueAfter(seconds, std::move(step)); }

  [[nodiscard]] nlohmann::json dump() { return nlohmann::json::parse(desktop_.simulator().dump()); }
  // Keeps a dump of that moment.
  void dumpAt(double seconds) {
    at(seconds, [this] { dumps_.push_back(dump()); });
  }
  [[nodiscard]] const std::vector<nlohmann::json>& dumps() const { return dumps_; }

  // What happened, each with its moment in milliseconds.
  void note(const std::string& what) {
    entries_.push_back(what + "@" + std::to_string(std::lround(desktop_.simulator().elapsed() * 1000)));
  }
  [[nodiscard]] std::function<void()> noting(const std::string& what) {
    return [this, what] { note(what); };
  }
  [[nodiscard]] const std::vector<std::string>& entries() const { return entries_; }

  // A window of that title with these controls, which is open.
  [[nodiscard]] std::unique_ptr<HLWindow> open(const std::string& title, std::vector<HLStackItem> stack = {}) {
    HLWindowDescription description{title, 420, 280, 24, 22, std::move(stack), noting("closed " + title)};
    std::unique_ptr<HLWindow> window = host().windows->makeWindow(std::move(description));
    window->makeKeyAndOrderFront();
    return window;
  }
  [[nodiscard]] HLButton button(const std::string& title, const std::string& key = "") {
    return {title, title, key, noting(title)};
  }

 private:
  SimulatedDesktop desktop_;
  std::vector<std::string> entries_;
  std::vector<nlohmann::json> dumps_;
};

// A scene of these events; further top-level keys follow a comma.
[[nodiscard]] inline std::string Timeline(const std::string& events, const std::string& further = "") {
  return R"({"timeline": [)" + events + "]" + further + "}";
}

[[nodiscard]] inline std::vector<std::string> KeysOf(const nlohmann::json& object) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : object.items()) keys.push_back(key);
  return keys;
}
