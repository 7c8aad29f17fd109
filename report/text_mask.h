// Makes texts unreadable for people, without a difference for the engine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Replaces the letters and digits of texts, word by word: equal words by equal ones, different words by different ones.
// A replacement is random; it shows the length of the word, its letter case, and which characters are digits. Kept are
// every phrase of the engine's word lists, the words of texts that are kept, white space, punctuation and symbols.
//
// Pass every text to the meet functions before replaced(), since the replacement of a text depends on the other texts.
class HLTextMask {
 public:
  // The same seed and calls give the same replacements.
  explicit HLTextMask(std::uint64_t seed) : random_(seed), used_{u"0", u"1"} {}

  void meet(std::string_view text);
  // For a text that is kept. Its words are kept in the other texts too.
  void meetKept(std::string_view text);
  // For a text that the engine cuts after `units` UTF-16 units. In every text, the word across the cut is replaced as
  // two words.
  void meetCut(std::string_view text, std::size_t units);

  // Returns the text with its words replaced. The parts of the text that equal one of `kept`, in any letter case, are
  // kept.
  [[nodiscard]] std::string replaced(std::string_view text, const std::vector<std::string>& kept = {});

 private:
  // A range of units.
  struct Span {
    std::size_t begin = 0;
    std::size_t end = 0;
  };

  [[nodiscard]] std::vector<Span> phrasesIn(std::u16string_view compact) const;
  [[nodiscard]] std::u16string replacement(const std::u16string& word, const std::vector<bool>& keeps);
  [[nodiscard]] std::u16string drawn(const std::u16string& word, const std::vector<bool>& keeps, int attempt);

  std::mt19937_64 random_;
  std::map<std::pair<std::u16string, std::vector<bool>>, std::u16string> known_;
  std::set<std::u16string> used_;  // words that cannot be replacements
  std::set<std::u16string> keptWords_;
  std::map<std::u16string, std::set<std::size_t>> cutWords_;  // with the positions of the cuts
  // First words of two-word phrases that end a text, and second words that begin a text.
  std::set<std::u16string> endings_;
  std::set<std::u16string> beginnings_;
};

// Returns every phrase of the engine's word lists, each once.
[[nodiscard]] std::vector<std::string_view> HLEnginePhrases();
