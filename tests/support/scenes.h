// Scenes around the element trees of tests.
#pragma once

#include <string>
#include <string_view>

inline constexpr int NotificationCenterPid = 400;

// A desktop whose only application is Notification Center. `windows` has the members of its window list, `further` the
// other top-level keys, after a comma.
[[nodiscard]] inline std::string NotificationCenterScene(std::string_view windows, std::string_view further = "") {
  std::string scene = R"({"applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui",
    "name": "Notification Center", "windows": [)";
  scene += windows;
  scene += "]}]";
  scene += further;
  scene += "}";
  return scene;
}

// A top-level key: the product flavor keeps its status log in the home, where no other process writes.
inline constexpr const char* ProductBundle =
    R"("bundle": {"identifier": "test", "info": {"HLProductFlavor": "product"}})";

// `length` controls in the element "window", of which only "link1" is there at first: closing one replaces it by the
// next, "link2" and so on. Their descriptions begin with `app`.
[[nodiscard]] inline std::string ChainOfControls(int length, const std::string& app) {
  std::string member;
  for (int i = length; i >= 1; --i) {
    const std::string id = "link" + std::to_string(i);
    std::string effects = R"({"remove": ")" + id + R"("})";
    if (!member.empty()) effects += R"(, {"add": )" + member + R"(, "to": "window"})";
    member = R"({"id": ")" + id + R"(", "description": ")" + app + ", " + id +
             R"(", "actions": ["Close"], "onAction": {"Close": {"effects": [)" + effects + "]}}}";
  }
  return member;
}
