#include "platform/linux/menu_bar.h"

#include <dlfcn.h>

#include <filesystem>

#include "platform/linux/access_guide.h"
#include "platform/value.h"

namespace {

constexpr const char* kModule = "lib/hushlet/hushlet-desktop.so";
constexpr const char* kProgramName = "Hushlet";

// The module stays loaded: its toolkit has threads of its own.
std::variant<HLMakeDesktopFunction*, std::string> loadModule(const std::string& executable) {
  const std::filesystem::path path = std::filesystem::path(executable).parent_path().parent_path() / kModule;
  void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* function = module == nullptr ? nullptr : dlsym(module, HLMakeDesktopName);
  if (function == nullptr) return std::string("hushlet: the menu-bar application cannot be loaded: ") + dlerror();
  return reinterpret_cast<HLMakeDesktopFunction*>(function);
}

std::string displayName(HLProcessInfo& process) {
  const HLDictionary information = process.informationDictionary();
  const HLValue* value = HLDictionaryValue(information, "CFBundleDisplayName");
  const std::string* name = value == nullptr ? nullptr : value->as<std::string>();
  return name == nullptr || name->empty() ? kProgramName : *name;
}

}  // namespace

std::variant<const HLApplicationPlatform*, std::string> HLLinuxMenuBar::platform() {
  if (platform_ != nullptr) return platform_.get();
  const auto loaded = loadModule(process_.executablePath().value_or(""));
  if (const auto* failure = std::get_if<std::string>(&loaded)) return *failure;

  HLDesktopAnswer answer;
  const HLDesktopRequest request{process_.bundleIdentifier().value_or(kProgramName), displayName(process_), runLoop_};
  std::get<HLMakeDesktopFunction*>(loaded)(request, answer);
  if (answer.desktop == nullptr) return answer.failure;
  desktop_ = std::move(answer.desktop);
  platform_ = std::make_unique<const HLApplicationPlatform>(HLApplicationPlatform{
      desktop_->application(), desktop_->statusItem(), desktop_->windows(), desktop_->alerts(), desktop_->hotKeys(),
      loginItem_, userDefaults_, desktop_->httpClient(), workspace_, HLLinuxAccessGuide()});
  return platform_.get();
}
