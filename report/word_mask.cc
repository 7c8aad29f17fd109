#include "report/word_mask.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <random>

namespace {

// Without x, which names close buttons.
constexpr std::u16string_view kConsonants = u"bcdfghjklmnpqrstvwz";
// For short words, of which there are more than consonants: letters that have both cases and are in no list of words.
constexpr char16_t kCyrillic = u'\u0431';
constexpr std::uint64_t kCyrillicCount = 31;
constexpr char16_t kIdeographs = u'\u4E00';
constexpr std::uint64_t kIdeographCount = 20000;
constexpr std::uint64_t kAttemptsWithConsonants = 64;
constexpr std::uint64_t kAttemptsWithCyrillic = 256;
constexpr std::uint64_t kAttempts = 100000;

// A signed number of 64 bits has 19 digits at most.
constexpr std::size_t kLongNumber = 19;

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// SipHash-2-4 of the words.
class SipHash {
 public:
  explicit SipHash(const HLWordMask::Key& key)
      : v_{key[0] ^ 0x736f6d6570736575U, key[1] ^ 0x646f72616e646f6dU, key[0] ^ 0x6c7967656e657261U,
           key[1] ^ 0x7465646279746573U} {}

  void add(std::uint64_t word) {
    v_[3] ^= word;
    round();
    round();
    v_[0] ^= word;
  }

  std::uint64_t end() {
    v_[2] ^= 0xFFU;
    for (int i = 0; i < 4; ++i) round();
    return v_[0] ^ v_[1] ^ v_[2] ^ v_[3];
  }

 private:
  void round() {
    v_[0] += v_[1];
    v_[1] = std::rotl(v_[1], 13) ^ v_[0];
    v_[0] = std::rotl(v_[0], 32);
    v_[2] += v_[3];
    v_[3] = std::rotl(v_[3], 16) ^ v_[2];
    v_[0] += v_[3];
    v_[3] = std::rotl(v_[3], 21) ^ v_[0];
    v_[2] += v_[1];
    v_[1] = std::rotl(v_[1], 17) ^ v_[2];
    v_[2] = std::rotl(v_[2], 32);
  }

  std::array<std::uint64_t, 4> v_;
};

char16_t letterFrom(std::uint64_t number, std::uint64_t attempt) {
  if (attempt < kAttemptsWithConsonants) return kConsonants[number % kConsonants.size()];
  if (attempt < kAttemptsWithCyrillic) return static_cast<char16_t>(kCyrillic + number % kCyrillicCount);
  return static_cast<char16_t>(kIdeographs + number % kIdeographCount);
}

// The digits between the zeros at both ends; the first and the last of them stay other than zero.
struct Significant {
  std::size_t begin = 0;
  std::size_t end = 0;
};

Significant significantDigits(std::u16string_view digits) {
  Significant part{0, digits.size()};
  while (part.begin < part.end && digits[part.begin] == u'0') ++part.begin;
  while (part.end > part.begin && digits[part.end - 1] == u'0') --part.end;
  return part;
}

}  // namespace

std::u16string HLWordMask::replacement(const std::u16string& word, const std::vector<bool>& keeps, Test mayNotBe) {
  const auto [entry, isNew] = known_.try_emplace({word, keeps}, word);
  if (!isNew || word == u"0" || word == u"1") return entry->second;
  if (std::all_of(keeps.begin(), keeps.end(), [](bool kept) { return kept; })) return entry->second;
  for (std::uint64_t attempt = 0; attempt < kAttempts; ++attempt) {
    std::u16string made = attempted(word, keeps, attempt);
    if (used_.count(made) > 0 || mayNotBe(word, made)) continue;
    used_.insert(made);
    return entry->second = std::move(made);
  }
  return entry->second = std::u16string(word.size(), u'_');  // more words of this kind than replacements
}

std::uint64_t HLWordMask::hash(std::u16string_view word, std::uint64_t attempt) const {
  SipHash hash(key_);
  for (char16_t unit : word) hash.add(unit);
  hash.add(word.size());
  hash.add(attempt);
  return hash.end();
}

std::u16string HLWordMask::attempted(const std::u16string& word, const std::vector<bool>& keeps,
                                     std::uint64_t attempt) const {
  const bool isNumber = std::all_of(word.begin(), word.end(), isDigit);
  const Significant significant = isNumber ? significantDigits(word) : Significant{};
  std::u16string made = word;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (keeps[i]) continue;
    const std::uint64_t number = hash(word, attempt * word.size() + i);
    if (!isDigit(word[i])) {
      made[i] = letterFrom(number, attempt);
    } else if (!isNumber) {
      made[i] = static_cast<char16_t>(u'0' + number % 10);
    } else if (i >= significant.begin && i < significant.end) {
      const bool isEnd = i == significant.begin || i + 1 == significant.end;
      made[i] = static_cast<char16_t>(isEnd ? u'1' + number % 9 : u'0' + number % 10);
      if (i == 0 && word.size() >= kLongNumber) made[i] = u'1';
    }
  }
  return made;
}

HLWordMask::Key HLRandomMaskKey() {
  std::random_device source;
  const auto word = [&source] { return std::uint64_t{source()} << 32U | std::uint64_t{source()}; };
  return {word(), word()};
}
