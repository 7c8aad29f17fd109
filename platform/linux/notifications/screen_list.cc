#include "platform/linux/notifications/screen_list.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "platform/json.h"
#include "platform/value.h"

namespace {

using Listed = std::vector<HLListedNotification>;
using OpenNotifications = std::optional<std::vector<HLOpenNotificationRef>>;

Listed listed(const std::vector<HLOpenNotificationRef>& open) {
  Listed all;
  for (const HLOpenNotificationRef& one : open)
    all.push_back({one->name, one->posted.application, one->posted.summary, one->posted.body});
  return all;
}

// ---------------------------------------------------------------------------------------------------------------------
// dunst says how many it shows.

std::optional<std::uint32_t> countOf(HLServerConnection& connection, const HLPresentServer& server,
                                     const char* property) {
  const HLBusReply reply = connection.call({server.owner, HLNotificationPath, HLPropertiesInterface, "Get"}, "ss",
                                           "org.dunstproject.cmd0", property);
  std::uint32_t count = 0;
  if (!reply || sd_bus_message_read(reply.message.get(), "v", "u", &count) <= 0) return std::nullopt;
  return count;
}

std::optional<Listed> listByCounts(HLServerConnection& connection, const HLPresentServer& server,
                                   const OpenNotifications& open) {
  const std::optional<std::uint32_t> displayed = countOf(connection, server, "displayedLength");
  if (!displayed) return std::nullopt;
  if (*displayed == 0) return Listed();
  if (!open) return std::nullopt;
  return listed(HLMostUrgent(*open, *displayed));
}

// ---------------------------------------------------------------------------------------------------------------------
// mako lists them, hidden ones too.

constexpr const char* kMako = "fr.emersion.Mako";
constexpr const char* kMakoPath = "/fr/emersion/Mako";

// Reads one notification, a dictionary of texts and numbers.
HLListedNotification readEntry(sd_bus_message* message) {
  HLListedNotification entry;
  const char* key = nullptr;
  while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
    const char* contents = nullptr;
    sd_bus_message_read_basic(message, 's', &key);
    sd_bus_message_peek_type(message, nullptr, &contents);
    const std::string_view type = contents == nullptr ? "" : contents;
    const std::string_view name = key == nullptr ? "" : key;
    const char* text = nullptr;
    if (name == "id" && type == "u") {
      sd_bus_message_read(message, "v", "u", &entry.name.number);
    } else if (type == "s" && sd_bus_message_read(message, "v", "s", &text) > 0) {
      if (name == "app-name") entry.application = text;
      if (name == "summary") entry.summary = text;
      if (name == "body") entry.body = text;
    } else if (type != "s") {
      sd_bus_message_skip(message, "v");
    }
    sd_bus_message_exit_container(message);
  }
  return entry;
}

std::optional<Listed> listByServer(HLServerConnection& connection, const HLPresentServer& server) {
  const HLBusReply reply = connection.call({server.owner, kMakoPath, kMako, "ListNotifications"});
  if (!reply || sd_bus_message_enter_container(reply.message.get(), 'a', "a{sv}") < 0) return std::nullopt;
  Listed all;
  while (sd_bus_message_enter_container(reply.message.get(), 'a', "{sv}") > 0) {
    HLListedNotification entry = readEntry(reply.message.get());
    if (entry.name.number != 0) all.push_back(std::move(entry));
    sd_bus_message_exit_container(reply.message.get());
  }
  if (!all.empty() && HLIsMakoQuiet(connection).value_or(false)) return Listed();
  std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.name.number < b.name.number; });
  return all;
}

// ---------------------------------------------------------------------------------------------------------------------
// swaync keeps open what it shows no more. Its configuration says how long it shows it.

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string environment(const char* name, const std::string& otherwise) {
  const char* value = std::getenv(name);
  return value == nullptr || *value == '\0' ? otherwise : value;
}

// The file that the server reads: the one that it was started with, or else the user's, or else the machine's.
std::string configurationOf(std::uint32_t pid) {
  std::vector<std::string> words;
  std::ifstream file("/proc/" + std::to_string(pid) + "/cmdline", std::ios::binary);
  for (std::string word; std::getline(file, word, '\0');) words.push_back(word);
  for (std::size_t i = 0; i + 1 < words.size(); ++i) {
    if (words[i] == "-c" || words[i] == "--config") return readFile(words[i + 1]);
  }
  std::string text =
      readFile(environment("XDG_CONFIG_HOME", environment("HOME", "") + "/.config") + "/swaync/config.json");
  return text.empty() ? readFile("/etc/xdg/swaync/config.json") : text;
}

