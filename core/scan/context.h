// The accumulated words of an element and all its ancestors.
#pragma once

#include <string>
#include <string_view>

// Extending a context costs no search of the words that were there before, so that a deep tree is scanned in linear
// time.
class HLContext {
 public:
  HLContext() = default;
  explicit HLContext(std::string text);

  // The context of a child whose own compacted words these are.
  [[nodiscard]] HLContext extendedBy(std::string_view own) const;

  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] bool isNotification() const { return isNotification_; }
  [[nodiscard]] bool hasCloseWord() const { return hasCloseWord_; }

 private:
  void searchFrom(std::size_t begin);

  std::string text_;
  bool isNotification_ = false;
  bool hasCloseWord_ = false;
};
