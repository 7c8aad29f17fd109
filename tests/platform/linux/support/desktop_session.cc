#include "tests/platform/linux/support/desktop_session.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace {

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kServicePath = "/org/freedesktop/Notifications";

// No directory of services but the session's own, or the bus would start whatever server the machine has.
constexpr const char* kBusConfiguration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
  "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=SOCKET</listen>
  <servicedir>SERVICES</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

std::string replaced(std::string text, const std::string& word, const std::string& by) {
  return text.replace(text.find(word), word.size(), by);
}

std::string newDirectory() {
  std::string path = (std::filesystem::temp_directory_path() / "hushlet-session-XXXXXX").string();
  if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("no temporary directory");
  return path;
}

void write(const std::string& path, const std::string& content) { std::ofstream(path, std::ios::binary) << content; }

std::string firstLine(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  // A line that is still being written has no end yet.
  return std::getline(file, line) && !file.eof() ? line : "";
}

// The handshake runs by itself while the first calls are made.
sd_bus* connect(const std::string& address) {
  sd_bus* bus = nullptr;
  if (sd_bus_new(&bus) < 0 || sd_bus_set_address(bus, address.c_str()) < 0 || sd_bus_set_bus_client(bus, 1) < 0 ||
      sd_bus_start(bus) < 0) {
    throw std::runtime_error("no connection to " + address);
  }
  return bus;
}

pid_t ownerOf(const std::string& address, const char* name) {
  sd_bus* bus = connect(address);
  sd_bus_message* reply = nullptr;
  std::uint32_t pid = 0;
  if (sd_bus_call_method(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                         "GetConnectionUnixProcessID", nullptr, &reply, "s", name) >= 0) {
    sd_bus_message_read_basic(reply, 'u', &pid);
  }
  sd_bus_message_unref(reply);
  sd_bus_close_unref(bus);
  return static_cast<pid_t>(pid);
}

}  // namespace

SessionSetup WithActivatable(std::vector<std::string> commands) {
  SessionSetup setup;
  setup.activatable = std::move(commands);
  return setup;
}

SessionSetup WithoutAccessibility() {
  SessionSetup setup;
  setup.withAccessibility = false;
  return setup;
}

SessionSetup WithScreen(std::string size) {
  SessionSetup setup;
  setup.screen = std::move(size);
  return setup;
}

