#include "platform/linux/property_list.h"

#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <utility>

namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};

struct FreeList {
  void operator()(void* list) const { plist_free(list); }
};

HLValue valueOf(plist_t node);

std::string text(plist_t node) {
  char* characters = nullptr;
  plist_get_string_val(node, &characters);
  const std::unique_ptr<char, Free> owner(characters);
  return characters == nullptr ? std::string() : std::string(characters);
}

HLArray arrayOf(plist_t node) {
  HLArray array;
  const std::uint32_t count = plist_array_get_size(node);
  array.reserve(count);
  for (std::uint32_t i = 0; i < count; ++i) array.push_back(valueOf(plist_array_get_item(node, i)));
  return array;
}

HLDictionary dictionaryOf(plist_t node) {
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
    if (key != nullptr && HLDictionaryValue(dictionary, key) == nullptr) dictionary.push_back({key, valueOf(value)});
  }
}

HLValue valueOf(plist_t node) {
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
      return arrayOf(node);
    case PLIST_DICT:
      return dictionaryOf(node);
    default:
      return {};
  }
}

}  // namespace

std::optional<HLValue> HLParsePropertyList(std::string_view bytes) {
  if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  const auto length = static_cast<std::uint32_t>(bytes.size());
  plist_t root = nullptr;
  if (bytes.starts_with("bplist00")) {
    plist_from_bin(bytes.data(), length, &root);
  } else {
    plist_from_xml(bytes.data(), length, &root);
  }
  const std::unique_ptr<void, FreeList> owner(root);
  if (root == nullptr) return std::nullopt;
  return valueOf(root);
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
