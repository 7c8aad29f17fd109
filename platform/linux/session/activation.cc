#include "platform/linux/session/activation.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "platform/text.h"

namespace {

struct ServiceFile {
  std::string name;
  std::string command;
};

ServiceFile readServiceFile(const std::filesystem::path& path) {
  ServiceFile service;
  std::ifstream file(path);
  bool inSection = false;
  for (std::string line; std::getline(file, line);) {
    const std::string_view text = HLTrim(line);
    if (text.starts_with('[')) inSection = text == "[D-BUS Service]";
    const std::size_t equals = text.find('=');
    if (!inSection || text.starts_with('#') || equals == std::string_view::npos) continue;
    const std::string_view key = HLTrim(text.substr(0, equals));
    const std::string_view value = HLTrim(text.substr(equals + 1));
    if (key == "Name") service.name = value;
    if (key == "Exec") service.command = value;
  }
  return service;
}

// Blanks part the words but inside quotes. A command without words stands for one that cannot be run.
std::vector<std::string> words(std::string_view command) {
  std::vector<std::string> split;
  bool inWord = false;
  char quote = '\0';
  for (const char c : command) {
    const bool blank = quote == '\0' && (c == ' ' || c == '\t');
    if (!blank && !inWord) split.emplace_back();
    inWord = !blank;
    if (blank) continue;
    if (quote == '\0' && (c == '"' || c == '\'')) {
      quote = c;
    } else if (c == quote) {
      quote = '\0';
    } else {
      split.back() += c;
    }
  }
  if (split.empty()) split.emplace_back();
  return split;
}

std::string fromEnvironment(const char* name, const std::string& otherwise) {
  const char* value = std::getenv(name);
  return value == nullptr || *value == '\0' ? otherwise : value;
}

}  // namespace

std::vector<std::vector<std::string>> HLActivationCommands(const std::vector<std::string>& directories,
                                                           std::string_view service) {
  std::vector<std::vector<std::string>> commands;
  for (const std::string& directory : directories) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
      if (entry.path().extension() != ".service") continue;
      const ServiceFile file = readServiceFile(entry.path());
      if (file.name == service) commands.push_back(words(file.command));
    }
    if (!commands.empty()) break;
  }
  return commands;
}

std::vector<std::string> HLServiceDirectories() {
  const std::string home = fromEnvironment("HOME", "");
  std::vector<std::string> roots = {fromEnvironment("XDG_RUNTIME_DIR", ""),
                                    fromEnvironment("XDG_DATA_HOME", home.empty() ? "" : home + "/.local/share")};
  const std::string shared = fromEnvironment("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
  for (std::size_t begin = 0; begin <= shared.size();) {
    const std::size_t end = std::min(shared.find(':', begin), shared.size());
    roots.push_back(shared.substr(begin, end - begin));
    begin = end + 1;
  }
  roots.emplace_back("/usr/share");  // the bus's own installation, whatever the environment says
  std::vector<std::string> directories;
  for (const std::string& root : roots) {
    if (!root.empty()) directories.push_back(root + "/dbus-1/services");
  }
  return directories;
}
