#include "tests/swarm/generate/make_faults.h"

#include <array>

#include "platform/element_facts.h"
#include "tests/swarm/generate/words.h"

std::string Moment(Random& random, double seconds) {
  static constexpr std::array kLooks = {0.0, 0.05, 0.08, 0.1, 0.3, 0.4, 0.48, 2.6, 5.0};
  double moment = static_cast<double>(random.below(1000)) * seconds / 1000;
  if (random.chance(30)) moment = random.pick(kLooks);
  return "\"at\": " + std::to_string(moment);
}

std::string FaultMaker::notificationCenter(std::int64_t elements, int relaunches) {
  const std::int32_t pid = random_.chance(95) || pids_.empty() ? desktop_.pid++ : pids_.back();
  pids_.push_back(pid);
  std::string keys = R"({"pid": )" + std::to_string(pid) +
                     R"(, "bundleIdentifier": "com.apple.notificationcenterui", "name": "Notification Center")";
  const auto rarely = [this, &keys](int percent, const std::string& fault) {
    if (!random_.chance(percent)) return;
    keys += ", " + fault;
    ++faults_;
  };
  rarely(4, R"("ignoresTerminate": true)");
  rarely(8, R"("lingers": )" + std::to_string(random_.below(40) / 10));
  rarely(1, R"("elementFails": true)");
  rarely(3, R"("observerFails": true)");
  rarely(3, R"("registerErrors": {"AXLayoutChanged": -25207})");
  keys += random_.chance(2) ? R"(, "windows": null)" : R"(, "windows": [)" + desktop_.windows(elements) + "]";
  if (relaunches > 0 && random_.chance(85)) {
    keys += R"(, "relaunch": {"after": )" + std::to_string(static_cast<double>(random_.below(600)) / 100) +
            R"(, "application": )" + notificationCenter(random_.between(0, 8), relaunches - 1) + "}";
  }
  return keys + "}";
}

std::string FaultMaker::applications(std::int64_t elements) {
  std::string list;
  if (random_.chance(30))
    list = R"({"pid": 7, "bundleIdentifier": "com.apple.finder", "name": "Finder", "windows": []}, )";
  if (random_.chance(4)) {
    ++faults_;
    return list + R"({"pid": 8})";
  }
  return list + notificationCenter(elements, static_cast<int>(random_.below(3)));
}

std::string FaultMaker::event() {
  const auto some = [this] { return random_.pick(desktop_.ids()); };
  if (desktop_.ids().empty()) return R"("trust": false)";
  switch (random_.below(12)) {
    case 0:
    case 1:
    case 2:
      return R"("add": )" + desktop_.lateMember() + R"(, "to": ")" + some() + R"(", "first": )" +
             (random_.chance(50) ? "true" : "false");
    case 3:
    case 4:
      return R"("remove": ")" + some() + "\"";
    case 5:
      return R"("set": ")" + some() + R"(", "attribute": "AXDescription", "value": )" + Quoted(AlertText(random_));
    case 6:
      return R"("set": ")" + some() + R"(", "attribute": "AXSize", "value": {"size": [20, 20]})";
    case 7:
      return R"("set": ")" + some() + R"(", "attribute": "actions", "value": [)" + Quoted(ActionName(random_)) + "]";
    case 8:
      return R"("trust": )" + std::string(random_.chance(50) ? "true" : "false");
    case 9:
      return R"("quit": )" + std::to_string(random_.pick(pids_.empty() ? std::vector<std::int32_t>{7} : pids_));
    case 10:
      return R"("launch": )" + notificationCenter(random_.between(0, 6), 0);
    default:
      return R"("notify": "AXLayoutChanged", "element": ")" + some() + "\"";
  }
}

std::vector<std::string> FaultMaker::events(double seconds) {
  std::vector<std::string> events;
  if (random_.chance(40)) return events;
  for (std::size_t count = random_.below(8); count > 0; --count) {
    events.push_back("{" + Moment(random_, seconds) + ", " + event() + "}");
    ++faults_;
  }
  return events;
}

std::vector<std::string> FaultMaker::automations(double seconds) {
  std::vector<std::string> events;
  if (desktop_.ids().empty()) return events;
  for (std::size_t count = 1 + random_.below(4); count > 0; --count) {
    const std::string window = random_.pick(desktop_.ids());
    std::string id;
    const std::string banner = desktop_.automation(id);
    events.push_back("{" + Moment(random_, seconds) + R"(, "add": )" + banner + R"(, "to": ")" + window + "\"}");
    for (std::size_t layouts = random_.below(5); layouts > 0; --layouts) {
      events.push_back("{" + Moment(random_, seconds) + R"(, "notify": "AXLayoutChanged", "element": ")" + id + "\"}");
    }
  }
  return events;
}

void FaultMaker::addTo(Plan& plan) {
  static constexpr std::array<HLAXError, 5> kCodes = {HLAXErrorCannotComplete, HLAXErrorInvalidElement,
                                                      HLAXErrorAPIDisabled, HLAXErrorFailure, 17};
  if (random_.chance(25)) {
    for (std::size_t count = 1 + random_.below(6); count > 0; --count) {
      const std::int64_t range = std::int64_t{1} << random_.between(1, 11);
      plan.callFaults.push_back({random_.between(1, range), random_.pick(kCodes)});
    }
  }
  if (random_.chance(8)) {
    static constexpr std::array kJumps = {-3600.0, 3600.0, -0.001, 1e9, -1.7e9, 0.4};
    plan.clockJumps.push_back({random_.between(1, 60), random_.pick(kJumps)});
  }
  if (random_.chance(3)) plan.failingAllocation = random_.between(1, 6);
  addLimits(plan);
  faults_ += static_cast<std::int64_t>(plan.callFaults.size() + plan.clockJumps.size() + plan.threadRefusals.size() +
                                       plan.shortAnswers.size() + plan.logFaults.size()) +
             (plan.failingAllocation > 0);
}

void FaultMaker::addLimits(Plan& plan) {
  if (random_.chance(12)) {
    // Fifty more attempts follow a refused one before the program gives up.
    static constexpr std::array<std::int64_t, 9> kCounts = {1, 2, 5, 20, 49, 50, 51, 120, INT64_MAX / 2};
    for (std::size_t count = 1 + random_.below(2); count > 0; --count) {
      const std::int64_t range = std::int64_t{1} << random_.below(6);
      plan.threadRefusals.push_back({random_.between(1, range), random_.pick(kCounts)});
    }
  }
  if (random_.chance(10)) {
    for (std::size_t count = 1 + random_.below(4); count > 0; --count) {
      const std::int64_t range = std::int64_t{1} << random_.below(9);
      plan.shortAnswers.push_back({random_.between(1, range), random_.below(HLFactAttributeNames.size())});
    }
  }
  if (random_.chance(10)) {
    static constexpr std::array<std::int64_t, 4> kCounts = {1, 1, 6, INT64_MAX / 2};
    for (std::size_t count = 1 + random_.below(3); count > 0; --count) {
      const std::int64_t most = std::int64_t{8} << random_.below(8);
      plan.logFaults.push_back(
          {random_.between(1, 24), random_.pick(kCounts), random_.between(-1, most), random_.chance(50)});
    }
  }
}
