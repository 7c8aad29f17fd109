// Programs that a test starts and that must not outlive it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

using Environment = std::map<std::string, std::string>;

// Looks at a condition again and again until it holds; false when it does not in that time.
[[nodiscard]] bool Eventually(const std::function<bool()>& condition,
                              std::chrono::milliseconds limit = std::chrono::seconds(15));

// A program in just that environment, its output in a file. At the end it is asked to terminate, then killed, and
// waited for.
class ChildProcess {
 public:
  ChildProcess(const std::vector<std::string>& command, const Environment& environment, std::string outputFile);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();

  [[nodiscard]] pid_t pid() const { return pid_; }
  [[nodiscard]] std::string output() const;

  // The exit code, 128 and the signal's number where one ended it; nothing while it still runs after that time.
  [[nodiscard]] std::optional<int> wait(std::chrono::milliseconds limit);

  void signal(int number) const;

 private:
  pid_t pid_ = -1;
  std::string outputFile_;
  std::optional<int> exitCode_;
};

// Ends and reaps everything that this process's children have left behind, such as what a bus has started.
class OrphanReaper {
 public:
  OrphanReaper();
  OrphanReaper(const OrphanReaper&) = delete;
  OrphanReaper& operator=(const OrphanReaper&) = delete;
  ~OrphanReaper();
};
