#include "platform/sim/services/record.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <set>

#include "platform/sim/scene/scene_json.h"
#include "platform/text.h"

namespace {

double toTheMillisecond(double seconds) { return std::round(seconds * 1000) / 1000; }

// Writes whole numbers without a fraction.
HLJson jsonNumber(double number) {
  const auto whole = static_cast<std::int64_t>(number);
  return static_cast<double>(whole) == number ? HLJson(whole) : HLJson(number);
}

HLJson observers(const HLSimWorld& world) {
  HLJson list = HLJson::array();
  for (const auto& observer : world.observers()) {
    HLJson names = HLJson::array();
    std::set<std::string> seen;
    for (const auto& [name, node] : observer->names) {
      if (seen.insert(name).second) names.push_back(name);
    }
    list.push_back({{"pid", observer->application->record.pid}, {"notifications", std::move(names)}});
  }
  return list;
}

HLJson actions(const HLSimWorld& world) {
  HLJson list = HLJson::array();
  for (const HLSimulatedAction& action : world.actions()) {
    HLJson entry;
    entry["at"] = toTheMillisecond(action.at);
    entry["element"] = action.element ? HLJson(*action.element) : HLJson(nullptr);
    entry["action"] = HLEncodableText(action.action);
    entry["code"] = action.code;
    list.push_back(std::move(entry));
  }
  return list;
}

HLJson notifications(const HLSimDesktop& desktop) HL_REQUIRES(desktop.clock) {
  HLJson list = HLJson::array();
  for (const HLUserNotification& notification : desktop.notifications) {
    list.push_back({{"identifier", notification.identifier},
                    {"title", notification.title},
                    {"body", notification.body},
                    {"delay", notification.delay},
                    {"sound", notification.sound}});
  }
  return list;
}

// The user interface

HLJson jsonFrom(const HLValue& value) {
  if (const bool* truth = value.as<bool>()) return *truth;
  if (const std::int64_t* integer = value.as<std::int64_t>()) return *integer;
  if (const double* number = value.as<double>()) return *number;
  if (const std::string* text = value.as<std::string>()) return *text;
  if (const HLArray* array = value.as<HLArray>()) {
    HLJson list = HLJson::array();
    for (const HLValue& member : *array) list.push_back(jsonFrom(member));
    return list;
  }
  if (const HLDictionary* dictionary = value.as<HLDictionary>()) {
    HLJson object = HLJson::object();
    for (const HLDictionaryEntry& entry : *dictionary) object[entry.key] = jsonFrom(entry.value);
    return object;
  }
  return nullptr;
}

HLJson statusItem(const HLSimStatusItem& item) {
  HLJson made = {{"title", item.title()}, {"image", nullptr}, {"template", false}, {"imageDescription", nullptr}};
  if (item.image()) {
    made["image"] = item.image()->name;
    made["template"] = item.image()->isTemplate;
    made["imageDescription"] = item.image()->accessibilityDescription;
  }
  made["toolTip"] = item.toolTip();
  return made;
}

HLJson menu(const HLSimStatusItem& statusItem) {
  HLJson list = HLJson::array();
  for (const HLSimStatusItem::Item& item : statusItem.items()) {
    if (item.what.title.empty()) {
      list.push_back({{"separator", true}});
    } else {
      list.push_back({{"title", item.what.title}, {"key", item.what.keyEquivalent}, {"state", item.on ? "on" : "off"}});
    }
  }
  return list;
}

const char* nameOf(HLFontWeight weight) {
  switch (weight) {
    case HLFontWeight::regular:
      return "regular";
    case HLFontWeight::medium:
      return "medium";
    case HLFontWeight::semibold:
      return "semibold";
  }
  return "";
}

const char* nameOf(HLTextColor color) {
  switch (color) {
    case HLTextColor::label:
      return "label";
    case HLTextColor::secondary:
      return "secondary";
    case HLTextColor::green:
      return "green";
    case HLTextColor::orange:
      return "orange";
  }
  return "";
}

HLJson control(const HLSimWindow::Control& control) {
  if (const auto* label = std::get_if<HLLabel>(&control.what)) {
    return {{"label", label->text},
            {"size", jsonNumber(label->size)},
            {"weight", nameOf(label->weight)},
            {"color", nameOf(label->color)}};
  }
  if (const auto* button = std::get_if<HLButton>(&control.what)) {
    return {{"button", button->title}, {"key", button->keyEquivalent}, {"enabled", control.enabled}};
  }
  return {{"checkBox", std::get<HLCheckBox>(control.what).title}, {"on", control.on}, {"enabled", control.enabled}};
}

HLJson stackItem(const HLSimWindow::Item& item) {
  HLJson made;
  if (item.isRow) {
    made["row"] = HLJson::array();
    for (const HLSimWindow::Control& member : item.controls) made["row"].push_back(control(member));
    made["spacing"] = jsonNumber(item.spacing);
  } else {
    made = control(item.controls.front());
  }
  made["after"] = jsonNumber(item.after);
  made["fullWidth"] = item.fullWidth;
  return made;
}

HLJson windows(const HLSimWindows& windows) {
  HLJson list = HLJson::array();
  for (const HLSimWindow* window : windows.all()) {
    HLJson content = HLJson::array();
    for (const HLSimWindow::Item& item : window->items()) content.push_back(stackItem(item));
    HLJson made = {{"title", window->title()},
                   {"visible", window->isVisible()},
                   {"key", window == windows.key()},
                   {"width", jsonNumber(window->width())}};
    made["height"] = window->height() ? jsonNumber(*window->height()) : HLJson(nullptr);
    made["content"] = std::move(content);
    list.push_back(std::move(made));
  }
  return list;
}

HLJson alerts(const HLSimAlerts& alerts) {
  HLJson list = HLJson::array();
  for (const HLSimAlerts::Shown& shown : alerts.shown()) {
    list.push_back({{"title", shown.alert.title},
                    {"message", shown.alert.message},
                    {"buttons", shown.alert.buttons},
                    {"answer", shown.answer}});
  }
  return list;
}

HLJson hotKey(const HLSimHotKeys& hotKeys) {
  const HLSimHotKey* registered = hotKeys.registered();
  if (registered == nullptr) return nullptr;
  return {{"code", registered->code}, {"modifiers", registered->modifiers}};
}

HLJson dump(const HLSimDesktop& desktop, HLSimUserInterface& interface) HL_REQUIRES(desktop.clock) {
  HLJson made;
  made["at"] = toTheMillisecond(HLSecondsFromMicroseconds(desktop.clock->now()));
  made["statusItem"] = statusItem(interface.statusItem);
  made["menu"] = menu(interface.statusItem);
  made["windows"] = windows(interface.windows);
  made["alerts"] = alerts(interface.alerts);
  made["appearance"] = interface.application.isDark() ? "dark" : "system";
  made["hotKey"] = hotKey(interface.hotKeys);
  const std::optional<HLHotKeyStatus> answer = interface.hotKeys.answer();
  made["hotKeyAnswer"] = answer ? HLJson(static_cast<std::int32_t>(*answer)) : HLJson(nullptr);
  made["recording"] = interface.application.hasKeyMonitor();
  made["openedAddresses"] = interface.workspace.opened();
  made["loginItemStatus"] = static_cast<std::int64_t>(interface.loginItem.status());
  made["notifications"] = notifications(desktop);
  made["beeps"] = interface.application.beeps();
  made["observers"] = observers(*desktop.world);
  made["timers"] = interface.runLoop.timers();
  made["defaults"] = jsonFrom(interface.userDefaults.stored());
  return made;
}

std::string lineOf(const HLJson& json) { return json.dump(-1, ' ', false, HLJson::error_handler_t::replace); }

}  // namespace

std::string HLDumpLine(const HLSimDesktop& desktop, HLSimUserInterface& interface) {
  return lineOf(dump(desktop, interface));
}

std::string HLRecordLine(const HLSimDesktop& desktop, HLSimUserInterface& interface) {
  HLJson record = dump(desktop, interface);
  record["actions"] = actions(*desktop.world);
  record["present"] = desktop.world->presentElements();
  return lineOf(record);
}

bool HLAppendRecord(const std::string& path, const std::string& line) {
  std::ofstream file(path, std::ios::app | std::ios::binary);
  file << line + '\n' << std::flush;
  if (!file) std::cerr << path << ": " << std::strerror(errno) << '\n';
  return static_cast<bool>(file);
}
