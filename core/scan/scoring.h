// Whether an element dismisses a notification: a sum of points for tests on its attributes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/scan/context.h"
#include "core/scan/records.h"
#include "platform/element_facts.h"

// Whether role, subrole or structural words mark a part of a menu.
[[nodiscard]] bool HLIsMenuLike(const HLElementFacts& facts);

// The first test that an element failed.
enum class HLRefusal {
  none,
  noPress,              // no action that names closing, and no plain press
  outsideNotification,  // a plain press, outside of a notification
  menu,
  notAButton,    // no closing words, and no button
  negativeWord,  // no closing words, and words of something else
  tooLarge,      // no closing words, and no small frame
  lowScore,
};

struct HLScorePart {
  std::int64_t points = 0;
  std::string_view word;  // as in a target's reason
};

// The steps of the decision about one element.
struct HLScoreDetails {
  HLRefusal refusal = HLRefusal::none;
  std::vector<HLScorePart> parts;  // those added before the decision
  std::string_view negativeWord;   // the first one in the element's own words, once they were searched; else ""
};

// Returns the element as a target, or nullopt if it dismisses nothing. The context ends in its own words. Fills
// `details`, which must be empty, unless nullptr.
[[nodiscard]] std::optional<HLDismissTarget> HLCandidateForElement(const HLElementRef& element,
                                                                   const HLElementFacts& facts,
                                                                   const HLContext& context,
                                                                   HLScoreDetails* details = nullptr);
