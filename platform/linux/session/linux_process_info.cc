#include "platform/linux/session/linux_process_info.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/files/linux_property_lists.h"

namespace {

std::filesystem::path bundleFolder(const std::string& executable) {
  return std::filesystem::path(executable).parent_path().parent_path() / "share/hushlet";
}

std::string withoutTrailingSlash(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

// An absolute path from the environment; by its own rules, a relative one is to be ignored.
std::optional<std::string> pathFromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || value[0] != '/') return std::nullopt;
  return withoutTrailingSlash(value);
}

std::optional<std::string> homeFromAccount() {
  passwd entry{};
  passwd* found = nullptr;
  std::array<char, 4096> buffer{};
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) return std::nullopt;
  if (found->pw_dir == nullptr || found->pw_dir[0] != '/') return std::nullopt;
  return withoutTrailingSlash(found->pw_dir);
}

std::optional<std::string> home() {
  std::optional<std::string> path = pathFromEnvironment("HOME");
  return path ? path : homeFromAccount();
}

}  // namespace

HLLinuxProcessInfo::HLLinuxProcessInfo(int argc, char** argv) : arguments_(argv, argv + argc) {
  std::error_code error;
  const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", error);
  if (arguments_.empty()) arguments_.emplace_back();
  if (!error) arguments_.front() = executable.string();
  information_ = HLBundleInformation(arguments_.front());
}

std::optional<std::string> HLLinuxProcessInfo::environment(std::string_view name) {
  const char* value = std::getenv(std::string(name).c_str());
  if (value == nullptr) return std::nullopt;
  return value;
}

std::int32_t HLLinuxProcessInfo::processIdentifier() { return getpid(); }

std::int32_t HLLinuxProcessInfo::parentProcessIdentifier() { return getppid(); }

std::string HLLinuxProcessInfo::homeDirectory() { return home().value_or(""); }

std::optional<std::string> HLLinuxProcessInfo::applicationSupportDirectory() {
  if (std::optional<std::string> data = pathFromEnvironment("XDG_DATA_HOME")) return data;
  const std::optional<std::string> directory = home();
  if (!directory) return std::nullopt;
  return (std::filesystem::path(*directory) / ".local/share").string();
}

std::optional<std::string> HLLinuxProcessInfo::bundlePath() { return bundleFolder(arguments_.front()).string(); }

std::optional<std::string> HLLinuxProcessInfo::bundleIdentifier() {
  const HLValue* value = HLDictionaryValue(information_, "CFBundleIdentifier");
  const std::string* identifier = value == nullptr ? nullptr : value->as<std::string>();
  if (identifier == nullptr) return std::nullopt;
  return *identifier;
}

HLDictionary HLBundleInformation(const std::string& executable) {
  std::optional<HLValue> list = HLReadPropertyList((bundleFolder(executable) / "Info.plist").string());
  HLDictionary* information = list ? std::get_if<HLDictionary>(&*list) : nullptr;
  return information == nullptr ? HLDictionary() : std::move(*information);
}
