// An element's own words, and the accumulated words of an element and all its ancestors.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/scan/words.h"
#include "platform/element_facts.h"

// Returns the element's seven texts, the non-empty ones joined by spaces.
[[nodiscard]] std::string HLJoinedTexts(const HLElementFacts& facts);

// Returns the element's own words: its seven texts, lower-cased and compacted, the non-empty ones joined by spaces.
[[nodiscard]] std::string HLSearchableContext(const HLElementFacts& facts);

// Returns the same of role, subrole, role description and identifier only.
[[nodiscard]] std::string HLStructuralContext(const HLElementFacts& facts);

// An immutable value; cheap to copy. A context shares the words of its parent, so a tree takes memory in proportion to
// its words. Words are lower-cased and searched lazily and once: long texts are common, queries are rare. One thread at
// a time may use contexts that share words.
class HLContext {
 public:
  HLContext() = default;  // has no words
  explicit HLContext(std::string texts) : HLContext(HLContext().extendedBy(std::move(texts))) {}

  // Returns the context of a child whose own words are those of `texts`, in any letter case, with any white space.
  [[nodiscard]] HLContext extendedBy(std::string texts) const;

  // The words that the context was last extended by, lower-cased and compacted. Valid while it lives.
  [[nodiscard]] const std::string& own() const;

  // Returns the first word of the list that own() contains, or nullopt.
  [[nodiscard]] std::optional<std::string_view> ownWordIn(HLWordList words) const;

  // Returns a copy of own(), or of text() if that is empty.
  [[nodiscard]] std::string ownOrAll() const { return own().empty() ? text() : own(); }

  // Returns the words of the whole path from the root, joined by spaces. Copies them: O(length).
  [[nodiscard]] std::string text() const;
  // Returns the first `units` UTF-16 code units of text() without making the rest.
  [[nodiscard]] std::string beginning(std::size_t units) const;

  [[nodiscard]] bool isNotification() const;
  [[nodiscard]] bool hasCloseWord() const;

 private:
  // The words of one element, never empty, and cached answers about them together with the words before.
  struct Words {
    std::shared_ptr<Words> before;
    std::string own;  // without white space at the ends; only its ASCII letters are lower-cased before finish()
    bool finished = false;
    std::optional<bool> isNotification;
    std::optional<bool> hasCloseWord;

    // Lower-cases and compacts `own`, and returns it.
    const std::string& finish();
    [[nodiscard]] std::optional<std::string_view> ownWordIn(HLWordList words);
    // Whether any of `words` is in these words or before. Recurses once for each ancestor without an answer.
    [[nodiscard]] bool holdsAny(HLWordList words, std::optional<bool> Words::*answer);
    // Whether any of `words` begins before and ends in the own words.
    [[nodiscard]] bool holdsAnyAcrossBoundary(HLWordList words) const;
    [[nodiscard]] std::string lastBytes(std::size_t count) const;
  };

  [[nodiscard]] std::string firstBytes(std::size_t count) const;

  std::shared_ptr<Words> last_;  // nullptr without words
  bool hasOwn_ = false;          // whether own() is last_->own; else it is empty
};

// Whether a context with these words, in any letter case, belongs to a notification.
[[nodiscard]] bool HLIsNotificationContext(std::string_view words);
