#include "core/scan/words.h"

#include <algorithm>
#include <array>

#include "platform/text.h"

namespace {

using namespace std::string_view_literals;

// The lists overlap on purpose and are not to be tidied: each is data with a history of its own.
constexpr std::array kDismissWords = {"close"sv, "dismiss"sv, "clear"sv};
constexpr std::array kOwnCloseWords = {"close"sv, "dismiss"sv, "clear"sv, "xmark"sv};
constexpr std::array kNotificationWords = {"notification"sv,        "axnotification"sv, "stacked"sv,
                                           "notification center"sv, "from iphone"sv,    "axnotificationlistitems"sv};

constexpr bool fitContexts(HLWordList words) {
  return std::all_of(words.begin(), words.end(),
                     [](std::string_view word) { return word.size() <= HLLongestContextWord; });
}
static_assert(fitContexts(kNotificationWords) && fitContexts(kDismissWords));

}  // namespace

bool HLStringContainsAny(std::string_view text, HLWordList words) {
  return HLLowercaseContainsAny(HLLowercase(text), words);
}

bool HLLowercaseContainsAny(std::string_view text, HLWordList words) {
  return std::any_of(words.begin(), words.end(),
                     [text](std::string_view word) { return text.find(word) != std::string_view::npos; });
}

bool HLIsNotificationContext(std::string_view text) { return HLStringContainsAny(text, kNotificationWords); }

bool HLContainsDismissWord(std::string_view text) { return HLStringContainsAny(text, kDismissWords); }

bool HLHasOwnCloseWord(std::string_view own) { return HLStringContainsAny(own, kOwnCloseWords); }

bool HLContextHoldsNotificationWord(std::string_view context) {
  return HLLowercaseContainsAny(context, kNotificationWords);
}

bool HLContextHoldsCloseWord(std::string_view context) { return HLLowercaseContainsAny(context, kDismissWords); }

std::optional<std::string> HLExplicitDismissAction(const std::vector<std::string>& actionNames) {
  const auto found = std::find_if(actionNames.begin(), actionNames.end(), HLContainsDismissWord);
  return found == actionNames.end() ? std::nullopt : std::optional(*found);
}

bool HLIsPressable(const std::vector<std::string>& actionNames) {
  return std::find(actionNames.begin(), actionNames.end(), "AXPress") != actionNames.end();
}
