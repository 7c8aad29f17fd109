#include "report/text_mask.h"

#include <algorithm>

#include "core/scan/words.h"
#include "platform/text.h"

namespace {

// Letters of replacements: consonants first, without x, since "x" names close buttons. For short words, consonants run
// out: then Cyrillic letters, which have both cases and are in no word list; then ideographs.
constexpr std::u16string_view kConsonants = u"bcdfghjklmnpqrstvwz";
constexpr char16_t kCyrillic = u'\u0431';
constexpr std::uint64_t kCyrillicCount = 31;
constexpr char16_t kIdeographs = u'\u4E00';
constexpr std::uint64_t kIdeographCount = 20000;
// Surrogates in place of surrogates, so that a cut between the two of a pair stays one. Any two are an ideograph.
constexpr char16_t kHighSurrogates = 0xD840;
constexpr std::uint64_t kHighSurrogateCount = 40;
constexpr char16_t kLowSurrogates = 0xDC00;
constexpr std::uint64_t kLowSurrogateCount = 1024;
constexpr int kAttemptsWithConsonants = 64;
constexpr int kAttemptsWithCyrillic = 256;
constexpr int kAttempts = 100000;

constexpr std::size_t kLongNumber = 19;  // digits of the largest signed 64-bit integer

// The UTF-16 units of a lower-cased text, with the code point that each unit came from.
struct LowerText {
  struct Letter {
    std::string_view bytes;  // of the code point, as written
    std::size_t firstUnit = 0;
    bool isWord = false;   // a letter, a mark or a digit
    bool isUpper = false;  // lower-casing changes it
  };
  std::string text;  // encodable
  std::vector<Letter> letters;
  std::u16string units;
  std::vector<std::size_t> owner;  // for each unit, the index of its code point in `letters`
};

LowerText lowerText(std::string_view text) {
  LowerText lower;
  lower.text = HLEncodableText(text);
  const std::string_view whole = lower.text;
  for (std::size_t next = 0; next < whole.size();) {
    const std::size_t begin = next;
    const char32_t codePoint = HLNextCodePoint(whole, next);
    const std::string_view bytes = whole.substr(begin, next - begin);
    const std::string lowered = HLLowercase(bytes);
    lower.letters.push_back({bytes, lower.units.size(), HLIsWordCharacter(codePoint), lowered != bytes});
    lower.units += HLUtf16Units(lowered);
    lower.owner.resize(lower.units.size(), lower.letters.size() - 1);
  }
  // Lower-casing the whole text gives a final sigma its own form.
  const std::u16string units = HLUtf16Units(HLLowercase(whole));
  if (units.size() == lower.units.size()) lower.units = units;
  return lower;
}

// The units with white space compacted as in HLSearchableContext, each with its position in the text.
struct CompactText {
  std::u16string units;
  std::vector<std::size_t> place;
};

CompactText compactText(const LowerText& lower) {
  CompactText compact;
  bool isBlank = true;
  for (std::size_t i = 0; i < lower.units.size(); ++i) {
    const bool blank = HLIsWhitespace(lower.units[i]);
    if (!blank || !isBlank) {
      compact.units += blank ? u' ' : lower.units[i];
      compact.place.push_back(i);
    }
    isBlank = blank;
  }
  if (!compact.units.empty() && compact.units.back() == u' ') {
    compact.units.pop_back();
    compact.place.pop_back();
  }
  return compact;
}

// Calls `found` with each position of the phrase.
template <class Found>
void forEachPlace(std::u16string_view text, std::u16string_view phrase, const Found& found) {
  for (std::size_t at = text.find(phrase); at != std::u16string_view::npos; at = text.find(phrase, at + 1)) found(at);
}

const std::vector<std::u16string>& enginePhrases() {
  static const std::vector<std::u16string> phrases = [] {
    std::vector<std::u16string> units;
    for (std::string_view phrase : HLEnginePhrases()) units.push_back(HLUtf16Units(phrase));
    return units;
  }();
  return phrases;
}

// Calls `found` with both words of each phrase that has two. No phrase has more.
template <class Found>
void forEachTwoWordPhrase(const Found& found) {
  for (const std::u16string& phrase : enginePhrases()) {
    const std::size_t blank = phrase.find(u' ');
    if (blank != std::u16string::npos) found(phrase.substr(0, blank), phrase.substr(blank + 1));
  }
}

// Whether the replacement contains an engine phrase that the word does not contain at the same position.
bool saysMore(std::u16string_view word, std::u16string_view replacement) {
  bool more = false;
  for (const std::u16string& phrase : enginePhrases()) {
    forEachPlace(replacement, phrase, [&](std::size_t at) { more |= word.substr(at, phrase.size()) != phrase; });
  }
  return more;
}

// Calls `run` with begin and end of each word: a maximal range of word units.
template <class Run>
void forEachWord(const LowerText& lower, const Run& run) {
  const auto isWord = [&lower](std::size_t unit) { return lower.letters[lower.owner[unit]].isWord; };
  for (std::size_t begin = 0; begin < lower.units.size();) {
    std::size_t end = begin + 1;
    if (isWord(begin)) {
      while (end < lower.units.size() && isWord(end)) ++end;
      run(begin, end);
    }
    begin = end;
  }
}

// Marks all units of each code point that has a marked unit.
void keepWholeLetters(const LowerText& lower, std::vector<bool>& keeps) {
  std::vector<bool> keepsLetter(lower.letters.size(), false);
  for (std::size_t i = 0; i < keeps.size(); ++i) keepsLetter[lower.owner[i]] = keepsLetter[lower.owner[i]] || keeps[i];
  for (std::size_t i = 0; i < keeps.size(); ++i) keeps[i] = keepsLetter[lower.owner[i]];
}

bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Returns the text with the units that `keeps` does not mark replaced, in the letter case of the text.
std::string written(const LowerText& lower, const std::u16string& units, const std::vector<bool>& keeps) {
  std::string out;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const LowerText::Letter& letter = lower.letters[lower.owner[i]];
    if (!letter.isWord || keeps[i]) {
      if (i == letter.firstUnit) out += letter.bytes;
      continue;
    }
    const std::size_t begin = i;
    if (isHighSurrogate(units[i])) ++i;
    const std::string replacement = HLTextOfUtf16(std::u16string_view(units).substr(begin, i + 1 - begin));
    out += letter.isUpper ? HLUppercase(replacement) : replacement;
  }
  return out;
}

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

