#include "core/scan/scoring.h"

#include <cstdint>
#include <string_view>

#include "core/scan/element_access.h"
#include "core/scan/words.h"
#include "platform/text.h"

namespace {

constexpr std::int64_t kAcceptance = 45;
constexpr std::int64_t kShortcutScore = 220;
constexpr double kSmallFrame = 60;  // points, both ways

bool isSmall(const HLRect& frame) {
  return !frame.isNull() && frame.width <= kSmallFrame && frame.height <= kSmallFrame;
}

// Points and reason words, in the order in which they are tested.
struct Score {
  std::int64_t points = 0;
  std::string reason;

  void add(std::int64_t more, std::string_view word) {
    points += more;
    if (!reason.empty()) reason += ',';
    reason += word;
  }
};

}  // namespace

bool HLIsMenuLike(const HLElementFacts& facts) {
  return HLStringContainsAny(facts.role, HLMenuRoleWords) || HLStringContainsAny(facts.subrole, HLMenuRoleWords) ||
         HLLowercaseContainsAny(HLStructuralContext(facts), HLMenuStructureWords);
}

std::optional<HLDismissTarget> HLCandidateForElement(const HLElementRef& element, const HLElementFacts& facts,
                                                     const HLContext& context, const std::string& own) {
  const std::optional<std::string> explicitAction = HLExplicitDismissAction(facts.actionNames);

  // Before the menu veto and whatever the words: the text of a notification must not keep it on screen.
  if (explicitAction && HLIsNotificationBannerSubrole(facts.subrole)) {
    return HLDismissTarget{element,
                           *explicitAction,
                           facts.frame,
                           kShortcutScore,
                           HLUtf16Prefix(own, HLSnapshotLimit),
                           "notification-subrole-explicit-action"};
  }
  const bool pressable = HLIsPressable(facts.actionNames);
  if (!explicitAction && !(pressable && context.isNotification())) return std::nullopt;  // nothing to perform
  if (HLIsMenuLike(facts)) return std::nullopt;

  const bool closeWords = HLLowercaseContainsAny(own, HLOwnCloseWords) || context.hasCloseWord();
  const bool negativeWords = HLLowercaseContainsAny(own, HLNegativeWords);
  const bool buttonLike = facts.role == "AXButton" || HLLowercaseContainsAny(own, HLButtonWords);
  const bool small = isSmall(facts.frame);

  Score score;
  std::string action = explicitAction.value_or("");
  if (explicitAction) score.add(120, "explicit-action");
  if (context.isNotification()) score.add(40, "notification-context");
  if (closeWords) score.add(30, "close-words");
  if (buttonLike && pressable) score.add(14, "pressable-button");
  if (small) score.add(8, "small-frame");
  if (negativeWords) score.add(-100, "negative-words");
  if (!explicitAction && (closeWords || (buttonLike && !negativeWords && small))) {
    action = "AXPress";
    score.add(0, "press-fallback");
  }
  if (action.empty() || score.points < kAcceptance) return std::nullopt;

  return HLDismissTarget{element,
                         action,
                         facts.frame,
                         score.points,
                         own.empty() ? context.beginning(HLSnapshotLimit) : HLUtf16Prefix(own, HLSnapshotLimit),
                         score.reason};
}
