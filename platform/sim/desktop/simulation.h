// Input of a simulation, and the actions that it logs.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/accessibility.h"

// The environment of the simulated process.
struct HLSimulatorSetup {
  std::vector<std::string> arguments = {"hushlet-sim"};
  std::map<std::string, std::string> environment = {};
  bool showsScreen = false;  // prints the screen at the start and at the end
  // Called before a thread of the program is started, with the desktop's mutex held. True refuses the thread, as a
  // limit of the system does.
  std::function<bool()> refusesThreads = nullptr;
  bool endsProcess = false;  // if the application quits during background work; otherwise waits for the work
};

// A call of performAction, logged when it begins.
struct HLSimulatedAction {
  double at = 0;                       // seconds from the start
  std::optional<std::string> element;  // its id
  std::string action;
  HLAXError code = 0;
};
