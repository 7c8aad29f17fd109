// What must hold of every run. checks.cc is the list.
#pragma once

#include <string>
#include <vector>

#include "tests/swarm/check/course.h"

enum class When { press, record, write, cut, signal, work, step, idle, end };

struct Violation {
  std::string check;
  std::string detail;
};

class Checker {
 public:
  // Runs the checks of that time; the violations are kept.
  void check(When when, const Course& course);

  [[nodiscard]] const std::vector<Violation>& violations() const { return violations_; }

 private:
  std::vector<Violation> violations_;
};

// Whether the message is one that the program writes to that log.
[[nodiscard]] bool HasLogForm(const std::string& message, bool isStatusLog);
