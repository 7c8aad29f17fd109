#include "core/dismissal/resolution.h"

#include <array>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>

#include "core/scan/element_access.h"
#include "core/scan/scoring.h"
#include "core/scan/tree_walk.h"
#include "core/scan/words.h"
#include "platform/element_facts.h"
#include "platform/text.h"

namespace {

using namespace std::string_view_literals;

constexpr std::array kCloseControlAttributes = {"AXCloseButton"sv, "AXCancelButton"sv};

constexpr std::size_t kVisitLimit = 120;
constexpr double kLargeWidth = 120.0;
constexpr double kLargeHeight = 80.0;
constexpr double kSmallControl = 80.0;  // both ways
constexpr double kNearRightEdge = 40.0;
constexpr double kNearTopEdge = 36.0;

constexpr std::int64_t kAttributeControlScore = 260;
constexpr std::int64_t kBannerSubroleScore = 200;
constexpr std::int64_t kExplicitActionScore = 180;
constexpr std::int64_t kPressFallbackScore = 120;

bool isLarge(const HLRect& frame) {
  return !frame.isNull() && (frame.width > kLargeWidth || frame.height > kLargeHeight);
}

bool isSmallControl(const HLRect& frame) {
  return !frame.isNull() && frame.width <= kSmallControl && frame.height <= kSmallControl;
}

// Returns an explicit dismiss action, or else a plain press.
std::optional<std::string> dismissOrPressAction(const std::vector<std::string>& actionNames) {
  std::optional<std::string> action = HLExplicitDismissAction(actionNames);
  if (!action && HLIsPressable(actionNames)) action = "AXPress";
  return action;
}

// Returns the visited element as a control without a snapshot, or nullopt if it closes nothing.
std::optional<HLDismissTarget> focusedControl(const HLVisit& visit, const HLRect& rootFrame) {
  const auto& [element, facts, context] = visit;
  const std::optional<std::string> explicitAction = HLExplicitDismissAction(facts.actionNames);
  if (explicitAction && HLIsNotificationBannerSubrole(facts.subrole)) {
    return HLDismissTarget{
        element, *explicitAction, facts.frame, kBannerSubroleScore, "", "focused-notification-subrole"};
  }
  if (HLIsMenuLike(facts)) return std::nullopt;

  const bool small = isSmallControl(facts.frame);
  const bool closeWords = context.ownWordIn(HLOwnCloseWords).has_value();
  const std::optional<std::string> action = dismissOrPressAction(facts.actionNames);
  if (!action || (!small && !(explicitAction && closeWords))) return std::nullopt;

  HLDismissTarget control{element,     *action,
                          facts.frame, explicitAction ? kExplicitActionScore : kPressFallbackScore,
                          "",          explicitAction ? "focused-explicit-action" : "focused-press-fallback"};
  const auto add = [&control](bool fires, std::int64_t points, std::string_view word) {
    if (!fires) return;
    control.score += points;
    control.reason.append(",").append(word);
  };
  const bool framed = !rootFrame.isNull() && !facts.frame.isNull();
  add(closeWords, 30, "close-words");
  add(facts.role == "AXButton", 20, "button-role");
  add(small, 20, "small-frame");
  add(context.isNotification(), 15, "notification-context");
  add(framed && std::abs(rootFrame.maxX() - facts.frame.maxX()) <= kNearRightEdge, 30, "top-rightish");
  add(framed && std::abs(facts.frame.y - rootFrame.y) <= kNearTopEdge, 10, "near-top");
  return control;
}

}  // namespace

HLDismissTarget HLResolvedTarget(const HLDismissTarget& target) {
  const bool isControl = HLStringContainsAny(target.action, HLDismissWords) || !isLarge(target.frame);
  if (isControl || target.element == nullptr) return target;
  if (auto control = HLCloseControlAttributeTarget(*target.element)) return *std::move(control);
  return HLFocusedDismissControlInSubtree(target.element).value_or(target);
}

bool HLTargetUsesClearAction(const HLDismissTarget& target) { return HLStringContainsAny(target.action, HLClearWords); }

std::optional<HLDismissTarget> HLCloseControlAttributeTarget(const HLElement& element) {
  for (std::string_view attribute : kCloseControlAttributes) {
    const HLElementRef control = HLElementAttribute(element, attribute);
    if (control == nullptr) continue;

    const HLElementFacts facts = control->copyFacts();
    const std::optional<std::string> action = dismissOrPressAction(facts.actionNames);
    if (!action) continue;
    const std::string own = HLSearchableContext(facts);
    return HLDismissTarget{control,
                           *action,
                           facts.frame,
                           kAttributeControlScore,
                           own.empty() ? HLLowercase(attribute) : own,
                           "attribute-control:" + std::string(attribute)};
  }
  return std::nullopt;
}

std::optional<HLDismissTarget> HLFocusedDismissControlInSubtree(const HLElementRef& root) {
  const HLElementFacts rootFacts = root->copyFacts();
  std::optional<HLDismissTarget> best;
  const auto look = [&best, &rootFacts](const HLVisit& visit) {
    std::optional<HLDismissTarget> control = focusedControl(visit, rootFacts.frame);
    // Of equal scores the first stays: its element is nearer to the root. Only the best control gets a snapshot, since
    // the text of a context may be long.
    if (control && (!best || control->score > best->score)) {
      best = std::move(control);
      best->snapshot = visit.context.ownOrAll();
    }
    return HLDescent::enter;
  };
  HLWalkTree({root, HLContext(HLJoinedTexts(rootFacts))}, kVisitLimit, look);
  return best;
}
