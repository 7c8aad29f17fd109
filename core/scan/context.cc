#include "core/scan/context.h"

#include <algorithm>
#include <utility>

#include "core/scan/words.h"

HLContext::HLContext(std::string text) : text_(std::move(text)) { searchFrom(0); }

HLContext HLContext::extendedBy(std::string_view own) const {
  HLContext child;
  child.isNotification_ = isNotification_;
  child.hasCloseWord_ = hasCloseWord_;
  child.text_.reserve(text_.size() + 1 + own.size());
  child.text_ = text_;
  if (!text_.empty() && !own.empty()) child.text_ += ' ';
  child.text_ += own;
  // A new word can reach back into old text by all but its last byte.
  child.searchFrom(text_.size() - std::min(text_.size(), HLLongestContextWord - 1));
  return child;
}

void HLContext::searchFrom(std::size_t begin) {
  const std::string_view fresh = std::string_view(text_).substr(begin);
  isNotification_ = isNotification_ || HLContextHoldsNotificationWord(fresh);
  hasCloseWord_ = hasCloseWord_ || HLContextHoldsCloseWord(fresh);
}
