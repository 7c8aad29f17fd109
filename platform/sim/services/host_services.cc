#include "platform/sim/services/host_services.h"

#include <utility>

std::optional<HLDictionary> HLSimPropertyLists::readDictionary(const std::string& path) {
  const HLValue* list = HLDictionaryValue(desktop_.scene->propertyLists, path);
  const HLDictionary* dictionary = list != nullptr ? list->as<HLDictionary>() : nullptr;
  return dictionary != nullptr ? std::optional(*dictionary) : std::nullopt;
}

void HLSimUserNotifications::requestAuthorization(
    std::function<void(bool granted, std::optional<std::string> error)> answer) {
  const HLSceneUserNotifications& service = desktop_.scene->services.userNotifications;
  if (service.permission == HLScenePermission::silent) return;
  answer(service.permission == HLScenePermission::granted, service.error);
}

void HLSimUserNotifications::add(const HLUserNotification& notification,
                                 std::function<void(std::optional<std::string> error)> answer) {
  {
    const HLSimLock lock(*desktop_.clock);
    desktop_.notifications.push_back(notification);
  }
  for (const auto& [identifier, error] : desktop_.scene->services.userNotifications.addErrors) {
    if (identifier == notification.identifier) return answer(error);
  }
  answer(std::nullopt);
}