char16_t replacementOf(char16_t unit, std::uint64_t number, int attempt) {
  if (isHighSurrogate(unit)) return static_cast<char16_t>(kHighSurrogates + number % kHighSurrogateCount);
  if (isLowSurrogate(unit)) return static_cast<char16_t>(kLowSurrogates + number % kLowSurrogateCount);
  if (attempt < kAttemptsWithConsonants) return kConsonants[number % kConsonants.size()];
  if (attempt < kAttemptsWithCyrillic) return static_cast<char16_t>(kCyrillic + number % kCyrillicCount);
  return static_cast<char16_t>(kIdeographs + number % kIdeographCount);
}

}  // namespace

std::vector<std::string_view> HLEnginePhrases() {
  std::vector<std::string_view> phrases;
  for (HLWordList list : {HLWordList(HLDismissWords), HLWordList(HLOwnCloseWords), HLWordList(HLClearWords),
                          HLWordList(HLNotificationWords), HLWordList(HLNegativeWords), HLWordList(HLButtonWords),
                          HLWordList(HLMenuRoleWords), HLWordList(HLMenuStructureWords)}) {
    phrases.insert(phrases.end(), list.begin(), list.end());
  }
  std::sort(phrases.begin(), phrases.end());
  phrases.erase(std::unique(phrases.begin(), phrases.end()), phrases.end());
  return phrases;
}

void HLTextMask::meet(std::string_view text) {
  const std::u16string units = compactText(lowerText(text)).units;
  forEachTwoWordPhrase([&](const std::u16string& first, const std::u16string& second) {
    if (units.ends_with(first)) endings_.insert(first);
    if (units.starts_with(second)) beginnings_.insert(second);
  });
}

void HLTextMask::meetKept(std::string_view text) {
  meet(text);
  const LowerText lower = lowerText(text);
  forEachWord(lower, [&](std::size_t begin, std::size_t end) {
    const std::u16string word = lower.units.substr(begin, end - begin);
    used_.insert(word);
    keptWords_.insert(word);
  });
}

void HLTextMask::meetCut(std::string_view text, std::size_t units) {
  const LowerText lower = lowerText(text);
  forEachWord(lower, [&](std::size_t begin, std::size_t end) {
    if (begin < units && units < end) cutWords_[lower.units.substr(begin, end - begin)].insert(units - begin);
  });
}

