#include "core/scan/words.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"

namespace {

constexpr std::size_t kBlock = 512;  // bytes

// Whether four letters of the word are where they would be if it began in the block. Tests every byte without a branch,
// so that compilers vectorize the loop.
bool mayBeginIn(const char* block, std::string_view word) {
  const std::size_t last = word.size() - 1;
  const std::size_t second = last / 3;
  const std::size_t third = last * 2 / 3;
  unsigned char least = 0xFF;
  for (std::size_t i = 0; i < kBlock; ++i) {
    const int difference = (block[i] ^ word[0]) | (block[i + second] ^ word[second]) |
                           (block[i + third] ^ word[third]) | (block[i + last] ^ word[last]);
    least = std::min(least, static_cast<unsigned char>(difference));
  }
  return least == 0;
}

bool contains(std::string_view text, std::string_view word) {
  for (; text.size() >= kBlock + word.size(); text.remove_prefix(kBlock)) {
    const std::size_t reach = kBlock + word.size() - 1;
    if (mayBeginIn(text.data(), word) && memmem(text.data(), reach, word.data(), word.size()) != nullptr) return true;
  }
  return text.find(word) != std::string_view::npos;
}

std::optional<std::string> firstOf(const std::vector<std::string>& actionNames, bool (*matches)(const std::string&)) {
  const auto found = std::find_if(actionNames.begin(), actionNames.end(), matches);
  return found == actionNames.end() ? std::nullopt : std::optional(*found);
}

}  // namespace

bool HLStringContainsAny(std::string_view text, HLWordList words) {
  return HLLowercaseContainsAny(HLLowercase(text), words);
}

bool HLLowercaseContainsAny(std::string_view text, HLWordList words) { return HLWordIn(text, words).has_value(); }

std::optional<std::string_view> HLWordIn(std::string_view text, HLWordList words) {
  for (std::string_view word : words) {
    if (contains(text, word)) return word;
  }
  return std::nullopt;
}

std::optional<std::string> HLExplicitDismissAction(const std::vector<std::string>& actionNames) {
  return firstOf(actionNames, [](const std::string& name) { return HLStringContainsAny(name, HLDismissWords); });
}

std::optional<std::string> HLCloseAction(const std::vector<std::string>& actionNames) {
  return firstOf(actionNames,
                 [](const std::string& name) { return name.starts_with("Name:Close") || name == "AXClose"; });
}

bool HLIsPressable(const std::vector<std::string>& actionNames) {
  return std::find(actionNames.begin(), actionNames.end(), "AXPress") != actionNames.end();
}
