#include "platform/sim/scene/scene_json.h"

#include <cstddef>
#include <set>
#include <utility>
#include <vector>

namespace {

// "[json.exception.parse_error.101] parse error at line 3, column 5: what" without what only the library's users want.
std::string readableError(std::string_view what) {
  constexpr std::string_view kPosition = "parse error at ";
  if (const std::size_t at = what.find(kPosition); at != std::string_view::npos) {
    return std::string(what.substr(at + kPosition.size()));
  }
  const std::size_t end = what.find("] ");
  return "JSON: " + std::string(end == std::string_view::npos ? what : what.substr(end + 2));
}

// Reads the document without keeping it. The parser that builds it lets a key that comes twice pass.
class Checker : public nlohmann::json_sax<HLJson> {
 public:
  bool null() override { return member(); }
  bool boolean(bool) override { return member(); }
  bool number_integer(number_integer_t) override { return member(); }
  bool number_unsigned(number_unsigned_t) override { return member(); }
  bool number_float(number_float_t, const string_t&) override { return member(); }
  bool string(string_t&) override { return member(); }
  bool binary(binary_t&) override { return member(); }
  bool start_object(std::size_t) override { return enter(true); }
  bool start_array(std::size_t) override { return enter(false); }
  bool end_object() override { return leave(); }
  bool end_array() override { return leave(); }

  bool key(string_t& name) override {
    Container& object = containers_.back();
    object.key = name;
    if (object.keys.insert(name).second) return true;
    error_ = place() + ": this key is given twice";
    return false;
  }

  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& error) override {
    error_ = readableError(error.what());
    return false;
  }

  [[nodiscard]] const std::string& error() const { return error_; }

 private:
  struct Container {
    bool isObject = false;
    std::string key;  // the one being read
    std::set<std::string> keys;
    std::size_t members = 0;  // begun so far
  };

  bool member() {
    if (!containers_.empty()) ++containers_.back().members;
    return true;
  }

  bool enter(bool isObject) {
    member();
    containers_.push_back({isObject, {}, {}, 0});
    return true;
  }

  bool leave() {
    containers_.pop_back();
    return true;
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
  std::string error_;
};

}  // namespace

std::variant<HLJson, std::string> HLParseJson(std::string_view text) {
  Checker checker;
  if (!HLJson::sax_parse(text, &checker)) return checker.error();
  return HLJson::parse(text, nullptr, false);
}
