// The running applications of this user.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

struct HLRunningApplication {
  std::int32_t pid = 0;
  std::optional<std::string> bundleIdentifier;
  std::optional<std::string> name;  // as shown to the user
  bool terminated = false;          // still listed, already dead
};

enum class HLSignalOutcome {
  sent,     // or tried: that the process is already gone is no failure
  refused,  // this host would not bring the application back, so nothing was sent
};

// Any thread; every call asks the host anew. A host that cannot be asked lists nothing.
class HLRunningApplications {
 public:
  HLRunningApplications() = default;
  HLRunningApplications(const HLRunningApplications&) = delete;
  HLRunningApplications& operator=(const HLRunningApplications&) = delete;
  virtual ~HLRunningApplications() = default;

  // In the host's order.
  [[nodiscard]] virtual std::vector<HLRunningApplication> list() = 0;

  [[nodiscard]] virtual std::optional<HLRunningApplication> find(std::int32_t pid) = 0;

  // Calls on the main thread, while its loop runs, for each application that is launched from now on. Main thread; for
  // the whole life of the process. A host may derive launches from list() alone. It may report again an application
  // that could not be observed, once it can be.
  virtual void observeLaunches(std::function<void(const HLRunningApplication&)> observer) = 0;

  // Sends SIGTERM or SIGKILL to an application that the system starts again by itself, or that the host can have
  // started again.
  [[nodiscard]] virtual HLSignalOutcome sendSignal(std::int32_t pid, int signal) = 0;
};
