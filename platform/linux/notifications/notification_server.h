// What is known about notification servers.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
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

// Which of several open notifications of equal texts are on screen, where fewer banners than notifications show them.
enum class HLShownOfEqual {
  unknown,
  oldest,  // the others wait
  newest,  // older ones are in the server's tray; newer ones than the banner wait, and would be shown next
};

// By default those of a server that is not known.
struct HLServerTraits {
  std::string_view closingName = {};  // the bus name that takes CloseNotification; "" is the owner of the service
  HLClosingTrust trust = HLClosingTrust::unknown;
  HLShownOfEqual shownOfEqual = HLShownOfEqual::unknown;
  std::size_t mostEqual = SIZE_MAX;  // beyond so many open ones of equal texts, it is not known which are on screen
  HLScreenSource screen = HLScreenSource::tree;
  // After a closing, the screen may look empty for that long before the next banner of the server's queue comes.
  std::chrono::milliseconds queueTime{0};
  std::string_view unclosableReason = {};  // why its banners cannot be closed, as a clause for the user; else ""

  [[nodiscard]] bool lacksTree() const { return screen != HLScreenSource::tree; }
};

// One table: all that is known of reading and closing by the name of a server is in it.
[[nodiscard]] HLServerTraits HLTraitsOfServer(const HLServerInformation& server);
