#include "platform/linux/notifications/bus_events.h"

#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/session/bus.h"

namespace {

constexpr std::string_view kService = HLNotificationService;
constexpr std::string_view kNamedService = "org.gtk.Notifications";
constexpr std::string_view kBus = "org.freedesktop.DBus";

std::string_view viewOf(const char* text) { return text == nullptr ? std::string_view() : text; }

// Reads past a variant. Byte arrays, as of images, are passed over as a whole; other arrays cost time per element.
// Returns false if the variant has arrays of bytes in places where no image has them.
bool passOver(sd_bus_message* message, int depth = 0) {
  constexpr int kDeepest = 4;
  const char* contents = nullptr;
  if (depth > kDeepest || sd_bus_message_peek_type(message, nullptr, &contents) <= 0) return false;
  const std::string_view type = viewOf(contents);
  const void* bytes = nullptr;
  std::size_t size = 0;
  const auto readBytes = [&] { return sd_bus_message_read_array(message, 'y', &bytes, &size) >= 0; };
  const auto enter = [&](char kind, const char* signature) {
    return sd_bus_message_enter_container(message, kind, signature) > 0;
  };
  const auto leave = [&] { return sd_bus_message_exit_container(message) >= 0; };
  if (type == "ay") return enter('v', contents) && readBytes() && leave();
  if (type == "(iiibiiay)") {  // the pixels of an image
    return enter('v', contents) && enter('r', "iiibiiay") && sd_bus_message_skip(message, "iiibii") > 0 &&
           readBytes() && leave() && leave();
  }
  if (type == "(sv)") {  // an icon
    return enter('v', contents) && enter('r', "sv") && sd_bus_message_skip(message, "s") > 0 &&
           passOver(message, depth + 1) && leave() && leave();
  }
  const bool isKnown = type.size() == 1 || type.find_first_of("yv") == std::string_view::npos;
  return isKnown && type != "v" && sd_bus_message_skip(message, "v") > 0;
}

// Calls `take` with the key and the type of each entry of a dictionary; it reads the value, or returns false to have it
// passed over. Returns whether the whole dictionary was read.
template <class Take>
bool readEntries(sd_bus_message* message, const Take& take) {
  constexpr int kMostEntries = 64;
  if (sd_bus_message_enter_container(message, 'a', "{sv}") < 0) return false;
  for (int i = 0; i < kMostEntries; ++i) {
    const int entered = sd_bus_message_enter_container(message, 'e', "sv");
    if (entered == 0) return sd_bus_message_exit_container(message) >= 0;
    const char* key = nullptr;
    const char* contents = nullptr;
    if (entered < 0 || sd_bus_message_read_basic(message, 's', &key) <= 0 ||
        sd_bus_message_peek_type(message, nullptr, &contents) <= 0) {
      return false;
    }
    if (!take(viewOf(key), viewOf(contents)) && !passOver(message)) return false;
    if (sd_bus_message_exit_container(message) < 0) return false;
  }
  return false;
}

bool readHints(sd_bus_message* message, HLPostedNotification& posted) {
  return readEntries(message, [&](std::string_view key, std::string_view type) {
    std::uint8_t urgency = 0;
    if (key != "urgency" || type != "y" || sd_bus_message_read(message, "v", "y", &urgency) <= 0) return false;
    posted.urgency = urgency > 2 ? 2 : urgency;
    return true;
  });
}

void feedNotify(HLNotificationTable& table, sd_bus_message* message, HLCallIdentity call) {
  if (sd_bus_message_get_expect_reply(message) <= 0 || sd_bus_message_has_signature(message, "susssasa{sv}i") <= 0) {
    return;
  }
  const char* application = nullptr;
  const char* icon = nullptr;
  const char* summary = nullptr;
  const char* body = nullptr;
  std::uint32_t replaced = 0;
  if (sd_bus_message_read(message, "susss", &application, &replaced, &icon, &summary, &body) <= 0) return;
  HLPostedNotification posted;
  HLStoreNotificationText(viewOf(application), posted.application, posted.isCut);
  HLStoreNotificationText(viewOf(summary), posted.summary, posted.isCut);
  HLStoreNotificationText(viewOf(body), posted.body, posted.isCut);
  std::int32_t expires = 0;
  if (sd_bus_message_skip(message, "as") > 0 && readHints(message, posted) &&
      sd_bus_message_read_basic(message, 'i', &expires) > 0) {
    posted.expireTimeout = expires;
  }
  table.notifyCalled(std::move(call), std::move(posted));
}

// Reads the texts of a notification of org.gtk.Notifications.
void readNamedTexts(sd_bus_message* message, HLPostedNotification& posted) {
  const bool isWhole = readEntries(message, [&](std::string_view key, std::string_view type) {
    const char* text = nullptr;
    const bool isText = type == "s" && (key == "title" || key == "body");
    if (!isText || sd_bus_message_read(message, "v", "s", &text) <= 0) return false;
    HLStoreNotificationText(viewOf(text), key == "title" ? posted.summary : posted.body, posted.isCut);
    return true;
  });
  posted.isCut |= !isWhole;
}

void feedNamedCall(HLNotificationTable& table, sd_bus_message* message, HLNotificationTable::Time now) {
  const std::string_view member = viewOf(sd_bus_message_get_member(message));
  const bool adds = member == "AddNotification" && sd_bus_message_has_signature(message, "ssa{sv}") > 0;
  const bool removes = member == "RemoveNotification" && sd_bus_message_has_signature(message, "ss") > 0;
  const char* application = nullptr;
  const char* identifier = nullptr;
  if ((!adds && !removes) || sd_bus_message_read(message, "ss", &application, &identifier) <= 0) return;
  HLPostedNotification posted;
  std::string name;
  bool isNameCut = false;
  HLStoreNotificationText(viewOf(application), posted.application, isNameCut);
  HLStoreNotificationText(viewOf(identifier), name, isNameCut);
  if (isNameCut) return;  // it could not be removed by that name
  if (removes) return table.removeNamed(posted.application, name);
  readNamedTexts(message, posted);
  const std::string owner = posted.application;
  table.addNamed(owner, name, std::move(posted), now);
}

void feedCall(HLNotificationTable& table, sd_bus_message* message, HLNotificationTable::Time now) {
  const std::string_view destination = viewOf(sd_bus_message_get_destination(message));
  const std::string_view interface = viewOf(sd_bus_message_get_interface(message));
  const std::string_view member = viewOf(sd_bus_message_get_member(message));
  if (destination.empty()) return;
  if (interface == kNamedService) {
    if (destination == kNamedService || destination == table.namedServer()) feedNamedCall(table, message, now);
    return;
  }
  if (interface != kService || (destination != kService && destination != table.server())) return;
  HLCallIdentity call{std::string(viewOf(sd_bus_message_get_sender(message))), 0};
  sd_bus_message_get_cookie(message, &call.serial);
  std::uint32_t number = 0;
  if (member == "Notify") return feedNotify(table, message, std::move(call));
  if (member == "CloseNotification" && sd_bus_message_has_signature(message, "u") > 0 &&
      sd_bus_message_get_expect_reply(message) > 0 && sd_bus_message_read_basic(message, 'u', &number) > 0) {
    table.closeCalled(std::move(call), number);
  }
}

void feedReply(HLNotificationTable& table, sd_bus_message* message, HLNotificationTable::Time now) {
  if (viewOf(sd_bus_message_get_sender(message)) != table.server()) return;
  HLCallIdentity call{std::string(viewOf(sd_bus_message_get_destination(message))), 0};
  if (sd_bus_message_get_reply_cookie(message, &call.serial) < 0) return;
  if (sd_bus_message_is_method_error(message, nullptr) > 0) return table.refused(call);
  std::uint32_t number = 0;
  if (sd_bus_message_has_signature(message, "u") > 0) sd_bus_message_read_basic(message, 'u', &number);
  table.answered(call, number, now);
}

void feedSignal(HLNotificationTable& table, sd_bus_message* message) {
  const std::string_view sender = viewOf(sd_bus_message_get_sender(message));
  if (sender == kBus) {
    const char* name = nullptr;
    const char* before = nullptr;
    const char* after = nullptr;
    if (sd_bus_message_is_signal(message, kBus.data(), "NameOwnerChanged") <= 0 ||
        sd_bus_message_read(message, "sss", &name, &before, &after) <= 0) {
      return;
    }
    if (name == kService) table.setServer(after);
    if (name == kNamedService) table.setNamedServer(after);
    return;
  }
  std::uint32_t number = 0;
  std::uint32_t reason = 0;
  if (sender == table.server() && sd_bus_message_is_signal(message, kService.data(), "NotificationClosed") > 0 &&
      sd_bus_message_has_signature(message, "uu") > 0 && sd_bus_message_read(message, "uu", &number, &reason) > 0) {
    table.closed(number);
  }
}

}  // namespace

void HLFeedTable(HLNotificationTable& table, sd_bus_message* message, HLNotificationTable::Time now) {
  std::uint8_t type = 0;
  if (sd_bus_message_get_type(message, &type) < 0) return;
  switch (type) {
    case SD_BUS_MESSAGE_METHOD_CALL:
      return feedCall(table, message, now);
    case SD_BUS_MESSAGE_METHOD_RETURN:
    case SD_BUS_MESSAGE_METHOD_ERROR:
      return feedReply(table, message, now);
    case SD_BUS_MESSAGE_SIGNAL:
      return feedSignal(table, message);
    default:
      return;
  }
}
