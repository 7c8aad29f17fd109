// Makes texts unreadable in a way that the engine cannot tell.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "report/word_mask.h"

// A stretch of a text's lower-cased UTF-16 units.
struct HLTextSpan {
  std::size_t begin = 0;
  std::size_t end = 0;
};

// Replaces the letters and digits of texts, word by word. What stays: every phrase of the engine's lists, the phrases
// given at construction, and words that stand in a text which stays itself; blanks, punctuation and symbols; upper
// case; the length of the lower-cased text in UTF-16 units.
//
// First every text is met, then texts are replaced: half of a phrase at a text's end stays when another text has its
// other half.
class HLTextMask {
 public:
  explicit HLTextMask(HLWordMask::Key key, const std::vector<std::string>& furtherPhrases = {});

  // A text that stays as it is.
  void meetKept(std::string_view text);
  // A text that will be replaced.
  void meet(std::string_view text) { meetEnds(text); }

  // Returns the text with its words replaced. A word that reaches over one of the `cuts` (in lower-cased UTF-16 units)
  // is replaced as two words. `kept` stays.
  [[nodiscard]] std::string replaced(std::string_view text, const std::vector<std::size_t>& cuts = {},
                                     const std::vector<HLTextSpan>& kept = {});

 private:
  void meetEnds(std::string_view text);

  // A phrase of two words, whose halves two texts may bring together, and which halves were met.
  struct Joint {
    std::u16string left;
    std::u16string right;
    bool leftMet = false;
    bool rightMet = false;
  };

  HLWordMask words_;
  std::vector<std::u16string> phrases_;
  std::vector<Joint> joints_;
  std::set<std::u16string> keptWords_;
};

// Every phrase of the engine's word lists, each once.
[[nodiscard]] std::vector<std::string_view> HLEnginePhrases();
