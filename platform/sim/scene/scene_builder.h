// Reads the objects of a scene by their tables, and gives ids their numbers.
#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/sim/scene/scene.h"
#include "platform/sim/scene/scene_source.h"
#include "platform/sim/scene/scene_table.h"

class HLSceneBuilder : public HLSceneSource {
 public:
  HLSceneBuilder(const HLJson& document, HLScene& scene) : HLSceneSource(document), scene_(scene) {}

  // Reads the whole document. On a mistake error() is set and the scene is of no use.
  void read();

  // For the types of the tables:

  template <class Object>
  void readObject(const HLSceneSpot& spot, Object& object) {
    expectKeys(spot, HLKeysOf(&object));
    readKeys(spot, HLKeysOf(&object), object);
  }
  // Fails unless the spot has an object with no other keys than these.
  template <class Object>
  void expectKeys(const HLSceneSpot& spot, HLSceneKeys<Object> keys, std::string_view further = "") {
    expectObject(spot, [&](std::string_view name) {
      const auto isNamed = [name](const HLSceneKey<Object>& key) { return key.key == name; };
      return std::any_of(keys.begin(), keys.end(), isNamed) || (!further.empty() && name == further);
    });
  }

  [[nodiscard]] const HLSceneApplication* application(const HLSceneSpot& spot);
  [[nodiscard]] std::vector<const HLSceneApplication*> applications(const HLSceneSpot& spot);
  [[nodiscard]] HLSceneRelaunch relaunch(const HLSceneSpot& spot);
  [[nodiscard]] HLSceneTimelineEvent timelineEvent(const HLSceneSpot& spot);
  [[nodiscard]] std::vector<HLSceneEvent> effects(const HLSceneSpot& spot);
  [[nodiscard]] std::vector<HLSceneValue> memberList(const HLSceneSpot& spot);
  // Appends the member to `list`, a repeated one with all its repetitions.
  void member(const HLSceneSpot& spot, std::vector<HLSceneValue>& list);
  [[nodiscard]] HLSceneValue attributeValue(const HLSceneSpot& spot, int depth = 0);
  [[nodiscard]] std::vector<std::pair<std::string, HLAXError>> errorCodes(const HLSceneSpot& spot);
  [[nodiscard]] HLSceneId reference(const HLSceneSpot& spot);
  [[nodiscard]] HLSceneId definition(const HLSceneSpot& spot);

 private:
  // An element that was met and is read later, so that nesting costs no stack.
  struct Pending {
    HLSceneSpot spot;
    HLSceneElement* element = nullptr;
    std::optional<std::int64_t> repetition;
  };
  struct Id {
    HLSceneId number = -1;
    bool defined = false;
    HLSceneSpot firstUse;
  };

  template <class Object>
  void readKeys(const HLSceneSpot& spot, HLSceneKeys<Object> keys, Object& object) {
    for (const HLSceneKey<Object>& key : keys) {
      if (failed()) return;
      if (key.type.read == nullptr) continue;  // read elsewhere
      const std::optional<HLSceneSpot> found = key.isRequired() ? require(spot, key.key) : find(spot, key.key);
      if (found) key.type.read(*this, *found, object);
    }
  }

  [[nodiscard]] HLSceneEvent event(const HLSceneSpot& spot, std::string_view further);
  [[nodiscard]] HLSceneElement* promiseElement(const HLSceneSpot& spot, std::optional<std::int64_t> repetition);
  void readPending();
  void checkReferences();
  [[nodiscard]] Id& identity(const std::string& name, const HLSceneSpot& spot);

  HLScene& scene_;
  std::map<std::string, Id> ids_;
  std::vector<const std::string*> usedIds_;  // in the order in which they were met
  std::vector<Pending> pending_;             // the next one last
  int relaunchDepth_ = 0;
};
