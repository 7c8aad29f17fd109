#include "report/json_text.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/text.h"

namespace {

constexpr std::size_t kLineLength = 120;

std::string jsonString(std::string_view text) {
  std::string out = "\"";
  for (const char c : HLEncodableText(text)) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (byte < 0x20 || byte == 0x7F) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04X", byte);
      out += escape.data();
    } else {
      out += c;
    }
  }
  return out + "\"";
}

std::string realText(double number) {
  if (!std::isfinite(number)) return "null";
  std::array<char, 64> text{};
  for (int digits = 15; digits <= 17; ++digits) {
    std::snprintf(text.data(), text.size(), "%.*g", digits, number);
    if (std::strtod(text.data(), nullptr) == number) break;
  }
  std::string written = text.data();
  if (written.find_first_of(".e") == std::string::npos) written += ".0";
  return written;
}

std::string inOneLine(const HLValue& value);

std::string scalar(const HLValue& value) {
  if (const bool* truth = value.as<bool>()) return *truth ? "true" : "false";
  if (const std::int64_t* integer = value.as<std::int64_t>()) return std::to_string(*integer);
  if (const double* real = value.as<double>()) return realText(*real);
  if (const std::string* text = value.as<std::string>()) return jsonString(*text);
  return "null";
}

std::string inOneLine(const HLValue& value) {
  std::string line;
  if (const auto* members = value.as<HLArray>()) {
    for (const HLValue& member : *members) line += (line.empty() ? "" : ", ") + inOneLine(member);
    return "[" + line + "]";
  }
  if (const auto* entries = value.as<HLDictionary>()) {
    for (const HLDictionaryEntry& entry : *entries) {
      line += (line.empty() ? "" : ", ") + jsonString(entry.key) + ": " + inOneLine(entry.value);
    }
    return "{" + line + "}";
  }
  return scalar(value);
}

// The length of a value in one line, or more than `limit` as soon as it is longer.
std::size_t lengthOf(const HLValue& value, std::size_t limit) {
  std::size_t length = 2;
  if (const auto* members = value.as<HLArray>()) {
    for (const HLValue& member : *members) {
      if (length > limit) return length;
      length += 2 + lengthOf(member, limit);
    }
    return length;
  }
  if (const auto* entries = value.as<HLDictionary>()) {
    for (const HLDictionaryEntry& entry : *entries) {
      if (length > limit) return length;
      length += entry.key.size() + 6 + lengthOf(entry.value, limit);
    }
    return length;
  }
  return scalar(value).size();
}

void write(std::string& out, const HLValue& value, std::size_t indent, std::size_t column) {
  const auto* members = value.as<HLArray>();
  const auto* entries = value.as<HLDictionary>();
  const bool isShort = lengthOf(value, kLineLength) + column <= kLineLength;
  if ((members == nullptr && entries == nullptr) || isShort) {
    out += inOneLine(value);
    return;
  }
  const std::string margin = "\n" + std::string(indent + 2, ' ');
  bool isFirst = true;
  out += members != nullptr ? '[' : '{';
  const auto separate = [&] {
    if (!isFirst) out += ',';
    isFirst = false;
    out += margin;
  };
  if (members != nullptr) {
    for (const HLValue& member : *members) {
      separate();
      write(out, member, indent + 2, indent + 2);
    }
  } else {
    for (const HLDictionaryEntry& entry : *entries) {
      separate();
      const std::string key = jsonString(entry.key) + ": ";
      out += key;
      write(out, entry.value, indent + 2, indent + 2 + key.size());
    }
  }
  out += "\n" + std::string(indent, ' ');
  out += members != nullptr ? ']' : '}';
}

}  // namespace

std::string HLJsonText(const HLValue& document) {
  std::string out;
  write(out, document, 0, 0);
  return out + "\n";
}
