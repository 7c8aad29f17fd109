// Typed reading of a scene's document. Errors name the place in it.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/scene/scene_json.h"
#include "platform/value.h"

// A place in the document: below its parent, under a key or at an index.
struct HLScenePlace {
  const HLScenePlace* parent = nullptr;
  std::optional<std::string_view> key;
  std::size_t index = 0;
};

// A piece of the document and its place.
struct HLSceneSpot {
  const HLJson* json = nullptr;
  const HLScenePlace* place = nullptr;
};

inline constexpr std::int64_t HLLargestPid = 2147483647;

// A word of the document and its meaning.
template <class Meaning>
struct HLSceneWord {
  std::string_view word;
  Meaning meaning;
};

// Keeps the first error. Reading on after an error is harmless and useless, so callers need not check after each call.
class HLSceneSource {
 public:
  explicit HLSceneSource(const HLJson& document);

  [[nodiscard]] HLSceneSpot root() const { return root_; }
  void fail(const HLSceneSpot& spot, std::string_view what);
  [[nodiscard]] bool failed() const { return error_.has_value(); }
  // "PLACE: what"; nullopt if the document is right so far.
  [[nodiscard]] const std::optional<std::string>& error() const { return error_; }

  // Replaces "{n}" by `number` in every text and key that is read from now on; nullopt stops that.
  void setRepetition(std::optional<std::int64_t> number) { repetition_ = number; }
  [[nodiscard]] std::optional<std::int64_t> repetition() const { return repetition_; }

  // Repetition makes large scenes of small documents, so reading fails above a limit. The calls below count what they
  // read; elements are counted here.
  void countElement(const HLSceneSpot& spot) { count(spot, 1, 0); }

  // Fails unless the spot has an object and isKnown() accepts its keys.
  template <class IsKnown>
  void expectObject(const HLSceneSpot& spot, const IsKnown& isKnown) {
    if (!spot.json->is_object()) return fail(spot, "expected an object");
    for (auto entry = spot.json->begin(); entry != spot.json->end(); ++entry) {
      if (!isKnown(entry.key())) return fail(below(spot, *entry, entry.key()), "unknown key");
    }
  }
  // nullopt if the key is missing.
  [[nodiscard]] std::optional<HLSceneSpot> find(const HLSceneSpot& object, std::string_view key);
  // Fails, and returns a spot with null, if the key is missing.
  [[nodiscard]] HLSceneSpot require(const HLSceneSpot& object, std::string_view key);

  // The entries of an object and the members of a list. Anything else fails and has none.
  [[nodiscard]] std::vector<HLSceneSpot> entries(const HLSceneSpot& object);
  [[nodiscard]] std::vector<HLSceneSpot> members(const HLSceneSpot& list);

  [[nodiscard]] std::string string(const HLSceneSpot& spot);
  [[nodiscard]] std::optional<std::string> stringOrNull(const HLSceneSpot& spot);
  [[nodiscard]] bool boolean(const HLSceneSpot& spot);
  [[nodiscard]] double seconds(const HLSceneSpot& spot);
  [[nodiscard]] std::int64_t integer(const HLSceneSpot& spot, std::int64_t least, std::int64_t most);
  [[nodiscard]] std::int32_t pid(const HLSceneSpot& spot);
  [[nodiscard]] std::int32_t code(const HLSceneSpot& spot);
  [[nodiscard]] std::vector<std::string> strings(const HLSceneSpot& spot);
  // Exactly `count` numbers, 2 or 4.
  [[nodiscard]] std::vector<double> numbers(const HLSceneSpot& spot, std::size_t count);
  // What one of these words stands for. Fails for any other value, and returns the last.
  template <class Meaning, std::size_t kCount>
  [[nodiscard]] Meaning choice(const HLSceneSpot& spot, const std::array<HLSceneWord<Meaning>, kCount>& words) {
    const std::string found = spot.json->is_string() ? string(spot) : "";
    std::vector<std::string_view> known;
    for (const HLSceneWord<Meaning>& word : words) {
      if (spot.json->is_string() && word.word == found) return word.meaning;
      known.push_back(word.word);
    }
    failChoice(spot, known);
    return words.back().meaning;
  }

  // Any JSON value; null is a missing one.
  [[nodiscard]] HLValue value(const HLSceneSpot& spot) { return nestedValue(spot, 0); }
  [[nodiscard]] HLDictionary dictionary(const HLSceneSpot& spot) { return nestedDictionary(spot, 0); }

  // The key of an entry.
  [[nodiscard]] std::string keyText(const HLSceneSpot& entry) { return text(entry, entry.place->key.value_or("")); }

 private:
  [[nodiscard]] std::string text(const HLSceneSpot& spot, std::string_view written);
  void count(const HLSceneSpot& spot, std::size_t pieces, std::size_t bytes);
  [[nodiscard]] HLValue nestedValue(const HLSceneSpot& spot, int depth);
  [[nodiscard]] HLDictionary nestedDictionary(const HLSceneSpot& spot, int depth);
  void failChoice(const HLSceneSpot& spot, const std::vector<std::string_view>& words);
  [[nodiscard]] HLSceneSpot below(const HLSceneSpot& parent, const HLJson& json, std::string_view key);

  std::deque<HLScenePlace> places_;
  HLSceneSpot root_;
  std::size_t pieces_ = 0;  // elements, keys and members of lists
  std::size_t bytes_ = 0;   // of texts
  std::optional<std::int64_t> repetition_;
  std::optional<std::string> error_;
};