std::string HLTextMask::replaced(std::string_view text, const std::vector<std::string>& kept) {
  const LowerText lower = lowerText(text);
  const CompactText compact = compactText(lower);
  std::vector<bool> keeps(lower.units.size(), false);
  for (const std::string& part : kept) {
    const std::u16string units = HLUtf16Units(HLLowercase(part));
    const std::size_t at = lower.units.find(units);
    if (at != std::u16string::npos) std::fill_n(keeps.begin() + static_cast<std::ptrdiff_t>(at), units.size(), true);
  }
  for (const Span& phrase : phrasesIn(compact.units)) {
    for (std::size_t i = phrase.begin; i < phrase.end; ++i) keeps[compact.place[i]] = true;
  }
  keepWholeLetters(lower, keeps);

  std::u16string units = lower.units;
  const auto replace = [&](std::size_t begin, std::size_t end) {
    const std::u16string word = lower.units.substr(begin, end - begin);
    const auto first = keeps.begin() + static_cast<std::ptrdiff_t>(begin);
    const auto last = keeps.begin() + static_cast<std::ptrdiff_t>(end);
    if (keptWords_.count(word) > 0) return std::fill(first, last, true);
    units.replace(begin, end - begin, replacement(word, std::vector<bool>(first, last)));
  };
  forEachWord(lower, [&](std::size_t begin, std::size_t end) {
    const std::u16string word = lower.units.substr(begin, end - begin);
    const auto cut = cutWords_.find(word);
    std::size_t part = begin;
    if (cut != cutWords_.end() && keptWords_.count(word) == 0) {
      for (std::size_t place : cut->second) replace(std::exchange(part, begin + place), begin + place);
    }
    replace(part, end);
  });
  return written(lower, units, keeps);
}

// Returns the phrases in a compacted text, and the halves of phrases at its ends whose other half another text has.
std::vector<HLTextMask::Span> HLTextMask::phrasesIn(std::u16string_view compact) const {
  std::vector<Span> phrases;
  for (const std::u16string& phrase : enginePhrases()) {
    forEachPlace(compact, phrase, [&](std::size_t at) { phrases.push_back({at, at + phrase.size()}); });
  }
  forEachTwoWordPhrase([&](const std::u16string& first, const std::u16string& second) {
    if (endings_.count(first) == 0 || beginnings_.count(second) == 0) return;
    if (compact.ends_with(first)) phrases.push_back({compact.size() - first.size(), compact.size()});
    if (compact.starts_with(second)) phrases.push_back({0, second.size()});
  });
  return phrases;
}

// Keeps the units that `keeps` marks. Keeps "0" and "1" too, since booleans read as these.
std::u16string HLTextMask::replacement(const std::u16string& word, const std::vector<bool>& keeps) {
  const auto [entry, isNew] = known_.try_emplace({word, keeps}, word);
  if (!isNew || word == u"0" || word == u"1") return entry->second;
  if (std::find(keeps.begin(), keeps.end(), false) == keeps.end()) return entry->second;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    std::u16string made = drawn(word, keeps, attempt);
    if (used_.count(made) > 0 || saysMore(word, made)) continue;
    used_.insert(made);
    return entry->second = std::move(made);
  }
  return entry->second = std::u16string(word.size(), u'_');  // more words of this kind than replacements
}

// Keeps the zeros at both ends of a number and adds none there, so that the number keeps its length when it is parsed
// and formatted again. Keeps numbers within 64 bits.
std::u16string HLTextMask::drawn(const std::u16string& word, const std::vector<bool>& keeps, int attempt) {
  const bool isNumber = std::all_of(word.begin(), word.end(), isDigit);
  const std::size_t first = isNumber ? word.find_first_not_of(u'0') : std::u16string::npos;
  const std::size_t last = isNumber ? word.find_last_not_of(u'0') : std::u16string::npos;
  std::u16string made = word;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (keeps[i]) continue;
    const std::uint64_t number = random_();
    if (!isDigit(word[i])) {
      made[i] = replacementOf(word[i], number, attempt);
    } else if (!isNumber) {
      made[i] = static_cast<char16_t>(u'0' + number % 10);
    } else if (i == 0 && i == first && word.size() >= kLongNumber) {
      made[i] = u'1';
    } else if (i == first || i == last) {
      made[i] = static_cast<char16_t>(u'1' + number % 9);
    } else if (first < i && i < last) {
      made[i] = static_cast<char16_t>(u'0' + number % 10);
    }
  }
  return made;
}
