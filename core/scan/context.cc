#include "core/scan/context.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>
#include <vector>

#include "core/scan/records.h"
#include "core/scan/words.h"
#include "platform/text.h"

namespace {

// Those of HLNotificationWords that the others contain: a text with any of the list has one of these.
constexpr std::array<std::string_view, 3> kNotificationWords = {"notification", "stacked", "from iphone"};
constexpr std::size_t kReach = std::string_view("notification").size() - 1;  // all but one byte of the longest word
static_assert(std::all_of(HLNotificationWords.begin(), HLNotificationWords.end(), [](std::string_view word) {
  return std::any_of(kNotificationWords.begin(), kNotificationWords.end(),
                     [word](std::string_view part) { return word.find(part) != std::string_view::npos; });
}));

std::string joinedWords(std::initializer_list<std::string_view> texts) {
  std::size_t size = 0;
  for (std::string_view text : texts) size += text.size() + 1;
  std::string joined;
  joined.reserve(size);
  for (std::string_view text : texts) {
    if (text.empty()) continue;
    if (!joined.empty()) joined += ' ';
    joined += text;
  }
  HLMakeLowercase(joined);
  return HLCompactSnapshot(std::move(joined));
}

}  // namespace

std::string HLSearchableContext(const HLElementFacts& facts) {
  return joinedWords({facts.role, facts.subrole, facts.roleDescription, facts.title, facts.description, facts.value,
                      facts.identifier});
}

std::string HLStructuralContext(const HLElementFacts& facts) {
  return joinedWords({facts.role, facts.subrole, facts.roleDescription, facts.identifier});
}

HLContext HLContext::extendedBy(std::string own) const {
  HLContext child = *this;
  child.hasOwn_ = !own.empty();
  if (child.hasOwn_) child.last_ = std::make_shared<Words>(Words{last_, std::move(own), {}, {}});
  return child;
}

const std::string& HLContext::own() const {
  static const std::string none;
  return hasOwn_ ? last_->own : none;
}

bool HLContext::isNotification() const {
  return last_ != nullptr && last_->holdsAny(kNotificationWords, &Words::isNotification);
}

bool HLContext::hasCloseWord() const {
  return last_ != nullptr && last_->holdsAny(HLDismissWords, &Words::hasCloseWord);
}

bool HLContext::Words::holdsAny(HLWordList words, std::optional<bool> Words::*answer) {
  if (!(this->*answer)) {
    this->*answer = HLLowercaseContainsAny(own, words) || holdsAnyAcrossBoundary(words) ||
                    (before != nullptr && before->holdsAny(words, answer));
  }
  return *(this->*answer);
}

bool HLContext::Words::holdsAnyAcrossBoundary(HLWordList words) const {
  return before != nullptr && HLLowercaseContainsAny(before->lastBytes(kReach) + ' ' + own.substr(0, kReach), words);
}

std::string HLContext::text() const { return firstBytes(std::string::npos); }

// A UTF-16 unit takes at most three bytes of UTF-8, and a code point four.
std::string HLContext::beginning(std::size_t units) const { return HLUtf16Prefix(firstBytes(3 * units + 4), units); }

std::string HLContext::firstBytes(std::size_t count) const {
  std::vector<const std::string*> path;
  std::size_t size = 0;
  for (const Words* words = last_.get(); words != nullptr; words = words->before.get()) {
    path.push_back(&words->own);
    size += words->own.size() + 1;
  }
  std::string text;
  text.reserve(std::min(size, count));
  for (auto own = path.rbegin(); own != path.rend() && text.size() < count; ++own) {
    if (!text.empty()) text += ' ';
    text.append(**own, 0, count - std::min(count, text.size()));
  }
  return text;
}

std::string HLContext::Words::lastBytes(std::size_t count) const {
  std::string text;
  for (const Words* words = this; words != nullptr && text.size() < count; words = words->before.get()) {
    if (!text.empty()) text.insert(0, 1, ' ');
    const std::size_t missing = count - std::min(count, text.size());
    text.insert(0, words->own, words->own.size() - std::min(words->own.size(), missing));
  }
  return text;
}

bool HLIsNotificationContext(std::string_view words) { return HLContext(HLLowercase(words)).isNotification(); }
