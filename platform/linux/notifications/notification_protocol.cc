#include "platform/linux/notifications/notification_protocol.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/session/bus.h"

namespace {

using Texts = std::vector<HLShownTexts>;
using Names = std::vector<std::optional<HLNotificationName>>;

// ---------------------------------------------------------------------------------------------------------------------
// The answering side

// Reads "aas". Returns nullopt if there are too many banners or texts, or a text is too long.
std::optional<Texts> readTexts(sd_bus_message* message) {
  Texts all;
  if (sd_bus_message_enter_container(message, 'a', "as") < 0) return std::nullopt;
  while (sd_bus_message_enter_container(message, 'a', "s") > 0) {
    HLShownTexts texts;
    const char* text = nullptr;
    while (sd_bus_message_read_basic(message, 's', &text) > 0) {
      if (texts.size() == HLMostTextsAsked || std::string_view(text).size() > HLLongestTextAsked) return std::nullopt;
      texts.emplace_back(text);
    }
    if (all.size() == HLMostBannersAsked) return std::nullopt;
    all.push_back(std::move(texts));
    sd_bus_message_exit_container(message);
  }
  if (sd_bus_message_exit_container(message) < 0) return std::nullopt;
  return all;
}

int appendNames(sd_bus_message* reply, const Names& names) {
  sd_bus_message_open_container(reply, 'a', "(uss)");
  for (const std::optional<HLNotificationName>& name : names) {
    const HLNotificationName known = name.value_or(HLNotificationName{});
    sd_bus_message_append(reply, "(uss)", known.number, known.application.c_str(), known.identifier.c_str());
  }
  return sd_bus_message_close_container(reply);
}

int answerMatch(sd_bus_message* question, HLOpenNotifications& answers) {
  const std::optional<Texts> banners = readTexts(question);
  if (!banners) return sd_bus_reply_method_errorf(question, SD_BUS_ERROR_LIMITS_EXCEEDED, "too many or too long texts");
  sd_bus_message* reply = nullptr;
  if (const int made = sd_bus_message_new_method_return(question, &reply); made < 0) return made;
  const HLBusMessage owner(reply);
  const int appended = appendNames(reply, answers.match(*banners));
  return appended < 0 ? appended : sd_bus_send(nullptr, reply, nullptr);
}

int answerShown(sd_bus_message* question, HLOpenNotifications& answers) {
  const std::optional<std::vector<HLListedNotification>> shown = answers.shown();
  sd_bus_message* reply = nullptr;
  if (const int made = sd_bus_message_new_method_return(question, &reply); made < 0) return made;
  const HLBusMessage owner(reply);
  sd_bus_message_append(reply, "b", shown ? 1 : 0);
  sd_bus_message_open_container(reply, 'a', "(us)");
  for (const HLListedNotification& one : shown.value_or(std::vector<HLListedNotification>{})) {
    sd_bus_message_append(reply, "(us)", one.name.number, one.application.c_str());
  }
  const int closed = sd_bus_message_close_container(reply);
  return closed < 0 ? closed : sd_bus_send(nullptr, reply, nullptr);
}

int answer(sd_bus_message* question, void* data, sd_bus_error*) {
  HLOpenNotifications& answers = *static_cast<HLOpenNotifications*>(data);
  const auto asks = [question](const char* member, const char* signature) {
    return sd_bus_message_is_method_call(question, HLNotificationsName, member) > 0 &&
           sd_bus_message_has_signature(question, signature) > 0;
  };
  if (asks("Match", "aas")) return answerMatch(question, answers);
  if (asks("Shown", "")) return answerShown(question, answers);
  return 0;  // the library answers with an error
}

// ---------------------------------------------------------------------------------------------------------------------
// The asking side

HLBusCall questionNamed(const char* member) {
  return {HLNotificationsName, HLNotificationsPath, HLNotificationsName, member};
}

// What the answering side would refuse is asked as no texts, which match nothing.
int appendTexts(sd_bus_message* question, const Texts& all) {
  sd_bus_message_open_container(question, 'a', "as");
  for (std::size_t i = 0; i < std::min(all.size(), HLMostBannersAsked); ++i) {
    const HLShownTexts& texts = all[i];
    const bool isAskable =
        texts.size() <= HLMostTextsAsked && std::all_of(texts.begin(), texts.end(), [](const std::string& text) {
          return text.size() <= HLLongestTextAsked && text.find('\0') == std::string::npos;
        });
    sd_bus_message_open_container(question, 'a', "s");
    if (isAskable) {
      for (const std::string& text : texts) sd_bus_message_append(question, "s", text.c_str());
    }
    sd_bus_message_close_container(question);
  }
  return sd_bus_message_close_container(question);
}

}  // namespace

int HLServeNotifications(sd_bus* bus, HLOpenNotifications& answers) {
  const int added = sd_bus_add_object(bus, nullptr, HLNotificationsPath, &answer, &answers);
  // Queued behind a process that has the name; takes over when that one ends.
  return added < 0 ? added : sd_bus_request_name(bus, HLNotificationsName, SD_BUS_NAME_QUEUE);
}

Names HLAskedNotifications::match(const Texts& banners) {
  Names names(banners.size());
  const HLBusReply reply = connection_.callWith(
      questionNamed("Match"), [&banners](sd_bus_message* question) { return appendTexts(question, banners); });
  if (!reply || sd_bus_message_enter_container(reply.message.get(), 'a', "(uss)") < 0) return names;
  std::uint32_t number = 0;
  const char* application = nullptr;
  const char* identifier = nullptr;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (sd_bus_message_read(reply.message.get(), "(uss)", &number, &application, &identifier) <= 0) break;
    if (number != 0 || *identifier != '\0') names[i] = HLNotificationName{number, application, identifier};
  }
  return names;
}

std::optional<std::vector<HLListedNotification>> HLAskedNotifications::shown() {
  const HLBusReply reply = connection_.call(questionNamed("Shown"));
  int isKnown = 0;
  if (!reply || sd_bus_message_read_basic(reply.message.get(), 'b', &isKnown) <= 0 || isKnown == 0 ||
      sd_bus_message_enter_container(reply.message.get(), 'a', "(us)") < 0) {
    return std::nullopt;
  }
  std::vector<HLListedNotification> shown;
  std::uint32_t number = 0;
  const char* application = nullptr;
  while (sd_bus_message_read(reply.message.get(), "(us)", &number, &application) > 0) {
    shown.push_back({{number, "", ""}, application, "", ""});
  }
  return shown;
}
