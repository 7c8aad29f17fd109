#include "platform/linux/files/linux_login_item.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <string_view>

#include "platform/linux/files/base_directories.h"
#include "platform/linux/files/desktop_entry.h"
#include "platform/linux/files/files.h"
#include "platform/text.h"

namespace {

constexpr mode_t kMode = 0644;
constexpr std::string_view kHidden = "[Desktop Entry]\nType=Application\nName=Hushlet\nHidden=true\n";

std::string entryFor(const std::string& program) {
  return "[Desktop Entry]\n"
         "Type=Application\n"
         "Name=Hushlet\n"
         "Comment=Clears notification banners\n"
         "TryExec=" +
         HLDesktopStringOfText(program) +
         "\n"
         "Exec=" +
         HLExecOfProgram(program) +
         "\n"
         "Terminal=false\n"
         "X-GNOME-Autostart-enabled=true\n";
}

std::string valueOf(const HLDesktopEntry& entry, const char* key) {
  const auto found = entry.find(key);
  return found == entry.end() ? "" : found->second;
}

bool haveCommon(const std::vector<std::string>& some, const std::vector<std::string>& others) {
  return std::any_of(some.begin(), some.end(), [&others](const std::string& name) {
    return std::find(others.begin(), others.end(), name) != others.end();
  });
}

// Whether the entry is meant for a desktop that goes by these names.
bool isForDesktop(const HLDesktopEntry& entry, const std::vector<std::string>& names) {
  if (entry.count("OnlyShowIn") != 0 && !haveCommon(HLPartsBetween(valueOf(entry, "OnlyShowIn"), ';'), names)) {
    return false;
  }
  return !haveCommon(HLPartsBetween(valueOf(entry, "NotShowIn"), ';'), names);
}

HLLoginItemOutcome outcomeOf(const std::string& attempt, const std::string& file, int error) {
  if (error == 0) return {true, std::nullopt};
  return {false, file + " cannot be " + attempt + ": " + std::strerror(error)};
}

}  // namespace

HLLoginItemStatus HLLinuxLoginItem::status() {
  std::vector<std::string> files = machineFiles();
  files.insert(files.begin(), ownFile());
  for (const std::string& file : files) {
    const HLFileContent read = HLReadFile(file);
    if (read.error == 0) return statusOf(read.content);  // the first counts, even when it only hides the others
  }
  return HLLoginItemStatus::notRegistered;
}

HLLoginItemStatus HLLinuxLoginItem::statusOf(const std::string& content) {
  const HLDesktopEntry entry = HLReadDesktopEntry(content);
  const std::vector<std::string> desktop =
      HLPartsBetween(process_.environment("XDG_CURRENT_DESKTOP").value_or(""), ':');
  if (valueOf(entry, "Hidden") == "true" || valueOf(entry, "X-GNOME-Autostart-enabled") == "false" ||
      !isForDesktop(entry, desktop)) {
    return HLLoginItemStatus::notRegistered;
  }
  const std::string path = process_.environment("PATH").value_or("");
  const bool asksFirst = entry.count("TryExec") != 0;
  const std::optional<std::string> program = HLProgramOfExec(valueOf(entry, "Exec"));
  const bool isThere = program && HLFindProgram(*program, path) &&
                       (!asksFirst || HLFindProgram(HLTextOfDesktopString(valueOf(entry, "TryExec")), path));
  return isThere ? HLLoginItemStatus::enabled : HLLoginItemStatus::notFound;
}

HLLoginItemOutcome HLLinuxLoginItem::registerItem() {
  const std::optional<std::string> program = process_.executablePath();
  if (!program || !program->starts_with('/')) return {false, "it is not known which program to start"};
  if (!HLIsEncodable(*program)) return {false, "the path of the program is not written in UTF-8"};
  return outcomeOf("written", ownFile(), HLWriteFile(ownFile(), entryFor(*program), kMode));
}

HLLoginItemOutcome HLLinuxLoginItem::unregisterItem() {
  const std::string file = ownFile();
  const std::vector<std::string> others = machineFiles();
  const bool isOneOfMany = std::any_of(others.begin(), others.end(),
                                       [](const std::string& other) { return access(other.c_str(), F_OK) == 0; });
  if (isOneOfMany) return outcomeOf("written", file, HLWriteFile(file, kHidden, kMode));
  const bool isGone = unlink(file.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
  return outcomeOf("removed", file, isGone ? 0 : errno);
}

std::string HLLinuxLoginItem::fileName() {
  return "/autostart/" + process_.bundleIdentifier().value_or("dismiss") + ".desktop";
}

std::string HLLinuxLoginItem::ownFile() { return HLConfigHome(process_) + fileName(); }

std::vector<std::string> HLLinuxLoginItem::machineFiles() {
  std::vector<std::string> files = HLConfigDirectories(process_);
  for (std::string& file : files) file += fileName();
  return files;
}
