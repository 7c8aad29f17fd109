// An element's own words, and the accumulated words of an element and all its ancestors.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "platform/element_facts.h"

// Returns the element's own words: its seven texts, lower-cased and compacted, the non-empty ones joined by spaces.
[[nodiscard]] std::string HLSearchableContext(const HLElementFacts& facts);

// Returns the same of role, subrole, role description and identifier only.
[[nodiscard]] std::string HLStructuralContext(const HLElementFacts& facts);

// An immutable value; cheap to copy. A context shares the words of its parent, so that a tree takes as much memory as
// its words have, and extending a context searches its new words only.
class HLContext {
 public:
  HLContext() = default;  // has no words
  explicit HLContext(std::string_view words) : HLContext(HLContext().extendedBy(words)) {}

  // Returns the context of a child whose own words, lower-cased and compacted, these are.
  [[nodiscard]] HLContext extendedBy(std::string_view own) const;

  // Returns the words of the whole path from the root, joined by spaces. Copies them: O(length).
  [[nodiscard]] std::string text() const;
  // Returns the first `units` UTF-16 code units of text() without making the rest.
  [[nodiscard]] std::string beginning(std::size_t units) const;

  [[nodiscard]] bool isNotification() const { return last_ != nullptr && last_->isNotification; }
  [[nodiscard]] bool hasCloseWord() const { return last_ != nullptr && last_->hasCloseWord; }

 private:
  // The words of one element, never empty, and what they and those before them hold.
  struct Words {
    std::shared_ptr<const Words> before;
    std::string own;
    bool isNotification = false;
    bool hasCloseWord = false;
  };

  [[nodiscard]] std::string firstBytes(std::size_t count) const;
  [[nodiscard]] std::string lastBytes(std::size_t count) const;

  std::shared_ptr<const Words> last_;  // nullptr without words
};

// Whether a context with these words, in any letter case, belongs to a notification.
[[nodiscard]] bool HLIsNotificationContext(std::string_view words);
