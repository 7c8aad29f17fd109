#include "platform/linux/files/base_directories.h"

#include <algorithm>
#include <cstddef>
#include <optional>

// By the rules' own word, a path that is not absolute is to be ignored.
std::string HLConfigHome(HLProcessInfo& process) {
  const std::optional<std::string> home = process.environment("XDG_CONFIG_HOME");
  if (home && home->starts_with('/')) return *home;
  return process.homeDirectory() + "/.config";
}

std::vector<std::string> HLConfigDirectories(HLProcessInfo& process) {
  std::vector<std::string> directories = HLPartsBetween(process.environment("XDG_CONFIG_DIRS").value_or(""), ':');
  std::erase_if(directories, [](const std::string& directory) { return !directory.starts_with('/'); });
  if (directories.empty()) directories.emplace_back("/etc/xdg");
  return directories;
}

std::vector<std::string> HLPartsBetween(const std::string& text, char separator) {
  std::vector<std::string> parts;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    if (end > begin) parts.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return parts;
}
