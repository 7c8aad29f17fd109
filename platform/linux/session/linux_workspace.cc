#include "platform/linux/session/linux_workspace.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/linux/files/base_directories.h"
#include "platform/linux/files/desktop_entry.h"
#include "platform/linux/session/bus.h"
#include "platform/linux/session/detached_program.h"
#include "platform/text.h"

namespace {

constexpr std::string_view kAccessibilityPane =
    "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?Privacy_Accessibility";
constexpr std::size_t kLongestAddress = 8192;
constexpr std::chrono::seconds kPortalTimeout{3};

struct Screen {
  std::string_view desktop;  // as it stands in XDG_CURRENT_DESKTOP
  std::vector<std::string> command;
};

// Where a desktop lets its user switch accessibility on; the first that is installed. On a desktop that is not listed
// none would do: such programs refuse to run elsewhere, or change what nobody reads.
const std::vector<Screen>& screens() {
  static const std::vector<Screen> kScreens = {
      {"GNOME", {"gnome-control-center", "universal-access"}},
      {"Unity", {"unity-control-center", "universal-access"}},
      {"Unity", {"gnome-control-center", "universal-access"}},
      {"Budgie", {"budgie-control-center", "universal-access"}},
      {"Budgie", {"gnome-control-center", "universal-access"}},
      {"MATE", {"mate-at-properties"}},
      {"XFCE", {"xfce4-accessibility-settings"}},
      {"X-Cinnamon", {"cinnamon-settings", "universal-access"}},
      {"KDE", {"systemsettings", "kcm_access"}},
      {"KDE", {"systemsettings5", "kcm_access"}},
      {"KDE", {"kcmshell6", "kcm_access"}},
      {"KDE", {"kcmshell5", "kcm_access"}},
      {"LXQt", {"lxqt-config"}},
  };
  return kScreens;
}

// What no address holds unescaped.
bool isAddressCharacter(char c) {
  return c > ' ' && c < '\x7F' && std::string_view("\"<>\\^`{|}").find(c) == std::string_view::npos;
}

bool openByPortal(const std::string& address) {
  const std::unique_ptr<HLBus> session = HLBus::openSession(kPortalTimeout);
  if (session == nullptr) return false;
  constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
  (void)session->call({"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "StartServiceByName"},
                      "su", kPortal, std::uint32_t{0});
  return static_cast<bool>(
      session->call({kPortal, "/org/freedesktop/portal/desktop", "org.freedesktop.portal.OpenURI", "OpenURI"},
                    "ssa{sv}", "", address.c_str(), 0U));
}

}  // namespace

bool HLIsOpenableAddress(const std::string& address) {
  if (address.size() > kLongestAddress || !std::all_of(address.begin(), address.end(), isAddressCharacter))
    return false;
  const std::string lower = HLLowercase(address);
  for (const std::string_view scheme : {"http://", "https://"}) {
    // A host, at the least.
    if (lower.starts_with(scheme))
      return lower.find_first_of("/?#:@", scheme.size()) != scheme.size() && lower.size() > scheme.size();
  }
  constexpr std::string_view kMail = "mailto:";
  return lower.starts_with(kMail) && lower.size() > kMail.size();
}

bool HLLinuxWorkspace::openAddress(const std::string& address) {
  if (address == kAccessibilityPane) return openAccessibilityScreen();
  return HLIsOpenableAddress(address) && openPage(address);
}

bool HLLinuxWorkspace::openAccessibilityScreen() {
  const std::string path = process_.environment("PATH").value_or("");
  for (const std::string& desktop : HLPartsBetween(process_.environment("XDG_CURRENT_DESKTOP").value_or(""), ':')) {
    for (const Screen& screen : screens()) {
      if (screen.desktop != desktop) continue;
      const std::optional<std::string> program = HLFindProgram(screen.command.front(), path);
      if (program && HLStartDetached(*program, screen.command)) return true;
    }
  }
  return false;
}

bool HLLinuxWorkspace::openPage(const std::string& address) {
  const std::optional<std::string> program = HLFindProgram("xdg-open", process_.environment("PATH").value_or(""));
  if (program) return HLStartDetached(*program, {"xdg-open", address});
  return openByPortal(address);
}
