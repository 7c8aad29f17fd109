#include "platform/sim/desktop/sim_process.h"

#include <algorithm>

namespace {

// One and the same in every run, so that a scene always gives the same log.
constexpr std::int32_t kProcess = 500;
constexpr std::int32_t kParent = 1;

std::string withoutSlash(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

}  // namespace

std::vector<HLRunningApplication> HLSimRunningApplications::list() {
  const HLSimLock lock(*desktop_.clock);
  return desktop_.world->applications();
}

std::optional<HLRunningApplication> HLSimRunningApplications::find(std::int32_t pid) {
  const HLSimLock lock(*desktop_.clock);
  return desktop_.world->find(pid);
}

void HLSimRunningApplications::observeLaunches(std::function<void(const HLRunningApplication&)> observer) {
  const HLSimLock lock(*desktop_.clock);
  desktop_.world->observeLaunches(
      [this, observer = std::move(observer)](const HLRunningApplication& application, HLMicroseconds now) {
        runLoop_.post(now, [observer, application] { observer(application); });
      });
}

HLSignalOutcome HLSimRunningApplications::sendSignal(std::int32_t pid, int signal) {
  const HLSimLock lock(*desktop_.clock);
  desktop_.world->sendSignal(pid, signal, desktop_.clock->now());
  desktop_.clock->dueChanged();
  return HLSignalOutcome::sent;
}

std::vector<std::string> HLSimProcessInfo::arguments() {
  if (!scene_.arguments) return setup_.arguments;
  std::vector<std::string> arguments(setup_.arguments.begin(), setup_.arguments.begin() + !setup_.arguments.empty());
  arguments.insert(arguments.end(), scene_.arguments->begin(), scene_.arguments->end());
  return arguments;
}

std::optional<std::string> HLSimProcessInfo::environment(std::string_view name) {
  const auto found = setup_.environment.find(std::string(name));
  if (found == setup_.environment.end()) return std::nullopt;
  return found->second;
}

// No application of the scene is this process, and without the scene's word none is its parent.
std::int32_t HLSimProcessInfo::processIdentifier() { return scene_.unusedPid(kProcess); }

std::int32_t HLSimProcessInfo::parentProcessIdentifier() { return scene_.parent.value_or(scene_.unusedPid(kParent)); }

std::string HLSimProcessInfo::homeDirectory() {
  return withoutSlash(scene_.home ? *scene_.home : environment("HOME").value_or("/"));
}

std::optional<std::string> HLSimProcessInfo::applicationSupportDirectory() {
  if (std::holds_alternative<std::monostate>(scene_.applicationSupport)) return std::nullopt;
  if (const auto* path = std::get_if<std::string>(&scene_.applicationSupport)) return withoutSlash(*path);
  const std::string data = environment("XDG_DATA_HOME").value_or("");
  if (data.starts_with('/')) return withoutSlash(data);
  return homeDirectory() + "/.local/share";
}

namespace {

std::string textAt(const HLDictionary& dictionary, std::string_view key) {
  const HLValue* value = HLDictionaryValue(dictionary, key);
  const auto* text = value == nullptr ? nullptr : value->as<std::string>();
  return text == nullptr ? "" : *text;
}

}  // namespace

std::string HLSimHostReport::systemVersion() { return textAt(scene_.recorded, "system"); }

HLServerVersion HLSimHostReport::serverVersion(std::int32_t) {
  const HLValue* value = HLDictionaryValue(scene_.recorded, "server");
  const auto* server = value == nullptr ? nullptr : value->as<HLDictionary>();
  if (server == nullptr) return {};
  return {textAt(*server, "name"), textAt(*server, "vendor"), textAt(*server, "version")};
}
