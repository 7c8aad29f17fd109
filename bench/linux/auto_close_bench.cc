// How long a banner lives under an observer that closes what it is told of: from the moment at which its server has
// answered that it shows it to the press of its close control, and until the server says that it has closed.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/linux_host.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "tests/platform/linux/desktop/servers.h"
#include "tests/platform/linux/support/desktop_session.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kBanners = 20;

double milliseconds(Clock::duration duration) { return std::chrono::duration<double, std::milli>(duration).count(); }

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
  return values[values.size() / 2];
}

bool measure(const Server& server) {
  DesktopSession session;
  const SessionEnvironment environment(session.environment());
  char name[] = "bench";
  char* arguments[] = {name, nullptr};
  const HLLinuxHost host(1, arguments);
  HLInstallPlatform(&host.platform());
  const std::unique_ptr<ChildProcess> process = session.startServer(server.command);
  NotificationSender sender(session.environment());

  Clock::time_point heard;
  Clock::time_point pressed;
  const std::unique_ptr<HLObserver> observer = host.platform().accessibility->createObserver(
      process->pid(), [&heard, &pressed](const HLElementRef& element, std::string_view) {
        heard = Clock::now();
        (void)element->performAction("Name:Close");
        pressed = Clock::now();
      });
  if (observer == nullptr) return false;
  const HLElementRef application = host.platform().accessibility->createApplication(process->pid());
  (void)observer->addNotification(application, "AXLayoutChanged");
  observer->attach();

  std::vector<double> untilHeard;
  std::vector<double> untilPressed;
  std::vector<double> untilClosed;
  for (int i = 0; i < kBanners; ++i) {
    const std::uint32_t id = sender.send("Mail", "Weekly report", "number " + std::to_string(i));
    const Clock::time_point shown = Clock::now();
    heard = {};
    while (heard == Clock::time_point() && Clock::now() - shown < std::chrono::seconds(5)) {
      host.platform().runLoop->runFor(0.001);
    }
    if (!sender.waitUntilClosed({id}, std::chrono::seconds(5))) return false;
    untilClosed.push_back(milliseconds(Clock::now() - shown));
    untilHeard.push_back(milliseconds(heard - shown));
    untilPressed.push_back(milliseconds(pressed - heard));
    host.platform().runLoop->runFor(0.3);  // what its going causes
  }
  std::printf("%-32s%16.1f%16.1f%16.1f\n", server.name.c_str(), median(untilHeard), median(untilPressed),
              median(untilClosed));
  std::fflush(stdout);
  HLInstallPlatform(nullptr);
  return true;
}

}  // namespace

int main() {
  std::printf("\n%-32s%16s%16s%16s\n", "a banner under the observer, ms", "shown to told", "told to pressed",
              "shown to closed");
  bool all = true;
  for (const Server& server : {kMate, kLxqt}) all &= measure(server);
  return all ? EXIT_SUCCESS : EXIT_FAILURE;
}
