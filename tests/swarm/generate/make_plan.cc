#include "tests/swarm/daemon_double.h"
#include "tests/swarm/generate/make_desktop.h"
#include "tests/swarm/generate/make_faults.h"
#include "tests/swarm/generate/make_input.h"
#include "tests/swarm/generate/plan.h"

namespace {

// More than a tenth of the desktops is large, some of those larger than a scan reads.
std::int64_t sizeOf(Random& random) {
  if (random.chance(13)) return random.between(501, random.chance(20) ? 1600 : 800);
  return random.chance(80) ? random.between(0, 25) : random.between(25, 120);
}

Mode modeOf(Random& random) {
  const std::size_t kind = random.below(100);
  if (kind < 50) return Mode::dismissal;
  if (kind < 80) return Mode::application;
  if (kind < 90) return Mode::daemon;
  return kind < 97 ? Mode::autoClose : Mode::closeMatching;
}

std::string bundle(bool isProduct) {
  return std::string(R"("bundle": {"identifier": "com.tessaly.hushlet", "info": {"HLProductFlavor": ")") +
         (isProduct ? "product" : "personal") + R"(", "CFBundleShortVersionString": "1.3", "CFBundleVersion": "11"}})";
}

}  // namespace

std::string_view NameOfMode(Mode mode) {
  switch (mode) {
    case Mode::dismissal:
      return "dismissal";
    case Mode::application:
      return "application";
    case Mode::daemon:
      return "daemon";
    case Mode::autoClose:
      return "auto-close";
    case Mode::closeMatching:
      return "close-matching";
  }
  return "";
}

Plan MakePlan(std::uint64_t seed, PlanShape& shape) {
  Random random(seed);
  Plan plan;
  plan.seed = seed;
  plan.isProduct = IsProductSeed(seed);
  plan.mode = modeOf(random);
  DesktopMaker desktop(random);
  FaultMaker faults(random, desktop);
  const double seconds = plan.mode == Mode::dismissal || plan.mode == Mode::daemon ? 2 : 12;

  plan.scene = "{" + bundle(plan.isProduct) + R"(, "applications": [)" + faults.applications(sizeOf(random)) + "]" +
               (random.chance(plan.mode == Mode::application ? 25 : 2) ? R"(, "trusted": false)" : "");
  std::vector<std::string> events = faults.events(seconds);
  std::vector<std::string> input;
  if (plan.mode == Mode::autoClose || random.chance(10)) {
    const std::vector<std::string> more = faults.automations(seconds);
    events.insert(events.end(), more.begin(), more.end());
  }
  if (plan.mode == Mode::application) {
    input = MakeInput(random, plan.isProduct, seconds);
    plan.scene += MakeSurroundings(random, plan.isProduct);
    if (random.chance(20)) plan.arguments.emplace_back("--open-settings");
    for (std::size_t count = random.chance(20) ? 1 + random.below(4) : 0; count > 0; --count) {
      plan.daemonReplies.push_back(random.below(DaemonReplyCount()));
    }
  }
  if (plan.mode == Mode::daemon) plan.callers = MakeCallers(random);
  faults.addTo(plan);

  shape = {desktop.elements(), desktop.faults() + faults.faults(),
           static_cast<std::int64_t>(input.size() + plan.callers.size())};
  events.insert(events.end(), input.begin(), input.end());
  std::string timeline;
  for (const std::string& event : events) timeline += (timeline.empty() ? "" : ", ") + event;
  plan.scene += R"(, "timeline": [)" + timeline + "]}";
  return plan;
}
