#include "base/paths.h"

#include <sys/stat.h>

#include <cstddef>
#include <string_view>

#include "platform/platform.h"
#include "platform/process_info.h"

namespace {

// Creates the directory and its missing parents with `mode`, less the process's mask.
void createDirectories(const std::string& path, mode_t mode) {
  for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
    ::mkdir(path.substr(0, end).c_str(), mode);
  }
  ::mkdir(path.c_str(), mode);
}

std::optional<std::string> inStateDirectory(std::string_view name) {
  std::optional<std::string> directory = HLStateDirectoryPath();
  if (directory) directory->append("/").append(name);
  return directory;
}

}  // namespace

bool HLIsProductFlavor() {
  static const bool product = [] {
    const HLDictionary information = HLCurrentPlatform().process->informationDictionary();
    const HLValue* flavor = HLDictionaryValue(information, "HLProductFlavor");
    const std::string* text = flavor != nullptr ? flavor->as<std::string>() : nullptr;
    return text != nullptr && *text == "product";
  }();
  return product;
}

std::optional<std::string> HLStateDirectoryPath() {
  HLProcessInfo& process = HLCurrentPlatform().process;
  if (!HLIsProductFlavor()) return process.homeDirectory() + "/.local/state/hushlet";
  const std::optional<std::string> support = process.applicationSupportDirectory();
  if (!support) return std::nullopt;
  return *support + "/" + process.bundleIdentifier().value_or("dismiss");
}

std::optional<std::string> HLStatusLogPath() {
  return HLIsProductFlavor() ? inStateDirectory("status.log") : "/tmp/hushlet-status.log";
}

std::optional<std::string> HLDiagnosticsLogPath() { return inStateDirectory("hushlet_detailed_diagnostics.log"); }

std::optional<std::string> HLLocalSocketPath() { return inStateDirectory("daemon.sock"); }

void HLEnsureStateDirectory() {
  if (const std::optional<std::string> directory = HLStateDirectoryPath()) createDirectories(*directory, 0700);
}

void HLCreateDirectories(const std::string& path) { createDirectories(path, 0777); }
