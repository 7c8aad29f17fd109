// Starting threads where a limit of the system or the user may refuse them.
#pragma once

#include <functional>
#include <thread>

#include "platform/run_loop.h"

// Returns a thread that is not joinable if none can be started: too many threads, or no memory for a stack.
[[nodiscard]] std::thread HLTryStartThread(std::function<void()> body);

// Calls `start` on the main thread every tenth of a second until it returns true. Calls `refused` instead, unless
// empty, once HLThreadStartTimeout has passed. Thread-safe.
void HLStartWhenPossible(HLRunLoop& loop, std::function<bool()> start, std::function<void()> refused);
