#include "core/scan/scoring.h"

#include <cstdint>
#include <string_view>
#include <utility>

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
  HLScoreDetails* details;
  std::int64_t points = 0;
  std::string reason;

  void add(std::int64_t more, std::string_view word) {
    if (details != nullptr) details->parts.push_back({more, word});
    points += more;
    if (!reason.empty()) reason += ',';
    reason += word;
  }
};

std::optional<HLDismissTarget> refuse(HLScoreDetails* details, HLRefusal refusal) {
  if (details != nullptr) details->refusal = refusal;
  return std::nullopt;
}

}  // namespace

bool HLIsMenuLike(const HLElementFacts& facts) {
  return HLStringContainsAny(facts.role, HLMenuRoleWords) || HLStringContainsAny(facts.subrole, HLMenuRoleWords) ||
         HLLowercaseContainsAny(HLStructuralContext(facts), HLMenuStructureWords);
}

std::optional<HLDismissTarget> HLCandidateForElement(const HLElementRef& element, const HLElementFacts& facts,
                                                     const HLContext& context, HLScoreDetails* details) {
  const std::optional<std::string> explicitAction = HLExplicitDismissAction(facts.actionNames);
  Score score{details, 0, ""};

  // Tested before menus and words, so that no text of a notification keeps it on screen.
  if (explicitAction && HLIsNotificationBannerSubrole(facts.subrole)) {
    score.add(kShortcutScore, "notification-subrole-explicit-action");
    return HLDismissTarget{element,
                           *explicitAction,
                           facts.frame,
                           score.points,
                           HLUtf16Prefix(context.own(), HLSnapshotLimit),
                           std::move(score.reason)};
  }
  const bool pressable = HLIsPressable(facts.actionNames);
  if (!explicitAction && !pressable) return refuse(details, HLRefusal::noPress);
  if (!explicitAction && !context.isNotification()) return refuse(details, HLRefusal::outsideNotification);
  if (HLIsMenuLike(facts)) return refuse(details, HLRefusal::menu);

  const bool closeWords = context.ownWordIn(HLOwnCloseWords) || context.hasCloseWord();
  const std::optional<std::string_view> negativeWord = context.ownWordIn(HLNegativeWords);
  const bool buttonLike = facts.role == "AXButton" || context.ownWordIn(HLButtonWords);
  const bool small = isSmall(facts.frame);
  if (details != nullptr) details->negativeWord = negativeWord.value_or("");

  if (explicitAction) score.add(120, "explicit-action");
  if (context.isNotification()) score.add(40, "notification-context");
  if (closeWords) score.add(30, "close-words");
  if (buttonLike && pressable) score.add(14, "pressable-button");
  if (small) score.add(8, "small-frame");
  if (negativeWord) score.add(-100, "negative-words");
  if (!explicitAction) {
    if (!closeWords && !buttonLike) return refuse(details, HLRefusal::notAButton);
    if (!closeWords && negativeWord) return refuse(details, HLRefusal::negativeWord);
    if (!closeWords && !small) return refuse(details, HLRefusal::tooLarge);
    score.add(0, "press-fallback");
  }
  if (score.points < kAcceptance) return refuse(details, HLRefusal::lowScore);

  const std::string& own = context.own();
  return HLDismissTarget{element,
                         explicitAction.value_or("AXPress"),
                         facts.frame,
                         score.points,
                         own.empty() ? context.beginning(HLSnapshotLimit) : HLUtf16Prefix(own, HLSnapshotLimit),
                         std::move(score.reason)};
}
