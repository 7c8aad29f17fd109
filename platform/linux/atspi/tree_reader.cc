#include "platform/linux/atspi/tree_reader.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace {

constexpr const char* kAction = "org.a11y.atspi.Action";
constexpr const char* kComponent = "org.a11y.atspi.Component";

// A scan visits at most 1,400 elements per window, so a walk reads no more of one window.
constexpr int kWindowLimit = 1400;
constexpr int kWalkLimit = 3 * kWindowLimit;
// Levels that are read below a hidden element. Some close buttons show only while the pointer hovers over the banner.
constexpr int kHiddenLevels = 2;
// Calls in flight. More are not faster.
constexpr std::size_t kMaxCallsInFlight = 48;

// Limits a whole walk: an application may answer each call just before that call's own timeout.
constexpr std::chrono::seconds kWalkTimeout{5};

constexpr std::uint32_t kScreenCoordinates = 0;
constexpr std::int32_t kOffScreen = std::numeric_limits<std::int32_t>::min();

std::string readText(sd_bus_message* message) {
  const char* text = nullptr;
  return sd_bus_message_read_basic(message, 's', &text) > 0 ? std::string(text) : std::string();
}

std::string readPropertyText(sd_bus_message* message) {
  const char* text = nullptr;
  return sd_bus_message_read(message, "v", "s", &text) > 0 ? std::string(text) : std::string();
}

std::uint64_t readStates(sd_bus_message* message) {
  const void* words = nullptr;
  std::size_t size = 0;
  if (sd_bus_message_read_array(message, 'u', &words, &size) < 0 || size < 2 * sizeof(std::uint32_t)) return 0;
  const auto* halves = static_cast<const std::uint32_t*>(words);
  return halves[0] | static_cast<std::uint64_t>(halves[1]) << 32;
}

bool readRole(sd_bus_message* message, HLRawRole& role) {
  std::uint32_t number = 0;
  if (sd_bus_message_read_basic(message, 'u', &number) <= 0) return false;
  role = HLRawRole{number};
  return true;
}

struct Reference {
  std::string_view application;
  std::string_view path;
};

// `reference` points into the message.
bool readReference(sd_bus_message* message, Reference& reference) {
  const char* application = nullptr;
  const char* path = nullptr;
  if (sd_bus_message_read(message, "(so)", &application, &path) <= 0) return false;
  reference = {application, path};
  return true;
}

std::optional<HLRect> readExtents(sd_bus_message* message) {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  if (sd_bus_message_read(message, "(iiii)", &x, &y, &width, &height) <= 0) return std::nullopt;
  if (x == kOffScreen || y == kOffScreen) return std::nullopt;
  return HLRect{static_cast<double>(x), static_cast<double>(y), static_cast<double>(width),
                static_cast<double>(height)};
}

std::vector<std::string> readActions(sd_bus_message* message) {
  std::vector<std::string> names;
  if (sd_bus_message_enter_container(message, 'a', "(sss)") <= 0) return names;
  const char* name = nullptr;
  const char* description = nullptr;
  const char* keys = nullptr;
  while (sd_bus_message_read(message, "(sss)", &name, &description, &keys) > 0) names.emplace_back(name);
  return names;
}

// An element in the answer of GetItems. `parent` points into the message.
struct CacheItem {
  HLRawNode node;
  std::string_view parent;
  std::int32_t index = -1;
  std::int32_t childCount = 0;
};

constexpr const char* kItemsSignature = "a((so)(so)(so)iiassusau)";

bool readItem(sd_bus_message* message, CacheItem& item) {
  Reference self;
  Reference application;
  Reference parent;
  if (sd_bus_message_enter_container(message, 'r', "(so)(so)(so)iiassusau") <= 0) return false;
  if (!readReference(message, self) || !readReference(message, application) || !readReference(message, parent))
    return false;
  item.node.path = self.path;
  item.parent = parent.path;
  if (sd_bus_message_read(message, "ii", &item.index, &item.childCount) <= 0) return false;
  if (sd_bus_message_enter_container(message, 'a', "s") <= 0) return false;
  const char* interface = nullptr;
  while (sd_bus_message_read_basic(message, 's', &interface) > 0) {
    item.node.hasActions |= std::string_view(interface) == kAction;
    item.node.hasExtents |= std::string_view(interface) == kComponent;
  }
  if (sd_bus_message_exit_container(message) < 0) return false;
  item.node.name = readText(message);
  if (!readRole(message, item.node.role)) return false;
  item.node.description = readText(message);
  item.node.states = readStates(message);
  return sd_bus_message_exit_container(message) >= 0;
}

