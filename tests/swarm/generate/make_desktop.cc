#include "tests/swarm/generate/make_desktop.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "tests/swarm/generate/words.h"

namespace {

using namespace std::string_view_literals;

constexpr std::array kCodes = {"-25204"sv, "-25202"sv, "-25211"sv, "-25200"sv, "17"sv, "-25206"sv};
constexpr std::array kReadable = {"AXRole"sv,     "AXSubrole"sv,  "AXTitle"sv,      "AXDescription"sv,
                                  "AXPosition"sv, "AXChildren"sv, "AXRows"sv,       "actions"sv,
                                  "AXSize"sv,     "AXValue"sv,    "AXIdentifier"sv, "AXCloseButton"sv};
constexpr std::array kSeconds = {"0.01"sv, "0.05"sv, "0.08"sv, "0.3"sv, "0.5"sv, "1.5"sv, "7"sv};
constexpr int kDeepest = 12;

std::string key(std::string_view name, std::string_view value) {
  return ", \"" + std::string(name) + "\": " + std::string(value);
}

}  // namespace

std::string DesktopMaker::newId() {
  if (faultPercent_ < 0) faultPercent_ = static_cast<int>(random_.below(3) * random_.below(15));
  ++elements_;
  return ids_.emplace_back("e" + std::to_string(ids_.size() + 1));
}

std::string DesktopMaker::frame(bool small) {
  if (random_.chance(12)) return "";
  const std::int64_t width = small ? random_.between(0, 90) : random_.between(100, 400);
  const std::int64_t height = small ? random_.between(0, 90) : random_.between(20, 120);
  const std::string half = random_.chance(10) ? ".5" : "";
  return key("frame", "[" + std::to_string(random_.between(-1500, 1500)) + half + ", " +
                          std::to_string(random_.between(-20, 900)) + half + ", " + std::to_string(width) + half +
                          ", " + std::to_string(height) + half + "]");
}

std::string DesktopMaker::actions(bool explicitAction) {
  std::string list;
  const auto append = [&list](const std::string& name) { list += (list.empty() ? "" : ", ") + Quoted(name); };
  if (random_.chance(70)) append("AXPress");
  if (explicitAction && random_.chance(90)) append(random_.chance(60) ? "Name:Close" : ActionName(random_));
  while (random_.chance(15)) append(ActionName(random_));
  return list.empty() ? "" : key("actions", "[" + list + "]");
}

std::string DesktopMaker::texts(bool notification) {
  std::string keys;
  if (notification) keys += key("description", Quoted(AlertText(random_)));
  for (std::string_view name : {"title"sv, "value"sv, "identifier"sv, "roleDescription"sv}) {
    if (random_.chance(12)) keys += key(name, Quoted(HostileText(random_)));
  }
  return keys;
}

std::string DesktopMaker::errors() {
  if (!random_.chance(faultPercent_)) return "";
  ++faults_;
  return key("errors", "{\"" + std::string(random_.pick(kReadable)) + "\": " + std::string(random_.pick(kCodes)) + "}");
}

// What an action does besides, or instead of, closing its element.
std::string DesktopMaker::effect(const std::string& id) {
  const std::string other = random_.pick(ids_);
  switch (random_.below(8)) {
    case 0:
      return R"({"remove": ")" + other + "\"}";
    case 1:
    case 2:
      return R"({"add": )" + lateMember() + R"(, "to": ")" + other + "\"}";
    case 3:
      return R"({"set": ")" + other + R"(", "attribute": "AXTitle", "value": )" + Quoted(HostileText(random_)) + "}";
    case 4:
      return R"({"set": ")" + other + R"(", "attribute": "actions", "value": [)" + Quoted(ActionName(random_)) + "]}";
    case 5:
      return R"({"set": ")" + id + R"(", "attribute": "AXPosition", "value": {"point": [)" +
             std::to_string(random_.below(900)) + ", 40]}}";
    case 6:
      return R"({"notify": "AXLayoutChanged", "element": ")" + other + "\"}";
    default:
      return random_.chance(20) ? R"({"trust": false})" : R"({"remove": ")" + id + "\"}";
  }
}

