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
  // Whether a log of that path must not open now.
  [[nodiscard]] bool keepsShut(const std::string& path) const;
  // Whether these bytes go to a log. They are checked, and no more of them goes to the disk than write() below says.
  [[nodiscard]] bool takes(int file, const std::string& bytes);
  // How many bytes of that record a log has room for. Where that is less than all, the log is emptied for them.
  [[nodiscard]] std::size_t makeRoom(int file, const std::string& bytes);
  void logged(const std::string& message);
  [[nodiscard]] bool failsAllocation();

 private:
  // Of the newest record; nullptr without one.
  [[nodiscard]] const LogFault* logFault() const;

  Watcher& watcher_;
  const std::string home_;
  const std::string state_;
  // Callers close their sockets on threads of their own.
  std::atomic<int> statusLog_ = -1;
  std::atomic<int> diagnosticsLog_ = -1;
  std::atomic<int> cutLog_ = -1;
  std::int64_t allocations_ = 0;
  std::int64_t records_ = 0;
};