class Walk {
 public:
  Walk(HLBus& bus, const std::string& application, HLRawTree& tree)
      : bus_(bus), application_(application), tree_(tree) {
    add(-1, HLAccessibleRootPath);
  }

  // Adds the items of the application's cache. The cache may lack new elements; run() reads those.
  void adopt(std::vector<CacheItem>& items);

  // Reads every element that adopt() has not added.
  HLBusOutcome run(bool adopted) {
    if (!adopted) partial_.push_back(0);
    for (int index : partial_) askForChildren(index);
    const auto deadline = std::chrono::steady_clock::now() + kWalkTimeout;
    while (std::chrono::steady_clock::now() < deadline) {
      const bool more = next_ < toRead_.size();
      if (more) ask(toRead_[next_++]);
      const HLBusOutcome outcome = bus_.settle(more ? kMaxCallsInFlight : 0);
      if (outcome != HLBusOutcome::answered) return outcome;
      if (!more && next_ == toRead_.size()) {
        unlinkGone();
        return outcome;
      }
    }
    return HLBusOutcome::timedOut;
  }

 private:
  struct Place {
    int window;       // the child of the application above the node, or the node itself
    int hiddenLevel;  // 0 when showing; else the number of consecutive hidden nodes upward, this one included
  };

  int add(int parent, std::string_view path);
  Place& place(int index) { return places_[static_cast<std::size_t>(index)]; }
  HLRawNode& node(int index) { return tree_[static_cast<std::size_t>(index)]; }
  const std::string& pathOf(int index) { return node(index).path; }
  void ask(int index);
  void askForMore(int index);
  void askForChildren(int index);
  void takeChildren(int parent, sd_bus_message* message);
  void unlinkGone();
  bool wantsChildren(int index);

  HLBus& bus_;
  const std::string& application_;
  HLRawTree& tree_;
  std::vector<int> partial_;  // adopted nodes of which children are missing
  std::vector<int> toRead_;
  std::vector<int> gone_;                  // elements that no longer existed when they were asked
  std::size_t next_ = 0;                   // in toRead_
  std::unordered_set<std::string> known_;  // paths in the tree
  std::vector<Place> places_;              // of each node
  std::unordered_map<int, int> sizes_;     // per window: its nodes
};

int Walk::add(int parent, std::string_view path) {
  const int index = static_cast<int>(tree_.size());
  HLRawNode& node = tree_.emplace_back();
  node.path = path;
  node.parent = parent;
  if (parent >= 0) tree_[static_cast<std::size_t>(parent)].children.push_back(index);
  known_.emplace(path);
  const int window = parent <= 0 ? index : place(parent).window;
  places_.push_back({window, 0});
  ++sizes_[window];
  return index;
}

// Returns whether the node's children are to be read. Sets the node's hidden level, from its parent's.
bool Walk::wantsChildren(int index) {
  if (index == 0) return true;
  const HLRawNode& asked = node(index);
  int& hiddenLevel = place(index).hiddenLevel;
  hiddenLevel = asked.isShowing() ? 0 : place(asked.parent).hiddenLevel + 1;
  const bool isWindow = asked.parent == 0;
  if (isWindow && !asked.isShowing()) return false;
  return hiddenLevel < kHiddenLevels && (asked.states & HLRawState::kManagesDescendants) == 0;
}

void Walk::adopt(std::vector<CacheItem>& items) {
  std::unordered_map<std::string_view, std::vector<CacheItem*>> childrenOf;
  std::vector<std::int32_t> childCount = {0};
  for (CacheItem& item : items) {
    if (item.node.path == HLAccessibleRootPath) {
      childCount.front() = item.childCount;
    } else {
      childrenOf[item.parent].push_back(&item);
    }
  }
  for (std::size_t at = 0; at < tree_.size(); ++at) {
    const int index = static_cast<int>(at);
    if (!wantsChildren(index)) continue;
    std::vector<CacheItem*>& children = childrenOf[tree_[at].path];
    std::stable_sort(children.begin(), children.end(),
                     [](const CacheItem* a, const CacheItem* b) { return a->index < b->index; });
    for (CacheItem* child : children) {
      if (known_.contains(child->node.path)) continue;
      HLRawNode& node = tree_[static_cast<std::size_t>(add(index, child->node.path))];
      child->node.parent = index;
      node = child->node;
      childCount.push_back(child->childCount);
    }
    if (children.size() < static_cast<std::size_t>(std::max(0, childCount[at]))) partial_.push_back(index);
  }
}

