#include "platform/linux/files/linux_property_lists.h"

#include <plist/plist.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <utility>

namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};

struct FreeList {
  void operator()(void* list) const { plist_free(list); }
};
using List = std::unique_ptr<void, FreeList>;

struct FreeXml {
  void operator()(char* xml) const { plist_to_xml_free(xml); }
};

// Deeper values would cost the reader its stack, and are missing. The library's own stack is bounded by the size.
constexpr int kDeepest = 500;
constexpr std::size_t kMostListBytes = 1'000'000;

HLValue valueOf(plist_t node, int depth);

std::string text(plist_t node) {
  char* characters = nullptr;
  plist_get_string_val(node, &characters);
  const std::unique_ptr<char, Free> owner(characters);
  return characters == nullptr ? std::string() : std::string(characters);
}

HLArray arrayOf(plist_t node, int depth) {
  HLArray array;
  const std::uint32_t count = plist_array_get_size(node);
  array.reserve(count);
  for (std::uint32_t i = 0; i < count; ++i) array.push_back(valueOf(plist_array_get_item(node, i), depth + 1));
  return array;
}

HLDictionary dictionaryOf(plist_t node, int depth) {
  HLDictionary dictionary;
  plist_dict_iter position = nullptr;
  plist_dict_new_iter(node, &position);
  const std::unique_ptr<void, Free> owner(position);
  while (true) {
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(node, position, &key, &value);
    const std::unique_ptr<char, Free> keyOwner(key);
    if (value == nullptr) return dictionary;
    if (key == nullptr || HLDictionaryValue(dictionary, key) != nullptr) continue;
    dictionary.push_back({key, valueOf(value, depth + 1)});
  }
}

HLValue valueOf(plist_t node, int depth) {
  if (depth > kDeepest) return {};
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      std::uint8_t truth = 0;
      plist_get_bool_val(node, &truth);
      return truth != 0;
    }
    case PLIST_UINT: {  // negative ones too, in two's complement
      std::uint64_t number = 0;
      plist_get_uint_val(node, &number);
      return static_cast<std::int64_t>(number);
    }
    case PLIST_REAL: {
      double number = 0;
      plist_get_real_val(node, &number);
      return number;
    }
    case PLIST_STRING:
      return text(node);
    case PLIST_ARRAY:
      return arrayOf(node, depth);
    case PLIST_DICT:
      return dictionaryOf(node, depth);
    default:
      return {};
  }
}

// A NUL stands in no XML document. The library would take it, and abort the program once it is asked for the text or
// the key that has one.
List listFromXml(std::string_view xml) {
  plist_t root = nullptr;
  if (xml.find('\0') == std::string_view::npos) {
    plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &root);
  }
  return List(root);
}

// By way of XML, where a NUL in a text can be seen.
List listFromBinary(std::string_view bytes) {
  plist_t root = nullptr;
  plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
  const List list(root);
  if (list == nullptr) return nullptr;
  char* xml = nullptr;
  std::uint32_t length = 0;
  plist_to_xml(root, &xml, &length);
  const std::unique_ptr<char, FreeXml> owner(xml);
  return xml == nullptr ? nullptr : listFromXml({xml, length});
}

}  // namespace

std::optional<HLValue> HLParsePropertyList(std::string_view bytes) {
  if (bytes.size() > kMostListBytes) return std::nullopt;
  const List list = bytes.starts_with("bplist00") ? listFromBinary(bytes) : listFromXml(bytes);
  if (list == nullptr) return std::nullopt;
  return valueOf(list.get(), 0);
}

std::optional<HLValue> HLReadPropertyList(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (file.bad()) return std::nullopt;
  return HLParsePropertyList(bytes);
}

std::optional<HLDictionary> HLLinuxPropertyLists::readDictionary(const std::string& path) {
  std::optional<HLValue> list = HLReadPropertyList(path);
  HLDictionary* dictionary = list ? std::get_if<HLDictionary>(&*list) : nullptr;
  return dictionary != nullptr ? std::optional(std::move(*dictionary)) : std::nullopt;
}
