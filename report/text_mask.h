// Makes texts unreadable to a person, in a way that the engine cannot tell.
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
// A replacement is drawn at random; only the length of the word, its upper case and its digits are seen in it. What
// stays: every phrase of the engine's word lists, the words of texts that stay themselves, white space, punctuation,
// symbols, and the length of the lower-cased text in UTF-16 units.
//
// Call the meet functions with every text before replaced(): what stays of a text, and where its words are parted,
// depends on the others.
class HLTextMask {
 public:
  // The same seed and calls give the same replacements.
  explicit HLTextMask(std::uint64_t seed) : random_(seed), used_{u"0", u"1"} {}

  void meet(std::string_view text);
  // For a text that stays as it is. Its words stay in the other texts too.
  void meetKept(std::string_view text);
  // For a text of which only the first `units` UTF-16 units count. The word that lies across is replaced as two words,
  // in all texts.
  void meetCut(std::string_view text, std::size_t units);

  // Returns the text with its words replaced. The `kept` parts of the text stay, in any letter case.
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
  std::set<std::u16string> used_;  // words that are no replacement any more
  std::set<std::u16string> keptWords_;
  std::map<std::u16string, std::set<std::size_t>> cutWords_;  // with the places of the cuts
  // The first words of two-word phrases with which a text ends, and the second words with which one begins.
  std::set<std::u16string> endings_;
  std::set<std::u16string> beginnings_;
};

// Returns every phrase of the engine's word lists, each once.
[[nodiscard]] std::vector<std::string_view> HLEnginePhrases();
