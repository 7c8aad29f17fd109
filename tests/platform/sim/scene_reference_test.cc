// docs/scenes.md has the tables of scene_table.h, each between "<!-- keys: NAME -->" and "<!-- end -->". With
// HUSHLET_RENEW_GOLDENS set, this test writes them; tools/renew-goldens does that.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/sim/scene/scene_table.h"

namespace {

constexpr std::string_view kBegin = "<!-- keys: ";
constexpr std::string_view kEnd = "<!-- end -->";

template <class Object>
std::string table() {
  std::string text = "| key | type | default | meaning |\n|---|---|---|---|\n";
  for (const HLSceneKey<Object>& key : HLKeysOf(static_cast<const Object*>(nullptr))) {
    text += "| `" + std::string(key.key) + "` | " + std::string(key.type.name) + " | " + std::string(key.otherwise) +
            " | " + std::string(key.meaning) + " |\n";
  }
  return text;
}

template <class Event>
std::string keyOf(const HLSceneKey<Event>& key) {
  const std::string otherwise = key.isRequired() ? "" : " (default " + std::string(key.otherwise) + ")";
  return "`" + std::string(key.key) + "`: " + std::string(key.type.name) + otherwise;
}

// The key with the event's name comes first.
template <class Event>
std::string row(const HLSceneEventKind<Event>& kind) {
  std::string name;
  std::string others;
  for (const HLSceneKey<Event>& key : kind.keys) {
    if (key.key == kind.name) {
      name = keyOf(key);
    } else {
      others += "; " + keyOf(key);
    }
  }
  return "| " + name + others + " | " + std::string(kind.meaning) + " |\n";
}

std::map<std::string, std::string> reference() {
  std::map<std::string, std::string> tables = {{"scene", table<HLScene>()},
                                               {"bundle", table<HLSceneBundle>()},
                                               {"application", table<HLSceneApplication>()},
                                               {"relaunch", table<HLSceneRelaunch>()},
                                               {"element", table<HLSceneElement>()},
                                               {"reaction", table<HLSceneReaction>()},
                                               {"shortcut", table<HLSceneShortcut>()},
                                               {"hotKey", table<HLHotKeyIdentity>()},
                                               {"key", table<HLKeyEvent>()},
                                               {"services", table<HLSceneServices>()},
                                               {"refusedHotKey", table<HLSceneRefusedHotKey>()},
                                               {"loginItem", table<HLSceneLoginItem>()},
                                               {"userNotifications", table<HLSceneUserNotifications>()},
                                               {"http", table<HLSceneHTTPAnswer>()}};
  for (const char* name : {"events", "user events"}) tables[name] = "| event | what happens |\n|---|---|\n";
  HLForEachEvent([&tables]<class Event>(const Event* event) {
    const bool ofUser = std::is_constructible_v<HLSceneUserEvent, Event>;
    tables[ofUser ? "user events" : "events"] += row(HLKindOf(event));
  });
  return tables;
}

// Replaces the tables in the document, and returns those that were there.
std::map<std::string, std::string> replaceTables(std::string& document) {
  const std::map<std::string, std::string> tables = reference();
  std::map<std::string, std::string> found;
  std::string* table = nullptr;
  std::istringstream lines(std::exchange(document, ""));
  for (std::string line; std::getline(lines, line);) {
    if (line == kEnd) table = nullptr;
    (table == nullptr ? document : *table) += line + "\n";
    if (!line.starts_with(kBegin)) continue;
    const std::string name = line.substr(kBegin.size(), line.rfind(" -->") - kBegin.size());
    table = &found[name];
    if (tables.contains(name)) document += tables.at(name);
  }
  return found;
}

TEST(SceneReference, HasEveryKey) {
  const std::string path = HUSHLET_SCENE_DOCUMENT;
  std::stringstream file;
  file << std::ifstream(path).rdbuf();
  std::string document = file.str();
  const std::map<std::string, std::string> found = replaceTables(document);
  if (std::getenv("HUSHLET_RENEW_GOLDENS") != nullptr) {
    std::ofstream(path, std::ios::binary) << document;
    return;
  }
  EXPECT_THAT(found, testing::ContainerEq(reference())) << "run tools/renew-goldens";
}

}  // namespace
