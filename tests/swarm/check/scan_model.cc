#include "tests/swarm/check/scan_model.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <deque>
#include <map>
#include <set>
#include <string_view>

#include "platform/text.h"

namespace {

using namespace std::string_view_literals;

constexpr std::array kOwnClose = {"close"sv, "dismiss"sv, "clear"sv, "xmark"sv};
constexpr std::array kDismiss = {"close"sv, "dismiss"sv, "clear"sv};
constexpr std::array kNegative = {"reply"sv,   "open"sv,  "options"sv, "show"sv,   "view"sv,       "accept"sv,
                                  "decline"sv, "allow"sv, "later"sv,   "snooze"sv, "mute"sv,       "unmute"sv,
                                  "play"sv,    "pause"sv, "call"sv,    "manage"sv, "clear menu"sv, "menu item"sv};
constexpr std::array kMenu = {"menu item"sv, "menu bar"sv, "menubar"sv};
constexpr std::array kNotification = {"notification"sv,        "axnotification"sv, "stacked"sv,
                                      "notification center"sv, "from iphone"sv,    "axnotificationlistitems"sv};

template <std::size_t N>
bool hasAny(std::string_view text, const std::array<std::string_view, N>& words) {
  return std::any_of(words.begin(), words.end(),
                     [&](std::string_view word) { return text.find(word) != std::string_view::npos; });
}

// Words divided by one space, without white space at the ends.
std::string compact(std::string_view text) {
  std::string made;
  bool gap = false;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t from = at;
    if (HLIsWhitespace(HLNextCodePoint(text, at))) {
      gap = !made.empty();
      continue;
    }
    if (gap) made += ' ';
    gap = false;
    made.append(text.substr(from, at - from));
  }
  return made;
}

std::string joined(std::initializer_list<std::string_view> texts) {
  std::string made;
  for (std::string_view text : texts) {
    const std::string piece = compact(HLLowercase(text));
    if (!piece.empty()) made += (made.empty() ? "" : " ") + piece;
  }
  return made;
}

std::string ownText(const Reading& reading) {
  const auto& t = reading.texts;
  return joined({t[0], t[1], t[2], t[3], t[4], t[5], t[6]});
}
std::string structure(const Reading& reading) {
  return joined({reading.texts[0], reading.texts[1], reading.texts[2], reading.texts[6]});
}

// An element's text behind those of all above it: whether its words occur, and as much of both ends as is needed.
struct Context {
  std::string head;  // enough for a snapshot
  std::string tail;  // enough for a word across the seam
  bool notification = false;
  bool close = false;

  [[nodiscard]] Context with(const std::string& own) const {
    if (own.empty()) return *this;
    const std::string seam = tail.empty() ? own : tail + " " + own;
    Context made{head, seam, notification || hasAny(seam, kNotification), close || hasAny(seam, kDismiss)};
    if (head.size() < 800) made.head = head.empty() ? own : head + " " + own;
    if (made.tail.size() > 40) made.tail.erase(0, made.tail.size() - 40);
    return made;
  }
};

bool isBanner(const Reading& reading) {
  return HLLowercase(reading.subrole()).find("axnotificationcenter") != std::string::npos;
}
bool isMenu(const Reading& reading) {
  return HLLowercase(reading.role()).find("menu") != std::string::npos ||
         HLLowercase(reading.subrole()).find("menu") != std::string::npos || hasAny(structure(reading), kMenu);
}
bool isPressable(const Reading& reading) {
  return std::find(reading.actions.begin(), reading.actions.end(), "AXPress") != reading.actions.end();
}
std::optional<std::string> dismissAction(const Reading& reading) {
  for (const std::string& name : reading.actions) {
    if (hasAny(HLLowercase(name), kDismiss)) return name;
  }
  return std::nullopt;
}
bool isWithin(const Reading& reading, double limit) {
  return reading.framed && reading.frame.width <= limit && reading.frame.height <= limit;
}
bool isLarge(bool framed, const HLRect& frame) { return framed && (frame.width > 120 || frame.height > 80); }

std::optional<ModelTarget> candidate(Seen* element, const Context& context, const std::string& own) {
  const Reading& reading = element->last;
  if (reading.actions.empty()) return std::nullopt;
  const std::optional<std::string> explicitAction = dismissAction(reading);
  const auto target = [&](const std::string& action, std::int64_t score, const std::string& text) {
    return ModelTarget{element, action, reading.framed, reading.frame, score, HLUtf16Prefix(text, 180)};
  };
  if (isBanner(reading) && explicitAction) return target(*explicitAction, 220, own);
  if (!explicitAction && !isPressable(reading)) return std::nullopt;
  if (isMenu(reading)) return std::nullopt;
  const bool closeWords = hasAny(own, kOwnClose) || context.close;
  const bool negative = hasAny(own, kNegative);
  const bool button = reading.role() == "AXButton" || own.find("button") != std::string::npos;
  const bool pressable = isPressable(reading);
  const bool small = isWithin(reading, 60);
  std::int64_t score = 0;
  if (explicitAction) score += 120;
  if (context.notification) score += 40;
  if (closeWords) score += 30;
  if (button && pressable) score += 14;
  if (small) score += 8;
  if (negative) score -= 100;
  const bool fallback =
      !explicitAction && pressable && context.notification && (closeWords || (button && !negative && small));
  if ((!explicitAction && !fallback) || score < 45) return std::nullopt;
  return target(explicitAction.value_or("AXPress"), score, own.empty() ? context.head : own);
}

