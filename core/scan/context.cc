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

// In bytes.
constexpr std::size_t longestWord(HLWordList words) {
  std::size_t longest = 0;
  for (std::string_view word : words) longest = std::max(longest, word.size());
  return longest;
}
constexpr std::size_t kReach = std::max(longestWord(HLNotificationWords), longestWord(HLDismissWords)) - 1;

// The words that contain no other word of the list. A text with any word of the list contains one of these.
template <std::size_t Count>
struct ShortestWords {
  std::array<std::string_view, Count> words = {};
  std::size_t count = 0;

  explicit constexpr ShortestWords(const std::array<std::string_view, Count>& all) {
    for (std::string_view word : all) {
      const bool containsAnother = std::any_of(all.begin(), all.end(), [word](std::string_view other) {
        return word != other && word.find(other) != std::string_view::npos;
      });
      if (!containsAnother) words[count++] = word;
    }
  }
  [[nodiscard]] constexpr HLWordList list() const { return HLWordList(words).first(count); }
};
constexpr ShortestWords kNotificationWords(HLNotificationWords);
constexpr ShortestWords kDismissWords(HLDismissWords);

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
  if (own.empty()) return *this;
  auto words = std::make_shared<Words>();
  words->before = last_;
  words->own = std::move(own);
  HLContext child;
  child.last_ = std::move(words);
  return child;
}

bool HLContext::isNotification() const { return holdsAny(kNotificationWords.list(), &Words::isNotification); }

bool HLContext::hasCloseWord() const { return holdsAny(kDismissWords.list(), &Words::hasCloseWord); }

bool HLContext::holdsAny(HLWordList words, std::optional<bool> Words::*known) const {
  const Words* last = last_.get();
  while (last != nullptr && !(last->*known) && !last->holdsAny(words)) last = last->before.get();
  const bool found = last != nullptr && (last->*known).value_or(true);
  // The answer holds for all contexts from that one down to this one.
  const Words* end = last == nullptr ? nullptr : last->before.get();
  for (Words* each = last_.get(); each != end; each = each->before.get()) each->*known = found;
  return found;
}

bool HLContext::Words::holdsAny(HLWordList words) const {
  if (HLLowercaseContainsAny(own, words)) return true;
  if (before == nullptr) return false;
  // A word may straddle the boundary, with at most all but one of its bytes on either side.
  return HLLowercaseContainsAny(before->lastBytes(kReach) + ' ' + own.substr(0, kReach), words);
}

const std::string& HLContext::lastWords() const {
  static const std::string none;
  return last_ == nullptr ? none : last_->own;
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
