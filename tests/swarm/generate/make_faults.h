// What goes wrong by itself while a scene is played: applications that die and come back, elements that come and go,
// trust that is taken away.
#pragma once

#include <string>
#include <vector>

#include "tests/swarm/generate/make_desktop.h"
#include "tests/swarm/generate/plan.h"
#include "tests/swarm/generate/random.h"

class FaultMaker {
 public:
  FaultMaker(Random& random, DesktopMaker& desktop) : random_(random), desktop_(desktop) {}

  // The applications of the scene, without the brackets around them; Notification Center is mostly among them.
  [[nodiscard]] std::string applications(std::int64_t elements);
  // Events of the timeline within so many seconds.
  [[nodiscard]] std::vector<std::string> events(double seconds);
  // Banners of automations that come and are laid out again and again.
  [[nodiscard]] std::vector<std::string> automations(double seconds);
  // What no scene can express.
  void addTo(Plan& plan);

  [[nodiscard]] std::int64_t faults() const { return faults_; }

 private:
  std::string notificationCenter(std::int64_t elements, int relaunches);
  std::string event();
  // Threads, answers and a disk that come to an end.
  void addLimits(Plan& plan);

  Random& random_;
  DesktopMaker& desktop_;
  std::vector<std::int32_t> pids_;
  std::int64_t faults_ = 0;
};

// "at": a moment within so many seconds, often one at which the program looks.
[[nodiscard]] std::string Moment(Random& random, double seconds);
