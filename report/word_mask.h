// Replaces words by unreadable ones: equal words by equal ones, different words by different ones.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class HLWordMask {
 public:
  using Key = std::array<std::uint64_t, 2>;

  explicit HLWordMask(Key key) : key_(key), used_{u"0", u"1"} {}

  // Whether a replacement would say what the word does not; such a replacement is not used.
  using Test = bool (*)(std::u16string_view word, std::u16string_view replacement);

  // Returns the replacement of a lower-cased word, as long as the word. Units that `keeps` marks stay; of the others,
  // letters become letters without vowels, and ASCII digits become digits. A word of digits keeps its zeros at both
  // ends and stays within 64 bits; "0" and "1" stay, since truth values read like that.
  [[nodiscard]] std::u16string replacement(const std::u16string& word, const std::vector<bool>& keeps, Test mayNotBe);

  // The word is never a replacement.
  void reserve(std::u16string word) { used_.insert(std::move(word)); }

 private:
  [[nodiscard]] std::uint64_t hash(std::u16string_view word, std::uint64_t attempt) const;
  [[nodiscard]] std::u16string attempted(const std::u16string& word, const std::vector<bool>& keeps,
                                         std::uint64_t attempt) const;

  const Key key_;
  std::map<std::pair<std::u16string, std::vector<bool>>, std::u16string> known_;
  std::set<std::u16string> used_;
};

// Returns a key from the system's source of randomness.
[[nodiscard]] HLWordMask::Key HLRandomMaskKey();
