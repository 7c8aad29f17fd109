// Random trees of elements, as the members of a scene.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/swarm/generate/random.h"

class DesktopMaker {
 public:
  explicit DesktopMaker(Random& random) : random_(random) {}

  // The windows of one application, without the brackets around them: about `budget` elements in all.
  [[nodiscard]] std::string windows(std::int64_t budget);
  // One banner or control with what it is made of, for a tree that is there already.
  [[nodiscard]] std::string lateMember();

  // A banner that the auto-closer closes, or nearly one; its id.
  [[nodiscard]] std::string automation(std::string& id);

  // The ids given so far.
  [[nodiscard]] const std::vector<std::string>& ids() const { return ids_; }
  [[nodiscard]] std::int64_t elements() const { return elements_; }
  // Errors, slow answers, elements that stay or multiply.
  [[nodiscard]] std::int64_t faults() const { return faults_; }

  // Instances of Notification Center that are launched later have these pids.
  std::int32_t pid = 400;

 private:
  std::string newId();
  std::string frame(bool small);
  std::string actions(bool explicitAction);
  std::string texts(bool notification);
  std::string reactions(const std::string& id);
  std::string errors();
  std::string effect(const std::string& id);
  std::string multiplication(const std::string& id);

  std::string element(std::int64_t& budget, int depth);
  std::string alert();
  std::string closeButton(const std::string& closes);
  std::string largeButton();
  std::string anything(std::int64_t& budget, int depth);
  std::string children(std::int64_t& budget, int depth);
  std::string chain(std::int64_t length);
  std::string repeated(std::int64_t& budget);

  Random& random_;
  std::vector<std::string> ids_;
  std::int64_t elements_ = 0;
  std::int64_t faults_ = 0;
  int faultPercent_ = -1;
  // Two or more come for each banner that goes, twice over; they come to this window.
  bool multiplies_ = false;
  int generation_ = 0;
  std::string window_;
};
