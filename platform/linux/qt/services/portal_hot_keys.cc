#include "platform/linux/qt/services/portal_hot_keys.h"

#include <systemd/sd-bus.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cctype>
#include <chrono>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/qt/services/key_names.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kShortcuts = "org.freedesktop.portal.GlobalShortcuts";
constexpr const char* kDescription = "Clear notifications";
constexpr std::chrono::milliseconds kTimeout{3000};
// A desktop that does not ask its user replies within this time.
constexpr std::chrono::milliseconds kUserTimeout{400};

// Returns, for example, "CTRL+ALT+LOGO+n"; nullopt for a key without a name.
std::optional<std::string> trigger(std::uint32_t code, std::uint32_t modifiers) {
  const std::optional<std::string> key = HLKeyNameForVirtualKey(code);
  if (!key) return std::nullopt;
  std::string text;
  if ((modifiers & HLHotKeyControl) != 0) text += "CTRL+";
  if ((modifiers & HLHotKeyOption) != 0) text += "ALT+";
  if ((modifiers & HLHotKeyShift) != 0) text += "SHIFT+";
  if ((modifiers & HLHotKeyCommand) != 0) text += "LOGO+";
  return text + *key;
}

// Returns a token unique in this process.
std::string newToken() {
  static std::atomic<int> count = 0;
  return "hushlet_" + std::to_string(getpid()) + "_" + std::to_string(++count);
}

// Returns the token of all sessions of the program. Some desktops store the user's choice of keys under it.
std::string sessionToken(const std::string& identifier) {
  std::string token = identifier;
  const auto isAllowed = [](unsigned char c) { return (c < 0x80 && std::isalnum(c) != 0) || c == '_'; };
  std::replace_if(token.begin(), token.end(), std::not_fn(isAllowed), '_');
  return token;
}

// The parsed Response signal of a request.
struct Answer {
  bool granted = false;
  std::string session;
  std::optional<bool> listsShortcut;  // nullopt without a list of shortcuts
};

void readSession(sd_bus_message* message, Answer& answer) {
  // The portal sends the handle as a string instead of an object path. Accept both, in case it is corrected.
  char type = 0;
  const char* session = nullptr;
  if (sd_bus_message_peek_type(message, &type, nullptr) > 0 && (type == 's' || type == 'o') &&
      sd_bus_message_read_basic(message, type, &session) > 0) {
    answer.session = session;
  }
}

void readShortcuts(sd_bus_message* message, const std::string& wanted, Answer& answer) {
  if (sd_bus_message_enter_container(message, 'a', "(sa{sv})") <= 0) return;
  answer.listsShortcut = false;
  const char* id = nullptr;
  while (sd_bus_message_enter_container(message, 'r', "sa{sv}") > 0) {
    if (sd_bus_message_read(message, "s", &id) > 0 && id == wanted) answer.listsShortcut = true;
    sd_bus_message_skip(message, "a{sv}");
    sd_bus_message_exit_container(message);
  }
  sd_bus_message_exit_container(message);
}

Answer readAnswer(sd_bus_message* message, const std::string& wanted) {
  Answer answer;
  std::uint32_t response = 1;
  if (sd_bus_message_read(message, "u", &response) <= 0 || response != 0 ||
      sd_bus_message_enter_container(message, 'a', "{sv}") <= 0) {
    return answer;
  }
  answer.granted = true;
  while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
    const char* key = nullptr;
    const char* type = nullptr;
    sd_bus_message_read(message, "s", &key);
    const std::string_view name = key == nullptr ? "" : key;
    if (name != "session_handle" && name != "shortcuts") {
      sd_bus_message_skip(message, "v");
    } else if (sd_bus_message_peek_type(message, nullptr, &type) > 0 &&
               sd_bus_message_enter_container(message, 'v', type) > 0) {
      if (name == "shortcuts") {
        readShortcuts(message, wanted, answer);
      } else {
        readSession(message, answer);
      }
      sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
  }
  return answer;
}

}  // namespace

// A portal session with one shortcut, on its own bus connection. Closing the connection ends both.
class HLPortalHotKeys::HotKey : public HLHotKey {
 public:
  HotKey(HLLinuxRunLoop& runLoop, std::shared_ptr<Handler> handler, HLHotKeyIdentity identity, std::string wish)
      : runLoop_(runLoop),
        handler_(std::move(handler)),
        identity_(std::move(identity)),
        trigger_(std::move(wish)),
        // Desktops reuse stored keys for a known identifier, so each proposal needs its own identifier.
        shortcut_("dismiss-" + trigger_) {}
  ~HotKey() override {
    runLoop_.removeSource(source_);
    sd_bus_flush_close_unref(bus_);
  }

  // Whether the portal offers GlobalShortcuts.
  [[nodiscard]] bool findsService() const { return findsService_; }

  [[nodiscard]] bool begin(const std::string& token) {
    if (sd_bus_open_user(&bus_) < 0) return false;
    sd_bus_set_method_call_timeout(bus_, std::chrono::microseconds(kTimeout).count());
    if (sd_bus_match_signal(bus_, nullptr, kPortal, kPortalPath, kShortcuts, "Activated", &HotKey::activated, this) <
            0 ||
        !createSession(token) || (!isBound_ && !bind())) {
      return false;
    }
    source_ = runLoop_.addSource({sd_bus_get_fd(bus_), [this] { return serve(); }});
    // sd-bus may have queued messages along with the replies; the descriptor does not signal those.
    runLoop_.postToMainQueue([] {});
    return true;
  }

