#include "platform/sim/services/application_services.h"

#include <algorithm>

#include "platform/sim/services/menu_bar_application.h"

namespace {

// Without the query and the fragment.
std::string pathOf(const std::string& address) {
  const std::size_t scheme = address.find("://");
  const std::size_t host = scheme == std::string::npos ? 0 : scheme + 3;
  const std::size_t end = address.find_first_of("?#", host);
  const std::size_t path = address.find('/', host);
  return path >= end ? "/" : address.substr(path, end - path);
}

void put(HLDictionary& dictionary, std::string_view key, const HLValue& value) {
  for (HLDictionaryEntry& entry : dictionary) {
    if (entry.key == key) {
      entry.value = value;
      return;
    }
  }
  dictionary.push_back({std::string(key), value});
}

}  // namespace

std::size_t HLSimAlerts::runModal(const HLAlert& alert) {
  const std::vector<std::string>& answers = desktop_.scene->services.alertAnswers;
  const std::string answer = shown_.size() < answers.size() ? answers[shown_.size()] : alert.buttons.front();
  shown_.push_back({alert, answer});
  const auto found = std::find(alert.buttons.begin(), alert.buttons.end(), answer);
  if (found == alert.buttons.end()) {
    application_.fail("services.alertAnswers: the alert \"" + alert.title + "\" has no button \"" + answer + "\"");
    return alert.buttons.size() - 1;
  }
  return static_cast<std::size_t>(found - alert.buttons.begin());
}

std::uint32_t HLSimHotKeyModifiers(std::uint64_t modifiers) {
  std::uint32_t numbers = 0;
  if ((modifiers & HLModifierCommand) != 0) numbers |= HLHotKeyCommand;
  if ((modifiers & HLModifierShift) != 0) numbers |= HLHotKeyShift;
  if ((modifiers & HLModifierOption) != 0) numbers |= HLHotKeyOption;
  if ((modifiers & HLModifierControl) != 0) numbers |= HLHotKeyControl;
  return numbers;
}

HLHotKeyRegistration HLSimHotKeys::registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                  const HLHotKeyIdentity& identity) {
  for (const HLSceneRefusedHotKey& refused : desktop_.scene->services.refusedHotKeys) {
    if (refused.code != code || HLSimHotKeyModifiers(refused.modifiers) != modifiers) continue;
    if (refused.status != 0) return {HLHotKeyStatus{refused.status}, nullptr};
  }
  return {HLHotKeyStatus::success, std::make_unique<HLSimHotKey>(registered_, code, modifiers, identity)};
}

const HLSimHotKey* HLSimHotKeys::find(std::uint32_t code, std::uint32_t modifiers) const {
  const auto found = std::find_if(registered_.begin(), registered_.end(), [&](const HLSimHotKey* hotKey) {
    return hotKey->code == code && hotKey->modifiers == modifiers;
  });
  return found == registered_.end() ? nullptr : *found;
}

void HLSimHotKeys::press(const std::optional<HLHotKeyIdentity>& identity) {
  if (handler_) answer_ = handler_(identity);
}

HLLoginItemStatus HLSimLoginItem::status() {
  return status_.value_or(static_cast<HLLoginItemStatus>(desktop_.scene->services.loginItem.status));
}

HLLoginItemOutcome HLSimLoginItem::registerItem() {
  const HLSceneLoginItem& item = desktop_.scene->services.loginItem;
  if (item.registerError) return {false, item.registerError};
  status_ = static_cast<HLLoginItemStatus>(item.statusAfterRegister);
  return {true, std::nullopt};
}

HLLoginItemOutcome HLSimLoginItem::unregisterItem() {
  const HLSceneLoginItem& item = desktop_.scene->services.loginItem;
  if (item.unregisterError) return {false, item.unregisterError};
  status_ = HLLoginItemStatus::notRegistered;
  return {true, std::nullopt};
}

void HLSimUserDefaults::registerDefaults(const HLDictionary& defaults) {
  for (const HLDictionaryEntry& entry : defaults) put(registered_, entry.key, entry.value);
}

HLValue HLSimUserDefaults::value(std::string_view key) {
  if (const HLValue* value = HLDictionaryValue(stored(), key)) return *value;
  const HLValue* fallback = HLDictionaryValue(registered_, key);
  return fallback == nullptr ? HLValue() : *fallback;
}

void HLSimUserDefaults::setValue(std::string_view key, const HLValue& value) {
  if (!changed_) changed_ = desktop_.scene->defaults;
  put(*changed_, key, value);
}

void HLSimHTTPClient::get(const std::string& address, double timeout, std::function<void(HLHTTPAnswer)> answer) {
  HLHTTPAnswer given;
  double seconds = 0;
  for (const HLSceneHTTPAnswer& known : desktop_.scene->services.http) {
    if (known.path != pathOf(address)) continue;
    given = known.answer;
    seconds = known.seconds;
  }
  if (seconds > timeout) {
    given = {};
    seconds = timeout;
  }
  runLoop_.postToMainQueueAfter(seconds, [answer = std::move(answer), given] { answer(given); });
}

bool HLSimWorkspace::openAddress(const std::string& address) {
  const std::optional<std::vector<std::string>>& opens = desktop_.scene->services.opens;
  const bool canOpen = !opens || std::any_of(opens->begin(), opens->end(), [&address](const std::string& prefix) {
    return address.starts_with(prefix);
  });
  if (canOpen) opened_.push_back(address);
  return canOpen;
}
