#include "platform/linux/notifications/body_forms.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "platform/text.h"

namespace {

constexpr char32_t kObjectReplacement = 0xFFFC;

void appendCodePoint(std::string& text, char32_t point) {
  const auto byte = [&text](char32_t bits) { text.push_back(static_cast<char>(bits)); };
  if (point < 0x80) {
    byte(point);
  } else if (point < 0x800) {
    byte(0xC0 | point >> 6);
    byte(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    byte(0xE0 | point >> 12);
    byte(0x80 | (point >> 6 & 0x3F));
    byte(0x80 | (point & 0x3F));
  } else {
    byte(0xF0 | point >> 18);
    byte(0x80 | (point >> 12 & 0x3F));
    byte(0x80 | (point >> 6 & 0x3F));
    byte(0x80 | (point & 0x3F));
  }
}

struct Entity {
  std::string_view name;
  char32_t point;
};

// XML's own come first; toolkits that read markup strictly know no others.
constexpr std::size_t kXmlEntities = 5;
constexpr auto kEntities = std::to_array<Entity>({
    {"amp", U'&'},         {"lt", U'<'},         {"gt", U'>'},         {"quot", U'"'},       {"apos", U'\''},
    {"nbsp", U'\u00A0'},   {"copy", U'\u00A9'},  {"reg", U'\u00AE'},   {"deg", U'\u00B0'},   {"middot", U'\u00B7'},
    {"laquo", U'\u00AB'},  {"raquo", U'\u00BB'}, {"times", U'\u00D7'}, {"ndash", U'\u2013'}, {"mdash", U'\u2014'},
    {"lsquo", U'\u2018'},  {"rsquo", U'\u2019'}, {"ldquo", U'\u201C'}, {"rdquo", U'\u201D'}, {"bull", U'\u2022'},
    {"hellip", U'\u2026'}, {"euro", U'\u20AC'},  {"trade", U'\u2122'}, {"rarr", U'\u2192'},  {"larr", U'\u2190'},
});

std::optional<char32_t> numbered(std::string_view digits) {
  const bool isHex = !digits.empty() && (digits.front() == 'x' || digits.front() == 'X');
  if (isHex) digits.remove_prefix(1);
  if (digits.empty() || digits.size() > 7) return std::nullopt;
  char32_t point = 0;
  for (const char c : digits) {
    const int value = c >= '0' && c <= '9'            ? c - '0'
                      : isHex && c >= 'a' && c <= 'f' ? c - 'a' + 10
                      : isHex && c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                      : -1;
    if (value < 0) return std::nullopt;
    point = point * (isHex ? 16 : 10) + static_cast<char32_t>(value);
  }
  const bool isCharacter = point > 0 && point <= 0x10FFFF && (point < 0xD800 || point > 0xDFFF);
  return isCharacter ? std::optional(point) : std::nullopt;
}

struct Reference {
  char32_t point;
  std::size_t size;  // from the ampersand to the semicolon
};

// The character reference that the text begins with.
std::optional<Reference> referenceAt(std::string_view text, std::size_t knownEntities) {
  constexpr std::size_t kLongest = 10;
  const std::size_t end = text.substr(0, kLongest).find(';');
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view name = text.substr(1, end - 1);
  if (name.starts_with('#')) {
    const std::optional<char32_t> point = numbered(name.substr(1));
    return point ? std::optional(Reference{*point, end + 1}) : std::nullopt;
  }
  const auto last = kEntities.begin() + static_cast<std::ptrdiff_t>(knownEntities);
  const auto found =
      std::find_if(kEntities.begin(), last, [name](const Entity& entity) { return entity.name == name; });
  return found == last ? std::nullopt : std::optional(Reference{found->point, end + 1});
}

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

struct Tag {
  std::string_view name;
  bool closes = false;
  bool isEmpty = false;  // <br/>
  std::size_t size = 0;  // of the whole tag
};

// The tag that the text begins with: a name after the bracket, then anything up to the next bracket outside quotes.
std::optional<Tag> tagAt(std::string_view text) {
  Tag tag;
  std::size_t i = 1;
  if (i < text.size() && text[i] == '/') {
    tag.closes = true;
    ++i;
  }
  const std::size_t begin = i;
  while (i < text.size() && (isLetter(text[i]) || (i > begin && text[i] >= '0' && text[i] <= '9'))) ++i;
  tag.name = text.substr(begin, i - begin);
  if (tag.name.empty()) return std::nullopt;
  char quote = '\0';
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '<') {
      return std::nullopt;
    } else if (c == '>') {
      tag.isEmpty = text[i - 1] == '/';
      tag.size = i + 1;
      return tag;
    }
  }
  return std::nullopt;
}

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// Of the markup that strict servers understand.
bool isPlainElement(std::string_view name) {
  return isOneOf(name, {"b", "i", "u", "a", "s", "tt", "big", "small", "sub", "sup", "span", "markup"});
}

bool isBlock(std::string_view name) {
  return isOneOf(name, {"p", "div", "li", "ul", "ol", "tr", "td", "hr", "h1", "h2", "h3", "h4", "pre"});
}

// Appends the first character and all up to the next bracket or ampersand. Returns the number of bytes.
std::size_t appendText(std::string_view rest, std::string& text) {
  const std::size_t size = std::min(rest.find_first_of("<&", 1), rest.size());
  text += rest.substr(0, size);
  return size;
}

