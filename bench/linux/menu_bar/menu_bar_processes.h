// What the kernel says of running processes.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <string>
#include <vector>

using Clock = std::chrono::steady_clock;

[[nodiscard]] double milliseconds(Clock::duration duration);
[[nodiscard]] double median(std::vector<double> values);

// Processor time of a process with all its threads, in milliseconds; 0 when it is gone.
[[nodiscard]] double processorTime(pid_t pid);

// That of everything this process and its children have started, by the names of the programs.
[[nodiscard]] std::map<std::string, double> processorTimes();

// How often its threads have gone to wait for something, the main thread's and all together.
struct Waits {
  long main = 0;
  long all = 0;
  int threads = 0;
};
[[nodiscard]] Waits waits(pid_t pid);

// In MiB: what of it is in memory, and that with its share only of what others have too.
struct Memory {
  double resident = 0;
  double proportional = 0;
};
[[nodiscard]] Memory memory(pid_t pid);
