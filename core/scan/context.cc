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

// Returns whether these words can be searched for before finish().
constexpr bool isSearchable(HLWordList words) {
  return std::all_of(words.begin(), words.end(), [](std::string_view word) {
    const auto isPlain = [](char c) { return c == ' ' || (c >= 'a' && c <= 'z'); };
    return std::all_of(word.begin(), word.end(), isPlain) && std::count(word.begin(), word.end(), ' ') <= 1 &&
           !word.ends_with('i');
  });
}
static_assert(isSearchable(HLDismissWords) && isSearchable(HLOwnCloseWords) && isSearchable(HLNotificationWords) &&
              isSearchable(HLNegativeWords) && isSearchable(HLButtonWords));

// Beyond ASCII, only U+212A and U+0130 have a lower case with an ASCII letter. U+212A (Kelvin) becomes k, so a text
// with it is finished at once. U+0130 becomes i and a combining mark. No word ends in i, so no word matches there.
constexpr std::array<std::string_view, 1> kKelvinSign = {"\u212A"};

std::string joined(std::initializer_list<std::string_view> texts) {
  std::size_t size = 0;
  for (std::string_view text : texts) size += text.size() + 1;
  std::string joined;
  joined.reserve(size);
  for (std::string_view text : texts) {
    if (text.empty()) continue;
    if (!joined.empty()) joined += ' ';
    joined += text;
  }
  return joined;
}

std::string lowercaseWords(std::string_view text) { return HLCompactSnapshot(HLLowercase(text)); }

}  // namespace

std::string HLJoinedTexts(const HLElementFacts& facts) {
  return joined({facts.role, facts.subrole, facts.roleDescription, facts.title, facts.description, facts.value,
                 facts.identifier});
}

std::string HLSearchableContext(const HLElementFacts& facts) { return lowercaseWords(HLJoinedTexts(facts)); }

std::string HLStructuralContext(const HLElementFacts& facts) {
  return lowercaseWords(joined({facts.role, facts.subrole, facts.roleDescription, facts.identifier}));
}

HLContext HLContext::extendedBy(std::string texts) const {
  const std::string_view trimmed = HLTrim(texts);
  HLContext child = *this;
  child.hasOwn_ = !trimmed.empty();
  if (!child.hasOwn_) return child;
  std::string own = trimmed.size() == texts.size() ? std::move(texts) : std::string(trimmed);
  const bool isAscii = HLMakeAsciiLowercase(own);
  child.last_ = std::make_shared<Words>(Words{last_, std::move(own), false, {}, {}});
  if (!isAscii && HLLowercaseContainsAny(child.last_->own, kKelvinSign)) child.last_->finish();
  return child;
}

const std::string& HLContext::own() const {
  static const std::string none;
  return hasOwn_ ? last_->finish() : none;
}

std::optional<std::string_view> HLContext::ownWordIn(HLWordList words) const {
  return hasOwn_ ? last_->ownWordIn(words) : std::nullopt;
}

bool HLContext::isNotification() const {
  return last_ != nullptr && last_->holdsAny(kNotificationWords, &Words::isNotification);
}

bool HLContext::hasCloseWord() const {
  return last_ != nullptr && last_->holdsAny(HLDismissWords, &Words::hasCloseWord);
}

const std::string& HLContext::Words::finish() {
  if (!finished) own = lowercaseWords(own);
  finished = true;
  return own;
}

// finish() changes only white space and characters beyond ASCII, so a word without a space matches before it exactly if
// it matches after.
std::optional<std::string_view> HLContext::Words::ownWordIn(HLWordList words) {
  for (const std::string_view word : words) {
    const std::string_view last = word.substr(word.rfind(' ') + 1);
    if (!HLLowercaseContainsAny(own, {&last, 1})) continue;
    if (last == word || HLLowercaseContainsAny(finish(), {&word, 1})) return word;
  }
  return std::nullopt;
}

bool HLContext::Words::holdsAny(HLWordList words, std::optional<bool> Words::*answer) {
  if (!(this->*answer)) {
    this->*answer =
        ownWordIn(words) || holdsAnyAcrossBoundary(words) || (before != nullptr && before->holdsAny(words, answer));
  }
  return *(this->*answer);
}

// A word has at most one space. If it straddles the boundary, the boundary is that space, and neither side has white
// space next to it. So finish() is not needed.
bool HLContext::Words::holdsAnyAcrossBoundary(HLWordList words) const {
  return before != nullptr && HLLowercaseContainsAny(before->lastBytes(kReach) + ' ' + own.substr(0, kReach), words);
}

std::string HLContext::text() const { return firstBytes(std::string::npos); }

// A UTF-16 unit takes at most three bytes of UTF-8, and a code point four.
std::string HLContext::beginning(std::size_t units) const { return HLUtf16Prefix(firstBytes(3 * units + 4), units); }

std::string HLContext::firstBytes(std::size_t count) const {
  std::vector<Words*> path;
  std::size_t size = 0;
  for (Words* words = last_.get(); words != nullptr; words = words->before.get()) {
    path.push_back(words);
    size += words->own.size() + 1;
  }
  std::string text;
  text.reserve(std::min(size, count));
  for (auto words = path.rbegin(); words != path.rend() && text.size() < count; ++words) {
    if (!text.empty()) text += ' ';
    text.append((*words)->finish(), 0, count - std::min(count, text.size()));
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

bool HLIsNotificationContext(std::string_view words) { return HLContext(std::string(words)).isNotification(); }