std::string DesktopMaker::multiplication(const std::string& id) {
  ++generation_;
  ++faults_;
  std::string effects = R"({"remove": ")" + id + "\"}";
  for (std::size_t count = 2 + random_.below(2); count > 0; --count) {
    effects += R"(, {"add": )" + alert() + R"(, "to": ")" + window_ + "\"}";
  }
  --generation_;
  return key("onAction", R"({"Name:Close": {"effects": [)" + effects + "]}}");
}

std::string DesktopMaker::reactions(const std::string& id) {
  if (multiplies_ && generation_ < 2) return multiplication(id);
  if (!random_.chance(faultPercent_)) return key("closes", "\"" + id + "\"");
  ++faults_;
  if (random_.chance(25)) return "";  // it never goes away
  std::string keys = random_.chance(50) ? key("closes", "\"" + id + "\"") : "";
  std::string effects;
  if (random_.chance(50)) effects = R"({"remove": ")" + id + "\"}";
  while (random_.chance(40)) effects += (effects.empty() ? "" : ", ") + effect(id);
  std::string reaction = R"({"effects": [)" + effects + "]";
  if (random_.chance(30)) reaction += key("error", random_.pick(kCodes));
  if (random_.chance(40)) reaction += key("seconds", random_.pick(kSeconds));
  if (random_.chance(40)) reaction += key("after", random_.pick(kSeconds));
  return keys + key("onAction", "{" + Quoted(random_.chance(60) ? "Name:Close" : "AXPress") + ": " + reaction + "}}");
}

std::string DesktopMaker::closeButton(const std::string& closes) {
  const std::string id = newId();
  return R"({"id": ")" + id + R"(", "role": "AXButton", "actions": ["AXPress"])" + frame(true) +
         key(random_.chance(50) ? "title" : "identifier", random_.chance(80) ? "\"xmark\"" : "\"Close\"") +
         (random_.chance(faultPercent_) ? reactions(closes) : key("closes", "\"" + closes + "\"")) + errors() + "}";
}

std::string DesktopMaker::alert() {
  const std::string id = newId();
  return R"({"id": ")" + id + R"(", "role": "AXGroup")" +
         key("subrole", Quoted(random_.chance(70) ? "AXNotificationCenterAlert" : SubroleName(random_))) +
         key("description", Quoted(AlertText(random_))) + frame(false) + actions(true) + reactions(id) + errors() +
         (random_.chance(3) ? key("freshHandles", "true") : "") +
         (random_.chance(20) ? key("children", "[" + closeButton(id) + "]") : "") + "}";
}

// A notification that a plain press would open; its close control is an attribute, below it, or missing.
std::string DesktopMaker::largeButton() {
  const std::string id = newId();
  std::string keys = R"({"id": ")" + id + R"(", "role": "AXButton", "actions": ["AXPress"])" + frame(false) +
                     key("description", Quoted("Backup notification, press to close " + AlertText(random_)));
  if (random_.chance(35)) {
    keys += key("attributes", std::string(random_.chance(60) ? R"({"AXCloseButton": {"element": )"
                                                             : R"({"AXCancelButton": {"element": )") +
                                  closeButton(id) + "}}");
  }
  if (random_.chance(60)) {
    std::string members = closeButton(id);
    std::int64_t budget = 3;
    while (random_.chance(40) && budget > 0) members += ", " + anything(budget, kDeepest);
    keys += key("children", "[" + members + "]");
  }
  return keys + (random_.chance(50) ? reactions(id) : "") + errors() + "}";
}

std::string DesktopMaker::anything(std::int64_t& budget, int depth) {
  const std::string id = newId();
  --budget;
  std::string keys = R"({"id": ")" + id + "\"";
  if (random_.chance(85)) keys += key("role", Quoted(RoleName(random_)));
  if (random_.chance(25)) keys += key("subrole", Quoted(SubroleName(random_)));
  keys += texts(random_.chance(20)) + frame(random_.chance(50));
  if (random_.chance(45)) keys += actions(random_.chance(25)) + reactions(id);
  if (random_.chance(2)) keys += key("freshHandles", "true");
  return keys + errors() + children(budget, depth + 1) + "}";
}

