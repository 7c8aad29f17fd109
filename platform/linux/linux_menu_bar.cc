#include "platform/linux/linux_menu_bar.h"

#include <dlfcn.h>

#include <filesystem>
#include <utility>

#include "platform/display_name.h"
#include "platform/linux/files/linux_login_item.h"
#include "platform/linux/files/linux_user_defaults.h"
#include "platform/linux/linux_conventions.h"
#include "platform/linux/session/desktop_module.h"
#include "platform/linux/session/linux_workspace.h"
#include "platform/linux/settings/linux_trials.h"

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

}  // namespace

struct HLLinuxMenuBar::Parts {
  Parts(HLProcessInfo& process, std::unique_ptr<HLDesktop> made)
      : desktop(std::move(made)),
        loginItem(process),
        userDefaults(HLUserDefaultsPath(process)),
        workspace(process),
        trials(process, HLDisplayName(process)) {}

  const std::unique_ptr<HLDesktop> desktop;
  HLLinuxLoginItem loginItem;
  HLLinuxUserDefaults userDefaults;
  HLLinuxWorkspace workspace;
  HLLinuxTrials trials;
  const HLApplicationPlatform platform{desktop->application(),
                                       desktop->statusItem(),
                                       desktop->windows(),
                                       desktop->alerts(),
                                       desktop->hotKeys(),
                                       loginItem,
                                       userDefaults,
                                       desktop->httpClient(),
                                       workspace,
                                       HLLinuxConventions(),
                                       &trials};
};

HLLinuxMenuBar::HLLinuxMenuBar(HLProcessInfo& process, HLLinuxRunLoop& runLoop)
    : process_(process), runLoop_(runLoop) {}

HLLinuxMenuBar::~HLLinuxMenuBar() = default;

std::variant<const HLApplicationPlatform*, std::string> HLLinuxMenuBar::platform() {
  if (parts_ != nullptr) return &parts_->platform;
  const auto loaded = loadModule(process_.executablePath().value_or(""));
  if (const auto* failure = std::get_if<std::string>(&loaded)) return *failure;

  HLDesktopAnswer answer;
  std::get<HLMakeDesktopFunction*>(loaded)(
      {process_.bundleIdentifier().value_or(kProgramName), HLDisplayName(process_), runLoop_}, answer);
  if (answer.desktop == nullptr) return answer.failure;
  parts_ = std::make_unique<Parts>(process_, std::move(answer.desktop));
  return &parts_->platform;
}
