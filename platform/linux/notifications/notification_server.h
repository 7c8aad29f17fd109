// What is known about notification servers.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

// As GetServerInformation says.
struct HLServerInformation {
  std::string name;
  std::string vendor;
  std::string version;
};

enum class HLClosingTrust {
  truthful,    // what it says is closed is gone
  unknown,     // not tried: trusted until a banner stays that it said it closed
  untruthful,  // says closed, and keeps the banner
};

// Where to learn which notifications are on screen.
enum class HLScreenSource {
  tree,          // the accessibility tree
  counts,        // how many, from the server; which, from the table
  list,          // the server's own list
  configuration  // the table, by the time that the server's configuration says it shows a banner
};

// By default those of a server that is not known.
struct HLServerTraits {
  std::string_view closingName = {};  // the bus name that takes CloseNotification; "" is the owner of the service
  HLClosingTrust trust = HLClosingTrust::unknown;
  bool hasTray = true;  // keeps notifications open after it has hidden their banners
  HLScreenSource screen = HLScreenSource::tree;
  // After a closing, the screen may look empty for that long before the next banner of the server's queue comes.
  std::chrono::milliseconds queueTime{0};

  [[nodiscard]] bool lacksTree() const { return screen != HLScreenSource::tree; }
};

// One table: all that is known of reading and closing by the name of a server is in it.
[[nodiscard]] HLServerTraits HLTraitsOfServer(const HLServerInformation& server);
