// Typed reading of a scene's document that knows at every moment where in it it is.
#pragma once

#include <cstdint>
#include <deque>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/scene/scene_json.h"
#include "platform/value.h"

// Where something stands: below its parent under a key, or as a member of a list.
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

// The first mistake is kept; what is read after it is of no use, but harmless, so that nobody has to ask in between.
class HLSceneSource {
 public:
  explicit HLSceneSource(const HLJson& document);

  [[nodiscard]] HLSceneSpot root() const { return root_; }
  void fail(const HLSceneSpot& spot, std::string_view what);
  [[nodiscard]] bool failed() const { return error_.has_value(); }
  // "PLACE: what".
  [[nodiscard]] const std::optional<std::string>& error() const { return error_; }

  // In every text that is read, "{n}" stands for this number while there is one.
  void setRepetition(std::optional<std::int64_t> number) { repetition_ = number; }
  [[nodiscard]] std::optional<std::int64_t> repetition() const { return repetition_; }

  // Repetition makes large scenes of small documents; fails once this one is larger than memory should be asked for.
  // What is read by the calls below counts by itself.
  void countElement(const HLSceneSpot& spot) { count(spot, 1, 0); }

  // Fails unless the spot holds an object with no other keys than these.
  void expectObject(const HLSceneSpot& spot, std::initializer_list<std::string_view> keys);
  [[nodiscard]] std::optional<HLSceneSpot> find(const HLSceneSpot& object, std::string_view key);
  // The same, failing where the key is missing; what is then returned holds null.
  [[nodiscard]] HLSceneSpot require(const HLSceneSpot& object, std::string_view key);

  // Of an object or a list; a failure and none for anything else.
  [[nodiscard]] std::vector<HLSceneSpot> entries(const HLSceneSpot& object);
  [[nodiscard]] std::vector<HLSceneSpot> members(const HLSceneSpot& list);

  [[nodiscard]] std::string string(const HLSceneSpot& spot);
  [[nodiscard]] bool boolean(const HLSceneSpot& spot);
  [[nodiscard]] double number(const HLSceneSpot& spot);
  [[nodiscard]] double seconds(const HLSceneSpot& spot);
  [[nodiscard]] std::int64_t integer(const HLSceneSpot& spot, std::int64_t least, std::int64_t most);
  [[nodiscard]] std::int32_t pid(const HLSceneSpot& spot);
  [[nodiscard]] std::int32_t code(const HLSceneSpot& spot);
  [[nodiscard]] std::vector<std::string> strings(const HLSceneSpot& spot);
  // Exactly so many numbers: "expected four numbers".
  [[nodiscard]] std::vector<double> numbers(const HLSceneSpot& spot, std::size_t count);
  // One of these words: "expected \"left\", \"right\" or \"none\"".
  [[nodiscard]] std::string word(const HLSceneSpot& spot, std::initializer_list<std::string_view> words);

  // Any JSON value; null is a missing one.
  [[nodiscard]] HLValue value(const HLSceneSpot& spot, int depth = 0);
  [[nodiscard]] HLDictionary dictionary(const HLSceneSpot& spot, int depth = 0);

  // What an entry of an object is called, repetition put in.
  [[nodiscard]] std::string keyText(const HLSceneSpot& entry) { return text(entry, entry.place->key.value_or("")); }

 private:
  [[nodiscard]] std::string text(const HLSceneSpot& spot, std::string_view written);
  void count(const HLSceneSpot& spot, std::size_t pieces, std::size_t bytes);
  [[nodiscard]] HLSceneSpot below(const HLSceneSpot& parent, const HLJson& json, std::string_view key);

  std::deque<HLScenePlace> places_;
  HLSceneSpot root_;
  std::size_t pieces_ = 0;  // elements, keys and members of lists
  std::size_t bytes_ = 0;   // of texts
  std::optional<std::int64_t> repetition_;
  std::optional<std::string> error_;
};
