#include "platform/sim/scene/scene_reader.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>

#include "platform/sim/scene/scene_builder.h"
#include "platform/sim/scene/scene_services.h"
#include "platform/sim/scene/scene_source.h"

namespace {

HLSceneBundle readBundle(HLSceneSource& source, const HLSceneSpot& spot) {
  HLSceneBundle bundle;
  source.expectObject(spot, {"path", "executablePath", "identifier", "info"});
  if (const auto key = source.find(spot, "path")) bundle.path = source.string(*key);
  if (const auto key = source.find(spot, "executablePath")) bundle.executablePath = source.string(*key);
  if (const auto key = source.find(spot, "identifier")) bundle.identifier = source.string(*key);
  if (const auto key = source.find(spot, "info")) bundle.info = source.dictionary(*key);
  return bundle;
}

HLSceneApplicationSupport readApplicationSupport(HLSceneSource& source, const HLSceneSpot& spot) {
  if (spot.json->is_null()) return std::monostate();
  if (!spot.json->is_string()) source.fail(spot, "expected a string or null");
  return source.failed() ? std::string() : source.string(spot);
}

void readProcess(HLSceneSource& source, const HLSceneSpot& root, HLScene& scene) {
  if (const auto key = source.find(root, "trusted")) scene.trusted = source.boolean(*key);
  if (const auto key = source.find(root, "clock")) scene.realClock = source.word(*key, {"virtual", "real"}) == "real";
  if (const auto key = source.find(root, "bundle")) scene.bundle = readBundle(source, *key);
  if (const auto key = source.find(root, "arguments")) scene.arguments = source.strings(*key);
  if (const auto key = source.find(root, "home")) scene.home = source.string(*key);
  if (const auto key = source.find(root, "applicationSupport")) {
    scene.applicationSupport = readApplicationSupport(source, *key);
  }
  if (const auto key = source.find(root, "parent")) scene.parent = source.pid(*key);
  if (const auto key = source.find(root, "propertyLists")) scene.propertyLists = source.dictionary(*key);
  if (const auto key = source.find(root, "defaults")) scene.defaults = source.dictionary(*key);
  if (const auto key = source.find(root, "services")) scene.services = HLReadServices(source, *key);
  if (const auto key = source.find(root, "record")) scene.record = source.string(*key);
}

void readDesktop(HLSceneSource& source, const HLSceneSpot& root, HLScene& scene) {
  HLSceneBuilder builder(source, scene);
  if (const auto key = source.find(root, "applications")) {
    std::set<std::int32_t> pids;
    for (const HLSceneSpot& member : source.members(*key)) {
      const HLSceneApplication* application = builder.application(member);
      if (source.failed()) return;
      if (!pids.insert(application->pid).second) {
        source.fail(source.require(member, "pid"), "another application has this pid");
      }
      scene.applications.push_back(application);
    }
  }
  if (const auto key = source.find(root, "timeline")) {
    for (const HLSceneSpot& member : source.members(*key)) scene.timeline.push_back(builder.timelineEvent(member));
  }
  builder.finish();
}

}  // namespace

std::string HLOneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      line += "\\n";
    } else if (byte < 0x20 || byte == 0x7F) {
      std::array<char, 8> escaped{};
      std::snprintf(escaped.data(), escaped.size(), "\\u%04x", byte);
      line += escaped.data();
    } else {
      line += c;
    }
  }
  return line;
}

std::int32_t HLScene::unusedPid(std::int32_t first) const {
  const auto isUsed = [this](std::int32_t pid) {
    return std::any_of(allApplications.begin(), allApplications.end(),
                       [pid](const HLSceneApplication& application) { return application.pid == pid; });
  };
  while (isUsed(first)) ++first;
  return first;
}

std::variant<std::unique_ptr<const HLScene>, std::string> HLReadScene(std::string_view text, const std::string& name) {
  const auto document = HLParseJson(text);
  if (const auto* error = std::get_if<std::string>(&document)) return HLOneLine(name + ": " + *error);
  HLSceneSource source(std::get<HLJson>(document));
  auto scene = std::make_unique<HLScene>();
  scene->name = name;
  source.expectObject(
      source.root(), {"applications", "trusted", "clock", "bundle", "arguments", "home", "applicationSupport", "parent",
                      "propertyLists", "defaults", "services", "timeline", "record"});
  if (!source.failed()) readProcess(source, source.root(), *scene);
  if (!source.failed()) readDesktop(source, source.root(), *scene);
  if (const auto& error = source.error()) return HLOneLine(name + ": " + *error);
  return std::unique_ptr<const HLScene>(std::move(scene));
}
