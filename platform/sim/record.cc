#include "platform/sim/record.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <set>

#include "platform/sim/json_document.h"
#include "platform/text.h"

namespace {

double toTheMillisecond(double seconds) { return std::round(seconds * 1000) / 1000; }

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

HLJson notifications(const HLSimDesktop& desktop) {
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

}  // namespace

std::string HLRecordLine(const HLSimDesktop& desktop) {
  HLJson record;
  record["at"] = toTheMillisecond(static_cast<double>(desktop.clock->now()) / 1e6);
  record["notifications"] = notifications(desktop);
  record["observers"] = observers(*desktop.world);
  record["actions"] = actions(*desktop.world);
  record["present"] = desktop.world->presentElements();
  return record.dump(-1, ' ', false, HLJson::error_handler_t::replace);
}

bool HLAppendRecord(const std::string& path, const std::string& line) {
  std::ofstream file(path, std::ios::app | std::ios::binary);
  file << line + '\n' << std::flush;
  if (!file) std::cerr << path << ": " << std::strerror(errno) << '\n';
  return static_cast<bool>(file);
}
