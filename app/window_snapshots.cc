#include "app/window_snapshots.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>

#include "base/format.h"
#include "base/log.h"

namespace {

// Writes a temporary file and renames it, so that `path` never holds partial content.
bool writeAtomically(const std::string& path, const std::string& content) {
  const std::string unfinished = path + ".part";
  std::ofstream file(unfinished, std::ios::binary | std::ios::trunc);
  file << content;
  file.close();
  if (file && std::rename(unfinished.c_str(), path.c_str()) == 0) return true;
  std::remove(unfinished.c_str());
  return false;
}

}  // namespace

void HLWriteWindowSnapshots(HLWindows& windows, const std::string& directory) {
  std::int64_t counter = 0;
  for (const HLWindowView& view : windows.views()) {
    if (!view.visible || !(view.width > 0) || !(view.height > 0)) continue;
    const std::string name = view.title.empty() ? HLFormat("window-%ld", counter) : view.title;
    const std::filesystem::path path = std::filesystem::path(directory) / HLFormat("%02ld-%@.png", counter, name);
    const std::optional<std::string> png = view.png();
    const bool wrote = png && writeAtomically(path.string(), *png);
    HLAppendLog("snapshot window=%@ size=%.0fx%.0f wrote=%d", name, view.width, view.height, wrote ? 1 : 0);
    ++counter;
  }
}
