#include "platform/linux/session/linux_running_applications.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <utility>

#include "platform/linux/session/activation.h"
#include "platform/linux/session/bus.h"

namespace {

constexpr const char* kBundleIdentifier = "com.apple.notificationcenterui";

// GNOME Shell shows the banners. A helper process, which has no windows, owns the service and this name, and forwards.
constexpr const char* kShellHelper = "org.gnome.Shell.Notifications";
constexpr const char* kShell = "org.gnome.Shell";

// A server that has just got its name is ready within a second; ten doubled waits are eight minutes.
constexpr double kFirstWait = 0.5;  // seconds
constexpr int kQuestions = 10;

HLBusCall toBus(const char* member) {
  return {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", member};
}

std::string executableOf(std::int32_t pid) {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/" + std::to_string(pid) + "/exe", error).string();
}

// Returns the unique name of the owner's connection, or "".
std::string connectionOf(HLBus& session, const char* name) {
  const HLBusReply reply = session.call(toBus("GetNameOwner"), "s", name);
  const char* connection = nullptr;
  return reply && sd_bus_message_read_basic(reply.message.get(), 's', &connection) > 0 ? connection : "";
}

// Whether a helper of a shell's owns the service. Other shells own the shell's name too, without such a helper.
bool isBehindHelper(HLBus& session) {
  const std::string helper = connectionOf(session, kShellHelper);
  return !helper.empty() && helper == connectionOf(session, HLNotificationService);
}

// Returns the process that shows the banners.
std::optional<HLRunningApplication> findServer(HLBus& session) {
  const char* name = isBehindHelper(session) ? kShell : HLNotificationService;
  const HLBusReply reply = session.call(toBus("GetConnectionUnixProcessID"), "s", name);
  std::uint32_t pid = 0;
  if (!reply || sd_bus_message_read_basic(reply.message.get(), 'u', &pid) <= 0) return std::nullopt;
  HLRunningApplication application;
  application.pid = static_cast<std::int32_t>(pid);
  application.bundleIdentifier = kBundleIdentifier;
  const std::string executable = executableOf(application.pid);
  if (!executable.empty()) application.name = std::filesystem::path(executable).filename().string();
  return application;
}

bool isActivatable(HLBus& session) {
  const HLBusReply reply = session.call(toBus("ListActivatableNames"));
  if (!reply || sd_bus_message_enter_container(reply.message.get(), 'a', "s") <= 0) return false;
  const char* name = nullptr;
  while (sd_bus_message_read_basic(reply.message.get(), 's', &name) > 0) {
    if (std::string_view(name) == HLNotificationService) return true;
  }
  return false;
}

std::vector<std::string> commandLineOf(std::int32_t pid) {
  std::vector<std::string> words;
  std::ifstream file("/proc/" + std::to_string(pid) + "/cmdline", std::ios::binary);
  for (std::string word; std::getline(file, word, '\0');) words.push_back(word);
  return words;
}

// Arguments count where the service file gives any: an interpreter is told from another by its script.
bool isSameServer(std::int32_t pid, const std::vector<std::string>& command) {
  std::error_code error;
  const std::string executable = executableOf(pid);
  if (executable.empty() || std::filesystem::canonical(command.front(), error).string() != executable) return false;
  const std::vector<std::string> running = commandLineOf(pid);
  return command.size() == 1 ||
         std::equal(command.begin() + 1, command.end(),
                    running.begin() + std::min<std::ptrdiff_t>(1, std::ssize(running)), running.end());
}

// Whether the bus would bring the same server up again. Where several service files contend for the name, each of them
// must: what ends may be the whole desktop, and what comes instead may be another's server. The bus starts a shell's
// helper, never the shell.
bool wouldComeBack(HLBus& session, std::int32_t pid) {
  if (isBehindHelper(session) || !isActivatable(session)) return false;
  const std::vector<std::vector<std::string>> commands =
      HLActivationCommands(HLServiceDirectories(), HLNotificationService);
  return !commands.empty() &&
         std::all_of(commands.begin(), commands.end(),
                     [pid](const std::vector<std::string>& command) { return isSameServer(pid, command); });
}

}  // namespace

std::vector<HLRunningApplication> HLLinuxRunningApplications::list() {
  const std::unique_ptr<HLBus> session = HLBus::openSession();
  if (session == nullptr) return {};
  std::optional<HLRunningApplication> server = findServer(*session);
  const HLLock lock(mutex_);
  if (!server && signalled_ != nullptr && signalled_->hasEnded()) {
    // The answer comes when the successor is up; where it takes longer, a later list() sees it.
    (void)session->call(toBus("StartServiceByName"), "su", HLNotificationService, 0U);
    signalled_ = nullptr;
    server = findServer(*session);
  }
  if (!server) return {};
  if (signalled_ != nullptr && server->pid != signalled_->pid()) signalled_ = nullptr;
  return {std::move(*server)};
}

std::optional<HLRunningApplication> HLLinuxRunningApplications::find(std::int32_t pid) {
  for (HLRunningApplication& application : list()) {
    if (application.pid == pid) return std::move(application);
  }
  return std::nullopt;
}

void HLLinuxRunningApplications::observeLaunches(std::function<void(const HLRunningApplication&)> observer) {
  observers_.push_back(observer);
  std::shared_ptr<HLBus> events = HLBus::openSession();
  if (events == nullptr) return;
  for (const char* name : {HLNotificationService, kShell}) {
    const std::string rule =
        "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='";
    if (!events->watch(rule + name + "'")) return;
  }
  const int descriptor = events->descriptor();
  const std::vector<HLRunningApplication> present = list();
  // The end of one server and the beginning of the next are two changes, but one launch; and after the first of them
  // the next server may be there already.
  const auto ready = [this, events = std::move(events), observer = std::move(observer),
                      known = present.empty() ? 0 : present.front().pid]() mutable {
    const std::optional<int> changes = events->takeSignals();
    if (!changes) return false;
    if (*changes == 0) return true;
    const std::vector<HLRunningApplication> now = list();
    const std::int32_t before = std::exchange(known, now.empty() ? 0 : now.front().pid);
    if (known != 0 && known != before) observer(now.front());
    return true;
  };
  (void)runLoop_.addSource({descriptor, ready});
}

void HLLinuxRunningApplications::reportAgainWhenReady(std::int32_t pid, std::function<bool()> isReady) {
  if (awaited_.pid != pid) awaited_ = {pid, 0, std::move(isReady), nullptr};
  if (awaited_.timer == nullptr) waitForAwaited();
}

void HLLinuxRunningApplications::waitForAwaited() {
  if (awaited_.asked == kQuestions) return;
  awaited_.timer = runLoop_.scheduleTimer(kFirstWait * (1 << awaited_.asked++), [this] { askAwaited(); });
}

void HLLinuxRunningApplications::askAwaited() {
  awaited_.timer = nullptr;
  const std::vector<HLRunningApplication> now = list();
  if (!now.empty() && now.front().pid != awaited_.pid) return;
  if (now.empty() || !awaited_.isReady()) {
    waitForAwaited();
    return;
  }
  for (const auto& observer : observers_) observer(now.front());
}

HLSignalOutcome HLLinuxRunningApplications::sendSignal(std::int32_t pid, int signal) {
  const HLLock lock(mutex_);
  if (signalled_ == nullptr || signalled_->pid() != pid) {
    // The hold is taken first, so that what is judged is what gets the signal.
    auto watch = std::make_shared<const HLProcessWatch>(pid);
    const std::unique_ptr<HLBus> session = HLBus::openSession();
    const std::optional<HLRunningApplication> server = session == nullptr ? std::nullopt : findServer(*session);
    if (!server || server->pid != pid || !wouldComeBack(*session, pid)) return HLSignalOutcome::refused;
    signalled_ = std::move(watch);
  }
  signalled_->sendSignal(signal);
  return HLSignalOutcome::sent;
}
