#include "platform/linux/settings/gnome_shortcut.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <set>
#include <sstream>

#include "platform/linux/settings/program_output.h"

namespace {

constexpr const char* kSchema = "org.gnome.settings-daemon.plugins.media-keys";
constexpr const char* kList = "custom-keybindings";
constexpr const char* kFolder = "/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/";

// Schemas whose values are accelerators.
constexpr std::array<const char*, 5> kOtherSchemas = {"org.gnome.desktop.wm.keybindings", "org.gnome.shell.keybindings",
                                                      "org.gnome.mutter.keybindings",
                                                      "org.gnome.mutter.wayland.keybindings", kSchema};

std::string pathFor(std::string identifier) {
  std::replace(identifier.begin(), identifier.end(), '.', '-');
  return kFolder + identifier + "/";
}

std::string customSchema(const std::string& path) { return std::string(kSchema) + ".custom-keybinding:" + path; }

// As a text of GVariant.
std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') result += '\\';
    result += c;
  }
  return result + "'";
}

bool store(const std::string& schema, const std::string& key, const std::string& value) {
  return HLProgramOutput({"gsettings", "set", schema, key, value}).has_value();
}

std::optional<std::string> readText(const std::string& schema, const std::string& key) {
  const std::optional<std::string> printed = HLReadDesktopSetting(schema, key);
  const std::vector<std::string> texts = printed ? HLTextsOfSetting(*printed) : std::vector<std::string>();
  if (texts.size() != 1 || texts[0].empty()) return std::nullopt;
  return texts[0];
}

std::string lowered(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char c) { return static_cast<char>(c < 0x80 ? std::tolower(c) : c); });
  return result;
}

// The names of a modifier that mean the same.
std::string canonicalModifier(const std::string& name) {
  if (name == "primary" || name == "ctrl" || name == "ctl") return "control";
  if (name == "mod1") return "alt";
  if (name == "mod4") return "super";
  return name;
}

struct Keys {
  std::set<std::string> modifiers;
  std::string key;
  bool operator==(const Keys&) const = default;
};

Keys keysOf(std::string_view accelerator) {
  Keys keys;
  while (accelerator.starts_with('<')) {
    const std::size_t end = accelerator.find('>');
    if (end == std::string_view::npos) break;
    keys.modifiers.insert(canonicalModifier(lowered(accelerator.substr(1, end - 1))));
    accelerator.remove_prefix(end + 1);
  }
  keys.key = lowered(accelerator);
  return keys;
}

}  // namespace

std::vector<std::string> HLTextsOfSetting(std::string_view printed) {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < printed.size(); ++i) {
    const char quote = printed[i];
    if (quote != '\'' && quote != '"') continue;
    std::string text;
    for (++i; i < printed.size() && printed[i] != quote; ++i) {
      if (printed[i] == '\\' && i + 1 < printed.size()) ++i;
      text += printed[i];
    }
    texts.push_back(std::move(text));
  }
  return texts;
}

bool HLAreSameAccelerators(std::string_view some, std::string_view other) { return keysOf(some) == keysOf(other); }

HLGnomeShortcut::HLGnomeShortcut(const std::string& identifier, std::string name, std::string command)
    : path_(pathFor(identifier)), name_(std::move(name)), command_(std::move(command)) {}

bool HLGnomeShortcut::isOffered() {
  const char* desktop = std::getenv("XDG_CURRENT_DESKTOP");
  if (desktop == nullptr || (":" + std::string(desktop) + ":").find(":GNOME:") == std::string::npos) return false;
  return HLProgramOutput({"gsettings", "writable", kSchema, kList}) == "true\n";
}

std::vector<std::string> HLGnomeShortcut::paths() {
  return HLTextsOfSetting(HLReadDesktopSetting(kSchema, kList).value_or(""));
}

bool HLGnomeShortcut::setPaths(const std::vector<std::string>& paths) {
  std::string list = "[";
  for (const std::string& path : paths) list += (list.size() > 1 ? ", " : "") + quoted(path);
  return store(kSchema, kList, list + "]");
}

std::optional<std::string> HLGnomeShortcut::accelerator() const {
  const std::vector<std::string> all = paths();
  if (std::find(all.begin(), all.end(), path_) == all.end()) return std::nullopt;
  return readText(customSchema(path_), "binding");
}

std::optional<std::string> HLGnomeShortcut::otherOwner(const std::string& accelerator) const {
  for (const std::string& path : paths()) {
    const std::optional<std::string> other = path == path_ ? std::nullopt : readText(customSchema(path), "binding");
    if (!other || !HLAreSameAccelerators(*other, accelerator)) continue;
    return readText(customSchema(path), "name").value_or(path);
  }
  for (const char* schema : kOtherSchemas) {
    std::istringstream lines(HLProgramOutput({"gsettings", "list-recursively", schema}).value_or(""));
    std::string name;
    std::string key;
    for (std::string value; lines >> name >> key && std::getline(lines, value);) {
      const std::vector<std::string> texts = HLTextsOfSetting(value);
      const auto isSame = [&](const std::string& text) { return HLAreSameAccelerators(text, accelerator); };
      if (std::any_of(texts.begin(), texts.end(), isSame)) return key;
    }
  }
  return std::nullopt;
}

bool HLGnomeShortcut::set(const std::string& accelerator) const {
  const std::string schema = customSchema(path_);
  if (!store(schema, "name", quoted(name_)) || !store(schema, "command", quoted(command_)) ||
      !store(schema, "binding", quoted(accelerator))) {
    return false;
  }
  std::vector<std::string> all = paths();
  if (std::find(all.begin(), all.end(), path_) != all.end()) return true;
  all.push_back(path_);
  return setPaths(all);
}

void HLGnomeShortcut::remove() const {
  std::vector<std::string> all = paths();
  if (std::erase(all, path_) > 0) (void)setPaths(all);
  (void)HLProgramOutput({"gsettings", "reset-recursively", customSchema(path_)});
}