std::optional<ModelTarget> focused(Seen* element, const Context& context, const std::string& own, const Reading& root) {
  const Reading& reading = element->last;
  const std::optional<std::string> explicitAction = dismissAction(reading);
  const auto target = [&](const std::string& action, std::int64_t score) {
    return ModelTarget{element, action, reading.framed, reading.frame, score, own.empty() ? context.head : own};
  };
  if (isBanner(reading) && explicitAction) return target(*explicitAction, 200);
  if (isMenu(reading)) return std::nullopt;
  const bool small = isWithin(reading, 80);
  const bool closeWords = hasAny(own, kOwnClose);
  if (!explicitAction && (!small || !isPressable(reading))) return std::nullopt;
  if (!small && !closeWords) return std::nullopt;
  std::int64_t score = explicitAction ? 180 : 120;
  if (closeWords) score += 30;
  if (reading.role() == "AXButton") score += 20;
  if (small) score += 20;
  if (context.notification) score += 15;
  if (root.framed && reading.framed) {
    if (std::abs(root.frame.maxX() - reading.frame.maxX()) <= 40) score += 30;
    if (std::abs(reading.frame.y - root.frame.y) <= 36) score += 10;
  }
  return target(explicitAction.value_or("AXPress"), score);
}

// Breadth first, each handle once; `visit` answers whether the walk goes on below.
template <class Visit>
std::int64_t walk(Seen* root, Context above, std::size_t limit, const Visit& visit) {
  std::deque<std::pair<Seen*, Context>> queue = {{root, std::move(above)}};
  std::set<const Seen*> visited;
  while (!queue.empty() && visited.size() < limit) {
    auto [element, outer] = std::move(queue.front());
    queue.pop_front();
    if (!visited.insert(element).second) continue;
    const std::string own = ownText(element->last);
    const Context context = outer.with(own);
    if (!visit(element, context, own)) continue;
    for (Seen* child : element->last.children) queue.emplace_back(child, context);
  }
  return static_cast<std::int64_t>(visited.size());
}

}  // namespace

std::string DeduplicationKey(const ModelTarget& target) {
  if (!target.framed) return target.key();
  std::array<char, 2048> numbers{};
  std::snprintf(numbers.data(), numbers.size(), "|%.0f|%.0f|%.0f|%.0f|", std::round(target.frame.x),
                std::round(target.frame.y), std::round(target.frame.width), std::round(target.frame.height));
  return target.action + numbers.data() + target.snapshot;
}

ModelScan ScanWindow(Seen* window) {
  ModelScan scan;
  std::set<std::string> keys;
  scan.visited = walk(window, {}, 1400, [&](Seen* element, const Context& context, const std::string& own) {
    const std::optional<ModelTarget> target = candidate(element, context, own);
    if (!target) return true;
    if (keys.insert(DeduplicationKey(*target)).second) scan.targets.push_back(*target);
    return target->score < 150 || isLarge(target->framed, target->frame);
  });
  return scan;
}

bool NeedsResolution(const ModelTarget& target) {
  return !hasAny(HLLowercase(target.action), kDismiss) && isLarge(target.framed, target.frame);
}

ModelTarget Resolve(const ModelTarget& target) {
  if (!NeedsResolution(target)) return target;
  constexpr std::array kNames = {"axclosebutton"sv, "axcancelbutton"sv};
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    Seen* control = target.element->closeControls[i];
    if (control == nullptr) continue;
    std::optional<std::string> action = dismissAction(control->last);
    if (!action && isPressable(control->last)) action = "AXPress";
    if (!action) continue;
    const std::string own = ownText(control->last);
    return {control, *action, false, {}, 260, own.empty() ? std::string(kNames[i]) : own};
  }
  std::optional<ModelTarget> best;
  const Reading root = target.element->last;
  // The root's text stands in its own context twice.
  walk(target.element, Context().with(ownText(root)), 120,
       [&](Seen* element, const Context& context, const std::string& own) {
         const std::optional<ModelTarget> found = focused(element, context, own, root);
         if (found && (!best || found->score > best->score)) best = found;
         return true;
       });
  return best.value_or(target);
}

std::vector<ModelTarget> Sorted(std::vector<ModelTarget> targets) {
  std::stable_sort(targets.begin(), targets.end(), [](const ModelTarget& a, const ModelTarget& b) {
    if (a.score != b.score) return a.score > b.score;
    if (a.framed != b.framed) return a.framed;
    if (!a.framed) return false;
    if (a.frame.y != b.frame.y) return a.frame.y < b.frame.y;
    return a.frame.x > b.frame.x;
  });
  return targets;
}

std::int64_t RemovedCount(const std::vector<ModelTarget>& before, const std::vector<ModelTarget>& after) {
  std::map<std::string, std::int64_t> left;
  for (const ModelTarget& target : after) ++left[HLLowercase(target.key())];
  std::int64_t removed = 0;
  for (const ModelTarget& target : before) {
    if (--left[HLLowercase(target.key())] < 0) ++removed;
  }
  return removed;
}

bool IsAutomation(const std::string& description) {
  const std::size_t comma = description.find(", ");
  return comma != std::string::npos && HLLowercase(description.substr(0, comma)) == "shortcuts" &&
         HLLowercase(description.substr(comma + 2)).find("running your automation") != std::string::npos;
}

std::optional<std::string> AutoCloseAction(const std::vector<std::string>& actions) {
  for (const std::string& name : actions) {
    if (name.starts_with("Name:Close") || name == "AXClose") return name;
  }
  return std::nullopt;
}
