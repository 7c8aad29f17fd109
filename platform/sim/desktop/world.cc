#include "platform/sim/desktop/world.h"

#include <algorithm>
#include <array>
#include <csignal>

#include "platform/text.h"

namespace {

constexpr std::string_view kWindows = "AXWindows";
constexpr std::array<std::string_view, 3> kLists = {"AXChildren", "AXRows", "AXVisibleChildren"};
constexpr double kCloseDelay = 0.05;  // seconds

using Items = std::vector<HLSimItem>;

bool isListName(std::string_view name) {
  return name == kWindows || std::find(kLists.begin(), kLists.end(), name) != kLists.end();
}

// The nodes that an item holds, references apart.
void collectNodes(const HLSimItem& item, std::vector<HLSimNode*>& nodes) {
  if (HLSimNode* const* node = std::get_if<HLSimNode*>(&item)) nodes.push_back(*node);
  if (const Items* list = std::get_if<Items>(&item)) {
    for (const HLSimItem& member : *list) collectNodes(member, nodes);
  }
}

// What the node holds in tree order: its lists, then what its other attributes hold.
std::vector<HLSimNode*> heldNodes(const HLSimNode& node) {
  std::vector<HLSimNode*> nodes;
  if (node.origin == nullptr) {
    for (const HLSimAttribute& attribute : node.attributes) collectNodes(attribute.value, nodes);
    return nodes;
  }
  for (std::string_view name : kLists) {
    for (const HLSimAttribute& attribute : node.attributes) {
      if (attribute.name == name) collectNodes(attribute.value, nodes);
    }
  }
  for (const HLSimAttribute& attribute : node.attributes) {
    if (!isListName(attribute.name)) collectNodes(attribute.value, nodes);
  }
  return nodes;
}

const HLSimAttribute* findAttribute(const HLSimNode& node, std::string_view name) {
  for (const HLSimAttribute& attribute : node.attributes) {
    if (attribute.name == name) return &attribute;
  }
  return nullptr;
}

// The list that an added member goes to: the last one of that name, since the one of the short key stands last.
Items& listToExtend(HLSimNode& node, const std::string& name) {
  for (auto attribute = node.attributes.rbegin(); attribute != node.attributes.rend(); ++attribute) {
    Items* list = attribute->name == name ? std::get_if<Items>(&attribute->value) : nullptr;
    if (list != nullptr) return *list;
  }
  return std::get<Items>(node.attributes.emplace_back(HLSimAttribute{name, Items()}).value);
}

HLAXError codeFor(const std::vector<std::pair<std::string, HLAXError>>& codes, std::string_view name) {
  for (const auto& [known, code] : codes) {
    if (known == name) return code;
  }
  return HLAXErrorSuccess;
}

bool namesDismissal(std::string_view action) {
  return HLContainsIgnoringCase(action, "close") || HLContainsIgnoringCase(action, "clear") ||
         HLContainsIgnoringCase(action, "dismiss");
}

bool contains(const std::vector<std::string>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

HLSimWorld::HLSimWorld(const HLScene& scene, MakeHandle makeHandle, Deliver deliver, UserEvent userEvent)
    : scene_(scene),
      makeHandle_(std::move(makeHandle)),
      deliver_(std::move(deliver)),
      userEvent_(std::move(userEvent)),
      trusted_(scene.trusted),
      newest_(scene.ids.size(), nullptr) {
  for (const HLSceneApplication* application : scene.applications) launch(*application, 0);
  for (const HLSceneTimelineEvent& entry : scene.timeline) {
    due_.schedule(entry.at, [this, &entry] { apply(entry.event, entry.at); });
  }
  advanceTo(0);
}

HLSimWorld::~HLSimWorld() = default;

// Time

void HLSimWorld::advanceTo(HLMicroseconds now) {
  while (const HLDueQueue::Step event = due_.take(now)) event();
}

void HLSimWorld::apply(const HLSceneEvent& event, HLMicroseconds now) {
  const HLVisitor apply = {
      [&](const HLSceneUserEvent& user) { userEvent_(user, now); },
      [&](const HLSceneAdd& addition) { add(addition); },
      [&](const HLSceneRemove& removal) { remove(removal.element); },
      [&](const HLSceneSet& change) { set(change); },
      [&](const HLSceneNotify& notification) { notify(notification, now); },
      [&](const HLSceneLaunch& start) { launch(*start.application, now); },
      [&](const HLSceneQuit& quit) { kill(applicationWithPid(quit.pid), now); },
      [&](const HLSceneTrust& trust) { trusted_ = trust.trusted; },
  };
  std::visit(apply, event);
}

// Applications

void HLSimWorld::launch(const HLSceneApplication& application, HLMicroseconds now) {
  HLSimApplication& made = processes_.emplace_back();
  made.origin = &application;
  made.record = {application.pid, application.bundleIdentifier, application.name, application.terminated};
  made.root = makeNode(nullptr, made, nullptr);
  if (application.windows) {
    made.root->attributes.push_back({std::string(kWindows), itemFrom(*application.windows, made, made.root)});
  }
  fillNewNodes();
  listed_.push_back(&made);
  for (const LaunchObserver& observer : launchObservers_) observer(made.record, now);
}

void HLSimWorld::observeLaunches(LaunchObserver observer) { launchObservers_.push_back(std::move(observer)); }

void HLSimWorld::kill(HLSimApplication& application, HLMicroseconds now) {
  if (application.record.terminated) return;
  application.record.terminated = true;
  const HLSceneApplication& origin = *application.origin;
  const auto leave = [this, &application] { std::erase(listed_, &application); };
  if (const HLMicroseconds end = HLTimeAfter(now, origin.lingers); end > now) {
    due_.schedule(end, leave);
  } else {
    leave();
  }
  if (origin.relaunch) {
    const HLMicroseconds start = HLTimeAfter(now, origin.relaunch->after);
    due_.schedule(start, [this, start, next = origin.relaunch->application] { launch(*next, start); });
  }
}

std::vector<HLRunningApplication> HLSimWorld::applications() const {
  std::vector<HLRunningApplication> records;
  for (const HLSimApplication* application : listed_) records.push_back(application->record);
  return records;
}

std::optional<HLRunningApplication> HLSimWorld::find(std::int32_t pid) const {
  std::optional<HLRunningApplication> found;
  for (const HLSimApplication* application : listed_) {
    const bool better = !found || (found->terminated && !application->record.terminated);
    if (application->record.pid == pid && better) found = application->record;
  }
  return found;
}

HLSimApplication& HLSimWorld::applicationWithPid(std::int32_t pid) {
  HLSimApplication* found = nullptr;
  for (HLSimApplication& process : processes_) {
    const bool better = found == nullptr || found->record.terminated;
    if (process.record.pid == pid && better) found = &process;
  }
  if (found != nullptr) return *found;
  HLSimApplication& stranger = processes_.emplace_back();
  stranger.record = {pid, std::nullopt, std::nullopt, true};
  stranger.root = makeNode(nullptr, stranger, nullptr);
  fillNewNodes();
  return stranger;
}

void HLSimWorld::sendSignal(std::int32_t pid, int signal, HLMicroseconds now) {
  HLSimApplication& application = applicationWithPid(pid);
  if (application.record.terminated) return;
  if (signal == SIGKILL || (signal == SIGTERM && !application.origin->ignoresTerminate)) kill(application, now);
}

// The tree

HLSimNode* HLSimWorld::makeNode(const HLSceneElement* element, HLSimApplication& application, HLSimNode* owner) {
  HLSimNode& node = nodes_.emplace_back();
  node.origin = element;
  node.application = &application;
  node.owner = owner;
  if (element == nullptr) return &node;
  node.actions = element->actions;
  if (element->id) newest_[static_cast<std::size_t>(*element->id)] = &node;
  unfilled_.push_back(&node);
  return &node;
}

// Nodes are made before what they hold, so that nesting costs no stack.
void HLSimWorld::fillNewNodes() {
  while (!unfilled_.empty()) {
    HLSimNode& node = *unfilled_.back();
    unfilled_.pop_back();
    node.attributes.reserve(node.origin->attributes.size());
    for (const HLSceneAttribute& attribute : node.origin->attributes) {
      node.attributes.push_back({attribute.name, itemFrom(attribute.value, *node.application, &node)});
    }
  }
}

HLSimItem HLSimWorld::itemFrom(const HLSceneValue& value, HLSimApplication& application, HLSimNode* owner) {
  const HLVisitor convert = {
      [](const HLValue& plain) { return HLSimItem(plain); },
      [](const HLSceneReference& reference) { return HLSimItem(reference); },
      [&](const HLSceneElement* element) { return HLSimItem(makeNode(element, application, owner)); },
      [&](const std::vector<HLSceneValue>& members) {
        Items items;
        for (const HLSceneValue& member : members) items.push_back(itemFrom(member, application, owner));
        return HLSimItem(std::move(items));
      },
  };
  return std::visit(convert, static_cast<const HLSceneValue::Base&>(value));
}

HLSimNode* HLSimWorld::liveNode(HLSceneId id) {
  HLSimNode* node = newest_[static_cast<std::size_t>(id)];
  return node == nullptr || isGone(*node) ? nullptr : node;
}

void HLSimWorld::add(const HLSceneAdd& event) {
  HLSimNode* target = nullptr;
  if (const auto* id = std::get_if<HLSceneId>(&event.to)) {
    target = liveNode(*id);
  } else {
    HLSimApplication& application = applicationWithPid(std::get<HLScenePid>(event.to).pid);
    if (!application.record.terminated) target = application.root;
  }
  if (target == nullptr) return;
  Items added;
  for (const HLSceneValue& member : event.members) added.push_back(itemFrom(member, *target->application, target));
  fillNewNodes();
  Items& list = listToExtend(*target, event.list);
  list.insert(event.first ? list.begin() : list.end(), added.begin(), added.end());
}

void HLSimWorld::remove(HLSceneId id) {
  HLSimNode* node = liveNode(id);
  if (node == nullptr) return;
  removeTree(*node);
  if (node->owner == nullptr) return;
  for (HLSimAttribute& attribute : node->owner->attributes) {
    Items* list = std::get_if<Items>(&attribute.value);
    if (list == nullptr) continue;
    std::erase_if(*list, [node](const HLSimItem& item) {
      HLSimNode* const* member = std::get_if<HLSimNode*>(&item);
      return member != nullptr && *member == node;
    });
  }
}

void HLSimWorld::removeTree(HLSimNode& node) {
  std::vector<HLSimNode*> left = {&node};
  while (!left.empty()) {
    HLSimNode* next = left.back();
    left.pop_back();
    next->removed = true;
    for (const HLSimAttribute& attribute : next->attributes) collectNodes(attribute.value, left);
  }
}

void HLSimWorld::set(const HLSceneSet& event) {
  HLSimNode* node = liveNode(event.element);
  if (node == nullptr) return;
  const auto removeOld = [&] {
    std::erase_if(node->attributes, [&event](const HLSimAttribute& old) { return old.name == event.attribute; });
  };
  const HLVisitor change = {
      [&](std::monostate) { removeOld(); },
      [&](const HLSceneValue& value) {
        removeOld();
        node->attributes.push_back({event.attribute, itemFrom(value, *node->application, node)});
        fillNewNodes();
      },
      [&](const std::vector<std::string>& actions) { node->actions = actions; },
  };
  std::visit(change, event.value);
}

bool HLSimWorld::isGone(const HLSimNode& node) const { return node.removed || node.application->record.terminated; }

HLSimNode* HLSimWorld::newest(std::string_view id) {
  const auto found = std::find(scene_.ids.begin(), scene_.ids.end(), id);
  return found == scene_.ids.end() ? nullptr : newest_[static_cast<std::size_t>(found - scene_.ids.begin())];
}

std::vector<HLSimNode*> HLSimWorld::members(const HLSimNode& node) const {
  std::vector<HLSimNode*> nodes = heldNodes(node);
  std::erase_if(nodes, [this](const HLSimNode* member) { return isGone(*member); });
  return nodes;
}

std::vector<HLSimNode*> HLSimWorld::windows() const {
  std::vector<HLSimNode*> all;
  for (const HLSimApplication* application : listed_) {
    const std::vector<HLSimNode*> windows = members(*application->root);
    all.insert(all.end(), windows.begin(), windows.end());
  }
  return all;
}

std::vector<std::string> HLSimWorld::presentElements() const {
  std::vector<std::string> ids;
  std::vector<HLSimNode*> left = windows();
  std::reverse(left.begin(), left.end());
  while (!left.empty()) {
    const HLSimNode* node = left.back();
    left.pop_back();
    if (node->origin->id) ids.push_back(scene_.ids[static_cast<std::size_t>(*node->origin->id)]);
    const std::vector<HLSimNode*> held = members(*node);
    left.insert(left.end(), held.rbegin(), held.rend());
  }
  return ids;
}

// Reading and pressing

HLElementRef HLSimWorld::handle(HLSimNode& node) {
  if (node.origin != nullptr && node.origin->freshHandles) return makeHandle_(node);
  if (node.handle == nullptr) node.handle = makeHandle_(node);
  return node.handle;
}

// nullopt for an element that was never there and, in a list, for one that has gone.
std::optional<HLValue> HLSimWorld::valueOf(const HLSimItem& item, bool inList) {
  using Found = std::optional<HLValue>;
  const auto element = [&](HLSimNode* node) {
    return node == nullptr || (inList && isGone(*node)) ? Found() : Found(handle(*node));
  };
  const HLVisitor read = {
      [](const HLValue& plain) { return Found(plain); },
      [&](const HLSceneReference& reference) { return element(newest_[static_cast<std::size_t>(reference.id)]); },
      element,
      [&](const Items& list) {
        HLArray array;
        array.reserve(list.size());
        for (const HLSimItem& member : list) {
          if (Found value = valueOf(member, true)) array.push_back(*std::move(value));
        }
        return Found(std::move(array));
      },
  };
  return std::visit(read, static_cast<const HLSimItem::Base&>(item));
}

HLAttribute HLSimWorld::read(HLSimNode& node, std::string_view name) {
  if (!trusted_) return {HLAXErrorAPIDisabled, {}};
  if (isGone(node)) return {HLAXErrorInvalidElement, {}};
  const HLSimAttribute* attribute = findAttribute(node, name);
  if (attribute == nullptr) return {HLAXErrorNoValue, {}};
  const HLAXError error = node.origin == nullptr ? HLAXErrorSuccess : codeFor(node.origin->errors, name);
  if (error != HLAXErrorSuccess) return {error, {}};
  std::optional<HLValue> value = valueOf(attribute->value, false);
  if (!value) return {HLAXErrorNoValue, {}};
  return {HLAXErrorSuccess, *std::move(value)};
}

HLActionList HLSimWorld::actionNames(const HLSimNode& node) const {
  if (!trusted_) return {HLAXErrorAPIDisabled, {}};
  if (isGone(node)) return {HLAXErrorInvalidElement, {}};
  const HLAXError error = node.origin == nullptr ? HLAXErrorSuccess : codeFor(node.origin->errors, "actions");
  if (error != HLAXErrorSuccess) return {error, {}};
  return {HLAXErrorSuccess, node.actions};
}

const HLSceneReaction* HLSimWorld::reactionOf(const HLSimNode& node, std::string_view action) const {
  if (node.origin == nullptr) return nullptr;
  for (const auto& [name, reaction] : node.origin->reactions) {
    if (name == action) return &reaction;
  }
  return nullptr;
}

bool HLSimWorld::closesBy(const HLSimNode& node, std::string_view action) const {
  if (node.origin == nullptr || !node.origin->closes) return false;
  if (namesDismissal(action)) return true;
  return action == "AXPress" && std::none_of(node.actions.begin(), node.actions.end(), namesDismissal);
}

HLSimWorld::Answer HLSimWorld::perform(const HLSimNode& node, std::string_view action, HLMicroseconds now) {
  Answer answer{HLAXErrorSuccess, now};
  const HLSceneReaction* reaction = nullptr;
  if (!trusted_) {
    answer.code = HLAXErrorAPIDisabled;
  } else if (isGone(node)) {
    answer.code = HLAXErrorInvalidElement;
  } else if (!contains(node.actions, action)) {
    answer.code = HLAXErrorActionUnsupported;
  } else if ((reaction = reactionOf(node, action)) != nullptr) {
    answer.code = reaction->error;
    answer.at = HLTimeAfter(now, reaction->seconds);
    const HLMicroseconds start = HLTimeAfter(now, reaction->seconds + reaction->after);
    due_.schedule(start, [this, start, reaction] {
      for (const HLSceneEvent& event : reaction->effects) apply(event, start);
    });
  } else if (closesBy(node, action)) {
    due_.schedule(HLTimeAfter(now, kCloseDelay), [this, id = *node.origin->closes] { remove(id); });
  }
  std::optional<std::string> id;
  if (node.origin != nullptr && node.origin->id) id = scene_.ids[static_cast<std::size_t>(*node.origin->id)];
  actions_.push_back({HLSecondsFromMicroseconds(now), std::move(id), std::string(action), answer.code});
  return answer;
}

// Observers

HLAXError HLSimWorld::addNotification(HLSimRegistrations& observer, const HLSimNode& node, std::string_view name) {
  if (!trusted_) return HLAXErrorAPIDisabled;
  if (isGone(node)) return HLAXErrorInvalidElement;
  const HLAXError error = codeFor(node.application->origin->registerErrors, name);
  if (error == HLAXErrorSuccess) observer.names.emplace_back(name, &node);
  return error;
}

HLAXError HLSimWorld::removeNotification(HLSimRegistrations& observer, const HLSimNode& node, std::string_view name) {
  if (!trusted_) return HLAXErrorAPIDisabled;
  const auto isIt = [&](const auto& entry) { return entry.first == name && entry.second == &node; };
  return std::erase_if(observer.names, isIt) > 0 ? HLAXErrorSuccess : HLAXErrorNotificationNotRegistered;
}

std::vector<std::shared_ptr<const HLSimRegistrations>> HLSimWorld::observers() const {
  std::vector<std::shared_ptr<const HLSimRegistrations>> alive;
  for (const auto& observer : observers_) {
    if (auto shared = observer.lock()) alive.push_back(std::move(shared));
  }
  return alive;
}

void HLSimWorld::notify(const HLSceneNotify& event, HLMicroseconds now) {
  HLSimNode* node = newest_[static_cast<std::size_t>(event.element)];
  if (!trusted_ || node == nullptr) return;
  std::erase_if(observers_, [](const auto& observer) { return observer.expired(); });
  std::vector<const HLSimNode*> path;
  for (const HLSimNode* above = node; above != nullptr; above = above->owner) path.push_back(above);
  for (const auto& entry : observers_) {
    const std::shared_ptr<HLSimRegistrations> observer = entry.lock();
    const bool asked = std::any_of(observer->names.begin(), observer->names.end(), [&](const auto& registered) {
      return registered.first == event.notification &&
             std::find(path.begin(), path.end(), registered.second) != path.end();
    });
    if (asked) deliver_(observer, handle(*node), event.notification, now);
  }
}