DesktopSession::DesktopSession(const SessionSetup& setup)
    : directory_(newDirectory()), reaper_(std::make_unique<OrphanReaper>()) {
  for (const char* name : {"run", "home", "data", "data/dbus-1", "data/dbus-1/services"}) {
    std::filesystem::create_directory(directory_ + "/" + name);
  }
  chmod((directory_ + "/run").c_str(), 0700);
  environment_ = {
      {"PATH", "/usr/local/bin:/usr/bin:/bin"},
      {"HOME", directory_ + "/home"},
      {"XDG_RUNTIME_DIR", directory_ + "/run"},
      {"XDG_DATA_HOME", directory_ + "/data"},
      {"LC_ALL", "C.UTF-8"},
      {"TZ", "UTC"},
      {"GTK_MODULES", "gail:atk-bridge"},
      {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"},
      {"QT_QPA_PLATFORM", "xcb"},
      {"GSETTINGS_BACKEND", "memory"},
      {"GIO_USE_VFS", "local"},
  };
  configureSessionBus(setup);
  startScreen(setup.screen);
  startSessionBus();
  windowManager_ = start({"openbox", "--sm-disable"});
  if (setup.withAccessibility) startAccessibility();
}

DesktopSession::~DesktopSession() {
  windowManager_ = nullptr;
  accessibility_ = nullptr;
  screen_ = nullptr;
  sessionBus_ = nullptr;
  reaper_ = nullptr;
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
}

void DesktopSession::configureSessionBus(const SessionSetup& setup) {
  const std::string services = directory_ + "/data/dbus-1/services";
  int count = 0;
  for (const std::string& command : setup.activatable) {
    write(services + "/server-" + std::to_string(++count) + ".service",
          std::string("[D-BUS Service]\nName=") + kService + "\nExec=" + command + "\n");
  }
  const std::string configuration = directory_ + "/bus.conf";
  const std::string socket = directory_ + "/run/session-bus";
  write(configuration, replaced(replaced(kBusConfiguration, "SOCKET", socket), "SERVICES", services));
  environment_["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + socket;
}

void DesktopSession::startScreen(const std::string& size) {
  // The server itself finds a free display and says which. With GLX it would load the graphics drivers first, half of
  // its start.
  const std::string file = directory_ + "/display";
  screen_ = start(
      {"sh", "-c", "exec Xvfb -displayfd 3 -noreset -nolisten tcp -extension GLX -screen 0 " + size + " 3>" + file});
  if (!Eventually([&file] { return !firstLine(file).empty(); })) throw std::runtime_error("no X server");
  environment_["DISPLAY"] = ":" + firstLine(file);
}

// After the screen: what the bus starts needs the display.
void DesktopSession::startSessionBus() {
  sessionBus_ = start({"dbus-daemon", "--nofork", "--config-file=" + directory_ + "/bus.conf"});
  // The socket is there a moment before anybody listens.
  const std::string& address = environment_.at("DBUS_SESSION_BUS_ADDRESS");
  if (!Eventually([&address] { return HLBus::openBus(address) != nullptr; })) {
    throw std::runtime_error("no session bus");
  }
}

void DesktopSession::startAccessibility() {
  accessibility_ = start({"/usr/libexec/at-spi-bus-launcher", "--launch-immediately"});
  const std::string& address = environment_.at("DBUS_SESSION_BUS_ADDRESS");
  if (!Eventually([&address] { return ownerOf(address, "org.a11y.Bus") != 0; })) {
    throw std::runtime_error("no accessibility bus");
  }
  setAccessibilityEnabled(true);
}

void DesktopSession::setAccessibilityEnabled(bool enabled) {
  sd_bus* bus = connect(environment_.at("DBUS_SESSION_BUS_ADDRESS"));
  const int set = sd_bus_set_property(bus, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status", "IsEnabled", nullptr,
                                      "b", enabled ? 1 : 0);
  sd_bus_close_unref(bus);
  if (set < 0) throw std::runtime_error("accessibility cannot be switched");
}

pid_t DesktopSession::accessibilityBusPid() {
  sd_bus* bus = connect(environment_.at("DBUS_SESSION_BUS_ADDRESS"));
  sd_bus_message* reply = nullptr;
  const char* address = nullptr;
  if (sd_bus_call_method(bus, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", nullptr, &reply, "") < 0 ||
      sd_bus_message_read_basic(reply, 's', &address) <= 0) {
    throw std::runtime_error("no accessibility bus");
  }
  const pid_t pid = ownerOf(address, "org.freedesktop.DBus");
  sd_bus_message_unref(reply);
  sd_bus_close_unref(bus);
  return pid;
}

std::unique_ptr<ChildProcess> DesktopSession::start(const std::vector<std::string>& command) {
  return std::make_unique<ChildProcess>(command, environment_, directory_ + "/output-" + std::to_string(++started_));
}

std::unique_ptr<ChildProcess> DesktopSession::startTray(const std::string& color) {
  return start({"trayer", "--edge", "top", "--align", "left", "--widthtype", "request", "--height", "22",
                "--transparent", "true", "--alpha", "0", "--tint", color});
}

std::unique_ptr<ChildProcess> DesktopSession::startServer(const std::string& command) {
  std::unique_ptr<ChildProcess> server = start({command});
  if (!Eventually([this, &server] { return serverPid() == server->pid(); })) {
    throw std::runtime_error(command + " does not serve: " + server->output());
  }
  return server;
}

pid_t DesktopSession::serverPid() { return ownerOf(environment_.at("DBUS_SESSION_BUS_ADDRESS"), kService); }

void DesktopSession::savePicture(const std::string& path) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  const std::unique_ptr<ChildProcess> import = start({"import", "-window", "root", "-silent", path});
  if (import->wait(std::chrono::seconds(30)) != 0) throw std::runtime_error("no picture: " + import->output());
}

SessionEnvironment::SessionEnvironment(const Environment& environment) {
  for (const auto& [name, value] : environment) {
    const char* current = std::getenv(name.c_str());
    before_.emplace_back(name, current == nullptr ? "" : current);
    setenv(name.c_str(), value.c_str(), 1);
  }
  unsetenv("AT_SPI_BUS_ADDRESS");
}

SessionEnvironment::~SessionEnvironment() {
  for (const auto& [name, value] : before_) {
    if (value.empty()) {
      unsetenv(name.c_str());
    } else {
      setenv(name.c_str(), value.c_str(), 1);
    }
  }
}

NotificationSender::NotificationSender(const Environment& environment)
    : bus_(connect(environment.at("DBUS_SESSION_BUS_ADDRESS"))) {
  const auto onClosed = [](sd_bus_message* message, void* sender, sd_bus_error*) {
    std::uint32_t id = 0;
    std::uint32_t reason = 0;
    if (sd_bus_message_read(message, "uu", &id, &reason) > 0) {
      static_cast<NotificationSender*>(sender)->reasons_.emplace(id, reason);
    }
    return 0;
  };
  const auto onInvoked = [](sd_bus_message* message, void* sender, sd_bus_error*) {
    std::uint32_t id = 0;
    const char* key = nullptr;
    if (sd_bus_message_read(message, "us", &id, &key) > 0) {
      static_cast<NotificationSender*>(sender)->invoked_.emplace_back(key);
    }
    return 0;
  };
  if (sd_bus_match_signal(bus_, nullptr, nullptr, kServicePath, kService, "NotificationClosed", onClosed, this) < 0 ||
      sd_bus_match_signal(bus_, nullptr, nullptr, kServicePath, kService, "ActionInvoked", onInvoked, this) < 0) {
    throw std::runtime_error("cannot hear of notifications");
  }
}

NotificationSender::~NotificationSender() { sd_bus_close_unref(bus_); }

std::uint32_t NotificationSender::send(const std::string& application, const std::string& title,
                                       const std::string& body, const std::vector<std::string>& actions,
                                       std::uint32_t replaces) {
  sd_bus_message* message = nullptr;
  sd_bus_message_new_method_call(bus_, &message, kService, kServicePath, kService, "Notify");
  sd_bus_message_append(message, "susss", application.c_str(), replaces, "", title.c_str(), body.c_str());
  sd_bus_message_open_container(message, 'a', "s");
  for (const std::string& action : actions) sd_bus_message_append(message, "s", action.c_str());
  sd_bus_message_close_container(message);
  sd_bus_message_append(message, "a{sv}i", 0, 0);
  sd_bus_message* reply = nullptr;
  sd_bus_error error{};
  const int sent = sd_bus_call(bus_, message, 0, &error, &reply);
  std::uint32_t id = 0;
  if (sent >= 0) sd_bus_message_read_basic(reply, 'u', &id);
  const std::string problem = error.message == nullptr ? "" : error.message;
  sd_bus_error_free(&error);
  sd_bus_message_unref(message);
  sd_bus_message_unref(reply);
  if (id == 0) throw std::runtime_error("not notified: " + problem);
  return id;
}

void NotificationSender::close(std::uint32_t id) {
  sd_bus_call_method(bus_, kService, kServicePath, kService, "CloseNotification", nullptr, nullptr, "u", id);
}

void NotificationSender::listen() {
  while (sd_bus_process(bus_, nullptr) > 0) {
  }
}

bool NotificationSender::waitUntilClosed(const std::vector<std::uint32_t>& ids, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  const auto isClosed = [this](std::uint32_t id) { return reasons_.count(id) != 0; };
  for (;;) {
    listen();
    if (std::all_of(ids.begin(), ids.end(), isClosed)) return true;
    const auto left = std::chrono::ceil<std::chrono::microseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0 || sd_bus_wait(bus_, static_cast<std::uint64_t>(left.count())) < 0) return false;
  }
}

std::set<std::uint32_t> NotificationSender::closed() {
  listen();
  std::set<std::uint32_t> ids;
  for (const auto& [id, reason] : reasons_) ids.insert(id);
  return ids;
}

std::vector<std::string> NotificationSender::invoked() {
  listen();
  return invoked_;
}
