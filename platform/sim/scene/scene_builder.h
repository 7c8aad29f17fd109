// Reading what a desktop is made of: applications, elements, events.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/sim/scene/scene.h"
#include "platform/sim/scene/scene_source.h"

class HLSceneBuilder {
 public:
  HLSceneBuilder(HLSceneSource& source, HLScene& scene) : source_(source), scene_(scene) {}

  [[nodiscard]] const HLSceneApplication* application(const HLSceneSpot& spot);
  [[nodiscard]] HLSceneTimelineEvent timelineEvent(const HLSceneSpot& spot);

  // Reads the elements that the calls above have met, and checks that every reference leads to an element.
  void finish();

 private:
  // An element that is known to be there and is still to be read. Nesting costs no stack this way.
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

  void readPending();
  void readElement(const HLSceneSpot& spot, HLSceneElement& element);
  void readAttributes(const HLSceneSpot& spot, HLSceneElement& element);
  [[nodiscard]] HLSceneElement* promiseElement(const HLSceneSpot& spot, std::optional<std::int64_t> repetition);
  // The members of a list that one of the scene's stands for.
  void readMember(const HLSceneSpot& spot, std::vector<HLSceneValue>& list);
  [[nodiscard]] std::vector<HLSceneValue> memberList(const HLSceneSpot& spot);
  [[nodiscard]] HLSceneValue attributeValue(const HLSceneSpot& spot, int depth = 0);
  [[nodiscard]] HLSceneReaction reaction(const HLSceneSpot& spot);
  [[nodiscard]] std::vector<std::pair<std::string, HLAXError>> errorCodes(const HLSceneSpot& spot);

  // The event that the spot holds; a timeline's has a moment too.
  [[nodiscard]] HLSceneEvent event(const HLSceneSpot& spot, bool ofTimeline);
  [[nodiscard]] HLSceneAdd addEvent(const HLSceneSpot& spot);
  [[nodiscard]] HLSceneEvent setEvent(const HLSceneSpot& spot);
  void expectKeys(const HLSceneSpot& spot, bool ofTimeline, const std::vector<std::string_view>& keys);

  [[nodiscard]] HLSceneId reference(const HLSceneSpot& spot);
  [[nodiscard]] HLSceneId definition(const HLSceneSpot& spot);
  [[nodiscard]] Id& identity(const std::string& name, const HLSceneSpot& spot);

  HLSceneSource& source_;
  HLScene& scene_;
  std::map<std::string, Id> ids_;
  std::vector<const std::string*> usedIds_;  // in the order in which they were met
  std::vector<Pending> pending_;             // the next one last
  int relaunchDepth_ = 0;
};