std::optional<Listed> listByConfiguration(HLServerConnection& connection, const HLPresentServer& server,
                                          const OpenNotifications& open) {
  const HLBusReply state =
      connection.call({server.owner, "/org/erikreider/swaync/cc", "org.erikreider.swaync.cc", "GetSubscribeData"});
  int isQuiet = 0;
  int isCenterOpen = 0;
  std::uint32_t count = 0;
  if (!state || sd_bus_message_read(state.message.get(), "(bbu)", &isQuiet, &isCenterOpen, &count) <= 0)
    return std::nullopt;
  if (isQuiet != 0 || isCenterOpen != 0) return Listed();
  if (count == 0 && !open) return Listed();  // the count leaves transient ones out
  const HLBusReply reply = connection.call(
      {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetConnectionUnixProcessID"}, "s",
      server.owner.c_str());
  std::uint32_t pid = 0;
  if (!open || !reply || sd_bus_message_read_basic(reply.message.get(), 'u', &pid) <= 0) return std::nullopt;
  const std::optional<HLShowTimes> times = HLShowTimesOf(configurationOf(pid));
  if (!times) return std::nullopt;
  std::vector<HLOpenNotificationRef> shown;
  const auto now = std::chrono::steady_clock::now();
  std::copy_if(open->begin(), open->end(), std::back_inserter(shown),
               [&](const HLOpenNotificationRef& one) { return HLIsYoungEnough(*one, *times, now); });
  return listed(shown);
}

}  // namespace

std::optional<Listed> HLListScreen(HLServerConnection& connection, const HLPresentServer& server,
                                   const OpenNotifications& open) {
  switch (server.traits.screen) {
    case HLScreenSource::tree:
      break;
    case HLScreenSource::counts:
      return listByCounts(connection, server, open);
    case HLScreenSource::list:
      return listByServer(connection, server);
    case HLScreenSource::configuration:
      return listByConfiguration(connection, server, open);
  }
  return std::nullopt;
}

std::optional<bool> HLIsMakoQuiet(HLServerConnection& connection) {
  const HLBusReply reply = connection.call({HLNotificationService, kMakoPath, kMako, "ListModes"});
  if (!reply || sd_bus_message_enter_container(reply.message.get(), 'a', "s") <= 0) return std::nullopt;
  for (const char* mode = nullptr; sd_bus_message_read_basic(reply.message.get(), 's', &mode) > 0;) {
    if (std::string_view(mode) == "do-not-disturb") return true;
  }
  return false;
}

std::optional<HLShowTimes> HLShowTimesOf(std::string_view configuration) {
  const std::optional<HLValue> document = HLReadJson(configuration);
  const HLDictionary* keys = document ? document->as<HLDictionary>() : nullptr;
  if (keys == nullptr) return std::nullopt;
  const auto seconds = [keys](std::string_view key, std::chrono::milliseconds& time) {
    const HLValue* value = HLDictionaryValue(*keys, key);
    const std::int64_t* number = value == nullptr ? nullptr : value->as<std::int64_t>();
    constexpr std::int64_t kMost = 1'000'000;
    if (number == nullptr || *number < 0 || *number > kMost) return false;
    time = std::chrono::seconds(*number);
    return true;
  };
  HLShowTimes times;
  const bool areKnown = seconds("timeout-low", times.low) && seconds("timeout", times.normal) &&
                        seconds("timeout-critical", times.critical);
  return areKnown ? std::optional(times) : std::nullopt;
}

bool HLIsYoungEnough(const HLOpenNotification& open, const HLShowTimes& times,
                     std::chrono::steady_clock::time_point now) {
  if (!open.posted.expireTimeout) return false;
  std::chrono::milliseconds limit(*open.posted.expireTimeout);
  if (limit.count() <= 0) {
    limit = open.posted.urgency == 0 ? times.low : open.posted.urgency == 2 ? times.critical : times.normal;
  }
  return limit.count() == 0 || now - open.time < limit;
}

std::vector<HLOpenNotificationRef> HLMostUrgent(std::vector<HLOpenNotificationRef> open, std::size_t count) {
  std::erase_if(open, [](const HLOpenNotificationRef& one) { return one->name.number == 0; });
  if (open.size() <= count) return open;
  std::vector<HLOpenNotificationRef> shown = open;
  std::stable_sort(shown.begin(), shown.end(), [](const HLOpenNotificationRef& a, const HLOpenNotificationRef& b) {
    return a->posted.urgency > b->posted.urgency;
  });
  shown.resize(count);
  std::erase_if(open, [&shown](const HLOpenNotificationRef& one) {
    return std::find(shown.begin(), shown.end(), one) == shown.end();
  });
  return open;
}
