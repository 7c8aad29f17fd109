// The frame around the trees that tests write.
#pragma once

#include <string>
#include <string_view>

inline constexpr int NotificationCenterPid = 400;

// A desktop whose only application is Notification Center, with these windows (a list's members). Further top-level
// keys follow a comma.
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

// A control "link1" in the element "window": its press replaces it by "link2", and so on, so many in all. Their
// descriptions name that application.
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
