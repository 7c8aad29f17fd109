// What the simulator's tests share.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <variant>

#include "platform/sim/simulator.h"
#include "tests/support/simulated_desktop.h"

// A path for a file of this process's. No file is there.
inline std::string FreshPath(const std::string& name) {
  const std::string path = testing::TempDir() + "sim_test." + std::to_string(getpid()) + "." + name;
  std::remove(path.c_str());
  return path;
}

// What is said about a scene that cannot be read; "" for one that can.
[[nodiscard]] inline std::string SceneError(std::string_view scene) {
  const auto made = HLMakeSimulator(scene, "scene.json", {});
  const auto* failure = std::get_if<std::string>(&made);
  return failure == nullptr ? "" : *failure;
}

// A desktop with one process, pid 400, whose windows are these members; further top-level keys follow a comma.
[[nodiscard]] inline std::string Scene(std::string_view windows, std::string_view further = "") {
  return R"({"applications": [{"pid": 400, "windows": [)" + std::string(windows) + "]}]" + std::string(further) + "}";
}
