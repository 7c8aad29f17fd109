// The host of hushlet-sim: the desktop of the scene that the environment names.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "platform/sim/built_in_scene.h"
#include "platform/sim/simulator.h"

extern char** environ;

namespace {

constexpr int kBadScene = 2;

HLSimulatorSetup setupFromProcess(int argc, char** argv) {
  HLSimulatorSetup setup;
  setup.arguments.assign(argv, argv + argc);
  setup.endsProcess = true;
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) continue;
    setup.environment.emplace(text.substr(0, equals), text.substr(equals + 1));
  }
  const auto picture = setup.environment.find("HUSHLET_PICTURE");
  setup.showsScreen = picture != setup.environment.end() && picture->second == "1";
  return setup;
}

}  // namespace

std::variant<std::unique_ptr<HLHost>, HLHostFailure> HLMakeHost(int argc, char** argv) {
  std::string name = "built-in scene";
  std::string scene(HLBuiltInScene);
  if (const char* path = std::getenv("HUSHLET_SCENE")) {
    name = path;
    errno = 0;
    std::ostringstream text;
    if (const std::ifstream file(path, std::ios::binary); file) text << file.rdbuf();
    if (errno != 0) return HLHostFailure{name + ": cannot be read: " + std::strerror(errno), kBadScene};
    scene = std::move(text).str();
  }
  auto made = HLMakeSimulator(scene, name, setupFromProcess(argc, argv));
  if (auto* error = std::get_if<std::string>(&made)) return HLHostFailure{std::move(*error), kBadScene};
  return std::unique_ptr<HLHost>(std::get<std::unique_ptr<HLSimulator>>(std::move(made)));
}
