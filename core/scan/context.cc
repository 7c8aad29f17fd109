#include "core/scan/context.h"

#include <algorithm>
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

std::string joinedWords(std::initializer_list<std::string_view> texts) {
  std::string joined;
  for (std::string_view text : texts) {
    if (text.empty()) continue;
    if (!joined.empty()) joined += ' ';
    joined += text;
  }
  return HLCompactSnapshot(HLLowercase(joined));
}

}  // namespace

std::string HLSearchableContext(const HLElementFacts& facts) {
  return joinedWords({facts.role, facts.subrole, facts.roleDescription, facts.title, facts.description, facts.value,
                      facts.identifier});
}

std::string HLStructuralContext(const HLElementFacts& facts) {
  return joinedWords({facts.role, facts.subrole, facts.roleDescription, facts.identifier});
}

HLContext HLContext::extendedBy(std::string_view own) const {
  if (own.empty()) return *this;
  // A word may straddle the joint, and then has all but one of its bytes at most on either side.
  const std::string joint = last_ == nullptr ? "" : lastBytes(kReach) + ' ' + std::string(own.substr(0, kReach));
  const auto holdsAny = [own, &joint](HLWordList words) {
    return HLLowercaseContainsAny(joint, words) || HLLowercaseContainsAny(own, words);
  };
  auto words = std::make_shared<Words>();
  words->before = last_;
  words->own = own;
  words->isNotification = isNotification() || holdsAny(HLNotificationWords);
  words->hasCloseWord = hasCloseWord() || holdsAny(HLDismissWords);
  HLContext child;
  child.last_ = std::move(words);
  return child;
}

std::string HLContext::text() const { return firstBytes(std::string::npos); }

// No UTF-16 unit comes of more than three bytes, and a code point has four at most.
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

std::string HLContext::lastBytes(std::size_t count) const {
  std::string text;
  for (const Words* words = last_.get(); words != nullptr && text.size() < count; words = words->before.get()) {
    if (!text.empty()) text.insert(0, 1, ' ');
    const std::size_t missing = count - std::min(count, text.size());
    text.insert(0, words->own, words->own.size() - std::min(words->own.size(), missing));
  }
  return text;
}

bool HLIsNotificationContext(std::string_view words) { return HLContext(HLLowercase(words)).isNotification(); }