// Queues GetRole and GetState first: both decide which other calls are worth a round trip.
void Walk::ask(int index) {
  const std::string path = pathOf(index);
  bus_.start({application_, path, HLAccessibleInterface, "GetRole"}, [this, index](const HLBusReply& reply) {
    if (reply) readRole(reply.message.get(), node(index).role);
  });
  bus_.start({application_, path, HLAccessibleInterface, "GetState"}, [this, index](const HLBusReply& reply) {
    if (!reply) {
      gone_.push_back(index);
      return;
    }
    node(index).states = readStates(reply.message.get());
    askForMore(index);
  });
}

void Walk::askForMore(int index) {
  HLRawNode& known = node(index);
  known.hasExtents = true;
  known.hasActions = !known.is(HLRoleTrait::kPassive);
  const HLBusCall property{application_, known.path, HLPropertiesInterface, "Get"};
  if (!known.is(HLRoleTrait::kContainer)) {
    const auto take = [this, index](const HLBusReply& reply) {
      if (reply) node(index).name = readPropertyText(reply.message.get());
    };
    bus_.start(property, take, "ss", HLAccessibleInterface, "Name");
  }
  if (!known.is(HLRoleTrait::kContainer) && !known.is(HLRoleTrait::kText)) {
    const auto take = [this, index](const HLBusReply& reply) {
      if (reply) node(index).description = readPropertyText(reply.message.get());
    };
    bus_.start(property, take, "ss", HLAccessibleInterface, "Description");
  }
  if (wantsChildren(index) && !known.is(HLRoleTrait::kLeaf)) askForChildren(index);
}

void Walk::askForChildren(int index) {
  const HLBusCall call{application_, pathOf(index), HLAccessibleInterface, "GetChildren"};
  bus_.start(call, [this, index](const HLBusReply& reply) {
    if (reply) takeChildren(index, reply.message.get());
  });
}

void Walk::takeChildren(int parent, sd_bus_message* message) {
  if (sd_bus_message_enter_container(message, 'a', "(so)") <= 0) return;
  Reference child;
  while (readReference(message, child)) {
    // A child may be an element of another process (AT-SPI sockets). Only the application's own are read.
    const bool own = child.application.empty() || child.application == application_;
    const int window = place(parent).window;
    const bool full = static_cast<int>(tree_.size()) >= kWalkLimit || (parent != 0 && sizes_[window] >= kWindowLimit);
    if (!own || full || known_.contains(std::string(child.path))) continue;
    toRead_.push_back(add(parent, child.path));
  }
}

// Without a role, an element that is gone would look like one that no notification server has.
void Walk::unlinkGone() {
  for (int index : gone_) std::erase(node(node(index).parent).children, index);
}

// Empty when the application has no cache or answers with another signature (Qt).
std::vector<CacheItem> readCache(const HLBusReply& reply) {
  std::vector<CacheItem> items;
  sd_bus_message* message = reply.message.get();
  const char* signature = sd_bus_message_get_signature(message, 1);
  if (signature == nullptr || std::string_view(signature) != kItemsSignature) return items;
  if (sd_bus_message_enter_container(message, 'a', kItemsSignature + 1) <= 0) return items;
  CacheItem item;
  while (readItem(message, item)) {
    items.push_back(std::move(item));
    item = CacheItem();
  }
  return items;
}

}  // namespace

HLBusOutcome HLReadTree(HLBus& bus, const std::string& application, HLRawTree& tree) {
  tree.clear();
  const HLBusReply reply = bus.call({application, "/org/a11y/atspi/cache", "org.a11y.atspi.Cache", "GetItems"});
  if (reply.isLost()) return reply.outcome;
  std::vector<CacheItem> items = reply ? readCache(reply) : std::vector<CacheItem>();
  Walk walk(bus, application, tree);
  if (!items.empty()) walk.adopt(items);
  return walk.run(!items.empty());
}

HLBusOutcome HLReadDetails(HLBus& bus, const std::string& application, HLRawTree& tree,
                           const std::vector<int>& extentsOf, const std::vector<int>& actionsOf) {
  for (int index : extentsOf) {
    HLRawNode& node = tree[static_cast<std::size_t>(index)];
    bus.start(
        {application, node.path, kComponent, "GetExtents"},
        [&node](const HLBusReply& reply) {
          if (reply) node.extents = readExtents(reply.message.get());
        },
        "u", kScreenCoordinates);
    if (const HLBusOutcome outcome = bus.settle(kMaxCallsInFlight); outcome != HLBusOutcome::answered) return outcome;
  }
  for (int index : actionsOf) {
    HLRawNode& node = tree[static_cast<std::size_t>(index)];
    bus.start({application, node.path, kAction, "GetActions"}, [&node](const HLBusReply& reply) {
      if (reply) node.actions = readActions(reply.message.get());
    });
    if (const HLBusOutcome outcome = bus.settle(kMaxCallsInFlight); outcome != HLBusOutcome::answered) return outcome;
  }
  return bus.settle(0);
}