std::string DesktopMaker::children(std::int64_t& budget, int depth) {
  std::string keys;
  for (std::string_view list : {"children"sv, "rows"sv, "visibleChildren"sv}) {
    if (budget <= 0 || depth > kDeepest || !random_.chance(list == "children" ? 60 : 8)) continue;
    std::string members;
    const auto append = [&members](const std::string& member) { members += (members.empty() ? "" : ", ") + member; };
    for (std::size_t count = random_.below(8); count > 0 && budget > 0; --count) append(element(budget, depth));
    if (random_.chance(5)) append("7");
    if (random_.chance(5)) append(R"({"ref": ")" + random_.pick(ids_) + "\"}");
    keys += key(list, "[" + members + "]");
  }
  return keys;
}

std::string DesktopMaker::element(std::int64_t& budget, int depth) {
  const std::size_t kind = random_.below(10);
  if (kind < 4) {
    --budget;
    return alert();
  }
  if (kind == 4) {
    budget -= 2;
    return largeButton();
  }
  return anything(budget, depth);
}

// Elements below each other, which none of the other shapes has so many of.
std::string DesktopMaker::chain(std::int64_t length) {
  std::string open;
  std::string end;
  for (std::int64_t i = 0; i < length; ++i) {
    open += R"({"id": ")" + newId() + R"(", "role": "AXGroup")" + (random_.chance(5) ? texts(true) : "") +
            R"(, "children": [)";
    end += "]}";
  }
  return open + alert() + end;
}

// Many alike, which a scene says once.
std::string DesktopMaker::repeated(std::int64_t& budget) {
  const std::int64_t count = random_.between(1, std::max<std::int64_t>(1, budget));
  budget -= count;
  const std::string id = newId() + "-{n}";
  elements_ += count - 1;
  const bool numbered = random_.chance(70);
  const bool isAlert = random_.chance(25);
  std::string keys = R"({"repeat": )" + std::to_string(count) + R"(, "id": ")" + id + R"(", "role": "AXGroup")";
  if (isAlert) keys += key("subrole", "\"AXNotificationCenterAlert\"") + key("actions", R"(["AXPress", "Name:Close"])");
  keys += key("description", numbered ? "\"Chat, Message {n}\"" : "\"Chat, Message\"");
  if (isAlert && !random_.chance(faultPercent_)) keys += key("closes", "\"" + id + "\"");
  ids_.pop_back();  // the copies have ids of their own
  ids_.push_back(id.substr(0, id.size() - 3) + "1");
  return keys + "}";
}

std::string DesktopMaker::automation(std::string& id) {
  static constexpr std::array kDescriptions = {"Shortcuts, Running your automation"sv,
                                               "SHORTCUTS, now: running YOUR automation"sv,
                                               "Shortcuts,Running your automation"sv, "Mail, Running your automation"sv,
                                               "Shortcuts, a, Running your automation"sv};
  id = newId();
  return R"({"id": ")" + id + R"(", "role": "AXGroup")" +
         key("subrole", Quoted(random_.chance(85) ? "AXNotificationCenterAlert" : SubroleName(random_))) +
         key("description", Quoted(random_.pick(kDescriptions))) + actions(true) + reactions(id) + errors() + "}";
}

std::string DesktopMaker::lateMember() {
  std::int64_t budget = 2;
  return random_.chance(70) ? alert() : element(budget, kDeepest);
}

std::string DesktopMaker::windows(std::int64_t budget) {
  std::string list;
  for (std::size_t count = random_.chance(70) ? 1 : random_.below(4); count > 0; --count) {
    std::int64_t share = count == 1 ? budget : budget / 2;
    budget -= share;
    if (random_.chance(5)) list += (list.empty() ? "" : ", ") + std::string("\"no element\"");
    std::string members;
    const auto append = [&members](const std::string& member) { members += (members.empty() ? "" : ", ") + member; };
    const std::string id = newId();
    window_ = id;
    multiplies_ = share < 12 && random_.chance(6);
    --share;
    if (share > 30 && random_.chance(25)) {
      const std::int64_t length = random_.between(20, share);
      share -= length;
      append(chain(length));
    }
    while (share > 0) append(share > 60 && random_.chance(75) ? repeated(share) : element(share, 0));
    list += (list.empty() ? "" : ", ") + std::string(R"({"id": ")") + id + R"(", "role": "AXWindow", "title": )" +
            Quoted(random_.chance(85) ? "Notification Center" : HostileText(random_)) + errors() +
            key("children", "[" + members + "]") + "}";
  }
  return list;
}
