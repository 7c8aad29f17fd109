#include "tests/platform/linux/notifications/bus_session.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "platform/linux/session/bus.h"

namespace {

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";

constexpr const char* kConfiguration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
  "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=SOCKET</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <limit name="max_replies_per_connection">50000</limit>
</busconfig>
)";

sd_bus* connect() {
  sd_bus* bus = nullptr;
  if (sd_bus_open_user(&bus) < 0) throw std::runtime_error("no connection to the bus");
  return bus;
}

}  // namespace

BusSession::BusSession() {
  const std::string root = directory_.path();
  for (const char* name : {"run", "home", "config"}) std::filesystem::create_directory(root + "/" + name);
  environment_ = {{"PATH", "/usr/local/bin:/usr/bin:/bin"},
                  {"HOME", root + "/home"},
                  {"XDG_RUNTIME_DIR", root + "/run"},
                  {"XDG_CONFIG_HOME", root + "/config"},
                  {"LC_ALL", "C.UTF-8"},
                  {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + root + "/bus"}};
  std::string configuration = kConfiguration;
  configuration.replace(configuration.find("SOCKET"), 6, root + "/bus");
  std::ofstream(root + "/bus.conf") << configuration;
  set_.emplace(environment_);
  startBus();
}

std::unique_ptr<ChildProcess> BusSession::start(const std::vector<std::string>& command) {
  return std::make_unique<ChildProcess>(command, environment_,
                                        directory_.path() + "/output-" + std::to_string(++started_));
}

void BusSession::startBus() {
  std::filesystem::remove(directory_.path() + "/bus");
  bus_ = start({"dbus-daemon", "--nofork", "--config-file=" + directory_.path() + "/bus.conf"});
  if (!Eventually([] { return HLBus::openSession() != nullptr; })) throw std::runtime_error("no session bus");
}

void BusSession::killBus() {
  bus_->signal(SIGKILL);
  (void)bus_->wait(std::chrono::seconds(5));
}

FakeServer::FakeServer(HLServerInformation information, Handler handler, std::string name)
    : information_(std::move(information)), handler_(std::move(handler)), bus_(connect()) {
  if (sd_bus_add_filter(bus_, nullptr, &FakeServer::handle, this) < 0 ||
      sd_bus_request_name(bus_, name.c_str(), 0) < 0) {
    throw std::runtime_error("cannot serve");
  }
  thread_ = std::thread([this] { run(); });
}

FakeServer::~FakeServer() {
  ending_ = true;
  thread_.join();
  sd_bus_flush_close_unref(bus_);
}

void FakeServer::run() {
  while (!ending_) {
    {
      const std::lock_guard lock(mutex_);
      for (const std::uint32_t number : std::exchange(toClose_, {}))
        sd_bus_emit_signal(bus_, kPath, kService, "NotificationClosed", "uu", number, 1U);
    }
    const int processed = sd_bus_process(bus_, nullptr);
    if (processed < 0) return;
    if (processed == 0) sd_bus_wait(bus_, 10'000);
  }
}

int FakeServer::handle(sd_bus_message* call, void* server, sd_bus_error*) {
  std::uint8_t type = 0;
  sd_bus_message_get_type(call, &type);
  if (type != SD_BUS_MESSAGE_METHOD_CALL) return 0;
  return static_cast<FakeServer*>(server)->answer(call);
}

int FakeServer::answer(sd_bus_message* call) {
  if (handler_ && handler_(call)) return 1;
  if (sd_bus_message_is_method_call(call, kService, "GetServerInformation") > 0) {
    return sd_bus_reply_method_return(call, "ssss", information_.name.c_str(), information_.vendor.c_str(),
                                      information_.version.c_str(), "1.2");
  }
  std::uint32_t number = 0;
  if (sd_bus_message_is_method_call(call, kService, "CloseNotification") > 0) {
    sd_bus_message_read_basic(call, 'u', &number);
    {
      const std::lock_guard lock(mutex_);
      closed_.push_back(number);
    }
    if (refusesToClose) return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "refused");
    if (signalsClosing) sd_bus_emit_signal(bus_, kPath, kService, "NotificationClosed", "uu", number, 3U);
    return sd_bus_reply_method_return(call, "");
  }
  if (sd_bus_message_is_method_call(call, kService, "Notify") <= 0) return 0;
  if (refuses || sd_bus_message_has_signature(call, "susssasa{sv}i") <= 0)
    return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_FAILED, "refused");
  const char* application = nullptr;
  sd_bus_message_read(call, "su", &application, &number);
  return sd_bus_reply_method_return(call, "u", number != 0 ? number : ++last_);
}

void FakeServer::emitClosed(std::uint32_t number) {
  const std::lock_guard lock(mutex_);
  toClose_.push_back(number);
}

std::vector<std::uint32_t> FakeServer::askedToClose() {
  const std::lock_guard lock(mutex_);
  return closed_;
}

Poster::Poster() : bus_(connect()) {}

Poster::~Poster() { sd_bus_flush_close_unref(bus_); }

sd_bus_message* Poster::call(const std::string& summary, const std::string& body, const Options& options) {
  sd_bus_message* message = nullptr;
  sd_bus_message_new_method_call(bus_, &message, options.destination.c_str(), kPath, kService, "Notify");
  sd_bus_message_append(message, "susssas", options.application.c_str(), options.replaces, "", summary.c_str(),
                        body.c_str(), 0);
  sd_bus_message_open_container(message, 'a', "{sv}");
  if (options.hints) options.hints(message);
  sd_bus_message_close_container(message);
  sd_bus_message_append(message, "i", options.timeout);
  return message;
}

std::uint32_t Poster::post(const std::string& summary, const std::string& body, const Options& options) {
  const HLBusMessage message(call(summary, body, options));
  sd_bus_message* reply = nullptr;
  std::uint32_t number = 0;
  if (sd_bus_call(bus_, message.get(), 0, nullptr, &reply) >= 0) sd_bus_message_read_basic(reply, 'u', &number);
  sd_bus_message_unref(reply);
  return number;
}

void Poster::postOnly(const std::string& summary, bool expectsReply) {
  const HLBusMessage message(call(summary, "", {}));
  if (!expectsReply) sd_bus_message_set_expect_reply(message.get(), 0);
  std::uint64_t cookie = 0;
  sd_bus_send(bus_, message.get(), &cookie);
  sd_bus_flush(bus_);
  while (sd_bus_process(bus_, nullptr) > 0) {  // replies
  }
}

void Poster::close(std::uint32_t number) {
  sd_bus_call_method(bus_, kService, kPath, kService, "CloseNotification", nullptr, nullptr, "u", number);
}
