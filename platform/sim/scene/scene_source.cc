#include "platform/sim/scene/scene_source.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr std::string_view kNumberMark = "{n}";
// Deeper values would cost the reader its stack. Elements may be nested as deep as memory allows.
constexpr int kDeepestValue = 500;
constexpr std::size_t kMostPieces = 1'000'000;
constexpr std::size_t kMostBytes = 64'000'000;

const HLJson kNull;

std::string placeText(const HLScenePlace* place) {
  std::vector<const HLScenePlace*> path;
  for (; place != nullptr && place->parent != nullptr; place = place->parent) path.push_back(place);
  std::string text;
  for (auto step = path.rbegin(); step != path.rend(); ++step) {
    if ((*step)->key) {
      text += (text.empty() ? "" : ".") + std::string(*(*step)->key);
    } else {
      text += "[" + std::to_string((*step)->index) + "]";
    }
  }
  return text.empty() ? "top level" : text;
}

}  // namespace

HLSceneSource::HLSceneSource(const HLJson& document) { root_ = {&document, &places_.emplace_back()}; }

void HLSceneSource::fail(const HLSceneSpot& spot, std::string_view what) {
  if (!error_) error_ = placeText(spot.place) + ": " + std::string(what);
}

void HLSceneSource::count(const HLSceneSpot& spot, std::size_t pieces, std::size_t bytes) {
  pieces_ += pieces;
  bytes_ += bytes;
  if (pieces_ > kMostPieces) {
    fail(spot, "the scene is too large: more than 1000000 elements, keys and members, repetitions counted");
  }
  if (bytes_ > kMostBytes) {
    fail(spot, "the scene is too large: more than 64000000 bytes of text, repetitions counted");
  }
}

std::string HLSceneSource::text(const HLSceneSpot& spot, std::string_view written) {
  std::string result(written);
  if (repetition_) {
    const std::string number = std::to_string(*repetition_);
    for (std::size_t at = 0; (at = result.find(kNumberMark, at)) != std::string::npos; at += number.size()) {
      result.replace(at, kNumberMark.size(), number);
    }
  }
  count(spot, 0, result.size());
  return result;
}

HLSceneSpot HLSceneSource::below(const HLSceneSpot& parent, const HLJson& json, std::string_view key) {
  count(parent, 1, 0);
  return {&json, &places_.emplace_back(HLScenePlace{parent.place, key, 0})};
}

std::optional<HLSceneSpot> HLSceneSource::find(const HLSceneSpot& object, std::string_view key) {
  if (!object.json->is_object()) return std::nullopt;
  for (auto entry = object.json->begin(); entry != object.json->end(); ++entry) {
    if (entry.key() == key) return below(object, *entry, entry.key());
  }
  return std::nullopt;
}

HLSceneSpot HLSceneSource::require(const HLSceneSpot& object, std::string_view key) {
  if (const std::optional<HLSceneSpot> found = find(object, key)) return *found;
  fail(object, "\"" + std::string(key) + "\" is missing");
  return below(object, kNull, key);
}

std::vector<HLSceneSpot> HLSceneSource::entries(const HLSceneSpot& object) {
  std::vector<HLSceneSpot> found;
  if (!object.json->is_object()) {
    fail(object, "expected an object");
    return found;
  }
  found.reserve(object.json->size());
  for (auto entry = object.json->begin(); entry != object.json->end(); ++entry) {
    found.push_back(below(object, *entry, entry.key()));
  }
  return found;
}

std::vector<HLSceneSpot> HLSceneSource::members(const HLSceneSpot& list) {
  std::vector<HLSceneSpot> found;
  if (!list.json->is_array()) {
    fail(list, "expected a list");
    return found;
  }
  count(list, list.json->size(), 0);
  found.reserve(list.json->size());
  for (const HLJson& member : *list.json) {
    found.push_back({&member, &places_.emplace_back(HLScenePlace{list.place, std::nullopt, found.size()})});
  }
  return found;
}

std::string HLSceneSource::string(const HLSceneSpot& spot) {
  if (spot.json->is_string()) return text(spot, spot.json->get_ref<const std::string&>());
  fail(spot, "expected a string");
  return {};
}

