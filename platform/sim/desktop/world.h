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
#include "platform/due_queue.h"
#include "platform/running_applications.h"
#include "platform/sim/desktop/simulation.h"
#include "platform/sim/scene/scene.h"

struct HLSimApplication;
struct HLSimNode;

struct HLSimItem : std::variant<HLValue, HLSceneReference, HLSimNode*, std::vector<HLSimItem>> {
  using variant::variant;
};

struct HLSimAttribute {
  std::string name;
  HLSimItem item;
};

struct HLSimNode {
  const HLSceneElement* origin = nullptr;  // a process's root has none
  HLSimApplication* application = nullptr;
  HLSimNode* owner = nullptr;              // kept when the node goes
  std::vector<HLSimAttribute> attributes;  // of two with one name the first counts
  std::vector<std::string> actions;
  bool removed = false;
  HLElementRef handle;  // the one and only, once it is made
};

struct HLSimApplication {
  const HLSceneApplication* origin = nullptr;  // none for a process that is no application
  HLRunningApplication record;
  HLSimNode* root = nullptr;
};

// What an observer has asked for. Shared by the observer and what waits to be delivered to it.
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
  // The living one of several with one pid; any process can be asked for.
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
    HLMicroseconds at = 0;  // when the call returns
  };
  [[nodiscard]] Answer perform(const HLSimNode& node, std::string_view action, HLMicroseconds now);
  [[nodiscard]] bool isGone(const HLSimNode& node) const;

  // Observers.
  void addObserver(const std::shared_ptr<HLSimRegistrations>& observer) { observers_.push_back(observer); }
  [[nodiscard]] HLAXError addNotification(HLSimRegistrations& observer, const HLSimNode& node, std::string_view name);
  [[nodiscard]] HLAXError removeNotification(HLSimRegistrations& observer, const HLSimNode& node,
                                             std::string_view name);
  [[nodiscard]] std::vector<std::shared_ptr<const HLSimRegistrations>> observers() const;

  // What tests and records look at.
  [[nodiscard]] HLSimNode* newest(std::string_view id);
  [[nodiscard]] const std::vector<HLSimulatedAction>& actions() const { return actions_; }
  [[nodiscard]] std::vector<std::string> presentElements() const;
  // The windows of all living applications, in order, and what a node holds. References are not followed.
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

  [[nodiscard]] HLSimNode* living(HLSceneId id);
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
  std::deque<HLSimApplication> processes_;  // every one there ever was
  std::vector<HLSimApplication*> listed_;   // in the platform's order
  std::vector<HLSimNode*> newest_;          // by id
  std::vector<HLSimNode*> unfilled_;
  HLDueQueue due_;  // the timeline is scheduled first and so precedes effects of the same time
  std::vector<std::weak_ptr<HLSimRegistrations>> observers_;
  std::vector<LaunchObserver> launchObservers_;
  std::vector<HLSimulatedAction> actions_;
};
