// Daemons as processes of their own.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/daemon_client.h"
#include "tests/support/processes.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/temporary_directory.h"

inline const std::string kThreeBanners =
    R"({"repeat": 3, "id": "b{n}", "role": "AXGroup", "subrole": "AXNotificationCenterAlert",
        "description": "Mail, message {n}", "actions": ["AXPress", "Name:Close"], "closes": "b{n}"})";

inline bool WaitFor(const std::function<bool()>& condition) {
  const std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::yield();
  }
  return true;
}

class TrustedDaemon : public testing::Test {
 protected:
  ~TrustedDaemon() override {
    for (const std::unique_ptr<RunningProgram>& daemon : daemons_) {
      if (daemon) ::kill(daemon->pid(), SIGKILL);
    }
  }

  // Starts a daemon on the scene, and waits until it answers.
  RunningProgram& start(const std::string& scene, const std::vector<std::string>& command = {HUSHLET_SIM, "--daemon"}) {
    RunningProgram& daemon = launch(scene, command);
    EXPECT_TRUE(WaitFor([this] { return DaemonClient(socketPath()).ask("ping\n") != ""; }));
    return daemon;
  }
  RunningProgram& launch(const std::string& scene,
                         const std::vector<std::string>& command = {HUSHLET_SIM, "--daemon"}) {
    const std::string path = home() + "/scene.json";
    std::ofstream(path) << scene;
    daemons_.push_back(std::make_unique<RunningProgram>(
        command,
        std::map<std::string, const char*>{
            {"HOME", home().c_str()},
            {"XDG_DATA_HOME", nullptr},
            {"HUSHLET_SCENE", path.c_str()},
            // Where memory is watched, what was freed is not kept back: tests look at how much the daemon holds.
            {"ASAN_OPTIONS", "quarantine_size_mb=0:thread_local_quarantine_size_kb=0"}}));
    return *daemons_.back();
  }
  // The program in the same home, on a scene of its own.
  [[nodiscard]] ProgramRun run(const std::string& scene, const std::vector<std::string>& arguments) const {
    const std::string path = home() + "/client.json";
    std::ofstream(path) << scene;
    std::vector<std::string> command = {HUSHLET_SIM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return RunProgram(command, {{"HOME", home().c_str()}, {"XDG_DATA_HOME", nullptr}, {"HUSHLET_SCENE", path.c_str()}});
  }
  // Its exit code, once it has ended.
  int ended(RunningProgram& daemon) {
    for (std::unique_ptr<RunningProgram>& each : daemons_) {
      if (each.get() == &daemon) return std::exchange(each, nullptr)->wait().exitCode;
    }
    return -1;
  }

  [[nodiscard]] const std::string& home() const { return home_.path(); }
  [[nodiscard]] std::string socketPath() const { return home() + "/.local/state/hushlet/daemon.sock"; }
  [[nodiscard]] std::string ask(std::string_view bytes) const { return DaemonClient(socketPath()).ask(bytes); }
  [[nodiscard]] std::vector<std::string> diagnostics() const {
    return LogMessages(FileContent(home() + "/.local/state/hushlet/hushlet_detailed_diagnostics.log"));
  }

 private:
  TemporaryDirectory home_;
  std::vector<std::unique_ptr<RunningProgram>> daemons_;
};
