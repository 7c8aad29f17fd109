#include "report/text_mask.h"

#include <algorithm>
#include <cstdint>

#include "core/scan/words.h"
#include "platform/text.h"

namespace {

// A lower-cased text, unit by unit, with the code point that each unit came of.
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
  std::vector<std::size_t> owner;  // of each unit: its index in `letters`
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
  return lower;
}

// The units as scoring compacts them, each with its place in the text.
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

std::u16string unitsOf(std::string_view text) { return HLUtf16Units(text); }

// Calls `found` with each place of the phrase.
template <class Found>
void forEachPlace(std::u16string_view text, std::u16string_view phrase, const Found& found) {
  for (std::size_t at = text.find(phrase); at != std::u16string_view::npos; at = text.find(phrase, at + 1)) found(at);
}

const std::vector<std::u16string>& enginePhrases() {
  static const std::vector<std::u16string> phrases = [] {
    std::vector<std::u16string> units;
    for (std::string_view phrase : HLEnginePhrases()) units.push_back(unitsOf(phrase));
    return units;
  }();
  return phrases;
}

// Whether the replacement has an engine's phrase where the word has none.
bool saysMore(std::u16string_view word, std::u16string_view replacement) {
  bool more = false;
  for (const std::u16string& phrase : enginePhrases()) {
    forEachPlace(replacement, phrase, [&](std::size_t at) { more |= word.substr(at, phrase.size()) != phrase; });
  }
  return more;
}

// Calls `run` with begin and end of each stretch of word units that no cut parts.
template <class Run>
void forEachWord(const LowerText& lower, const std::vector<std::size_t>& cuts, const Run& run) {
  const auto isWord = [&lower](std::size_t unit) { return lower.letters[lower.owner[unit]].isWord; };
  for (std::size_t begin = 0; begin < lower.units.size();) {
    std::size_t end = begin + 1;
    if (isWord(begin)) {
      while (end < lower.units.size() && isWord(end) && std::find(cuts.begin(), cuts.end(), end) == cuts.end()) ++end;
      run(begin, end);
    }
    begin = end;
  }
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

HLTextMask::HLTextMask(HLWordMask::Key key, const std::vector<std::string>& furtherPhrases)
    : words_(key), phrases_(enginePhrases()) {
  for (const std::string& phrase : furtherPhrases) phrases_.push_back(unitsOf(phrase));
  for (const std::u16string& phrase : phrases_) {
    forEachPlace(phrase, u" ", [&](std::size_t at) {
      joints_.push_back({phrase.substr(0, at), phrase.substr(at + 1)});
    });
  }
}

void HLTextMask::meetKept(std::string_view text) {
  meetEnds(text);
  const LowerText lower = lowerText(text);
  forEachWord(lower, {}, [&](std::size_t begin, std::size_t end) {
    std::u16string word = lower.units.substr(begin, end - begin);
    words_.reserve(word);
    keptWords_.insert(std::move(word));
  });
}

void HLTextMask::meetEnds(std::string_view text) {
  const std::u16string units = compactText(lowerText(text)).units;
  for (Joint& joint : joints_) {
    joint.leftMet |= units.ends_with(joint.left);
    joint.rightMet |= units.starts_with(joint.right);
  }
}

std::string HLTextMask::replaced(std::string_view text, const std::vector<std::size_t>& cuts,
                                 const std::vector<HLTextSpan>& kept) {
  const LowerText lower = lowerText(text);
  const CompactText compact = compactText(lower);
  std::vector<bool> keeps(lower.units.size(), false);
  const auto keep = [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < std::min(end, keeps.size()); ++i) keeps[i] = true;
  };
  const auto keepCompact = [&](std::size_t at, std::size_t length) {
    for (std::size_t i = at; i < at + length; ++i) keep(compact.place[i], compact.place[i] + 1);
  };
  for (const HLTextSpan& span : kept) keep(span.begin, span.end);
  for (const std::u16string& phrase : phrases_) {
    forEachPlace(compact.units, phrase, [&](std::size_t at) { keepCompact(at, phrase.size()); });
  }
  for (const Joint& joint : joints_) {
    if (!joint.leftMet || !joint.rightMet) continue;
    if (compact.units.ends_with(joint.left)) {
      keepCompact(compact.units.size() - joint.left.size(), joint.left.size());
    }
    if (compact.units.starts_with(joint.right)) keepCompact(0, joint.right.size());
  }
  // A code point stays as a whole.
  for (std::size_t i = 0; i < keeps.size(); ++i) {
    if (keeps[i]) keep(lower.letters[lower.owner[i]].firstUnit, i);
  }
  for (std::size_t i = 1; i < keeps.size(); ++i) {
    if (keeps[i - 1] && lower.owner[i] == lower.owner[i - 1]) keeps[i] = true;
  }

  std::u16string units = lower.units;
  forEachWord(lower, cuts, [&](std::size_t begin, std::size_t end) {
    const std::u16string word = lower.units.substr(begin, end - begin);
    if (keptWords_.count(word) > 0) return keep(begin, end);
    const std::vector<bool> keepsOfWord(keeps.begin() + static_cast<std::ptrdiff_t>(begin),
                                        keeps.begin() + static_cast<std::ptrdiff_t>(end));
    units.replace(begin, end - begin, words_.replacement(word, keepsOfWord, saysMore));
  });

  std::string out;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const LowerText::Letter& letter = lower.letters[lower.owner[i]];
    if (!letter.isWord || keeps[i]) {
      if (i == letter.firstUnit) out += letter.bytes;
      continue;
    }
    const std::string unit = HLTextOfUtf16(std::u16string_view(units).substr(i, 1));
    out += letter.isUpper ? HLUppercase(unit) : unit;
  }
  return out;
}