struct Reading {
  std::string text;
  bool isWellFormed = true;                    // as XML, with XML's own entities
  bool hasOtherElements = false;               // beyond those that strict servers understand
  std::size_t fault = std::string_view::npos;  // the first bracket that begins no tag
};

// Parses like a browser: everything except tags, comments and character references is text.
Reading readMarkup(std::string_view body, bool knowsBlocks) {
  constexpr std::string_view kCommentEnd = "-->";
  Reading reading;
  std::vector<std::string_view> open;
  for (std::size_t i = 0; i < body.size();) {
    const std::string_view rest = body.substr(i);
    if (const std::size_t end = rest.find(kCommentEnd, 4); rest.starts_with("<!--") && end != std::string_view::npos) {
      i += end + kCommentEnd.size();
      continue;
    }
    if (const auto tag = rest.front() == '<' ? tagAt(rest) : std::nullopt) {
      reading.hasOtherElements |= !isPlainElement(tag->name);
      if (tag->name == "br" || (knowsBlocks && isBlock(tag->name))) reading.text += ' ';
      if (tag->closes) {
        reading.isWellFormed &= !open.empty() && open.back() == tag->name;
        if (!open.empty()) open.pop_back();
      } else if (!tag->isEmpty) {
        open.push_back(tag->name);
      }
      i += tag->size;
      continue;
    }
    const auto reference = rest.front() == '&' ? referenceAt(rest, kEntities.size()) : std::nullopt;
    if (reference) {
      reading.isWellFormed &= rest[1] == '#' || referenceAt(rest, kXmlEntities).has_value();
      appendCodePoint(reading.text, reference->point);
      i += reference->size;
      continue;
    }
    if (rest.front() == '<') reading.fault = std::min(reading.fault, i);
    reading.isWellFormed &= rest.front() != '<' && rest.front() != '&';
    i += appendText(rest, reading.text);
  }
  reading.isWellFormed &= open.empty();
  return reading;
}

// Returns the body without whatever is between angle brackets or behind the last one, as Qt reads it.
std::string withoutBrackets(std::string_view body) {
  std::string text;
  while (!body.empty()) {
    const std::size_t begin = std::min(body.find('<'), body.size());
    text += body.substr(0, begin);
    const std::size_t end = body.find('>', begin);
    body.remove_prefix(end == std::string_view::npos ? body.size() : end + 1);
  }
  return text;
}

// Reads with only <b>, <i>, <u>, XML's named entities and perhaps decimal references understood, all else literal;
// nullopt where those three do not nest.
std::optional<std::string> readBasicMarkup(std::string_view body, bool knowsDecimals) {
  std::string text;
  std::string open;
  for (std::size_t i = 0; i < body.size();) {
    const std::string_view rest = body.substr(i);
    const std::size_t name = rest.size() > 1 && rest[1] == '/' ? 2 : 1;
    if (rest.front() == '<' && rest.size() > name + 1 && isOneOf(rest.substr(name, 1), {"b", "i", "u"}) &&
        rest[name + 1] == '>') {
      if (name == 1) {
        open += rest[1];
      } else if (open.empty() || open.back() != rest[2]) {
        return std::nullopt;
      } else {
        open.pop_back();
      }
      i += name + 2;
      continue;
    }
    const bool isDecimal = rest.starts_with("&#") && !rest.starts_with("&#x") && !rest.starts_with("&#X");
    const bool isKnown = rest.starts_with("&#") ? isDecimal && knowsDecimals : rest.front() == '&';
    if (const auto reference = isKnown ? referenceAt(rest, kXmlEntities) : std::nullopt) {
      appendCodePoint(text, reference->point);
      i += reference->size;
      continue;
    }
    i += appendText(rest, text);
  }
  return open.empty() ? std::optional(std::move(text)) : std::nullopt;
}

}  // namespace

std::string HLPlainBlanks(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  bool isBlank = false;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t begin = i;
    while (i < text.size() && text[i] > ' ' && text[i] <= '~') ++i;
    if (i == begin) {
      const char32_t point = HLNextCodePoint(text, i);
      isBlank |= HLIsWhitespace(point);
      if (HLIsWhitespace(point) || point == kObjectReplacement) continue;
    }
    if (isBlank && !plain.empty()) plain += ' ';
    isBlank = false;
    plain.append(text.substr(begin, i - begin));
  }
  return plain;
}

std::vector<std::string> HLBodyForms(std::string_view body) {
  std::vector<std::string> forms;
  const auto add = [&forms](std::string_view text) {
    std::string form = HLPlainBlanks(text);
    if (std::find(forms.begin(), forms.end(), form) == forms.end()) forms.push_back(std::move(form));
  };
  if (body.find_first_of("<&") == std::string_view::npos) {
    add(body);
    return forms;
  }
  const Reading reading = readMarkup(body, true);
  add(reading.text);
  if (reading.hasOtherElements) add(readMarkup(body, false).text);
  const std::optional<std::string> basic = readBasicMarkup(body, false);
  if (basic) add(*basic);
  if (const auto withDecimals = readBasicMarkup(body, true)) add(*withDecimals);
  if (!basic || !reading.isWellFormed || reading.hasOtherElements) add(body);
  if (!reading.isWellFormed) {
    add(readMarkup(withoutBrackets(body), true).text);
    add(readMarkup(body.substr(0, reading.fault), true).text);
  }
  if (reading.hasOtherElements) add("");
  return forms;
}