 private:
  // Early portals accept the shortcut in CreateSession only. They list it in their response.
  [[nodiscard]] bool createSession(const std::string& token) {
    const std::string request = expectAnswer();
    if (request.empty() ||
        sd_bus_call_method(bus_, kPortal, kPortalPath, kShortcuts, "CreateSession", nullptr, nullptr, "a{sv}", 3,
                           "handle_token", "s", request.c_str(), "session_handle_token", "s", token.c_str(),
                           "shortcuts", "a(sa{sv})", 1, shortcut_.c_str(), 2, "description", "s", kDescription,
                           "preferred_trigger", "s", trigger_.c_str()) < 0) {
      return false;
    }
    findsService_ = true;
    const std::optional<Answer> answer = waitForAnswer(kTimeout);
    if (!answer) return false;
    session_ = answer->session;
    isBound_ = answer->listsShortcut.value_or(false);
    return !session_.empty();
  }

  // Does not wait for the user, whom the desktop may ask.
  [[nodiscard]] bool bind() {
    const std::string request = expectAnswer();
    if (request.empty() || sd_bus_call_method(bus_, kPortal, kPortalPath, kShortcuts, "BindShortcuts", nullptr, nullptr,
                                              "oa(sa{sv})sa{sv}", session_.c_str(), 1, shortcut_.c_str(), 2,
                                              "description", "s", kDescription, "preferred_trigger", "s",
                                              trigger_.c_str(), "", 1, "handle_token", "s", request.c_str()) < 0) {
      return false;
    }
    const std::optional<Answer> answer = waitForAnswer(kUserTimeout);
    return !answer || (answer->granted && answer->listsShortcut.value_or(true));
  }

  // Subscribes to the response of the next request and returns the request's token. The response is a signal of an
  // object whose path follows from the token, so it cannot be missed.
  [[nodiscard]] std::string expectAnswer() {
    answer_ = std::nullopt;
    const char* name = nullptr;
    if (sd_bus_get_unique_name(bus_, &name) < 0) return "";
    std::string sender = name + 1;
    std::replace(sender.begin(), sender.end(), '.', '_');
    std::string token = newToken();
    const std::string request = std::string(kPortalPath) + "/request/" + sender + "/" + token;
    if (sd_bus_match_signal(bus_, nullptr, kPortal, request.c_str(), "org.freedesktop.portal.Request", "Response",
                            &HotKey::answered, this) < 0) {
      return "";
    }
    return token;
  }

  [[nodiscard]] std::optional<Answer> waitForAnswer(std::chrono::milliseconds timeout) {
    const Clock::time_point deadline = Clock::now() + timeout;
    while (!answer_ && Clock::now() < deadline) {
      const int processed = sd_bus_process(bus_, nullptr);
      if (processed < 0) return Answer{};
      const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now()).count();
      if (processed == 0 && left > 0 && sd_bus_wait(bus_, static_cast<std::uint64_t>(left)) < 0) return Answer{};
    }
    return answer_;
  }

  static int answered(sd_bus_message* message, void* hotKey, sd_bus_error*) {
    auto& self = *static_cast<HotKey*>(hotKey);
    self.answer_ = readAnswer(message, self.shortcut_);
    return 0;
  }

  static int activated(sd_bus_message* message, void* hotKey, sd_bus_error*) {
    const auto& self = *static_cast<HotKey*>(hotKey);
    const char* session = nullptr;
    const char* shortcut = nullptr;
    if (sd_bus_message_read(message, "os", &session, &shortcut) <= 0) return 0;
    if (session == self.session_ && shortcut == self.shortcut_) {
      // Posted because the handler may destroy this hot key.
      self.runLoop_.postToMainQueue([handler = self.handler_, identity = self.identity_] {
        if (*handler) (void)(*handler)(identity);
      });
    }
    return 0;
  }

  bool serve() {
    int processed = 0;
    while ((processed = sd_bus_process(bus_, nullptr)) > 0) {
    }
    return processed == 0;
  }

  HLLinuxRunLoop& runLoop_;
  const std::shared_ptr<Handler> handler_;
  const HLHotKeyIdentity identity_;
  const std::string trigger_;
  const std::string shortcut_;
  sd_bus* bus_ = nullptr;
  int source_ = 0;
  std::string session_;
  bool findsService_ = false;
  bool isBound_ = false;
  std::optional<Answer> answer_;  // to the latest request
};

void HLPortalHotKeys::installHandler(Handler handler) { *handler_ = std::move(handler); }

HLHotKeyRegistration HLPortalHotKeys::registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                     const HLHotKeyIdentity& identity) {
  const std::optional<std::string> preferred = trigger(code, modifiers);
  if (!preferred) return {HLHotKeyStatus::failed, nullptr};
  auto hotKey = std::make_unique<HotKey>(runLoop_, handler_, identity, *preferred);
  const bool begun = hotKey->begin(sessionToken(identifier_));
  isMissing_ = !hotKey->findsService();
  if (!begun) return {HLHotKeyStatus::failed, nullptr};
  return {HLHotKeyStatus::success, std::move(hotKey)};
}

std::optional<std::string> HLPortalHotKeys::unsupportedReason() const {
  if (!isMissing_) return std::nullopt;
  return "This desktop gives apps no shortcuts. Set one of its own for the command: hushlet --dismiss-now";
}
