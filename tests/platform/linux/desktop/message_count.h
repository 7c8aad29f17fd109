// What a test and the library message_hold.cc share about a program's messages, in a file that both map into memory.
#pragma once

#include <atomic>

struct MessageCount {
  std::atomic<int> sent = 0;    // messages to a bus or a peer, by any thread, since the test last set it
  std::atomic<int> holdAt = 0;  // the message with that number, 1 first, waits; 0 for none
  std::atomic<bool> holds = false;
  std::atomic<bool> mayGoOn = false;
};

inline constexpr const char* kMessageCountVariable = "HL_MESSAGE_COUNT";  // names the file
