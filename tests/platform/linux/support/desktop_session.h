// A real desktop session of a test's own: buses, an X server, accessibility, and one notification server.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/session/bus.h"
#include "tests/platform/linux/support/child_process.h"

// What runs besides the session bus, the X server and a window manager.
struct SessionSetup {
  bool withAccessibility = true;  // its bus, switched on
  // Commands of the notification server as service files of the bus, so that it can start it; they are not started yet.
  std::vector<std::string> activatable;
  std::string screen = "1280x1024x24";  // width, height, depth
};

[[nodiscard]] SessionSetup WithActivatable(std::vector<std::string> commands);
[[nodiscard]] SessionSetup WithoutAccessibility();
[[nodiscard]] SessionSetup WithScreen(std::string size);

// Everything in it has ended when it is destroyed. One at a time in a process.
class DesktopSession {
 public:
  explicit DesktopSession(const SessionSetup& setup = {});
  ~DesktopSession();

  [[nodiscard]] const Environment& environment() const { return environment_; }
  [[nodiscard]] const std::string& directory() const { return directory_; }
  [[nodiscard]] ChildProcess& sessionBus() { return *sessionBus_; }
  [[nodiscard]] pid_t accessibilityBusPid();
  void setAccessibilityEnabled(bool enabled);

  // Starts the program in the session.
  [[nodiscard]] std::unique_ptr<ChildProcess> start(const std::vector<std::string>& command);

  // Starts a tray of the X server, of that color, in the upper left corner.
  [[nodiscard]] std::unique_ptr<ChildProcess> startTray(const std::string& color = "0x202020");

  // Starts it and waits until it owns the notification service.
  [[nodiscard]] std::unique_ptr<ChildProcess> startServer(const std::string& command);
  [[nodiscard]] pid_t serverPid();

  // The picture of the whole screen, as a PNG file.
  void savePicture(const std::string& path);

 private:
  void configureSessionBus(const SessionSetup& setup);
  void startScreen(const std::string& size);
  void startSessionBus();
  void startAccessibility();

  std::string directory_;
  std::unique_ptr<OrphanReaper> reaper_;
  Environment environment_;
  std::unique_ptr<ChildProcess> sessionBus_;
  std::unique_ptr<ChildProcess> screen_;
  std::unique_ptr<ChildProcess> accessibility_;
  std::unique_ptr<ChildProcess> windowManager_;
  int started_ = 0;
};

// The variables of a session put into this process's environment, for as long as it lives.
class SessionEnvironment {
 public:
  explicit SessionEnvironment(const Environment& environment);
  SessionEnvironment(const SessionEnvironment&) = delete;
  SessionEnvironment& operator=(const SessionEnvironment&) = delete;
  ~SessionEnvironment();

 private:
  std::vector<std::pair<std::string, std::string>> before_;
};

// An application that sends notifications, and hears what becomes of them.
class NotificationSender {
 public:
  explicit NotificationSender(const Environment& environment);
  ~NotificationSender();

  // Actions are keys and labels in turn. The notification never expires by itself. With `replaces`, the notification of
  // that number gets these texts.
  std::uint32_t send(const std::string& application, const std::string& title, const std::string& body,
                     const std::vector<std::string>& actions = {}, std::uint32_t replaces = 0);
  void close(std::uint32_t id);

  // Waits until all of them have been closed; says of each for which reason it was.
  [[nodiscard]] bool waitUntilClosed(const std::vector<std::uint32_t>& ids, std::chrono::milliseconds limit);
  [[nodiscard]] std::set<std::uint32_t> closed();
  [[nodiscard]] std::uint32_t reasonOf(std::uint32_t id) const { return reasons_.at(id); }
  // Keys of the actions that were invoked.
  [[nodiscard]] std::vector<std::string> invoked();

 private:
  void listen();

  sd_bus* bus_ = nullptr;
  std::map<std::uint32_t, std::uint32_t> reasons_;
  std::vector<std::string> invoked_;
};
