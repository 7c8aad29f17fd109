// A daemon beside the application, which answers well or badly. In real time, on a thread of its own.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// How many kinds of replies there are.
[[nodiscard]] std::size_t DaemonReplyCount();

class DaemonDouble {
 public:
  // Answers its callers with these replies in turn; the numbers are those of kinds.
  DaemonDouble(const std::string& socketPath, std::vector<std::size_t> replies);
  DaemonDouble(const DaemonDouble&) = delete;
  DaemonDouble& operator=(const DaemonDouble&) = delete;
  ~DaemonDouble();

  // What the oldest "dismiss" not asked about yet comes to, as a result's text; "" where its reply could not be read.
  [[nodiscard]] std::string nextAnswer();

 private:
  void serve();

  const std::string path_;
  const std::vector<std::size_t> replies_;
  int listener_ = -1;
  std::mutex mutex_;
  std::vector<std::string> answers_;
  std::thread thread_;
};
