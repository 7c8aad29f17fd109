// A session bus of a test's own, with a notification server and applications that the test controls.
#pragma once

#include <systemd/sd-bus.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/notifications/notification_server.h"
#include "tests/platform/linux/support/child_process.h"
#include "tests/platform/linux/support/desktop_session.h"
#include "tests/support/temporary_directory.h"

// The bus of this process's environment, as long as it lives.
class BusSession {
 public:
  BusSession();

  [[nodiscard]] const Environment& environment() const { return environment_; }
  [[nodiscard]] std::unique_ptr<ChildProcess> start(const std::vector<std::string>& command);
  void stopBus() { bus_ = nullptr; }
  // Without the messages by which a bus that ends takes leave.
  void killBus();
  void startBus();

 private:
  TemporaryDirectory directory_;
  Environment environment_;
  std::optional<SessionEnvironment> set_;
  std::unique_ptr<ChildProcess> bus_;
  int started_ = 0;
};

// Runs on a thread of its own, from construction to destruction.
class FakeServer {
 public:
  // Gets every call first; returns whether it answered it.
  using Handler = std::function<bool(sd_bus_message* call)>;

  explicit FakeServer(HLServerInformation information = {"Fake", "Tests", "1.0"}, Handler handler = {},
                      std::string name = "org.freedesktop.Notifications");
  ~FakeServer();

  std::atomic<bool> refuses = false;  // Notify
  std::atomic<bool> refusesToClose = false;
  std::atomic<bool> signalsClosing = true;  // NotificationClosed before the reply to CloseNotification

  void emitClosed(std::uint32_t number);
  // The numbers that it was asked to close.
  [[nodiscard]] std::vector<std::uint32_t> askedToClose();

 private:
  static int handle(sd_bus_message* call, void* server, sd_bus_error* error);
  int answer(sd_bus_message* call);
  void run();

  const HLServerInformation information_;
  const Handler handler_;
  std::mutex mutex_;
  sd_bus* bus_ = nullptr;
  std::uint32_t last_ = 0;
  std::vector<std::uint32_t> closed_;
  std::vector<std::uint32_t> toClose_;
  std::atomic<bool> ending_ = false;
  std::thread thread_;
};

// An application on the bus.
class Poster {
 public:
  Poster();
  ~Poster();

  // Appends the hints' entries.
  using Hints = std::function<void(sd_bus_message*)>;
  struct Options {
    std::string application = "poster";
    std::uint32_t replaces = 0;
    std::int32_t timeout = -1;
    std::string destination = "org.freedesktop.Notifications";
    Hints hints = {};
  };
  // Returns the number, 0 if it was refused.
  std::uint32_t post(const std::string& summary, const std::string& body, const Options& options);
  std::uint32_t post(const std::string& summary, const std::string& body = "") { return post(summary, body, {}); }
  // Posts without waiting for a reply, and without wanting one where `expectsReply` is false.
  void postOnly(const std::string& summary, bool expectsReply);
  void close(std::uint32_t number);
  [[nodiscard]] sd_bus* bus() const { return bus_; }

 private:
  [[nodiscard]] sd_bus_message* call(const std::string& summary, const std::string& body, const Options& options);

  sd_bus* bus_ = nullptr;
};
