// The system calls by which the program writes, its log appender and its one unforgiving allocation: watched while a
// run is under way. The linker puts these functions in their place (--wrap).
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "tests/swarm/check/checks.h"
#include "tests/swarm/check/course.h"
#include "tests/swarm/watch.h"

class CallWatch {
 public:
  // The state folder of the run lies in the home.
  CallWatch(Watcher& watcher, const std::string& home);
  CallWatch(const CallWatch&) = delete;
  CallWatch& operator=(const CallWatch&) = delete;
  ~CallWatch();

  void wrote(const std::string& named, bool makesDirectory);
  // Where a file of the program's lies in truth; the fixed status log is one file for the whole machine.
  [[nodiscard]] std::string place(const std::string& path) const;
  void opened(int file, const std::string& path);
  void closed(int file);
  // Whether these bytes go to a log. They are looked at and kept from the disk.
  [[nodiscard]] bool takes(int file, const std::string& bytes);
  void logged(const std::string& message);
  [[nodiscard]] bool failsAllocation();

 private:
  Watcher& watcher_;
  const std::string home_;
  const std::string state_;
  // Callers close their sockets on threads of their own.
  std::atomic<int> statusLog_ = -1;
  std::atomic<int> diagnosticsLog_ = -1;
  std::int64_t allocations_ = 0;
};
