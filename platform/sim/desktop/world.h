// Live state and pending events of the simulated desktop. No threads or clock: the owner serializes calls and passes
// the time.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/accessibility.h"
#include "platform/running_applications.h"
#include "platform/sim/desktop/simulation.h"
#include "platform/sim/scene/scene.h"
#include "platform/threads/due_queue.h"

struct HLSimApplication;
struct HLSimNode;
using HLSimItem = HLValueOf<HLSimNode>;
using HLSimAttribute = HLAttributeOf<HLSimNode>;

struct HLSimNode {
  const HLSceneElement* origin = nullptr;  // a process's root has none
  HLSimApplication* application = nullptr;
  HLSimNode* owner = nullptr;              // stays set after removal
  std::vector<HLSimAttribute> attributes;  // of two with one name the first counts
  std::vector<std::string> actions;
  bool removed = false;
  HLElementRef handle;  // nullptr until first used, and with fresh handles
};

struct HLSimApplication {
  const HLSceneApplication* origin = nullptr;  // none for a process that is no application
  HLRunningApplication record;
  HLSimNode* root = nullptr;
};

// The registrations of an observer, shared with its pending notifications.
struct HLSimRegistrations {
  HLSimApplication* application = nullptr;
  std::vector<std::pair<std::string, const HLSimNode*>> names;
  bool attached = false;
  HLObserverCallback callback;
};

class HLSimWorld {
 public:
  using MakeHandle = std::function<HLElementRef(HLSimNode&)>;
  using Deliver = std::function<void(const std::shared_ptr<HLSimRegistrations>&, HLElementRef element,
                                     const std::string& name, HLMicroseconds now)>;
  using UserEvent = std::function<void(const HLSceneUserEvent&, HLMicroseconds now)>;
  using LaunchObserver = std::function<void(const HLRunningApplication&, HLMicroseconds now)>;

  // Applies the timeline's events at 0. Passes user events to `userEvent`. Callbacks get the time at which they are
  // due.
  HLSimWorld(const HLScene& scene, MakeHandle makeHandle, Deliver deliver, UserEvent userEvent);
  HLSimWorld(const HLSimWorld&) = delete;
  HLSimWorld& operator=(const HLSimWorld&) = delete;
  ~HLSimWorld();

  // Time.
  [[nodiscard]] HLMicroseconds nextDue() const { return due_.next(); }
  // Applies the events due by `now`, in order.
  void advanceTo(HLMicroseconds now);

  // Trust.
  [[nodiscard]] bool isTrusted() const { return trusted_; }
  void setTrusted(bool trusted) { trusted_ = trusted; }

  // Applications.
  [[nodiscard]] std::vector<HLRunningApplication> applications() const;
  // Prefers the live one of several with this pid. A pid of no application gets a terminated process.
  [[nodiscard]] HLSimApplication& applicationWithPid(std::int32_t pid);
  [[nodiscard]] std::optional<HLRunningApplication> find(std::int32_t pid) const;
  void sendSignal(std::int32_t pid, int signal, HLMicroseconds now);
  void observeLaunches(LaunchObserver observer);
  [[nodiscard]] std::vector<LaunchObserver> takeLaunchObservers() { return std::exchange(launchObservers_, {}); }

  // Elements.
  [[nodiscard]] HLElementRef handle(HLSimNode& node);
  [[nodiscard]] HLAttribute read(HLSimNode& node, std::string_view name);
  [[nodiscard]] HLActionList actionNames(const HLSimNode& node) const;
  struct Answer {
    HLAXError code = HLAXErrorSuccess;
    HLMicroseconds at = 0;  // the time at which the call returns
  };
  [[nodiscard]] Answer perform(const HLSimNode& node, std::string_view action, HLMicroseconds now);
  [[nodiscard]] bool isGone(const HLSimNode& node) const;

  // Observers.
  void addObserver(const std::shared_ptr<HLSimRegistrations>& observer) { observers_.push_back(observer); }
  [[nodiscard]] HLAXError addNotification(HLSimRegistrations& observer, const HLSimNode& node, std::string_view name);
  [[nodiscard]] HLAXError removeNotification(HLSimRegistrations& observer, const HLSimNode& node,
                                             std::string_view name);
  [[nodiscard]] std::vector<std::shared_ptr<const HLSimRegistrations>> observers() const;

  // For tests and records.
  [[nodiscard]] HLSimNode* newest(std::string_view id);
  [[nodiscard]] const std::vector<HLSimulatedAction>& actions() const { return actions_; }
  [[nodiscard]] std::vector<std::string> presentElements() const;
  // The windows of all live applications, in order, and the nodes that a node contains. References are not followed.
  [[nodiscard]] std::vector<HLSimNode*> windows() const;
  [[nodiscard]] std::vector<HLSimNode*> members(const HLSimNode& node) const;

 private:
  void apply(const HLSceneEvent& event, HLMicroseconds now);
  void add(const HLSceneAdd& event);
  void remove(HLSceneId id);
  void removeTree(HLSimNode& node);
  void set(const HLSceneSet& event);
  void notify(const HLSceneNotify& event, HLMicroseconds now);
  void launch(const HLSceneApplication& application, HLMicroseconds now);
  void kill(HLSimApplication& application, HLMicroseconds now);

  [[nodiscard]] HLSimNode* liveNode(HLSceneId id);
  [[nodiscard]] HLSimItem itemFrom(const HLSceneValue& value, HLSimApplication& application, HLSimNode* owner);
  [[nodiscard]] HLSimNode* makeNode(const HLSceneElement* element, HLSimApplication& application, HLSimNode* owner);
  void fillNewNodes();
  [[nodiscard]] std::optional<HLValue> valueOf(const HLSimItem& item, bool inList);
  [[nodiscard]] const HLSceneReaction* reactionOf(const HLSimNode& node, std::string_view action) const;
  [[nodiscard]] bool closesBy(const HLSimNode& node, std::string_view action) const;

  const HLScene& scene_;
  MakeHandle makeHandle_;
  Deliver deliver_;
  UserEvent userEvent_;
  bool trusted_ = true;
  std::deque<HLSimNode> nodes_;
  std::deque<HLSimApplication> processes_;  // exited ones included
  std::vector<HLSimApplication*> listed_;   // in the platform's order
  std::vector<HLSimNode*> newest_;          // by id
  std::vector<HLSimNode*> unfilled_;
  HLDueQueue due_;  // the timeline is scheduled first and so precedes effects of the same time
  std::vector<std::weak_ptr<HLSimRegistrations>> observers_;
  std::vector<LaunchObserver> launchObservers_;
  std::vector<HLSimulatedAction> actions_;
};
