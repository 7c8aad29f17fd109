#include "core/scan/words.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"

namespace {

constexpr std::size_t kLongText = 500;  // bytes

// memmem() is faster than find() in long texts only, since it prepares a skip table first.
bool contains(std::string_view text, std::string_view word) {
  if (text.size() < kLongText) return text.find(word) != std::string_view::npos;
  return memmem(text.data(), text.size(), word.data(), word.size()) != nullptr;
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
