#include "report/json_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

#include "base/terminal.h"
#include "platform/text.h"

namespace {

constexpr std::size_t kLineLength = 118;  // leaves room for a comma

// Escapes more control characters than JSON requires: the text may go to a terminal.
std::string jsonString(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : HLEncodableText(text)) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return HLVisibleText(quoted) + '"';
}

std::string realText(double number) {
  if (!std::isfinite(number)) return "null";
  std::array<char, 64> text{};
  for (int digits = 15; digits <= 17; ++digits) {
    std::snprintf(text.data(), text.size(), "%.*g", digits, number);
    if (std::strtod(text.data(), nullptr) == number) break;
  }
  const std::string written = text.data();
  return written.find_first_of(".e") == std::string::npos ? written + ".0" : written;
}

std::string scalarText(const HLValue& value) {
  if (const bool* truth = value.as<bool>()) return *truth ? "true" : "false";
  if (const std::int64_t* integer = value.as<std::int64_t>()) return std::to_string(*integer);
  if (const double* real = value.as<double>()) return realText(*real);
  if (const std::string* text = value.as<std::string>()) return jsonString(*text);
  return "null";
}

// The brackets of a list or an object; "" for other values.
std::string_view brackets(const HLValue& value) {
  if (value.as<HLArray>() != nullptr) return "[]";
  return value.as<HLDictionary>() != nullptr ? "{}" : "";
}

// Calls `each` for each member, with the key as it is written ("" in a list) and the value, until `each` returns false.
template <class Each>
void forEachMember(const HLValue& value, const Each& each) {
  if (const auto* members = value.as<HLArray>()) {
    for (const HLValue& member : *members) {
      if (!each(std::string(), member)) return;
    }
  } else if (const auto* entries = value.as<HLDictionary>()) {
    for (const HLDictionaryEntry& entry : *entries) {
      if (!each(jsonString(entry.key) + ": ", entry.value)) return;
    }
  }
}

// Returns nullopt for a list or an object with members that takes more than `room` bytes.
std::optional<std::string> inOneLine(const HLValue& value, std::size_t room) {
  if (brackets(value).empty()) return scalarText(value);
  std::string line(1, brackets(value).front());
  bool fits = true;
  forEachMember(value, [&line, &fits, room](const std::string& before, const HLValue& member) {
    if (line.size() > 1) line += ", ";
    line += before;
    const auto text = line.size() < room ? inOneLine(member, room - line.size()) : std::nullopt;
    line += text.value_or("");
    fits = text && line.size() < room;
    return fits;
  });
  return fits ? std::optional(line + brackets(value).back()) : std::nullopt;
}

// Appends the value. Its first line starts at `column`; the other lines are indented.
void append(std::string& out, const HLValue& value, std::size_t indent, std::size_t column) {
  if (const auto line = inOneLine(value, kLineLength - std::min(column, kLineLength))) {
    out += *line;
    return;
  }
  const std::string margin = "\n" + std::string(indent + 2, ' ');
  char separator = brackets(value).front();
  forEachMember(value, [&](const std::string& before, const HLValue& member) {
    out += std::exchange(separator, ',') + margin + before;
    append(out, member, indent + 2, indent + 2 + before.size());
    return true;
  });
  out += "\n" + std::string(indent, ' ') + brackets(value).back();
}

}  // namespace

std::string HLJsonText(const HLValue& document) {
  std::string out;
  append(out, document, 0, 0);
  return out + "\n";
}
