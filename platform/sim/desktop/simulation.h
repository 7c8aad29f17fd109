// What a simulation is given, and what it notes of its course.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/accessibility.h"

// What the simulated process is given from outside.
struct HLSimulatorSetup {
  std::vector<std::string> arguments = {"hushlet-sim"};
  std::map<std::string, std::string> environment;
  bool showsScreen = false;  // prints it as it is at the start and as it is at the end
  bool endsProcess = false;  // does so when the application quits while work is under way; else that work is finished
};

// One call of performAction, noted as it began.
struct HLSimulatedAction {
  double at = 0;                       // seconds from the start
  std::optional<std::string> element;  // its id
  std::string action;
  HLAXError code = 0;
};
