// Scenes: a simulator, or one line that names the place.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "platform/sim/simulator.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view scene(reinterpret_cast<const char*>(data), size);
  // A scene may name a file to be written to at the end.
  if (scene.find("record") != std::string_view::npos) return 0;
  const auto made = HLMakeSimulator(scene, "scene", {});
  if (const auto* error = std::get_if<std::string>(&made)) {
    if (error->rfind("scene: ", 0) != 0 || error->find('\n') != std::string::npos) std::abort();
  }
  return 0;
}
