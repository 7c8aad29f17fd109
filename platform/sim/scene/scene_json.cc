#include "platform/sim/scene/scene_json.h"

#include <cstddef>
#include <set>
#include <vector>

namespace {

// "[json.exception.parse_error.101] parse error at line 3, column 5: cause" from "line" on.
std::string readableError(std::string_view what) {
  constexpr std::string_view kPosition = "parse error at ";
  if (const std::size_t at = what.find(kPosition); at != std::string_view::npos) {
    return std::string(what.substr(at + kPosition.size()));
  }
  const std::size_t end = what.find("] ");
  return "JSON: " + std::string(end == std::string_view::npos ? what : what.substr(end + 2));
}

struct DuplicateKey {
  std::string message;
};

// Follows the parser and throws on a key that an object has twice: the parser alone would keep the last of them.
class KeyChecker {
 public:
  void operator()(HLJson::parse_event_t event, const HLJson& parsed) {
    using Event = HLJson::parse_event_t;
    if (event == Event::key) return enterKey(parsed.get_ref<const std::string&>());
    if (event == Event::object_end || event == Event::array_end) return containers_.pop_back();
    if (!containers_.empty()) ++containers_.back().members;
    if (event != Event::value) containers_.push_back({event == Event::object_start, "", {}, 0});
  }

 private:
  struct Container {
    bool isObject = false;
    std::string key;  // the current one
    std::set<std::string> keys;
    std::size_t members = 0;  // begun so far
  };

  void enterKey(const std::string& name) {
    Container& object = containers_.back();
    object.key = name;
    if (!object.keys.insert(name).second) throw DuplicateKey{place() + ": this key is given twice"};
  }

  [[nodiscard]] std::string place() const {
    std::string text;
    for (const Container& container : containers_) {
      if (container.isObject) {
        text += (text.empty() ? "" : ".") + container.key;
      } else {
        text += "[" + std::to_string(container.members - 1) + "]";
      }
    }
    return text;
  }

  std::vector<Container> containers_;
};

}  // namespace

std::variant<HLJson, std::string> HLParseJson(std::string_view text) {
  KeyChecker checker;
  const auto check = [&checker](int, HLJson::parse_event_t event, const HLJson& parsed) {
    checker(event, parsed);
    return true;
  };
  try {
    return HLJson::parse(text, check);
  } catch (const HLJson::exception& error) {
    return readableError(error.what());
  } catch (const DuplicateKey& error) {
    return error.message;
  }
}
