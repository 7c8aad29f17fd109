#include "platform/sim/scene/scene_reader.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/sim/scene/scene_builder.h"

std::string HLOneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      line += "\\n";
    } else if (byte < 0x20 || byte == 0x7F) {
      std::array<char, 8> escaped{};
      std::snprintf(escaped.data(), escaped.size(), "\\u%04x", byte);
      line += escaped.data();
    } else {
      line += c;
    }
  }
  return line;
}

std::int32_t HLScene::unusedPid(std::int32_t first) const {
  const auto isUsed = [this](std::int32_t pid) {
    return std::any_of(allApplications.begin(), allApplications.end(),
                       [pid](const HLSceneApplication& application) { return application.pid == pid; });
  };
  while (isUsed(first)) ++first;
  return first;
}

std::variant<std::unique_ptr<const HLScene>, std::string> HLReadScene(std::string_view text, const std::string& name) {
  const auto document = HLParseJson(text);
  if (const auto* error = std::get_if<std::string>(&document)) return HLOneLine(name + ": " + *error);
  auto scene = std::make_unique<HLScene>();
  scene->name = name;
  HLSceneBuilder builder(std::get<HLJson>(document), *scene);
  builder.read();
  if (const auto& error = builder.error()) return HLOneLine(name + ": " + *error);
  return std::unique_ptr<const HLScene>(std::move(scene));
}
