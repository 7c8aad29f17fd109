#include "tests/swarm/shrink.h"

#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>
#include <vector>

#include "tests/swarm/workers.h"

namespace {

using Json = nlohmann::ordered_json;
using Pointer = Json::json_pointer;

class Shrinker {
 public:
  Shrinker(Plan plan, std::string folder) : plan_(std::move(plan)), folder_(std::move(folder)) {}

  Plan shrunk() {
    const std::vector<Violation> violations = RunApart(plan_, folder_);
    if (violations.empty()) return plan_;
    check_ = violations.front().check;
    scene_ = Json::parse(plan_.scene);
    bool smaller = true;
    while (smaller) {
      smaller = std::max({shorten(plan_.callFaults), shorten(plan_.clockJumps), shorten(plan_.callers),
                          shorten(plan_.daemonReplies), shorten(plan_.threadRefusals), shorten(plan_.shortAnswers),
                          shorten(plan_.logFaults), dropAllocation(), thin(Pointer())});
      std::cerr << tries_ << " tries, " << plan_.scene.size() << " bytes\n";
    }
    return plan_;
  }

 private:
  [[nodiscard]] bool stillFails(const Plan& plan) {
    ++tries_;
    const std::vector<Violation> violations = RunApart(plan, folder_);
    return !violations.empty() && violations.front().check == check_;
  }

  template <class Item>
  bool shorten(std::vector<Item>& list) {
    bool smaller = false;
    for (std::size_t i = list.size(); i-- > 0;) {
      const std::vector<Item> before = list;
      list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
      if (stillFails(plan_)) {
        smaller = true;
      } else {
        list = before;
      }
    }
    return smaller;
  }

  bool dropAllocation() {
    if (plan_.failingAllocation == 0) return false;
    Plan without = plan_;
    without.failingAllocation = 0;
    if (!stillFails(without)) return false;
    plan_ = without;
    return true;
  }

  bool take(const Json& scene) {
    Plan smaller = plan_;
    smaller.scene = scene.dump();
    if (!stillFails(smaller)) return false;
    plan_ = smaller;
    scene_ = scene;
    return true;
  }

  // Members of a list in halves, quarters and so on, then each member's own parts.
  bool thin(const Pointer& at) {
    bool smaller = false;
    if (scene_[at].is_array()) {
      for (std::size_t part = scene_[at].size(); part > 0; part /= 2) {
        for (std::size_t from = 0; from < scene_[at].size();) {
          Json without = scene_;
          Json& list = without[at];
          const auto begin = list.begin() + static_cast<std::ptrdiff_t>(from);
          list.erase(begin, begin + static_cast<std::ptrdiff_t>(std::min(part, list.size() - from)));
          if (take(without)) {
            smaller = true;
          } else {
            from += part;
          }
        }
      }
      for (std::size_t i = 0; i < scene_[at].size(); ++i) smaller = std::max(thin(at / i), smaller);
    } else if (scene_[at].is_object()) {
      std::vector<std::string> keys;
      for (const auto& entry : scene_[at].items()) keys.push_back(entry.key());
      for (const std::string& key : keys) {
        Json without = scene_;
        without[at].erase(key);
        smaller = (take(without) || thin(at / key)) | smaller;
      }
    }
    return smaller;
  }

  Plan plan_;
  const std::string folder_;
  std::string check_;
  Json scene_;
  int tries_ = 0;
};

}  // namespace

Plan Shrunk(Plan plan, const std::string& folder) { return Shrinker(std::move(plan), folder).shrunk(); }
