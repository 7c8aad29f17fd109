// A hold on one process, by which its end is told from the start of another with the same number.
#pragma once

#include <chrono>
#include <cstdint>

class HLProcessWatch {
 public:
  explicit HLProcessWatch(std::int32_t pid);
  HLProcessWatch(const HLProcessWatch&) = delete;
  HLProcessWatch& operator=(const HLProcessWatch&) = delete;
  ~HLProcessWatch();

  [[nodiscard]] std::int32_t pid() const { return pid_; }

  // Whether the process is no more; one that nobody has waited for yet is no more. Any thread.
  [[nodiscard]] bool hasEnded() const;

  // How long ago it started; a very long time where that is not known.
  [[nodiscard]] std::chrono::milliseconds age() const;

  // Any thread; nothing happens once it has ended.
  void sendSignal(int signal) const;

 private:
  const std::int32_t pid_;
  int descriptor_;  // -1 where the kernel gives none
  bool wasThere_ = true;
};