std::optional<std::string> HLSceneSource::stringOrNull(const HLSceneSpot& spot) {
  if (spot.json->is_null()) return std::nullopt;
  if (spot.json->is_string()) return string(spot);
  fail(spot, "expected a string or null");
  return "";
}

bool HLSceneSource::boolean(const HLSceneSpot& spot) {
  if (spot.json->is_boolean()) return spot.json->get<bool>();
  fail(spot, "expected true or false");
  return false;
}

double HLSceneSource::seconds(const HLSceneSpot& spot) {
  const double seconds = spot.json->is_number() ? spot.json->get<double>() : -1;
  if (seconds >= 0) return seconds;
  fail(spot, "expected seconds, 0 or more");
  return 0;
}

std::int64_t HLSceneSource::integer(const HLSceneSpot& spot, std::int64_t least, std::int64_t most) {
  const bool tooLarge = spot.json->is_number_unsigned() &&
                        spot.json->get<std::uint64_t>() > std::uint64_t{std::numeric_limits<std::int64_t>::max()};
  if (spot.json->is_number_integer() && !tooLarge) {
    const auto integer = spot.json->get<std::int64_t>();
    if (integer >= least && integer <= most) return integer;
  }
  fail(spot, "expected an integer from " + std::to_string(least) + " to " + std::to_string(most));
  return least;
}

std::int32_t HLSceneSource::pid(const HLSceneSpot& spot) {
  return static_cast<std::int32_t>(integer(spot, 1, HLLargestPid));
}

std::int32_t HLSceneSource::code(const HLSceneSpot& spot) {
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(integer(spot, Limits::min(), Limits::max()));
}

std::vector<std::string> HLSceneSource::strings(const HLSceneSpot& spot) {
  std::vector<std::string> texts;
  for (const HLSceneSpot& member : members(spot)) texts.push_back(string(member));
  return texts;
}

std::vector<double> HLSceneSource::numbers(const HLSceneSpot& spot, std::size_t count) {
  std::vector<double> found;
  if (spot.json->is_array() && spot.json->size() == count) {
    for (const HLJson& member : *spot.json) {
      if (member.is_number()) found.push_back(member.get<double>());
    }
  }
  if (found.size() != count) {
    fail(spot, count == 2 ? "expected two numbers" : "expected four numbers");
    found.assign(count, 0);
  }
  return found;
}

void HLSceneSource::failChoice(const HLSceneSpot& spot, const std::vector<std::string_view>& words) {
  std::string expectation = "expected ";
  std::size_t left = words.size();
  for (std::string_view known : words) {
    --left;
    expectation += "\"" + std::string(known) + "\"" + (left > 1 ? ", " : left == 1 ? " or " : "");
  }
  fail(spot, expectation);
}

HLValue HLSceneSource::nestedValue(const HLSceneSpot& spot, int depth) {
  const HLJson& json = *spot.json;
  if (depth > kDeepestValue) {
    fail(spot, "nested too deeply");
    return {};
  }
  if (json.is_null()) return {};
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_string()) return string(spot);
  if (json.is_object()) return nestedDictionary(spot, depth);
  if (json.is_array()) {
    HLArray array;
    for (const HLSceneSpot& member : members(spot)) array.push_back(nestedValue(member, depth + 1));
    return array;
  }
  const bool fits = !json.is_number_unsigned() ||
                    json.get<std::uint64_t>() <= std::uint64_t{std::numeric_limits<std::int64_t>::max()};
  if (json.is_number_integer() && fits) return json.get<std::int64_t>();
  return json.get<double>();
}

HLDictionary HLSceneSource::nestedDictionary(const HLSceneSpot& spot, int depth) {
  HLDictionary dictionary;
  for (const HLSceneSpot& entry : entries(spot)) {
    std::string key = keyText(entry);
    if (HLDictionaryValue(dictionary, key) != nullptr) fail(entry, "this key is given twice");
    dictionary.push_back({std::move(key), nestedValue(entry, depth + 1)});
  }
  return dictionary;
}
