#include "tests/swarm/generate/make_input.h"

#include <array>
#include <string_view>

#include "tests/swarm/generate/make_faults.h"
#include "tests/swarm/generate/words.h"

namespace {

using namespace std::string_view_literals;

std::string modifiers(Random& random) {
  std::string list;
  for (std::string_view name : {"shift"sv, "control"sv, "option"sv, "command"sv, "capsLock"sv, "function"sv}) {
    if (random.chance(30)) list += (list.empty() ? "\"" : ", \"") + std::string(name) + "\"";
  }
  return R"("modifiers": [)" + list + "]";
}

std::string key(Random& random) {
  static constexpr std::array kKeys = {45, 53, 36, 96, 0, 49, 65535, 122};
  return R"({"code": )" + std::to_string(random.pick(kKeys)) + ", " + modifiers(random) + R"(, "characters": )" +
         Quoted(random.chance(60) ? "n" : HostileText(random)) + "}";
}

std::string hotKey(Random& random) {
  if (random.chance(10)) return R"("hotKey": null)";
  const bool own = random.chance(80);
  return R"("hotKey": {"signature": )" + std::string(own ? "\"HLhk\"" : "\"abcd\"") + R"(, "id": )" +
         (random.chance(90) ? "1" : "2") + "}";
}

// One or more events that belong together; windows are opened before something in them is pressed.
std::vector<std::string> gesture(Random& random, bool isProduct) {
  static constexpr std::array kButtons = {"Record Shortcut"sv, "Clear"sv, "Close Shortcuts Automation Banners"sv,
                                          "Set Up Accessibility"sv};
  switch (random.below(11)) {
    case 0:
    case 1:
      return {R"("click": "left", )" + modifiers(random)};
    case 2:
      return {R"("click": "right")", R"("click": "none")"};
    case 3:
      return {R"("choose": "Dismiss Notifications")"};
    case 4:
      return {hotKey(random)};
    case 5:
      return {R"("shortcut": {"code": 45, "modifiers": ["control", "option", "command"]})"};
    case 6:
      return {isProduct ? R"("choose": "Check for Updates…")" : R"("choose": "Run Self-Check")"};
    case 7:
      return {R"("openMenu": true)", R"("key": )" + key(random)};
    case 8: {
      std::vector<std::string> events = {R"("choose": "Settings…")",
                                         R"("press": "Record Shortcut", "window": "Hushlet Settings")"};
      for (std::size_t count = random.below(4); count > 0; --count) events.push_back(R"("key": )" + key(random));
      if (random.chance(50)) events.emplace_back(R"("closeWindow": "Hushlet Settings")");
      return events;
    }
    case 9: {
      std::vector<std::string> events = {
          R"("choose": "Settings…")",
          R"("press": ")" + std::string(random.pick(kButtons)) + R"(", "window": "Hushlet Settings")"};
      if (isProduct && random.chance(30))
        events.emplace_back(R"("press": "Open at Login", "window": "Hushlet Settings")");
      if (random.chance(40)) events.emplace_back(R"("closeWindow": "Hushlet Settings")");
      return events;
    }
    default: {
      std::vector<std::string> events = {R"("hotKey": {"signature": "HLhk", "id": 1})"};
      if (random.chance(15)) events.emplace_back(R"("terminate": true)");
      return events;
    }
  }
}

std::string feed(Random& random) {
  static constexpr std::array kBodies = {
      R"({\"version\": \"2.0\", \"build\": 99})"sv, R"({\"build\": -1e999})"sv, R"([)"sv, R"(null)"sv, R"(\u0000)"sv,
      R"({\"build\": true, \"version\": 7})"sv,     R"({\"build\": 12.9})"sv,   ""sv,     R"({}{})"sv};
  if (random.chance(20)) return R"({"error": "no network"})";
  return R"({"status": )" + std::to_string(random.pick(std::array{200, 200, 404, 0, 500})) + R"(, "body": ")" +
         std::string(random.pick(kBodies)) + R"(", "seconds": )" + std::to_string(random.below(20)) + "}";
}

}  // namespace

std::vector<std::string> MakeInput(Random& random, bool isProduct, double seconds) {
  std::vector<std::string> events;
  for (std::size_t count = 1 + random.below(7); count > 0; --count) {
    const std::string moment = Moment(random, seconds);
    for (const std::string& event : gesture(random, isProduct)) events.push_back("{" + moment + ", " + event + "}");
  }
  return events;
}

std::string MakeSurroundings(Random& random, bool isProduct) {
  std::string keys = R"(, "services": {"grantOnPrompt": )" + std::string(random.chance(40) ? "true" : "false");
  if (random.chance(20)) keys += R"(, "opens": [])";
  if (random.chance(25)) {
    keys += R"(, "refusedHotKeys": [{"code": 45, "modifiers": ["control", "option", "command"], "status": -9878}])";
  }
  if (random.chance(25)) {
    keys += R"(, "loginItem": {"status": )" + std::to_string(random.below(4)) + R"(, "registerError": )" +
            (random.chance(50) ? Quoted(HostileText(random)) : "null") + R"(, "unregisterError": "no")" + "}";
  }
  if (isProduct) {
    for (std::string_view path : {"/quillmere/latest.json"sv})
      keys += R"(, "http": {")" + std::string(path) + "\": " + feed(random) + "}";
  }
  keys += "}";
  std::string defaults;
  const auto preference = [&](std::string_view name, const std::string& value) {
    if (random.chance(30)) defaults += (defaults.empty() ? "\"" : ", \"") + std::string(name) + "\": " + value;
  };
  const auto odd = [&random] {
    static constexpr std::array kOdd = {"45"sv,    "-1"sv, "\"x\""sv, "9223372036854775807"sv,
                                        "1e300"sv, "[]"sv, "true"sv,  "1.5"sv};
    return std::string(random.pick(kOdd));
  };
  preference("HLAutoCloseAutomationBanners", random.chance(80) ? "true" : odd());
  preference("HLHotKeyCode", odd());
  preference("HLHotKeyModifiers", odd());
  preference("HLHotKeyKeyLabel", random.chance(50) ? Quoted(HostileText(random)) : odd());
  return keys + R"(, "defaults": {)" + defaults + "}";
}

std::vector<Caller> MakeCallers(Random& random) {
  static constexpr std::array kRequests = {"dismiss\n"sv,          "dismiss\n"sv, "ping\n"sv,     "self-check\r\n"sv,
                                           "Dismiss\n"sv,          " ping \n"sv,  "\n"sv,         ""sv,
                                           "dismiss now\n"sv,      "ping"sv,      "\xff\xfe\n"sv, "success|1|1\n"sv,
                                           "ping\nquit-daemon\n"sv};
  static constexpr std::array kManners = {Manner::asks,      Manner::asks,          Manner::asks,
                                          Manner::asks,      Manner::sendsInPieces, Manner::leavesEarly,
                                          Manner::staysIdle, Manner::asksWithoutEnd};
  std::vector<Caller> callers;
  for (std::size_t count = random.below(5); count > 0; --count) {
    Caller caller{random.pick(kManners), std::string(random.pick(kRequests))};
    if (random.chance(5)) caller.request = std::string(1000 + random.below(1500), 'x');
    callers.push_back(caller);
  }
  return callers;
}
