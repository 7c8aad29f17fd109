// Runs the menu-bar application on a scene, from launch to exit, in a child process.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/window_titles.h"

// The scene: the bundle of the process, and other top-level keys.
struct ApplicationScene {
  bool isProduct = true;
  // Of a bundle of the product flavor without paths: further members of its information dictionary, as in ", \"a\": 1".
  std::optional<std::string> bareBundle = std::nullopt;
  std::vector<std::string> timeline = {};
  std::string further = "";  // other top-level keys, each after a comma
  std::string windows = "";  // Notification Center's
  bool hasNotificationCenter = true;
};

// A key for `further`: the process is untrusted.
inline constexpr const char* Untrusted = R"(, "trusted": false)";

struct ApplicationRun {
  int exitCode = 0;
  std::string out;  // without the dumps
  std::string err;
  std::vector<std::string> log;       // the messages of the status log
  std::vector<nlohmann::json> dumps;  // one for each `"dump": "/dev/stdout"` of the timeline, in order
  nlohmann::json record;
};

[[nodiscard]] ApplicationRun RunApplication(const ApplicationScene& scene,
                                            const std::vector<std::string>& arguments = {});

// The messages that begin with the text, in order.
[[nodiscard]] std::vector<std::string> MessagesOf(const ApplicationRun& run, std::string_view beginning);

// A window of a dump by its title; null when there is none.
[[nodiscard]] nlohmann::json WindowOf(const nlohmann::json& dump, const std::string& title);

// The controls that change. A control that the window lacks is null.
struct SetupControls {
  nlohmann::json status;
  nlohmann::json button;
};
struct SettingsControls {
  nlohmann::json shortcut;
  nlohmann::json record;
  nlohmann::json note;  // on the shortcut
  nlohmann::json access;
  nlohmann::json autoClose;
  nlohmann::json openAtLogin;
};
[[nodiscard]] SetupControls SetupOf(const nlohmann::json& dump);
[[nodiscard]] SettingsControls SettingsOf(const nlohmann::json& dump);

// The controls of a window from top to bottom, with those in rows: "label TEXT", "button TITLE", "checkBox TITLE on".
[[nodiscard]] std::vector<std::string> ControlsOf(const nlohmann::json& window);

// An event of the timeline: `event` is one of those below or a key and its value.
[[nodiscard]] std::string At(double moment, const std::string& event);
[[nodiscard]] std::string DumpAt(double moment);

// Events.
inline constexpr const char* LeftClick = R"("click": "left")";
inline constexpr const char* Terminate = R"("terminate": true)";
inline constexpr const char* OpenSettings = R"("choose": "Settings…")";
inline constexpr const char* OpenSetup = R"("choose": "Accessibility Allowed")";  // with access
[[nodiscard]] std::string Press(const std::string& control, const std::string& window);
[[nodiscard]] std::string CloseWindow(const std::string& window);

// A banner that disappears when its close action is performed. Its description begins with the application's name.
[[nodiscard]] std::string Banner(const std::string& id, const std::string& description);
[[nodiscard]] std::string BannerWindow(const std::vector<std::string>& banners);
